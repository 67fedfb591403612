"""Finds the small changes ("mutations") of a C++ source that a test should notice.

One change each: an operator, a number, a character of a text, a condition, or a statement that is left out. What only
places widgets is left alone. The sources are formatted, so that a binary operator stands between blanks.
"""
# SPDX-License-Identifier: MIT
import re
from collections import Counter
from typing import Iterator, NamedTuple


class Mutation(NamedTuple):
    path: str
    start: int  # offsets of the characters that are replaced
    end: int
    text: str  # what is put in their place
    line: int  # the number of the first line, from 1
    before: str  # the changed lines, each without its indentation
    after: str
    number: int  # among those of the file that read the same, from 1


# Comments and texts are taken as a whole, so that nothing inside is an operator.
TOKEN = re.compile(
    r'(?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*#(?:\\\n|[^\n])*|R"(?P<raw>[^(]*)\(.*?\)(?P=raw)"'
    r"|static_assert\(.*?\);|\btemplate <[^\n]*|\boperator\b[^\w\s]+)"
    r'|(?P<text>"(?:\\.|[^"\\\n])*")'
    r"|(?P<char>'(?:\\.|[^'\\\n])+')"
    r"|(?P<number>\b(?:0x[0-9A-Fa-f]+|[0-9]+)(?P<suffix>[uUlL]*)\b(?![.\w]))"
    r"|(?P<word>\b(?:true|false)\b)"
    r"|(?P<spaced>(?<= )(?:==|!=|<=|>=|&&|\|\||<<|>>|\+=|-=|\|=|&=|[-+*/%&|^<>])(?= ))"
    r"|(?P<sign>\+\+|--|!(?=[\w(]))",
    re.DOTALL | re.MULTILINE,
)
REPLACEMENTS = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "|",
    "+=": "-=", "-=": "+=", "|=": "&=", "&=": "|=", "++": "--", "--": "++", "!": "",
    "true": "false", "false": "true",
}  # fmt: skip
# A row of a table that ends with the place of a widget in its grid.
PLACE = re.compile(r'(?:" \}, |^ +)(?:\d, )*$')
ARRAY = re.compile(r"std::array<[\w:]+, $")
CONDITION = re.compile(r"\b(?P<kind>if|while) \((?!constexpr)")
# A call or an assignment on lines of its own; a declaration that is left out would not compile.
STATEMENT = re.compile(
    r"(?<=[;{}):\n]\n)(?P<indent> {4,})(?P<body>(?:break|continue|(?!return\b|throw\b|delete\b|else\b|using\b|case\b)"
    r"(?:\+\+|--)[^;{}]*|[*(]*[A-Za-z_][\w:]*(?:(?:->|\.|\(|\[|\+\+|--)[^;{}]*| (?:[-+*/|&^%]|<<|>>)?= [^;{}]*)));(?= *(?://[^\n]*)?\n)"
)
LAYOUT = re.compile(r"[lL]ayout|addWidget\(|QSpacerItem|setWidth|Margin|Spacing|Stretch|[sS]izeHint|setMinimum|"
                    r"setMaximum|(?<!\.)resize\(|Geometry|(?:Size|Adjust|Bar)Policy|rowCount|Align|Indent|columnSpan|"
                    r"\brow\b.*\bcolumn\b")  # fmt: skip


def mutations(path: str, source: str) -> list[Mutation]:
    """Every mutation of the source, in the order of the file.

    >>> [m.after for m in mutations("a.cpp", "int f(int n)\\n{\\n    if (n < 7)\\n        ++n;\\n    return n;\\n}\\n")]
    ['if (false)', 'if (true)', 'if (n <= 7)', 'if (n < 8)', '--n;', ';']
    >>> [m.after for m in mutations("a.cpp", 'const char* a = "x < 1"; // 2 < 3\\n')]
    ['const char* a = "x < 2"; // 2 < 3']
    >>> mutations("a.h", "template <int count = 3> struct tList; static_assert(1 < 2);\\n#define A 1\\n")
    []
    >>> [m.number for m in mutations("a.cpp", "a = 1;\\nb = 1;\\na = 1;\\n") if m.before == "a = 1;"]
    [1, 2]
    >>> mutations("a.cpp", "{\\n    grid->setSpacing(3);\\n}\\n")
    []
    >>> [m.after for m in mutations("a.cpp", '    { "name", "text" }, 1, 2, 3 },\\n')]
    ['{ "namx", "text" }, 1, 2, 3 },', '{ "name", "texx" }, 1, 2, 3 },']
    """
    numbers: Counter = Counter()
    found = []
    for place in sorted([*_tokens(source), *_conditions(source), *_statements(source)]):
        line, before, after = _described(source, *place)
        numbers[before, after] += 1
        if not LAYOUT.search(before):
            found.append(Mutation(path, *place, line, before, after, numbers[before, after]))
    return found


def _described(source: str, start: int, end: int, text: str) -> tuple[int, str, str]:
    first = source.rfind("\n", 0, start) + 1
    last = source.find("\n", end)
    before, after = source[first:last], source[first:start] + text + source[end:last]
    strip = lambda lines: " ".join(line.strip() for line in lines.splitlines()).strip()
    return source.count("\n", 0, start) + 1, strip(before), strip(after)


def _tokens(source: str) -> Iterator[tuple[int, int, str]]:
    for token in TOKEN.finditer(source):
        kind, text = token.lastgroup, token.group()
        if kind == "text" and len(text) > 2 and not text.endswith('.h"'):
            last = source[token.end() - 2]  # not "%2" for "%1": the lowest number is replaced
            yield token.end() - 2, token.end() - 1, "x" if source[token.end() - 3] == "%" else _other_character(last)
        elif kind == "char" and len(text) == 3:
            yield token.start() + 1, token.end() - 1, _other_character(text[1])
        elif token["number"]:
            if source[token.end() : token.end() + 2] == "];" or ARRAY.search(source[: token.start()][-80:]):
                continue  # a larger array does nothing else
            if PLACE.search(source[source.rfind("\n", 0, token.start()) + 1 : token.start()]):
                continue
            digits = text[: len(text) - len(token["suffix"])]
            more = int(digits, 0 if digits.startswith("0x") else 10) + 1
            width = len(digits) - 2
            yield token.start(), token.end(), (f"0x{more:0{width}X}" if width > 0 and digits[1] == "x" else
                                               str(more)) + token["suffix"]  # fmt: skip
        elif kind in ("spaced", "sign", "word"):
            yield token.start(), token.end(), REPLACEMENTS[text]


def _other_character(character: str) -> str:
    return "2" if character == "1" else "x" if character != "x" else "y"


def _conditions(source: str) -> Iterator[tuple[int, int, str]]:
    for found in CONDITION.finditer(source):
        line = source[source.rfind("\n", 0, found.start()) + 1 : found.start()]
        end = _closing(source, found.end())
        if line.strip().startswith("//") or ";" in source[found.end() : end]:
            continue
        if found["kind"] == "if":
            yield found.end(), end, "true"
        yield found.end(), end, "false"


def _closing(source: str, place: int) -> int:
    depth = 1
    for token in re.finditer(r"\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])+'|[()]", source[place:]):
        depth += {"(": 1, ")": -1}.get(token.group(), 0)
        if depth == 0:
            return place + token.start()
    return len(source)


def _statements(source: str) -> Iterator[tuple[int, int, str]]:
    for found in STATEMENT.finditer(source):
        if "//" not in found["body"] and not found["body"].endswith(("= default", "= delete")):
            yield found.start("body"), found.end("body"), ""
