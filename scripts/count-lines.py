#!/usr/bin/env python3
"""Counts the lines of code the tests weigh against: non-blank lines that are
not comments (C and C++ `//` lines and the lines of `/* */` blocks, Python
`#` lines), of everything under tests/ against src/ and tools/.

    scripts/count-lines.py [root]
"""
import pathlib
import sys

CODE_SUFFIXES = {".c", ".cc", ".cpp", ".h", ".hpp", ".in", ".py"}


def code_lines(path):
    hash_comments = path.suffix == ".py"
    count, in_block = 0, False
    for raw in path.read_text(errors="replace").splitlines():
        line = raw.strip()
        if in_block:
            in_block = "*/" not in line
            continue
        if not line:
            continue
        if hash_comments:
            count += not line.startswith("#")
            continue
        if line.startswith("//"):
            continue
        if line.startswith("/*"):
            in_block = "*/" not in line[2:]
            continue
        count += 1
    return count


def tree_lines(root, *folders):
    return sum(code_lines(path) for folder in folders
               for path in sorted((root / folder).rglob("*"))
               if path.is_file() and path.suffix in CODE_SUFFIXES and "__pycache__" not in path.parts)


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent)
    tests, code = tree_lines(root, "tests"), tree_lines(root, "src", "tools")
    print(f"tests {tests} / src+tools {code} = {100 * tests / code:.1f} %")


if __name__ == "__main__":
    main()
