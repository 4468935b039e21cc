"""What tslhost recover and the sqlite3 shell's .recover save of the same damaged databases.

recover_compare.py FOLDER SHELL: FOLDER has what recover_damaged.exe leaves. Prints one table with the
totals per kind of damage, and ends with 1 when the shell saves a record more from any file.

A record is a row with an id that was handed out; of several rows of one id in a table there is one,
as in the store. Rows of pages that were free in the whole file are deleted ones and count for nobody.
"""
import re
import sqlite3
import subprocess
import sys
from collections import Counter, defaultdict
from pathlib import Path

COLUMNS = 13
DATABASES = {"ualog": 2, "uareplay": 1}  # with their tables
LOST = "lost_and_found"


def open_database(path):
    connection = sqlite3.connect(path)
    connection.text_factory = bytes
    return connection


def rows_of(connection, table, columns="*", where=""):
    """All rows; none of a table with another number of columns. Names of columns may be damaged."""
    names = ",".join(f"NULL AS c{number}" for number in range(COLUMNS))
    try:
        query = f'SELECT {names} WHERE 0 UNION ALL SELECT {columns} FROM "{table}" {where}'
        return connection.execute(query).fetchall()
    except sqlite3.OperationalError:
        return []


def free_pages(path):
    data = path.read_bytes()
    size = int.from_bytes(data[16:18], "big")

    def number(at):
        return int.from_bytes(data[at : at + 4], "big")

    pages, trunk = set(), number(32)
    while trunk:
        start = (trunk - 1) * size
        pages.add(trunk)
        pages.update(number(start + 8 + 4 * index) for index in range(number(start + 4)))
        trunk = number(start)
    return pages


def load(path, free):
    """The rows of each table, and those of no known table."""
    if not path.is_file() or path.stat().st_size == 0:
        return [], []
    connection = open_database(path)
    names = connection.execute("SELECT name FROM sqlite_schema WHERE type = 'table'").fetchall()
    tables, lost = [], []
    skipped = ",".join(map(str, sorted(free)))
    for (raw,) in names:
        name = raw.decode("latin-1")
        if name.startswith(LOST):
            columns = ",".join(f"c{number}" for number in range(COLUMNS))
            where = f"WHERE nfield = {COLUMNS} AND pgno NOT IN ({skipped})"
            lost += rows_of(connection, name, columns, where)
        else:
            tables.append(rows_of(connection, name))
    connection.close()
    return tables, lost


def recover_with_shell(shell, damaged, result):
    result.unlink(missing_ok=True)
    if not damaged.is_file():
        return
    command = [shell, "-batch", damaged, ".recover --ignore-freelist"]
    statements = subprocess.run(command, capture_output=True).stdout
    subprocess.run([shell, "-batch", result], input=statements, capture_output=True)


def count_records(tables, lost, most, highest):
    def is_record(row):
        return isinstance(row[0], int) and 1 <= row[0] <= highest

    ids = Counter()
    for rows in tables:
        ids.update({row[0] for row in rows if is_record(row)})
    for row in lost:
        if is_record(row) and ids[row[0]] < most:
            ids[row[0]] += 1
    return sum(ids.values())


def count_unchanged(tables, lost, original):
    saved = Counter(row for rows in tables for row in rows) + Counter(lost)
    return sum((saved & original).values())


def kind_of(how):
    if how.startswith("cut after"):
        return "cut at a page"
    match = re.match(r"(\d+) flipped bytes", how)
    if match:
        flipped = int(match[1])
        return "1 to 8 flipped bytes" if flipped <= 8 else "9 to 64 flipped bytes"
    return "no database, or another's"


def compare(folder, name, shell, totals):
    whole = folder / name / "whole.db"
    free = free_pages(whole)
    tables, _ = load(whole, free)
    original = Counter(row for rows in tables for row in rows)
    highest = max(row[0] for row in original)
    fewer = []
    for number, how in enumerate((folder / name / "kinds.txt").read_text().splitlines()):
        base = folder / name / f"{number:03}"
        recover_with_shell(shell, Path(f"{base}.db"), Path(f"{base}.shell.db"))
        own = load(Path(f"{base}.recovered.db"), free)
        other = load(Path(f"{base}.shell.db"), free)
        figures = [1]
        for saved in (own, other):
            figures.append(count_records(*saved, DATABASES[name], highest))
            figures.append(count_unchanged(*saved, original))
        total = totals[kind_of(how)]
        for place, figure in enumerate(figures):
            total[place] += figure
        if figures[1] < figures[3]:
            fewer.append(f"{name} {number:03}, {how}: {figures[1]} records, the shell {figures[3]}")
    return fewer


def main():
    folder, shell = Path(sys.argv[1]), sys.argv[2]
    totals = defaultdict(lambda: [0] * 5)
    fewer = []
    for name in DATABASES:
        fewer += compare(folder, name, shell, totals)
    totals["all"] = [sum(column) for column in zip(*totals.values())]
    print("| Damage | Files | recover: records | as they were | .recover: records | as they were |")
    print("|---|---|---|---|---|---|")
    for kind, figures in totals.items():
        print("|", " | ".join([kind] + [f"{figure:,}" for figure in figures]), "|")
    for line in fewer:
        print("fewer:", line)
    if totals["all"][1] == 0 or totals["all"][3] == 0:
        sys.exit("nothing was compared")
    return 1 if fewer else 0


sys.exit(main())
