"""Chooses entries of ctest: prints each with the target that builds what it runs.

select_tests.py BUILD[,BUILD] folders FOLDER...    those that cover the folders
select_tests.py BUILD[,BUILD] changed [FILE...]    those that cover the files' folders and the folders that
                                                   depend on them
select_tests.py BUILD[,BUILD] match REGEX          those that may have a test whose full name,
                                                   BUILD.FOLDER.Suite.Test, matches
The builds must be configured. An empty selection is an error that names what there is.
"""

import argparse
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
# What a change in these touches is everything.
EVERYWHERE = ("cmake/", "tests/support/", "CMakeLists.txt", "CMakePresets.json", "engine/")
TEST_MACRO = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", re.M)


class Entry:
    def __init__(self, build, described):
        self.build = build
        self.name = described["name"]
        properties = {each["name"]: each["value"] for each in described.get("properties", [])}
        labels = properties["LABELS"]  # ctest has sorted them
        self.folder = next(label for label in labels if label.startswith("tests/")).removeprefix("tests/")
        self.covers = [label for label in labels if not label.startswith("tests/")]
        programs = [word for word in described.get("command", []) if word.endswith(".exe")]
        self.target = pathlib.PurePath(programs[0]).stem if programs else "all_tests"

    def labels(self):
        return {self.folder, *self.covers}


def entries_of(builds):
    entries = []
    for build in builds:
        listed = subprocess.run(
            ["ctest", "--test-dir", str(ROOT / "build" / build), "--show-only=json-v1"],
            check=True,
            capture_output=True,
            text=True,
        )
        entries += [Entry(build, test) for test in json.loads(listed.stdout)["tests"]]
    return entries


def sources(folder):
    return [path for kind in ("*.cpp", "*.h") for path in (ROOT / folder).rglob(kind)]


def product_folders():
    """The folders of the product that have sources, with those that each includes."""
    skipped = ("build", "tests", "bench", "examples")
    folders = [
        path.name
        for path in ROOT.iterdir()
        if path.is_dir() and path.name not in skipped and not path.name.startswith(".") and sources(path.name)
    ]
    included = re.compile(r'^#include "(\w+)/', re.M)
    return {
        folder: {name for path in sources(folder) for name in included.findall(path.read_text())}
        for folder in folders
    }


def test_files():
    """The files of the tests, without their endings, with those of them that each includes."""
    included = re.compile(r'^#include "(tests/[\w/]+)\.h"', re.M)
    files = {}
    for path in sources("tests"):
        name = str(path.relative_to(ROOT).with_suffix(""))
        files.setdefault(name, set()).update(included.findall(path.read_text()))
    return files


def with_dependents(changed, includes):
    affected = set(changed)
    while True:
        more = {each for each, needed in includes.items() if needed & affected} - affected
        if not more:
            return affected
        affected |= more


def known_folders(entries):
    return sorted({label for entry in entries for label in entry.labels()})


def by_folders(entries, folders):
    known = known_folders(entries)
    unknown = [folder for folder in folders if folder not in known]
    if unknown:
        sys.exit(f"no test covers {', '.join(unknown)}; there are: {' '.join(known)}")
    return [entry for entry in entries if set(folders) & entry.labels()]


def by_changes(entries, files):
    if any(file.startswith(EVERYWHERE) for file in files):
        return [entry for entry in entries if entry.folder != "package"]  # which wants the packages made
    changed_tests = (file.rpartition(".")[0] or file for file in files if re.match(r"tests/\w+/", file))
    tested = {file.split("/")[1] for file in with_dependents(changed_tests, test_files())}
    affected = with_dependents((file.split("/")[0] for file in files if "/" in file), product_folders())
    chosen = [
        entry for entry in entries if entry.folder in tested or affected & set(entry.covers)
    ]
    if not chosen:
        told = f"no test covers what differs ({len(files)} files)" if files else "nothing differs from main"
        sys.exit(f"{told}; name a folder: {' '.join(known_folders(entries))}")
    return chosen


def by_names(entries, pattern):
    try:
        wanted = re.compile(pattern)
    except re.error as error:
        sys.exit(f"no regular expression: {pattern}: {error}")

    def may_match(entry):
        folder = entry.folder
        names = [
            ".".join(found) for path in sources(f"tests/{folder}") for found in TEST_MACRO.findall(path.read_text())
        ]
        return wanted.search(entry.name) or any(
            wanted.search(f"{entry.name.split('-')[0]}.{name}") for name in names
        )

    chosen = [entry for entry in entries if may_match(entry)]
    if not chosen:
        builds = sorted({entry.name.split("-")[0] for entry in entries})
        sys.exit(f"no test matches {pattern}; its full name begins with one of: {' '.join(builds)}")
    return chosen


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("builds")
    parser.add_argument("by", choices=("folders", "changed", "match"))
    parser.add_argument("words", nargs="*")
    arguments = parser.parse_args()
    entries = entries_of(arguments.builds.split(","))
    if arguments.by == "match":
        chosen = by_names(entries, arguments.words[0])
    else:
        chosen = {"folders": by_folders, "changed": by_changes}[arguments.by](entries, arguments.words)
    for entry in chosen:
        print(entry.build, entry.name, entry.target)


if __name__ == "__main__":
    main()
