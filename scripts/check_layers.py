#!/usr/bin/env python3
"""Checks that the folders of the repository include one another in one
direction only.

Inside src/: every folder has a place in LAYERS, lowest first. A file may
include headers of its own folder and of folders below it, never of a folder
above. A public header in include/tov/ counts as part of the folder that holds
its code: the folder of the source file with the same stem, or the folder
named in HEADER_ONLY for a header without one.

Outside src/: every folder that holds C or C++ code has an entry in OUTSIDE.
Such a file may include the public headers, its own folder's files and those
of the folders its entry names, but no private header of src/ except one that
its entry sanctions, with the reason. The tests alone may include any header
of src/, since they test the internal classes through the static archive.

Prints every offending include and exits with 1; prints the folder graph and
exits with 0 when all is well.

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

# The library's JSON types throw std::bad_alloc where RapidJSON's allocator
# would return NULL; the program, the benchmark and the fuzz targets build
# their JSON on them so that they meet a failed allocation as the library does.
JSON_TYPES = ("json/json_types.h", "the library's JSON types, whose allocator throws "
              "std::bad_alloc instead of returning NULL, so that both meet a failed "
              "allocation alike")

# Folders outside src/: the folders (besides its own) whose files each may
# include, the private headers of src/ it may include and why, and, where
# set, the only public headers it may include.
OUTSIDE = {
    # The HTTP layer, the decision service and the workbench are parts of
    # the program, each folder on the include path of the others.
    "tools": {
        "uses": ["tools/http", "tools/serve", "tools/workbench"],
        "sanctioned": dict([JSON_TYPES, (
            "api/log_setting.h", "the program compiles api/log_setting.cpp itself, so that "
            "its --log option reads the words as the engine does; it needs only the public "
            "headers")]),
    },
    "bench": {"uses": [], "sanctioned": dict([JSON_TYPES])},
    # The fuzz targets drive the program's batch line reader and the routers
    # of the service and the workbench, and read the example scenario as the
    # tests do.
    "fuzz": {"uses": ["tools", "tools/http", "tools/serve", "tools/workbench", "tests/support"],
             "sanctioned": dict([JSON_TYPES])},
    "examples": {"uses": [], "sanctioned": {}},
    # The tests also test the program's parts.
    "tests": {"uses": ["tests/support", "tools", "tools/http", "tools/serve", "tools/workbench"],
              "sanctioned": "all"},
    # The JNI glue stands on the C interface alone.
    "java": {"uses": [], "sanctioned": {}, "public": {"tov_c.h", "export.h"}},
}

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"([^"]+)"', re.MULTILINE)
SOURCE_SUFFIXES = {".h", ".cpp"}
OUTSIDE_SUFFIXES = {".h", ".cpp", ".c"}


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


def outside_files(root):
    """The C and C++ files outside src/ and include/, by their top folder."""
    files = {}
    for path in sorted(root.rglob("*")):
        relative = path.relative_to(root)
        top = relative.parts[0]
        if (path.suffix not in OUTSIDE_SUFFIXES or not path.is_file() or top.startswith(".")
                or top in ("src", "include", "build")):
            continue
        files.setdefault(top, []).append(path)
    return files


def check_outside(root, src, problems):
    """Checks the includes of every file outside src/; returns, by folder, the
    number of files and how often each sanctioned private header is included."""
    counts = {}
    for top, paths in outside_files(root).items():
        rules = OUTSIDE.get(top)
        if rules is None:
            problems.append(f"{top}/: C or C++ code in a folder that has no entry in OUTSIDE")
            continue
        used = {}
        for path in paths:
            shown = str(path.relative_to(root))
            text = path.read_text(errors="replace")
            for match in INCLUDE.finditer(text):
                line_number = text.count("\n", 0, match.start()) + 1
                target = match.group(1)
                problem = judge_outside_include(root, src, top, rules, path, target, used)
                if problem:
                    problems.append(f"{shown}:{line_number}: {problem}")
        counts[top] = (len(paths), used)
    return counts


def judge_outside_include(root, src, top, rules, path, target, used):
    """None when `path` in folder `top` may include `target`, else the reason."""
    if target.startswith("tov/"):
        name = target[len("tov/"):]
        if not (root / "include" / target).is_file():
            return f"includes \"{target}\", which is no public header"
        allowed = rules.get("public")
        if allowed is not None and name not in allowed:
            return (f"includes \"{target}\"; {top}/ may include only "
                    + ", ".join(f"tov/{h}" for h in sorted(allowed)))
        return None
    head = target.split("/", 1)[0]
    if head in LAYERS and (src / target).is_file():
        sanctioned = rules["sanctioned"]
        if sanctioned == "all" or target in sanctioned:
            used[target] = used.get(target, 0) + 1
            return None
        return (f"{top} includes \"{target}\", a private header of src/; include a public "
                "header, or sanction it in OUTSIDE with the reason")
    places = [path.parent, root / top] + [root / folder for folder in rules["uses"]]
    if any((place / target).is_file() for place in places):
        return None
    return (f"includes \"{target}\", which is in none of the folders {top}/ may use ("
            + ", ".join([top] + rules["uses"]) + ")")


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

    outside_counts = check_outside(root, src, problems)

    if problems:
        print("Layer check failed (lowest first: " + " < ".join(LAYERS) + "):")
        for problem in problems:
            print("  " + problem)
        return 1
    print("Layers hold (lowest first: " + " < ".join(LAYERS) + ").")
    for (source, target), count in sorted(edges.items(), key=lambda e: (rank[e[0][0]],
                                                                         rank[e[0][1]])):
        print(f"  {source} -> {target}: {count} include{'' if count == 1 else 's'}")
    print("Outside src/, each folder includes the public headers and what it may use:")
    for folder, (files, sanctioned) in outside_counts.items():
        told = ", ".join(f"{header} ({count})" for header, count in sorted(sanctioned.items()))
        print(f"  {folder}: {files} files" + (f"; sanctioned: {told}" if told else ""))
    return 0


if __name__ == "__main__":
    sys.exit(main())
