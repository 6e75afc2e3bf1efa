# SPDX-License-Identifier: MIT
"""Mutation operators. Each one yields its edits of a source as (start, end, replacement)."""

import re
from collections.abc import Iterator

from structure import Function, Source, Statement

Edit = tuple[int, int, str]

_COMPARISONS = {
    "<": ("<=", ">="),
    "<=": ("<", ">"),
    ">": (">=", "<="),
    ">=": (">", "<"),
    "==": ("!=",),
    "!=": ("==",),
}
_ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "&": "|", "<<": ">>", ">>": "<<"}
_ASSIGNMENTS = {"+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "|=": "&=", "&=": "|=", "++": "--", "--": "++"}
_CONSTANTS = {"true": "false", "false": "true", "YES": "NO", "NO": "YES"}
_CALLS = {
    "min": "max",
    "max": "min",
    "floor": "ceil",
    "ceil": "floor",
    "round": "floor",
    "front": "back",
    "back": "front",
    "any_of": "all_of",
    "all_of": "any_of",
    "none_of": "any_of",
}
_EQUAL_RESULTS = {"{}": ("{}", "nullptr", "std::nullopt", "0", "false")}
_COMMUTATIVE = {"CFEqual", "max", "min", "swap"}
_LOGICAL = ("&&", "||")
_AROUND_OPERANDS = (",", ";", "=", "+=", "-=", "return", "?", ":", "(", "[", "{", ")", "]", "}")
_CONTROL = ("if", "while", "for", "switch", "catch", "return", "sizeof", "alignof", "@selector", "decltype")
_NOT_REMOVABLE = ("return", "using", "typedef", "static_assert", "goto", "throw", "case", "delete")
_DECLARATION = re.compile(
    r"(?:static |constexpr |const |\[\[\w+\]\] )*(?:auto|[\w:]+(?:<.*?>)?)(?: const)?[&*]*(?: const)?[&*]* "
    r"(?:\[(?P<names>[\w, ]+)\]|(?P<name>\w+))\s*(?:[={(;]|$)",
    re.DOTALL,
)
_PARAMETER = re.compile(r"(?:const )?[\w:]+(?:<.*>)?(?: const)?[&*]* ?(?:\w+|/\*.*?\*/)(?: = .*)?", re.DOTALL)


def comparisons(source: Source) -> Iterator[Edit]:
    for index, token in _signs(source, _COMPARISONS):
        for other in _COMPARISONS[token.text]:
            yield token.start, token.end, other


def arithmetic(source: Source) -> Iterator[Edit]:
    for index, token in _signs(source, _ARITHMETIC):
        neighbours = source.tokens[index - 1], source.tokens[index + 1]
        is_text = any(neighbour.kind == "string" for neighbour in neighbours)
        is_method = source.is_at(index - 1, ";", "}") or source.is_at(index - 2, "@implementation")
        if not is_text and not is_method:
            yield token.start, token.end, _ARITHMETIC[token.text]
    for index, token in enumerate(source.tokens):
        if token.text in _ASSIGNMENTS and index not in source.skipped and not _in_for(source, index):
            yield token.start, token.end, _ASSIGNMENTS[token.text]
        elif token.text == "-" and not token.spaced_after and not source.is_at(index + 1, "("):
            before = source.tokens[index - 1]
            if before.text == "return" or (before.kind == "sign" and before.text not in (")", "]")):
                yield token.start, token.end, ""


def constants(source: Source) -> Iterator[Edit]:
    for index, token in enumerate(source.tokens):
        if index in source.skipped:
            continue
        if token.text in _CONSTANTS:
            yield token.start, token.end, _CONSTANTS[token.text]
        elif token.kind == "number":
            for other in _other_numbers(token.text):
                yield token.start, token.end, other


def calls(source: Source) -> Iterator[Edit]:
    for index, token in enumerate(source.tokens):
        if token.text in _CALLS and source.is_at(index + 1, "("):
            if source.is_at(index - 1, "::", ".", "->"):
                yield token.start, token.end, _CALLS[token.text]


def booleans(source: Source) -> Iterator[Edit]:
    """Exchanges && and ||, or removes an operand of &&, || or |."""
    for index, token in _signs(source, (*_LOGICAL, "|")):
        if token.text != "|":
            yield token.start, token.end, "||" if token.text == "&&" else "&&"
        weaker = ("||",) if token.text == "||" else _LOGICAL
        stops = (*_AROUND_OPERANDS, *weaker, token.text)
        left = _operand_end(source, index, -1, stops)
        right = _operand_end(source, index, 1, stops)
        yield source.tokens[index - 1].end, source.tokens[right].end, ""
        if not source.is_at(left - 1, token.text):
            yield source.tokens[left].start, source.tokens[index + 1].start, ""


def negations(source: Source) -> Iterator[Edit]:
    """Negates a condition, or removes its negation."""
    for index, token in enumerate(source.tokens):
        if token.text == "!" and not token.is_binary and index not in source.skipped:
            yield token.start, token.end, ""
        elif token.text == "?" and token.is_binary:
            first = _operand_end(source, index, -1, _AROUND_OPERANDS)
            yield from _negated(source, first, index - 1)
    for opening, closing in source.conditions:
        top = source.top_level(opening + 1, closing - 1)
        separators = [at for at in top if source.is_at(at, ";")]
        first = separators[-1] + 1 if separators else opening + 1
        if not any(source.is_at(at, "=") for at in top if at >= first):
            yield from _negated(source, first, closing - 1)


def statements(source: Source) -> Iterator[Edit]:
    """Removes a statement."""
    for statement in _statements(source):
        first = source.tokens[statement.first].text
        if first in _NOT_REMOVABLE and not source.is_at(statement.first + 1, ";"):
            continue
        if not _declares_what_is_used(source, statement):
            yield source.tokens[statement.first].start, source.tokens[statement.last].start, ""


def returns(source: Source) -> Iterator[Edit]:
    """Returns at the beginning of a function, or replaces a returned value."""
    for function in source.functions:
        if len(function.statements) > 1:
            for value in _returned_values(function):
                at = source.tokens[function.opening].end
                yield at, at, f" return{value};"
    for statement in _statements(source):
        if source.is_at(statement.first, "return") and statement.last > statement.first + 1:
            begin = source.tokens[statement.first].end
            end = source.tokens[statement.last].start
            for value in _other_results(source, statement):
                if source.text[begin:end].strip() not in _EQUAL_RESULTS.get(value.strip(), (value.strip(),)):
                    yield begin, end, value


def arguments(source: Source) -> Iterator[Edit]:
    """Swaps two adjacent arguments that may have the same type; otherwise the fault does not compile."""
    for index, token in enumerate(source.tokens):
        if token.text not in ("(", "{") or index in source.skipped or index not in source.partner:
            continue
        before = source.tokens[index - 1]
        if token.text == "(" and (before.kind != "word" or before.text in _CONTROL) and not _is_angle(source, index):
            continue
        if before.text in _COMMUTATIVE or _opens_names(source, index):
            continue
        inside = source.tokens[index + 1 : source.partner[index]]
        if token.text == "{" and any(part.text == ";" for part in inside):
            continue
        parts = source.parts(index)
        if any(_is_parameter(source, *part) for part in parts):
            continue
        for one, other in zip(parts, parts[1:]):
            if _may_be_of_one_type(source, one, other):
                start, end = source.tokens[one[0]].start, source.tokens[other[1]].end
                between = source.text[source.tokens[one[1]].end : source.tokens[other[0]].start]
                yield start, end, source.between(*other) + between + source.between(*one)


OPERATORS = {
    "comparison": comparisons,
    "arithmetic": arithmetic,
    "constant": constants,
    "call": calls,
    "boolean": booleans,
    "negation": negations,
    "statement": statements,
    "return": returns,
    "arguments": arguments,
}


def _signs(source: Source, texts):
    for index, token in enumerate(source.tokens):
        if token.text in texts and token.is_binary and index not in source.skipped:
            yield index, token


def _opens_names(source: Source, index: int) -> bool:
    """Returns whether a brace opens a namespace, in which commas only separate constructor initialisers, or a
    scoped enumeration, whose order does not matter without a cast."""
    at = index - 1
    while at >= 0 and (source.tokens[at].kind == "word" or source.is_at(at, ":", "::")):
        if source.is_at(at, "namespace") or source.is_at(at, "enum") and source.is_at(at + 1, "class"):
            return source.is_at(index, "{")
        at -= 1
    return False


def _in_for(source: Source, index: int) -> bool:
    """Returns whether the token is in the head of a for loop, where a fault only causes a time-out."""
    at = index
    while at > 0 and not source.is_at(at, "{", "}"):
        if source.is_at(at, "(") and source.is_at(at - 1, "for"):
            return source.partner[at] > index
        at -= 1
    return False


def _other_numbers(text: str) -> list[str]:
    found = re.fullmatch(r"(0[xX][0-9a-fA-F']+|[0-9']+|[0-9']*\.[0-9']*)([a-zA-Z]\w*|)", text)
    if not found:
        return []
    digits, suffix = found[1].replace("'", ""), found[2]
    if digits[:2] in ("0x", "0X"):
        return [hex(int(digits, 16) + 1) + suffix]
    value = float(digits)
    if value != int(value):
        return [f"{value * 2}{suffix}", f"{value / 2}{suffix}"]
    point = ".0" if "." in digits else ""
    return [f"{int(value) + step}{point}{suffix}" for step in (1, -1) if value + step >= 0]


def _operand_end(source: Source, index: int, step: int, stops) -> int:
    at = index + step
    end = at
    while 0 <= at < len(source.tokens) and not _stops(source, at, step, stops):
        other = source.skip_over(at, step)
        end, at = other - step, other
    return end


def _stops(source: Source, at: int, step: int, stops) -> bool:
    if not source.is_at(at, *stops):
        return False
    other = source.partner.get(at)
    return other is None or (other - at) * step < 0  # not at a bracket that belongs to the operand


def _negated(source: Source, first: int, last: int) -> Iterator[Edit]:
    top = source.top_level(first, last)
    texts = [source.tokens[at].text for at in top if at not in source.skipped]
    is_logical = any(text in _LOGICAL for text in texts)
    if not is_logical and (texts[:1] == ["!"] or any(text in _COMPARISONS for text in texts)):
        return  # negated by another operator already
    start, end = source.tokens[first].start, source.tokens[last].end
    yield start, end, f"!({source.text[start:end]})"


def _statements(source: Source) -> Iterator[Statement]:
    for function in source.functions:
        yield from function.statements


def _declares_what_is_used(source: Source, statement: Statement) -> bool:
    found = _DECLARATION.match(source.between(statement.first, statement.last))
    if not found or source.tokens[statement.first].text in ("return", "break", "continue"):
        return False
    names = re.findall(r"\w+", found["names"] or found["name"])
    later = source.tokens[statement.last : statement.block_end]
    return any(token.text in names for token in later)


def _returned_values(function: Function) -> tuple[str, ...]:
    return {"void": ("",), "bool": (" false", " true"), "value": (" {}",), "unknown": ("",)}[function.returns]


def _other_results(source: Source, statement: Statement) -> tuple[str, ...]:
    returned = statement.function.returns
    if returned == "unknown":
        texts = {token.text for token in source.tokens[statement.first : statement.last]}
        return (" false", " true") if texts & {"!", *_LOGICAL, *_COMPARISONS} else ()
    return {"bool": (" false", " true"), "value": (" {}",), "void": ()}[returned]


def _is_angle(source: Source, index: int) -> bool:
    return source.is_at(index - 1, ">", ">>") and index - 1 in source.skipped


def _is_parameter(source: Source, first: int, last: int) -> bool:
    if last == first:
        return False
    words = [source.tokens[at].kind == "word" for at in (last - 1, last)]
    return bool(_PARAMETER.fullmatch(source.between(first, last))) and (
        all(words) or source.tokens[last - 1].text in ("&", "*", "&&") or last - 1 in source.skipped
    )


def _may_be_of_one_type(source: Source, one: tuple[int, int], other: tuple[int, int]) -> bool:
    if source.between(*one) == source.between(*other):
        return False
    if _kind(source, one) != _kind(source, other) and "value" not in (_kind(source, one), _kind(source, other)):
        return False
    for first, _ in (one, other):
        if source.tokens[first].text in (".", "{", "[", "^") and first in source.partner or source.is_at(first, "."):
            return False
    return True


def _kind(source: Source, part: tuple[int, int]) -> str:
    """Returns the kind of a literal, or "value" for anything else."""
    token = source.tokens[part[0]]
    if part[0] != part[1]:
        return "value"
    if token.text in _CONSTANTS:
        return "truth"
    return token.kind if token.kind in ("string", "number", "character") else "value"
