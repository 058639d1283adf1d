#!/usr/bin/env python3
"""Fails when a file of the library includes a folder above its own.

The folders' order is TSXML_FOLDERS in the top CMakeLists.txt, from the
bottom layer up; each folder's CMakeLists.txt names the folders it uses
(DEPENDS), which must all stand before it. A file in tsxml/<folder>/ may
include its own folder and the folders its component uses, directly or
through others. With --graph, prints the component graph instead.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]tsxml/([^/">]+)/')


def cmake_list(text, head):
    """The words after `head` up to the next keyword or closing parenthesis."""
    match = re.search(head + r'\s+([^)]*?)\s*(?:\)|\n\s*[A-Z]+\s)', text + '\n)')
    return match.group(1).split() if match else []


def main():
    top = (ROOT / 'CMakeLists.txt').read_text()
    order = cmake_list(top, r'set\(TSXML_FOLDERS')
    rank = {folder: i for i, folder in enumerate(order)}
    problems = []
    closure = {}
    depends = {}
    for folder in order:
        lists = ROOT / 'tsxml' / folder / 'CMakeLists.txt'
        if not lists.exists():
            continue
        depends[folder] = cmake_list(lists.read_text(), 'DEPENDS')
        closure[folder] = {folder}
        for used in depends[folder]:
            if rank.get(used, len(order)) >= rank[folder]:
                problems.append(f'tsxml/{folder}/CMakeLists.txt: DEPENDS {used}, '
                                f'which does not stand below {folder}')
                continue
            closure[folder] |= closure.get(used, {used})

    if '--graph' in sys.argv:
        for folder in order:
            if folder in depends:
                print(f'{folder} -> {", ".join(depends[folder]) or "(nothing)"}')
        return 0

    for path in sorted((ROOT / 'tsxml').rglob('*')):
        if path.suffix not in ('.h', '.cpp'):
            continue
        parts = path.relative_to(ROOT / 'tsxml').parts
        if len(parts) < 2:
            continue  # the umbrella headers stand above every folder
        folder = parts[0]
        allowed = closure.get(folder, {folder})
        for number, line in enumerate(path.read_text().splitlines(), 1):
            match = INCLUDE.match(line)
            if match and match.group(1) not in allowed:
                problems.append(f'{path.relative_to(ROOT)}:{number}: includes '
                                f'{match.group(1)}/, which {folder}/ does not use')
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main())
