#!/usr/bin/env python3
"""Checks the rules of this tree that neither compiler nor linter knows.

    scripts/check-includes.py [ROOT]

Which folder may include which, where Win32 may appear, the letters that member names begin with, the length of a file,
and words that have no place in it. Prints one complaint a line (file:line: text); exits 1 when there is one.
"""

import os
import re
import sys
from pathlib import Path

CORE = {"base", "image", "rw", "img", "codec", "database"}

# A folder always may include itself; "codec/RasterFormat.h" is a leaf that the database needs too.
MAY_INCLUDE = {
    "base": set(),
    "image": {"base"},
    "rw": {"base"},
    "img": {"base"},
    "database": {"base", "image", "codec/RasterFormat.h"},
    "codec": {"base", "image", "database", "plugins/plugin.h"},
    "tools": CORE,
    "ui": {"base", "image"},
    "dialogs": CORE | {"tools", "ui", "app"},
    "app": CORE | {"tools", "ui", "dialogs"},
    "cli": CORE | {"tools"},
    "plugins": set(),
    "demo": CORE | {"tools"},
}
# These look at everything: they test, measure or attack it.
FREE = {"tests", "bench", "fuzz"}
FOLDERS = set(MAY_INCLUDE) | FREE | {"lang"}

WINDOW_FOLDERS = {"ui", "dialogs", "app", "tests", "lang"}
WIN32_HEADERS = {
    "windows.h", "windowsx.h", "commctrl.h", "commdlg.h", "shlobj.h", "shlwapi.h", "shellapi.h", "uxtheme.h",
    "gdiplus.h", "objidl.h", "d3d9.h", "winuser.h", "wingdi.h", "shobjidl.h", "psapi.h", "tlhelp32.h",
}
WINDOWS_WRAPPER = "base/Windows.h"

MEMBER = re.compile(r"\bm_\w+")
GOOD_MEMBER = re.compile(r"m_(?:fn|[prnbfhsaeo])[A-Z]\w*$")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
WINDOW_HANDLE = re.compile(r"\bHWND\b")

# Written in two pieces, so that this file does not complain about itself.
FORBIDDEN = [
    (re.compile(pattern), name)
    for pattern, name in (
        (r"\bP" r"arts? \d", "a chapter number"),
        (r"\bspeci" r"fication\b|\b[Tt]he Speci" r"fication\b|\bspec\." r"md\b", "the text it was built from"),
        (r"\bsha" r"red/|\bwin" r"drive\b|/wor" r"k/", "a place outside the project"),
        (r"\b[Ii]ssues? #?\d", "an issue number"),
        (r"\b[RS]-" r"\d{1,3}\b", "a note number"),
        (r"\bTO" r"DO\b|\bFIX" r"ME\b|\bXX" r"X\b", "unfinished work"),
    )
]

CODE = {".h", ".hpp", ".c", ".cpp", ".inl"}
TEXT = CODE | {".rc", ".py", ".sh", ".md", ".txt", ".cmake", ".json", ".yml", ".manifest", ""}
MOST_LINES = 800
SKIPPED = re.compile(r"out|out-.*|build|corpus|\.git|\.cache|__pycache__")


def files(root):
    for folder, names, found in os.walk(root):
        names[:] = sorted(name for name in names if not SKIPPED.fullmatch(name))
        for name in sorted(found):
            path = Path(folder, name)
            if path.suffix in TEXT and not path.is_symlink():
                yield path.relative_to(root)


def may_include(path, target):
    """True when the file at `path` may include the project header `target`; both count from the root."""
    folder, wanted = path.parts[0], target.split("/")[0]
    if folder in FREE or folder not in MAY_INCLUDE:
        return True
    if folder == "plugins":
        own = "/".join(path.parts[:2])
        return target == "plugins/plugin.h" or target.startswith(("plugins/common/", own + "/"))
    if path.as_posix().startswith("codec/RasterFormat."):
        return wanted == "base" or target == "codec/RasterFormat.h"
    return wanted == folder or wanted in MAY_INCLUDE[folder] or target in MAY_INCLUDE[folder]


def may_use_win32(path):
    return path.parts[0] in WINDOW_FOLDERS or path.stem.endswith("_Win32") or path.as_posix() == WINDOWS_WRAPPER


def include_complaint(path, bracket, target):
    name = target.lower()
    if bracket == "<":
        if name == "windows.h" and path.as_posix() != WINDOWS_WRAPPER and path.suffix != ".rc":
            return f"<windows.h> is included through {WINDOWS_WRAPPER} only"
        if name in WIN32_HEADERS and not may_use_win32(path):
            return f"<{target}> belongs into ui/, dialogs/, app/ or a *_Win32 file"
        return None
    if target == WINDOWS_WRAPPER and not may_use_win32(path):
        return f"{WINDOWS_WRAPPER} belongs into ui/, dialogs/, app/ or a *_Win32 file"
    if target.split("/")[0] not in FOLDERS or "/" not in target:
        return f'"{target}" must be written as a path from the project\'s root'
    if not may_include(path, target):
        return f'{path.parts[0]}/ may not include "{target}"'
    return None


def code_complaints(path, number, line):
    match = INCLUDE.match(line)
    if match:
        complaint = include_complaint(path, match.group(1), match.group(2))
        if complaint:
            yield number, complaint
    if path.suffix not in CODE:
        return
    for member in MEMBER.findall(line):
        if not GOOD_MEMBER.match(member):
            yield number, f"{member} needs a type letter (p r n b f h s a e fn o) and a capital after m_"
    if WINDOW_HANDLE.search(line) and not may_use_win32(path):
        yield number, "a window handle below ui/"


def complaints(root, path):
    try:
        text = (root / path).read_text(encoding="utf-8")
    except UnicodeDecodeError:
        if path.suffix:
            yield 1, "not UTF-8"
        return
    lines = text.split("\n")
    is_code = path.suffix in CODE or path.suffix == ".rc"
    for number, line in enumerate(lines, 1):
        for pattern, name in FORBIDDEN:
            if pattern.search(line):
                yield number, f'"{pattern.search(line).group()}" names {name}'
        if is_code and len(path.parts) > 1:
            yield from code_complaints(path, number, line)
    if path.suffix in CODE and len(lines) > MOST_LINES + 1:
        yield len(lines), f"{len(lines)} lines; split a file before it has {MOST_LINES}"
    if path.suffix == ".h" and path.name != "resource.h" and "#pragma once" not in text and "#ifndef" not in text:
        yield 1, "a header without #pragma once"


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent)
    found = [f"{path.as_posix()}:{number}: {text}" for path in files(root) for number, text in complaints(root, path)]
    print("\n".join(found) if found else "includes and words: nothing to complain about")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
