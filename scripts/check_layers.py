#!/usr/bin/env python3
"""Checks that the folders of src/ include one another in one direction only.

Every folder of src/ has a place in LAYERS, lowest first. A file may include
headers of its own folder and of folders below it, never of a folder above.
A public header in include/tov/ counts as part of the folder that holds its
code: the folder of the source file with the same stem, or the folder named in
HEADER_ONLY for a header without one. Prints every offending include and exits
with 1; prints the folder graph and exits with 0 when all is well.

Usage: check_layers.py [ROOT]   (ROOT defaults to the repository root)
"""

import pathlib
import re
import sys

# Lowest first. A new folder of src/ must be given its place here.
LAYERS = ["foundation", "json", "dm", "rules", "frame", "evaluators", "api", "c_api"]

# Public headers that have no source file of their own.
HEADER_ONLY = {
    "export.h": "foundation",
    "version.h": "foundation",
    "TOVFunctionality.h": "frame",
    "tov.h": "c_api",
}

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"([^"]+)"', re.MULTILINE)
SOURCE_SUFFIXES = {".h", ".cpp"}


def source_files(folder):
    return sorted(p for p in folder.rglob("*") if p.suffix in SOURCE_SUFFIXES)


def public_header_folders(root, src, problems):
    """Maps each public header name to the folder of src/ that holds its code."""
    code_folder = {}
    for path in source_files(src):
        if path.suffix == ".cpp":
            code_folder.setdefault(path.stem, path.relative_to(src).parts[0])
    folders = {}
    for header in source_files(root / "include" / "tov"):
        folder = HEADER_ONLY.get(header.name) or code_folder.get(header.stem)
        if folder is None:
            problems.append(f"include/tov/{header.name}: no source file in src/ and not in "
                            "HEADER_ONLY; give it a folder")
            continue
        folders[header.name] = folder
    return folders


def folder_of_include(target, public_folders):
    """The folder an include line points into, or None for a header outside src/."""
    if target.startswith("tov/"):
        return public_folders.get(target[len("tov/"):])
    head, _, rest = target.partition("/")
    return head if rest and head in LAYERS else None


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else
                        pathlib.Path(__file__).resolve().parent.parent)
    src = root / "src"
    problems = []
    public_folders = public_header_folders(root, src, problems)

    files = []  # (shown path, folder, text)
    for path in source_files(src):
        folder = path.relative_to(src).parts[0]
        if path.parent == src:
            continue  # CMake glue only
        files.append((str(path.relative_to(root)), folder, path.read_text()))
    for header in source_files(root / "include" / "tov"):
        if header.name in public_folders:
            files.append((str(header.relative_to(root)), public_folders[header.name],
                          header.read_text()))

    rank = {name: index for index, name in enumerate(LAYERS)}
    edges = {}
    for shown, folder, text in files:
        if folder not in rank:
            problems.append(f"{shown}: folder src/{folder}/ has no place in LAYERS")
            continue
        for line_number, target in ((text.count("\n", 0, m.start()) + 1, m.group(1))
                                    for m in INCLUDE.finditer(text)):
            target_folder = folder_of_include(target, public_folders)
            if target_folder is None or target_folder == folder:
                continue
            edges.setdefault((folder, target_folder), 0)
            edges[(folder, target_folder)] += 1
            if rank.get(target_folder, -1) > rank[folder]:
                problems.append(f"{shown}:{line_number}: {folder} includes \"{target}\" "
                                f"from {target_folder}, a layer above it")

    if problems:
        print("Layer check failed (lowest first: " + " < ".join(LAYERS) + "):")
        for problem in problems:
            print("  " + problem)
        return 1
    print("Layers hold (lowest first: " + " < ".join(LAYERS) + ").")
    for (source, target), count in sorted(edges.items(), key=lambda e: (rank[e[0][0]],
                                                                         rank[e[0][1]])):
        print(f"  {source} -> {target}: {count} include{'' if count == 1 else 's'}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
