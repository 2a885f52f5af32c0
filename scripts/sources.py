"""What the source checks share: the files of the tree, and C++ text without its comments and literals."""

import os
import re
import subprocess
from dataclasses import dataclass
from pathlib import Path

CPP_SUFFIXES = {".cpp", ".hpp", ".h", ".mm"}
IGNORED_FOLDERS = {".git", "build", "out", "node_modules", ".cache", "__pycache__"}


@dataclass(frozen=True)
class Finding:
    """One thing to change: where, and what to write instead."""

    file: str
    line: int
    advice: str

    def __str__(self):
        return f"{self.file}:{self.line}: {self.advice}"


def treeFiles(root):
    """Paths of the files that belong to the tree, relative to `root`, sorted; also in an unpacked archive."""
    listing = subprocess.run(
        ["git", "-C", str(root), "ls-files", "-co", "--exclude-standard", "-z"], capture_output=True, text=True
    )
    if listing.returncode == 0:
        names = [name for name in listing.stdout.split("\0") if name]
    else:
        names = []
        for folder, folders, files in os.walk(root):
            folders[:] = [name for name in folders if name not in IGNORED_FOLDERS]
            names += [str((Path(folder) / name).relative_to(root)) for name in files]
    return sorted({Path(name) for name in names if (Path(root) / name).is_file()})


def lineOf(text, offset):
    """The line number, from 1, of an offset."""
    return text.count("\n", 0, offset) + 1


_LITERALS = re.compile(
    r"""
      //(?:[^\n\\]|\\.|\\\n)*                              # a line comment
    | /\*.*?\*/                                            # a block comment
    | (?:u8|[uUL])?R"(?P<mark>[^\s()\\]{0,16})\(.*?\)(?P=mark)"   # a raw string
    | "(?:[^"\\\n]|\\.)*"                                  # a string
    | (?<![0-9A-Fa-f])'(?:[^'\\\n]|\\.)*'                  # a character, not a digit separator
    """,
    re.VERBOSE | re.DOTALL,
)


def withoutLiterals(text):
    """C++ text whose comments are blank and whose literals are empty; every offset and line stays where it was."""

    def blank(match):
        found = match.group(0)
        spaces = re.sub(r"[^\n]", " ", found)
        if found.startswith("/"):
            return spaces
        quote = found[-1]
        return quote + spaces[1:-1] + quote

    return _LITERALS.sub(blank, text)



def closing(text, opening):
    """Offset of the bracket that closes the one at `opening`; the text's end when none does."""
    depth = 0
    for offset in range(opening, len(text)):
        character = text[offset]
        if character in "([{":
            depth += 1
        elif character in ")]}":
            depth -= 1
            if depth == 0:
                return offset
    return len(text)
