"""Prints what the benchmarks measured as tables, or with --check only what is above twice its limit."""

import sys

import bench_figures

# What a call is for, by the start of its name, in this order.
KINDS = [
    ("engine", ("sqlite3_",)),
    ("shell", ("SHGet",)),
    ("rights", ("GetNamedSecurityInfo", "SetNamedSecurityInfo", "AllocateAndInitializeSid", "FreeSid",
                "EqualSid", "IsValidSid", "GetLengthSid", "GetSidLengthRequired", "GetAce", "GetAcl",
                "OpenProcessToken", "GetTokenInformation", "ConvertSid")),
    ("locks", ("CreateMutex", "WaitForSingleObject", "ReleaseMutex")),
    ("files", ("CreateFile", "ReadFile", "WriteFile", "SetFilePointer", "SetEndOfFile", "GetFile",
               "LockFile", "UnlockFile", "FlushFile", "DeleteFile", "GetFullPathName", "MoveFile",
               "CreateDirectory", "CloseHandle")),
    ("registry", ("Reg",)),
    ("containers", ("CoCreateInstance",)),
    ("values", ("Variant", "SafeArray", "Sys")),
    ("memory", ("malloc", "calloc", "realloc")),
]

# The most calls of a kind that an operation needs. More of them would be work that nobody asked for.
MOST_CALLS = {
    "next id": {"engine": 0, "shell": 3, "rights": 38, "locks": 2, "files": 11, "containers": 1},
    "Notify": {"engine": 80, "shell": 6, "rights": 38, "locks": 4, "files": 2, "containers": 0},
    "records by 1 id": {"engine": 22, "shell": 3, "rights": 19, "locks": 2, "files": 1,
                        "containers": 1},
    "deletion by id": {"engine": 16, "shell": 3, "rights": 19, "locks": 2, "files": 1,
                       "containers": 0},
}


def table(header, rows):
    widths = [max(map(len, column)) for column in zip(header, *rows)]

    def line(cells):
        # Names to the left, numbers to the right.
        padded = [cells[0].ljust(widths[0])]
        padded += [cell.rjust(width) for cell, width in zip(cells[1:], widths[1:])]
        return "| " + " | ".join(padded) + " |"

    ruler = "|" + "|".join("-" * (width + 1) + (":" if column else "-")
                           for column, width in enumerate(widths)) + "|"
    return "\n".join([line(header), ruler, *map(line, rows)]) + "\n"


def spread(ratio):
    return f"{ratio.value:.2f} ({ratio.low:.2f}-{ratio.high:.2f})"


def count_kinds(counts):
    kinds = dict.fromkeys((kind for kind, _ in KINDS), 0)
    for name, calls in (counts or {}).items():
        for kind, starts in KINDS:
            if name.startswith(starts):
                kinds[kind] += calls
                break
    return kinds


def limits_table(figures):
    rows = [[limit.name, spread(limit.ratio), f"{limit.bare.value:.2f}", f"{limit.limit:.2f}",
             "yes" if limit.ratio.value <= limit.limit else "NO"] for limit in figures.limits()]
    return table(["Figure", "Ratio", "Bare", "Limit", "Held"], rows)


def operations_table(figures):
    rows = []
    for name, records in figures.operations():
        floor, component = (figures.median(name, records, variant)
                            for variant in ("floor", "component"))
        times = figures.times[name, records]
        around = "-"
        if "prepared floor" in times:
            around = f"{(figures.median(name, records, 'prepared floor') - floor) / component:.0%}"
        rows.append([name, f"{records:,}", f"{floor:,.0f}", f"{component:,.0f}",
                     f"{component / floor:.2f}", around,
                     spread(figures.to_prepared_floor(name, records))])
    return table(["Operation", "Records", "Floor", "Comp.", "Bare", "Around", "Ratio"], rows)


def costs_table(figures):
    rows = [[name, f"{cost:.1f}"] for name, cost in figures.costs().items()]
    return table(["Call", "µs"], rows)


def hosts_table(figures):
    rows = [[str(run["hosts"]), f"{run['actions_per_second']:.0f}", f"{run['p50_ms']:.1f}",
             f"{run['p99_ms']:.1f}", f"{run['max_ms']:.0f}", f"{run['share_waiting']:.0%}"]
            for run in figures.hosts]
    return table(["Hosts", "Actions/s", "p50 ms", "p99 ms", "Max ms", "Waiting"], rows)


def calls_table(figures, whose):
    kinds = [kind for kind, _ in KINDS
             if any(count_kinds(counts[whose])[kind] for counts in figures.calls.values())]
    rows = [[name, *(str(count_kinds(counts[whose])[kind]) for kind in kinds)]
            for name, counts in figures.calls.items()]
    return table(["Operation", *kinds], rows)


def report(figures):
    parts = [("Figures that have a limit", limits_table(figures)),
             ("Operations, in µs", operations_table(figures)),
             ("What the locks and the folder cost, and a pass through memory that is there",
              costs_table(figures))]
    if figures.hosts:
        parts.append(("Several hosts", hosts_table(figures)))
    if figures.calls:
        parts.append(("Calls of the component", calls_table(figures, "component")))
        parts.append(("Calls of the engine, from there", calls_table(figures, "engine")))
    for title, text in parts:
        print(f"{title}\n\n{text}")


def superfluous_calls(figures):
    """What an operation calls more often than it needs, one line each."""
    lines = []
    for name, most in MOST_CALLS.items():
        counted = count_kinds(figures.calls[name]["component"])
        lines += [f"{name}: {counted[kind]} calls for {kind}, at most {limit}"
                  for kind, limit in {**most, "registry": 0}.items() if counted[kind] > limit]
    return lines


def check(figures):
    """The limits are those of a quiet machine; here only what is far off counts."""
    superfluous = superfluous_calls(figures)
    print("\n".join(superfluous))
    failed = bool(superfluous)
    for limit in figures.limits():
        held = limit.ratio.value <= 2 * limit.limit
        failed = failed or not held
        print(f"{limit.name}: {limit.ratio.value:.2f}, at most {2 * limit.limit:.2f}"
              f"{'' if held else ': TOO MUCH'}")
    return 1 if failed else 0


def main(folder, *options):
    figures = bench_figures.Figures(folder)
    if not figures.limits():
        raise SystemExit(f"{folder} has no figures")
    if "--check" in options:
        raise SystemExit(check(figures))
    report(figures)


main(*sys.argv[1:])
