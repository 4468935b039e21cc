"""Prints the lines and branches covered in each folder, from a summary of gcovr, as a table."""

import collections
import json
import pathlib
import sys


def percent(covered, total):
    return f"{100 * covered / total:.1f} %" if total else "-"


def row(name, count):
    lines, covered_lines, branches, covered_branches = count
    return (f"| {name} | {lines} | {percent(covered_lines, lines)} "
            f"| {branches} | {percent(covered_branches, branches)} |")


def main(summary):
    folders = collections.defaultdict(lambda: [0, 0, 0, 0])
    for file in json.loads(pathlib.Path(summary).read_text())["files"]:
        folder = str(pathlib.PurePosixPath(file["filename"]).parent)
        for name in (folder, "all"):
            for index, key in enumerate(
                    ("line_total", "line_covered", "branch_total", "branch_covered")):
                folders[name][index] += file[key]
    print("| Folder | Lines | Covered | Branches | Covered |\n|---|---|---|---|---|")
    for name in sorted(folders, key=lambda name: (name == "all", name)):
        print(row(name if name == "all" else f"`{name}/`", folders[name]))


main(sys.argv[1])
