# SPDX-License-Identifier: MIT
"""Finds the functions, statements and conditions of a source without type information."""

from dataclasses import dataclass, field

from lexer import Token, tokenize

_OPENING = {"(": ")", "[": "]", "{": "}"}
_SPECIFIERS = {"static", "inline", "constexpr", "virtual", "explicit", "friend", "const", "private", "@end"}
_BEFORE_VALUE = {"return", "case", "else", "co_return", "throw", "in"}


@dataclass
class Function:
    opening: int  # token index of its brace
    closing: int
    returns: str  # "void", "bool", "value" or "unknown"
    statements: list["Statement"] = field(default_factory=list)


@dataclass
class Statement:
    first: int
    last: int  # token index of its semicolon
    function: Function
    block_end: int


class Source:
    """A source, its tokens, and its functions and conditions."""

    def __init__(self, text: str):
        self.text = text
        self.tokens: list[Token] = tokenize(text)
        self.partner = self._partners()
        self.skipped: set[int] = set()  # tokens that are types or declarations, not computations
        self.functions: list[Function] = []
        self.conditions: list[tuple[int, int]] = []  # the parentheses of an if or a while
        self._skip_template_arguments()
        self._skip_declarations()
        self._scope(0, len(self.tokens))

    def is_at(self, index: int, *texts: str) -> bool:
        return 0 <= index < len(self.tokens) and self.tokens[index].text in texts

    def between(self, first: int, last: int) -> str:
        """Returns the text from one token to another, both included."""
        return self.text[self.tokens[first].start : self.tokens[last].end]

    def skip_over(self, index: int, step: int = 1) -> int:
        """Returns the next index in a direction; at a bracket, the index past its partner."""
        other = self.partner.get(index)
        if other is not None and (other - index) * step > 0:
            return other + step
        return index + step

    def parts(self, opening: int) -> list[tuple[int, int]]:
        """Returns the first and last tokens of each comma-separated part between a pair of brackets."""
        closing = self.partner[opening]
        parts, first, at = [], opening + 1, opening + 1
        while at <= closing:
            if at == closing or (self.is_at(at, ",") and at not in self.skipped):
                if first < at:
                    parts.append((first, at - 1))
                first = at + 1
            at = self.skip_over(at)
        return parts

    def top_level(self, first: int, last: int) -> list[int]:
        """Returns the tokens from one to another that are not between nested brackets."""
        found, at = [], first
        while at <= last:
            found.append(at)
            at = self.skip_over(at)
        return found

    def _partners(self) -> dict[int, int]:
        partner, stack = {}, []
        for index, token in enumerate(self.tokens):
            if token.kind != "sign":
                continue
            if token.text in _OPENING:
                stack.append(index)
            elif token.text in _OPENING.values() and stack:
                opening = stack.pop()
                partner[opening], partner[index] = index, opening
        return partner

    def _skip_template_arguments(self) -> None:
        index = 1
        while index < len(self.tokens):
            end = self._template_end(index) if self.is_at(index, "<") else None
            if end is not None:
                self.skipped.update(range(index, end + 1))
                index = end
            index += 1

    def _template_end(self, index: int) -> int | None:
        token, before = self.tokens[index], self.tokens[index - 1]
        after_name = before.kind == "word" and not token.spaced_before and before.text != "operator"
        if not (after_name or before.text == "template" or (before.text == "]" and not token.spaced_before)):
            return None
        depth, at = 0, index
        while at < len(self.tokens):
            text = self.tokens[at].text
            depth += {"<": 1, ">": -1, ">>": -2}.get(text, 0)
            if depth <= 0:
                return at
            if text in (";", "{", ")", "]", "}"):
                return None
            at = self.skip_over(at)
        return None

    def _skip_declarations(self) -> None:
        for index, token in enumerate(self.tokens):
            if token.text in ("static_assert", "noexcept", "decltype", "requires") and self.is_at(index + 1, "("):
                self.skipped.update(range(index, self.partner[index + 1] + 1))
            elif token.text in ("using", "typedef", "case", "@selector", "@property", "@interface"):
                end = index
                while end < len(self.tokens) and not self.is_at(end, ";", ":"):
                    end += 1
                self.skipped.update(range(index, end))
            elif token.text == "[" and self.is_at(index + 1, "["):
                if self.partner.get(index + 1, -2) + 1 == self.partner.get(index):
                    self.skipped.update(range(index, self.partner[index] + 1))
            elif token.text == "operator":
                self.skipped.add(index + 1)
            elif token.text == "=" and self.is_at(index + 1, "0", "default", "delete"):
                if self.is_at(index - 1, ")", "const", "override", "noexcept"):
                    self.skipped.update((index, index + 1))

    # Namespaces and classes

    def _scope(self, first: int, end: int) -> None:
        start = index = first
        while index < end:
            if self.is_at(index, ";"):
                start = index + 1
            elif self.is_at(index, "public", "private", "protected") and self.is_at(index + 1, ":"):
                start = index + 2
            elif self.is_at(index, "{") and index in self.partner:
                if self._braces(start, index):
                    start = self.partner[index] + 1
            index = self.skip_over(index)

    def _braces(self, start: int, opening: int) -> bool:
        """Parses the braces of a declaration. Returns whether they end it."""
        head = [i for i in self.top_level(start, opening - 1) if i not in self.skipped]
        texts = [self.tokens[i].text for i in head]
        closing = self.partner[opening]
        if "namespace" in texts or "extern" in texts:
            self._scope(opening + 1, closing)
            return True
        if "enum" in texts:
            return True
        if "(" not in texts:
            if {"class", "struct", "union", "@implementation", "@interface"} & set(texts):
                self._scope(opening + 1, closing)
                return True
            return False
        if any(text == "=" and not self.is_at(i - 1, "operator") for i, text in zip(head, texts)):
            return False
        in_initialisers = ":" in texts[texts.index("(") :] and not self.is_at(start, "@implementation", "-", "+")
        if in_initialisers and (self.tokens[opening - 1].kind == "word" or opening - 1 in self.skipped):
            return False
        if in_initialisers:
            self._lambdas(start, opening)
        self._body(opening, self._returned(head, texts))
        return True

    def _returned(self, head: list[int], texts: list[str]) -> str:
        for i, text in zip(head, texts):
            if text in ("-", "+") and self.is_at(i + 1, "("):
                return _returns(self.between(i + 2, self.partner[i + 1] - 1).split())
        parameters = texts.index("(")
        if "->" in texts[parameters:]:
            return _returns(texts[texts.index("->", parameters) + 1 :])
        end = parameters
        if "operator" in texts[:parameters]:
            end = texts.index("operator")
        else:
            end -= 1
            while end > 1 and texts[end - 1] == "~":
                end -= 1
            while end > 1 and texts[end - 1] == "::":
                end -= 2
        return _returns(texts[:end])

    # Function bodies

    def _body(self, opening: int, returns: str) -> None:
        function = Function(opening, self.partner[opening], returns)
        self.functions.append(function)
        self._block(opening, function)

    def _block(self, opening: int, function: Function) -> None:
        index = opening + 1
        while index < self.partner[opening]:
            index = self._statement(index, function, self.partner[opening])

    def _statement(self, index: int, function: Function, block_end: int) -> int:
        """Records the statement that begins at `index`. Returns the beginning of the next one."""
        token = self.tokens[index]
        if token.text == "{":
            self._block(index, function)
            return self.partner[index] + 1
        if token.text in (";", "else", "do", "try", "@autoreleasepool", "@try"):
            return index + 1
        if token.text in ("if", "while", "for", "switch", "catch"):
            while not self.is_at(index, "("):
                index += 1
            end = self.partner[index]
            if token.text in ("if", "while"):
                self.conditions.append((index, end))
            self._lambdas(index + 1, end)
            return end + 1
        if token.text in ("case", "default"):
            while not self.is_at(index, ":"):
                index += 1
            return index + 1
        last = index
        while last < block_end and not self.is_at(last, ";"):
            last = self.skip_over(last)
        if token.text in ("class", "struct", "enum", "union"):
            self._scope(index, last)
        else:
            function.statements.append(Statement(index, last, function, block_end))
            self._lambdas(index, last)
        return last + 1

    def _lambdas(self, first: int, end: int) -> None:
        index = first
        while index < end:
            opening, returns = self._lambda(index)
            if opening is not None:
                self._body(opening, returns)
                index = self.partner[opening]
            index += 1

    def _lambda(self, index: int) -> tuple[int | None, str]:
        """Returns the opening brace and the return type of the lambda or block at `index`, or None and ""."""
        if self.is_at(index, "^"):
            at = index + 1
        elif self.is_at(index, "[") and self._may_begin_value(index):
            at = self.partner[index] + 1
            if not self.is_at(at, "(", "{", "<", "mutable", "->"):
                return None, ""
            while at in self.skipped:
                at += 1
        else:
            return None, ""
        type_begin = None
        while not self.is_at(at, "{"):
            if self.is_at(at, ";", ",", ")") or at >= len(self.tokens):
                return None, ""
            if self.is_at(at, "->"):
                type_begin = at + 1
            at = self.skip_over(at)
        if type_begin is None:
            return at, "unknown"
        return at, _returns([t.text for t in self.tokens[type_begin:at]])

    def _may_begin_value(self, index: int) -> bool:
        before = self.tokens[index - 1]
        if before.kind == "word":
            return before.text in _BEFORE_VALUE
        return before.kind == "sign" and before.text not in (")", "]")


def _returns(type_words: list[str]) -> str:
    words = [word for word in type_words if word not in _SPECIFIERS]
    if not words or words == ["void"]:
        return "void"
    if words in (["bool"], ["BOOL"]):
        return "bool"
    return "unknown" if "auto" in words else "value"
