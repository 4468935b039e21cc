"""Prints what the benchmarks measured as tables, or compares it with its bounds: the times with
--check, the calls with --check-calls."""

import sys

import bench_figures

# What a call is for, by the start of its name.
KINDS = {
    "SQL": ("sqlite3_",),
    "folder": ("SHGet", "GetFileSecurity", "GetKernelObjectSecurity", "SetKernelObjectSecurity",
               "GetFileAttributes", "CreateDirectory"),
    "checks": ("GetFileType", "GetFileInformationByHandle", "GetFinalPathName"),
    "locks": ("CreateMutex", "WaitForSingleObject", "ReleaseMutex"),
    "files": ("CreateFile", "ReadFile", "WriteFile", "SetFilePointer", "SetEndOfFile", "GetFileSize",
              "LockFile", "UnlockFile", "FlushFile", "DeleteFile", "GetFullPathName", "MoveFile",
              "CloseHandle"),
    "made": ("CoCreateInstance",),
    "values": ("VariantC", "VariantI", "SafeArray", "SysAlloc", "SysFree", "SysString"),
    "heap": ("malloc", "calloc", "realloc"),
    "registry": ("Reg",),
}

# How many calls of a kind an operation needs. More of them would be work that nobody asked for, and
# fewer a step left out, or a counter that does not count.
NEEDED_CALLS = {
    "next id": {"SQL": 0, "folder": 5, "checks": 4, "locks": 2, "files": 9, "made": 1},
    "Notify": {"SQL": 80, "folder": 8, "checks": 0, "locks": 4, "files": 0, "made": 0},
    "records by 1 id": {"SQL": 22, "folder": 4, "locks": 2, "files": 0, "made": 1},
    "deletion by id": {"SQL": 16, "folder": 4, "locks": 2, "files": 0, "made": 0},
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
    once = ratio.low == ratio.high
    return f"{ratio.value:.2f}" + ("" if once else f" ({ratio.low:.2f}-{ratio.high:.2f})")


def count_kinds(counts):
    """How many of the calls are of each kind; those that are of none are left out."""
    return {kind: sum(calls for name, calls in (counts or {}).items() if name.startswith(starts))
            for kind, starts in KINDS.items()}


def limits_table(figures):
    rows = [[limit.name, spread(limit.bare), f"{limit.limit:.2f}",
             "yes" if limit.bare.value <= limit.limit else "NO",
             spread(limit.careful) if limit.careful else "-"]
            for limit in [*figures.limits(), figures.out_of_reach()]]
    return table(["Figure", "Bare", "Limit", "Held", "With care"], rows)


def care(figures, name, records):
    """The share of the time that goes into the locks and the folder."""
    if "prepared floor" not in figures.times[name, records]:
        return "-"
    median = [figures.median(name, records, variant)
              for variant in ("floor", "prepared floor", "component")]
    return f"{(median[1] - median[0]) / median[2]:.0%}".replace("-0%", "0%")


def operations_table(figures, size):
    rows = []
    for name, records in figures.operations():
        if records != size:
            continue
        rows.append([name, f"{figures.median(name, records, 'floor'):,.0f}",
                     f"{figures.median(name, records, 'component'):,.0f}",
                     f"{figures.to_floor(name, records).value:.2f}", care(figures, name, records),
                     spread(figures.to_prepared_floor(name, records))])
    return table(["Operation", "Floor", "Comp.", "Bare", "Care", "With care"], rows)


def growth_table(figures, sizes):
    # These read the kept records alone, which are as many at each size.
    others = ("all ids", "take one")
    names = sorted({name for name, records in figures.operations()
                    if records == sizes[-1] and name not in others})
    rows = [[name, *(f"{figures.median(name, size, 'component'):,.0f}"
                     if (name, size) in figures.times else "-" for size in sizes)]
            for name in names]
    return table(["Operation", *(f"{size:,}" for size in sizes)], rows)


def costs_table(figures):
    rows = [[name, f"{cost:,.1f}"] for name, cost in figures.costs().items()]
    return table(["Call", "µs"], rows)


def hosts_table(figures):
    rows = [[str(run["hosts"]), f"{run['actions_per_second']:.0f}", f"{run['p50_ms']:.1f}",
             f"{run['p99_ms']:.1f}", f"{run['max_ms']:.0f}", f"{run['share_waiting']:.0%}"]
            for run in figures.hosts]
    return table(["Hosts", "Actions/s", "p50 ms", "p99 ms", "Max ms", "Waiting"], rows)


def calls_table(figures):
    counted = {name: count_kinds(counts["component"]) for name, counts in figures.calls.items()}
    kinds = [kind for kind in KINDS if any(counts[kind] for counts in counted.values())]
    rows = [[name, *(str(counts[kind]) for kind in kinds)] for name, counts in counted.items()]
    return table(["Operation", *kinds], rows)


def report(figures):
    sizes = sorted({records for _, records in figures.operations() if records})
    parts = [("Figures that have a limit", limits_table(figures))]
    parts += [(f"Operations at {size:,} records, in µs" if size else "Text, in µs",
               operations_table(figures, size)) for size in [*sizes, 0]]
    parts += [("Growth: the component at so many records, in µs", growth_table(figures, sizes)),
              ("What single steps cost", costs_table(figures)),
              ("Several hosts", hosts_table(figures)),
              ("Calls of the component", calls_table(figures)),
              ("Calls of the engine, for the component and for the floor", floors_table(figures))]
    for title, text in parts:
        print(f"{title}\n\n{text}")


def floors_table(figures):
    """What the engine calls of the system for the floor, beside what it calls for the component."""
    rows = []
    for name, counts in figures.calls.items():
        if "engine of the floor" not in counts:
            continue
        component, floor = (count_kinds(counts[whose]) for whose in ("engine", "engine of the floor"))
        rows.append([name, *(str(counted[kind]) for kind in ("folder", "files", "heap")
                             for counted in (component, floor))])
    return table(["Operation", "folder", "floor", "files", "floor", "heap", "floor"], rows)


def unexpected_calls(figures):
    """What an operation calls more or less often than it needs, one line each."""
    lines = []
    for name, needed in NEEDED_CALLS.items():
        counted = count_kinds(figures.calls[name]["component"])
        lines += [f"{name}: {counted[kind]} calls for {kind}, {calls} are needed"
                  for kind, calls in {"registry": 0, **needed}.items() if counted[kind] != calls]
    return lines


def check(figures):
    """The limits are those of a quiet machine; here only what is surely far off counts: the lower bound of
    the ratio, and to the floor that takes the same care, for that is all that the component can change."""
    failed = False
    for limit in figures.limits():
        ratio = limit.careful or limit.bare
        held = ratio.low <= 2 * limit.limit
        failed = failed or not held
        print(f"{limit.name}: {spread(ratio)}, at most {2 * limit.limit:.2f}"
              f"{'' if held else ': TOO MUCH'}")
    return 1 if failed else 0


def check_calls(figures):
    unexpected = unexpected_calls(figures)
    print("\n".join(unexpected) or "No operation makes other calls than it needs")
    return 1 if unexpected else 0


def main(folder, *options):
    figures = bench_figures.Figures(folder)
    if "--check" in options:
        raise SystemExit(check(figures))
    if "--check-calls" in options:
        raise SystemExit(check_calls(figures))
    report(figures)


main(*sys.argv[1:])
