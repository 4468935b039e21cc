#!/usr/bin/env python3
"""Records a day of use through the console host and compares the store with a model of its rows.

Exit codes: 0 the same rows, 1 other rows, 2 the comparison could not be made.
"""

import argparse
import collections
import json
import sqlite3
import sys
from pathlib import Path

sys.dont_write_bytecode = True  # the folder of the sources stays clean

from made_day import draw_day  # noqa: E402
from row_model import RULES, TABLES, RowModel  # noqa: E402
from store_under_test import StoreError, StoreUnderTest  # noqa: E402

SHOWN = 10  # of each kind of difference


def read_day(path):
    lines = Path(path).read_text(encoding="utf-8").splitlines()
    return [(0, [json.loads(line) for line in lines if line.strip()])]


def expected_tables(day, without=None):
    model = RowModel(without)
    for counter, actions in day:
        for record_id, action in enumerate(actions, start=counter + 1):
            model.record(record_id, action)
    return model.tables


def stored_tables(day, host_command):
    with StoreUnderTest(host_command) as store:
        for counter, actions in day:
            if counter > 0:
                store.set_counter(counter)
            store.record(actions)
        return store.read()


def some_of(lines):
    more = [f"and {len(lines) - SHOWN} more"] if len(lines) > SHOWN else []
    return lines[:SHOWN] + more


def count_differences(table, stored, expected):
    counts = [
        collections.Counter((row.user, row.kind, row.name) for row in rows)
        for rows in (stored, expected)
    ]
    for key in sorted(counts[0] | counts[1], key=str):
        if counts[0][key] != counts[1][key]:
            yield (
                f"{table}: {counts[0][key]} rows stored, {counts[1][key]} expected "
                f"of user {key[0]}, kind {key[1]}, {key[2]}"
            )


def row_differences(table, stored, expected):
    stored, expected = collections.Counter(stored), collections.Counter(expected)
    for row in sorted((stored - expected).elements()):
        yield f"{table}: stored but not expected: {row}"
    for row in sorted((expected - stored).elements()):
        yield f"{table}: expected but not stored: {row}"


def differences(stored, expected):
    """Lines that say what differs; none where the tables hold the same rows."""
    lines = []
    for table in TABLES:
        rows = stored[table], expected[table]
        lines += some_of(list(count_differences(table, *rows)))
        lines += some_of(list(row_differences(table, *rows)))
    return lines


def unnoticed_rules(day, stored):
    """The rules without which the day would have left the same rows."""
    return [rule for rule in RULES if not differences(stored, expected_tables(day, rule))]


def compare(arguments):
    day = draw_day(arguments.seed) if arguments.file is None else read_day(arguments.file)
    stored = stored_tables(day, arguments.host)
    expected = expected_tables(day, arguments.without)
    for table in TABLES:
        print(f"{table}: {len(stored[table])} rows stored, {len(expected[table])} expected")
    lines = differences(stored, expected)
    if not lines and arguments.every_rule:
        lines = [f"the day is the same without {rule}" for rule in unnoticed_rules(day, stored)]
    print("\n".join(lines or ["the same rows"]))
    return 1 if lines else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    source = parser.add_mutually_exclusive_group(required=True)
    source.add_argument("--file", help="JSON Lines file of actions")
    source.add_argument("--seed", type=int, help="make a day by chance")
    parser.add_argument("--without", choices=RULES, help="switch one rule of the model off")
    parser.add_argument(
        "--every-rule", action="store_true", help="fail if a rule made no difference to the day"
    )
    parser.add_argument("host", nargs="+", help="command that starts the console host, after --")
    try:
        return compare(parser.parse_args())
    except (StoreError, OSError, ValueError, KeyError, sqlite3.Error) as error:
        print(f"day_of_use: {type(error).__name__}: {error}", file=sys.stderr)
        return 2


if __name__ == "__main__":
    sys.exit(main())
