# SPDX-License-Identifier: MIT
"""Splits C++ and Objective-C++ sources into tokens, in as much detail as fault injection needs."""

import re
from typing import NamedTuple

_TOKEN = re.compile(
    r"""
      (?P<blank>\s+)
    | (?P<comment>//[^\n]*|/\*.*?\*/)
    | (?P<directive>(?<![^\n])[ \t]*\#(?:[^\n\\]|\\.)*)
    | (?P<string>R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|@?(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*"\w*)
    | (?P<character>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)+')
    | (?P<number>\.?\d(?:[eEpP][-+]|'?[\w.])*)
    | (?P<word>@?[A-Za-z_]\w*)
    | (?P<sign><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|&&|\|\||[-+*/%&|^=!<>]=|<<|>>|.)
    """,
    re.VERBOSE | re.DOTALL,
)


class Token(NamedTuple):
    kind: str  # string, character, number, word or sign
    text: str
    start: int
    end: int
    spaced_before: bool
    spaced_after: bool

    @property
    def is_binary(self) -> bool:
        """Returns whether this is a binary operator, which the formatter surrounds with spaces."""
        return self.kind == "sign" and self.spaced_before and self.spaced_after


def tokenize(text: str) -> list[Token]:
    """Returns the tokens without blanks, comments and preprocessor directives."""
    tokens = []
    for found in _TOKEN.finditer(text):
        if found.lastgroup in ("blank", "comment", "directive"):
            continue
        before = text[found.start() - 1 : found.start()]
        after = text[found.end() : found.end() + 1]
        tokens.append(
            Token(found.lastgroup, found.group(), found.start(), found.end(), before.isspace(), after.isspace())
        )
    return tokens
