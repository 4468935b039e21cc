"""Counts the tests that were really run, from the results that they left as XML.

test_summary.py RESULTS CTEST_XML prints one line.
An entry of ctest that is no program of the test framework counts as one test. Fails when a test failed or
none was run.
"""

import pathlib
import sys
import xml.etree.ElementTree as xml


def outcome(case):
    # ctest says fail, run or notrun; the programs' own results have no status.
    if case.find("failure") is not None or case.get("status") in ("fail", "notrun"):
        return "failed"
    return "skipped" if case.find("skipped") is not None else "passed"


def cases_of(path):
    return list(xml.parse(path).getroot().iter("testcase"))


def collect(results, ctest_report):
    """Outcomes by full name. The parts of an entry stand in the place of the entry."""
    outcomes = {}
    for entry in cases_of(ctest_report):
        parts = results / f"{entry.get('name')}.xml"
        if parts.exists():
            for case in cases_of(parts):
                outcomes[f"{case.get('classname')}.{case.get('name')}"] = outcome(case)
        if not parts.exists() or (outcome(entry) == "failed" and not any_failed(parts)):
            outcomes[entry.get("name")] = outcome(entry)
    return outcomes


def any_failed(path):
    return any(outcome(case) == "failed" for case in cases_of(path))


def main():
    results, ctest_report = map(pathlib.Path, sys.argv[1:])
    outcomes = collect(results, ctest_report)
    count = {kind: list(outcomes.values()).count(kind) for kind in ("passed", "failed", "skipped")}
    print(f"\n{count['passed']} passed, {count['failed']} failed, {count['skipped']} skipped")
    return 1 if count["failed"] or not count["passed"] else 0


if __name__ == "__main__":
    sys.exit(main())
