# SPDX-License-Identifier: MIT
"""Tests which faults script/mutants generates, without compiling them."""

import subprocess
import sys
import tempfile
import unittest
from collections import Counter
from pathlib import Path

from faults import accepted_faults, faults_of
from mutants import CHECKOUT, HERE, drawn, stale_entries


def faults(text: str, operator: str | None = None) -> list[str]:
    """Returns the text with each fault applied."""
    return [each.applied(text) for each in faults_of("a.cpp", text) if operator in (None, each.operator)]


class OperatorsTest(unittest.TestCase):
    def test_a_comparison_gets_its_other_bound_and_its_opposite(self):
        self.assertEqual(faults("bool b = x < y;"), ["bool b = x <= y;", "bool b = x >= y;"])

    def test_what_is_no_computation_stays(self):
        for text in (
            "// a < 1\n",
            "#if A < 1\n#endif\n",
            "static_assert(sizeof(int) < 5);",
            "std::array<int, 3> values;",
            "template <int n = 3>\nclass A;",
            'const char* text = "1 < 2";',
            "bool operator==(const A&) const = default;",
            "virtual void f() const = 0;",
            "int& operator=(int&& other);",
            "using A = B<1>;",
        ):
            self.assertEqual(faults(text), [], text)

    def test_numbers_become_their_neighbours_and_fractions_others(self):
        self.assertEqual(faults("int a = 6;"), ["int a = 5;", "int a = 7;"])
        self.assertEqual(faults("int a = 0;"), ["int a = 1;"])
        self.assertEqual(faults("auto a = 30ms;"), ["auto a = 29ms;", "auto a = 31ms;"])
        self.assertEqual(faults("auto a = 0.5;"), ["auto a = 0.25;", "auto a = 1.0;"])

    def test_an_operand_of_a_logical_operator_is_left_out(self):
        text = "bool a = b && c || d && e;"
        made = faults(text, "boolean")
        for expected in (
            "bool a = b || c || d && e;",
            "bool a = c || d && e;",
            "bool a = b || d && e;",
            "bool a = b && c && d && e;",
            "bool a = d && e;",
            "bool a = b && c;",
            "bool a = b && c || e;",
            "bool a = b && c || d;",
        ):
            self.assertIn(expected, made)
        self.assertEqual(faults("f(A | B);", "boolean"), ["f(B);", "f(A);"])

    def test_conditions_are_negated_once(self):
        self.assertEqual(faults("void f() { if (a) b(); }", "negation"), ["void f() { if (!(a)) b(); }"])
        self.assertEqual(faults("void f() { if (!a) b(); }", "negation"), ["void f() { if (a) b(); }"])
        self.assertEqual(faults("void f() { if (a == b) c(); }", "negation"), [])
        self.assertEqual(
            faults("void f() { if (int a = b(); a) c(); }", "negation"), ["void f() { if (int a = b(); !(a)) c(); }"]
        )
        self.assertEqual(faults("int a = f(b ? c : d);", "negation"), ["int a = f(!(b) ? c : d);"])

    def test_statements_are_removed_but_not_declarations_of_what_is_used(self):
        text = "void f() { const int a = g(); h(a); const Guard guard(m); [x y:a]; }"
        self.assertEqual(
            faults(text, "statement"),
            [
                "void f() { const int a = g(); ; const Guard guard(m); [x y:a]; }",
                "void f() { const int a = g(); h(a); ; [x y:a]; }",
                "void f() { const int a = g(); h(a); const Guard guard(m); ; }",
            ],
        )

    def test_functions_return_early_and_something_else(self):
        self.assertIn("void A::f() { return; b(); c(); }", faults("void A::f() { b(); c(); }", "return"))
        self.assertEqual(
            faults("bool f() { return g(); }", "return"), ["bool f() { return false; }", "bool f() { return true; }"]
        )
        self.assertEqual(faults("int f() { return g(); }", "return"), ["int f() { return {}; }"])
        self.assertIn("- (BOOL)f { return false; [a b]; return c; }", faults("- (BOOL)f { [a b]; return c; }"))

    def test_bodies_are_found_behind_initialisers_and_inside_lambdas(self):
        text = "A::A() : m_a{1}, m_b(2) { f([this](int x) -> bool { g(x); return h(); }); k(); }"
        made = faults(text, "statement")
        self.assertIn(text.replace("g(x);", ";"), made)
        self.assertIn(text.replace("k();", ";"), made)
        self.assertIn(text.replace("return h()", "return false"), faults(text, "return"))
        text = "A::A() : m_a([] { f(); }) { g(); }"
        self.assertEqual(faults(text, "statement"), [text.replace("f();", ";"), text.replace("g();", ";")])

    def test_arguments_are_swapped_unless_they_cannot_be_of_one_type(self):
        self.assertEqual(faults("int a = f(b, c);", "arguments"), ["int a = f(c, b);"])
        self.assertEqual(faults("Rect a{b, c};", "arguments"), ["Rect a{c, b};"])
        for text in ("void f(int a, int b);", 'f("a", true);', "f(a, a);", "std::min(a, b);", "f(a, [] {});"):
            self.assertEqual(faults(text, "arguments"), [], text)
        self.assertEqual(faults("namespace a::b { A::A() : c(d), e(f) {} }", "arguments"), [])
        self.assertEqual(faults("enum class A : std::uint8_t { B, C };", "arguments"), [])
        self.assertEqual(faults("enum A { B, C };", "arguments"), ["enum A { C, B };"])

    def test_an_equal_result_is_no_fault(self):
        for result in ("nullptr", "std::nullopt", "0", "false", "{}"):
            self.assertEqual(faults("T f() { return %s; }" % result, "return"), [], result)

    def test_methods_are_no_differences(self):
        self.assertEqual(faults("@implementation A\n- (void)f:(int)a {\n}\n@end", "arithmetic"), [])


class AcceptedTest(unittest.TestCase):
    def test_an_accepted_fault_is_known_wherever_its_line_is(self):
        with tempfile.TemporaryDirectory() as folder:
            listed = Path(folder) / "accepted.txt"
            listed.write_text("# why\n\nfile: a.cpp\nline: int a = 0;\nbecomes: int a = 1;\nwhy: b: c\n")
            accepted = accepted_faults(listed)
        [fault] = faults_of("a.cpp", "\n\n    int  a = 0;\n")
        self.assertEqual(accepted.get(fault.key), "b: c")

    @unittest.skipUnless((CHECKOUT / ".git").exists(), "the sources are listed by git")
    def test_every_accepted_fault_can_be_made(self):
        self.assertEqual(stale_entries(), [])


class PatchesTest(unittest.TestCase):
    def test_every_patch_applies(self):
        patches = sorted(map(str, (HERE / "patches").glob("*.patch")))
        self.assertTrue(patches)
        for patch in patches:
            subprocess.run(["git", "apply", "--check", patch], cwd=CHECKOUT, check=True)


class SampleTest(unittest.TestCase):
    def test_folders_take_turns_and_a_seed_repeats_its_sample(self):
        text = "".join(f"int a{i} = {i};\n" for i in range(9))
        every = [(name, each) for name in ("one", "two") for each in faults_of(name, text)]
        sample = list(drawn(every, 7))
        self.assertEqual(Counter(sample), Counter(every))
        self.assertEqual([name for name, _ in sample[:4]], ["one", "two", "one", "two"])
        self.assertEqual(len({fault.line for name, fault in sample[:18] if name == "one"}), 9)
        self.assertEqual(sample, list(drawn(every, 7)))
        self.assertNotEqual(sample, list(drawn(every, 8)))


if __name__ == "__main__":
    sys.exit(unittest.main())
