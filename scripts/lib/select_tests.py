"""Chooses entries of ctest: prints each with the target that builds what it runs.

select_tests.py BUILD[,BUILD] folders FOLDER...    those that cover the folders
select_tests.py BUILD[,BUILD] changed [FILE...]    those that cover the files' folders and the folders that
                                                   depend on them
select_tests.py BUILD[,BUILD] match REGEX          those that may have a test whose full name,
                                                   BUILD.PROGRAM.Suite.Test, matches
The builds must be configured. An empty selection is an error that names what there is; of changed files that
no test covers, the others notwithstanding, stderr tells.
"""

import argparse
import functools
import itertools
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
# What a change in these touches is everything.
EVERYWHERE = (
    "cmake/", "tests/support/", "tests/CMakeLists.txt", "CMakeLists.txt", "CMakePresets.json", "engine/", "examples/"
)
TEST_MACRO = re.compile(r"^TEST(_F|_P)?\((\w+),\s*(\w+)\)", re.M)
INSTANTIATION = re.compile(r"^INSTANTIATE_TEST_SUITE_P\((\w*),\s*(\w+)", re.M)


class Entry:
    def __init__(self, build, described):
        self.build = build
        self.name = described["name"]
        properties = {each["name"]: each["value"] for each in described.get("properties", [])}
        labels = properties["LABELS"]  # ctest has sorted them
        self.folder = next(label for label in labels if label.startswith("tests/")).removeprefix("tests/")
        self.covers = [label for label in labels if not label.startswith("tests/")]
        programs = [word for word in described.get("command", []) if word.endswith(".exe")]
        target_of_scripts = {"package": "packages", "bench": "bench_programs"}.get(self.folder, "all_tests")
        self.target = pathlib.PurePath(programs[0]).stem if programs else target_of_scripts

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
    if not files:
        sys.exit(f"nothing differs from main; name a folder: {' '.join(known_folders(entries))}")
    products, tests = product_folders(), test_files()

    def covering(file):
        if file.startswith(EVERYWHERE):
            return [entry for entry in entries if entry.folder != "package"]  # for which all is packed first
        if re.match(r"tests/\w+/", file):
            stem = file.rpartition(".")[0] or file
            tested = {each.split("/")[1] for each in with_dependents([stem], tests)}
            return [entry for entry in entries if entry.folder in tested]
        affected = with_dependents([file.split("/")[0]], products)
        return [entry for entry in entries if affected & set(entry.covers)]

    covered = {file: covering(file) for file in files}
    chosen = [entry for entry in entries if any(entry in those for those in covered.values())]
    if not chosen:
        sys.exit(
            f"no test covers what differs: {' '.join(files)}; name a folder: {' '.join(known_folders(entries))}"
        )
    left = [file for file, those in covered.items() if not those]
    if left:
        print(f"no test covers: {' '.join(left)}", file=sys.stderr)
    return chosen


@functools.cache
def test_names(folder):
    """The names of the folder's tests; the beginnings of those that have parameters, of which only the program
    knows how they are called; and what they may be called: words in quotes, and numbers."""
    text = "\n".join(path.read_text() for path in sources(f"tests/{folder}"))
    found = TEST_MACRO.findall(text)
    names = [f"{suite}.{test}" for kind, suite, test in found if kind != "_P"]
    beginnings = [
        f"{instance and instance + '/'}{suite}.{test}/"
        for kind, suite, test in found
        for instance, instantiated in INSTANTIATION.findall(text)
        if kind == "_P" and instantiated == suite
    ]
    words = re.findall(r"\w+", " ".join(re.findall(r'"[^"\n]*"|\b\d+', text)))
    return names, beginnings, set(words)


def by_names(entries, pattern):
    try:
        wanted = re.compile(pattern)
    except re.error as error:
        sys.exit(f"no regular expression: {pattern}: {error}")
    # A name that was pasted ends with its parameter.
    parameters = re.findall(r"\w+", pattern.rpartition("/")[2]) if "/" in pattern else []

    def may_match(entry):
        program = entry.name.split("-")[0]
        names, beginnings, words = test_names(entry.folder)
        full = itertools.chain(
            names, (begin + word for begin in beginnings for word in words.union(parameters))
        )
        return wanted.search(entry.name) or any(wanted.search(f"{program}.{name}") for name in full)

    chosen = [entry for entry in entries if may_match(entry)]
    if not chosen:
        programs = sorted({entry.name.split("-")[0] for entry in entries})
        sys.exit(f"no test matches {pattern}; its full name begins with one of: {' '.join(programs)}")
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
