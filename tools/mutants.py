"""Mutants of C++ sources: what they would be with one decision changed. For scripts/mutate."""

import itertools
import re

WORDS = {"==": "!=", "!=": "==", " < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > ", "&&": "||", "||": "&&",
         " + ": " - ", " - ": " + ", "true": "false", "false": "true", "++": "--"}
TOKEN = re.compile("|".join(sorted((re.escape(word) if not word.isalpha() else rf"\b{word}\b" for word in WORDS), reverse=True)))
CONSTANT = re.compile(r"\bcl::(\w+)")
FIELD = re.compile(r"\.\w+ = ([^,{}()]+(?:\([^()]*\))?)(?=[,}])")
ASSIGNMENT = re.compile(r"^ +[\w.]+ = ([^;{}]+);$", re.M)
BLOCK_FIELD = re.compile(r"\s*b\.\w+\s*")
ORDERLESS = {"min": 0, "max": 0, "any_null": 0, "missing_in_rectangle": 1}  # from which argument on the order tells nothing
STATEMENT = re.compile(r"^ +(?!return|throw|case|default|break|using|static|template|else|auto|const)[\w:.>()-]+\([^;{}]*\);$", re.M)
VARIABLE = "VORN_MERO_MUTANT"
HEADER = "chosen_mutant.hpp"
CHOOSE = f"""#pragma once
#include <cstdlib>
inline int chosen_mutant() {{
    static int const number = std::getenv("{VARIABLE}") != nullptr ? std::atoi(std::getenv("{VARIABLE}")) : 0;
    return number;
}}
"""


def code_only(text):
    """Comments, strings and preprocessor lines blanked, positions kept."""
    return re.sub(r"//[^\n]*|/\*.*?\*/|^[ \t]*#(?:\\\n|[^\n])*|\"(?:\\.|[^\"\\\n])*\"|\bstatic_assert\([^;]*;",
                  lambda found: re.sub(r"[^\n]", " ", found[0]), text, flags=re.S | re.M)


def spans(code, begin):
    """Where the arguments of a parenthesis are; `begin` is behind it. The last span ends before its end."""
    found, depth, start = [], 0, begin
    for at in range(begin, len(code)):
        character = code[at]
        if character in "([{":
            depth += 1
        elif character in ")]}" and depth:
            depth -= 1
        elif character in ",)" and not depth:
            found.append((start, at))
            start = at + 1
            if character == ")":
                return found
    return found


def swapped(text, first, second):
    one, two = text[first[0]:first[1]], text[second[0]:second[1]]
    return text[:first[0]] + re.match(r"\s*", one)[0] + two.strip() + text[first[1]:second[0]] + \
        re.match(r"\s*", two)[0] + one.strip() + text[second[1]:]


def mutants(text):
    """(position, what changes, new text) of each mutant."""
    code = code_only(text)
    for found in TOKEN.finditer(code):
        word = found[0]
        yield found.start(), f"{word.strip()} -> {WORDS[word].strip()}", text[:found.start()] + WORDS[word] + text[found.end():]
    swaps = []  # neighbours, and each two fields of a block
    for found in re.finditer(r"\b\w+\(", code):
        from_one = ORDERLESS.get(found[0][:-1], len(code))
        pairs = itertools.combinations(list(enumerate(spans(code, found.end())))[:from_one + 1], 2)
        swaps += [(first, second) for (one, first), (two, second) in pairs
                  if two == one + 1 or all(BLOCK_FIELD.fullmatch(code, *each) for each in (first, second))]
    fields = [found.span(1) for found in FIELD.finditer(code)]
    swaps += [pair for pair in zip(fields, fields[1:]) if pair[1][0] - pair[0][1] < 60]
    values = [found.span(1) for found in ASSIGNMENT.finditer(code)]
    swaps += [pair for pair in zip(values, values[1:]) if code.count("\n", pair[0][1], pair[1][0]) == 1]
    for first, second in swaps:
        one, two = code[first[0]:first[1]].strip(), code[second[0]:second[1]].strip()
        if one != two and "..." not in two:
            yield first[0], f"swap '{one}' and '{two}'", swapped(text, first, second)
    for found in CONSTANT.finditer(code):  # another constant of the list
        yield found.start(), f"{found[0]} + 1", text[:found.start()] + f"({found[0]} + 1)" + text[found.end():]
    for found in STATEMENT.finditer(code):
        yield found.start(), f"drop '{found[0].strip()}'", text[:found.start()] + ";" + text[found.end():]


def expanded(text):
    """Rows of macros that the text defines as MACRO(entry, ...) are replaced by what they stand for, on the same line."""
    macros = dict(re.findall(r"#define ([A-Z]+)\(entry, \.\.\.\)((?:[^\n]*\\\n)*[^\n]*)\n", text))
    while row := re.search(rf"^ *({'|'.join(macros) or '-'})\(", code_only(text), re.M):
        entry, *others = [text[first:last] for first, last in spans(text, row.end())]
        end = spans(text, row.end())[-1][1] + 1
        lines = text.count("\n", row.start(), end)
        body = re.sub(r"\s*\\\n\s*", " ", macros[row[1]]).replace("__VA_ARGS__", re.sub(r"\s+", " ", ",".join(others)).strip())
        text = text[:row.start()] + re.sub(r"\bentry\b", entry, body) + "\n" * lines + text[end:]
    return text


def bodies(code):
    """Where the bodies of functions are, without their braces."""
    at, said, found = 0, 0, []
    while at < len(code):
        if code[at] in ";}":
            said = at + 1
        elif code[at] == "{":
            if "(" not in code[said:at] or re.search(r"\bnamespace\b", code[said:at]):
                said = at + 1
            else:
                depth, begin = 1, at + 1
                while depth:
                    at += 1
                    depth += {"{": 1, "}": -1}.get(code[at], 0)
                if not re.match(r"\s*[,{]", code[at + 1:]):  # else a member's initializer
                    found.append((begin, at))
                    said = at + 1
        at += 1
    return found


class choice:
    """Sources in which the environment says which mutant is to run, so that they are built once.

    The body of a function stands there once for each of its mutants. What changes outside of bodies is in `outside`.
    """

    def __init__(self, texts):
        self.texts = {name: expanded(text) for name, text in texts.items()}
        self.mutants = {}  # by number: name, line, what changes, body and its new content
        self.outside = []  # name, line, what changes, new text
        for name, text in self.texts.items():
            where = bodies(code_only(text))
            for position, what, new in mutants(text):
                line = text.count("\n", 0, position) + 1
                body = next((each for each in where if each[0] <= position < each[1]), None)
                if body:
                    changed = new[body[0]:body[1] + len(new) - len(text)]
                    self.mutants[len(self.mutants) + 1] = name, line, what, body, changed
                else:
                    self.outside.append((name, line, what, new))

    def source(self, name, numbers):
        """The source with these mutants, and the mutant of each line that belongs to one."""
        text, lines, owner, at = self.texts[name], [], {}, 0
        chosen = {}
        for number in numbers:
            if self.mutants[number][0] == name:
                chosen.setdefault(self.mutants[number][3], []).append(number)

        def add(piece, number=None):
            first = len(lines) + 1
            lines.extend(piece.split("\n"))
            owner.update(dict.fromkeys(range(first, len(lines) + 1), number) if number else {})

        for body, those in sorted(chosen.items()):
            add(text[at:body[0]])
            for number in those:
                add(f"if (chosen_mutant() == {number}) {{\n{self.mutants[number][4]}\n}} else", number)
            add("{" + text[body[0]:body[1]] + "}")
            at = body[1]
        return "\n".join(lines) + ("\n" if lines else "") + text[at:], owner

    def write(self, name, numbers, tree):
        """Writes the source into a copy of the tree, where it changes; which mutant has which of its lines."""
        text, owner = self.source(name, numbers)
        if owner:
            text, owner = f'#include "{tree / HEADER}"\n{text}', {line + 1: number for line, number in owner.items()}
        if text != (tree / name).read_text():
            (tree / name).write_text(text)
        return owner
