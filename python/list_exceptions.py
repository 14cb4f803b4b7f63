"""Writes the exception classes of C++ headers as a list of macros, derived classes before their bases.

python list_exceptions.py OUTPUT HEADER...

EXCEPTION(number, space, name, base, text): numbers count from 0; `base` is qualified, and `text` is the class's comment.
"""

import pathlib
import re
import sys

SPACE = re.compile(r"^namespace ([\w:]+) \{", re.MULTILINE)
CLASS = re.compile(r"((?:^///.*\n)*)^class (?:\w+_EXPORT )?(\w+)(?: final)? : public ([\w:]+) \{", re.MULTILINE)


def classes(header):
    text = pathlib.Path(header).read_text()
    space = SPACE.search(text).group(1)
    for comment, name, base in CLASS.findall(text):
        words = " ".join(line.removeprefix("///").strip() for line in comment.splitlines())
        yield space, name, base if "::" in base else f"{space}::{base}", words


def main():
    output, *headers = sys.argv[1:]
    found = [each for header in headers for each in classes(header)]
    lines = [f'EXCEPTION({number}, {space}, {name}, {base}, R"text({words})text")\n'
             for number, (space, name, base, words) in enumerate(found)]
    pathlib.Path(output).write_text("".join(reversed(lines)))


main()
