"""What the benchmarks measured, read from their files, and what of it has a limit."""

import collections
import json
import pathlib
import random
import statistics

Ratio = collections.namedtuple("Ratio", "value low high")
# Of what has a limit: to the bare floor, and to the floor with the care that every call must take.
Limit = collections.namedtuple("Limit", "name bare careful limit")


def read(path):
    return json.loads(path.read_text())


def ratio(above, below, draws=400):
    """The ratio of the medians, and between what bounds it lies in 95 of 100 resamplings."""
    numbers = random.Random(1)
    resampled = sorted(
        statistics.median(numbers.choices(above, k=len(above)))
        / statistics.median(numbers.choices(below, k=len(below))) for _ in range(draws))
    return Ratio(statistics.median(above) / statistics.median(below),
                 resampled[draws // 40], resampled[-draws // 40 - 1])


class Figures:
    def __init__(self, folder):
        folder = pathlib.Path(folder)
        # Microseconds of each repetition, by name, records and variant.
        self.times = collections.defaultdict(lambda: collections.defaultdict(list))
        for program in ("operations", "text"):
            for run in read(folder / f"{program}.json")["benchmarks"]:
                if run["run_type"] != "iteration":
                    continue
                if run.get("error_occurred"):
                    raise SystemExit(f"{run['name']} failed: {run['error_message']}")
                name, records, variant = run["name"].split("/")[:3]
                self.times[name, int(records)][variant].append(run["real_time"])
        self.calls = read(folder / "calls.json")
        self.hosts = read(folder / "hosts.json")
        self.memory = read(folder / "memory.json")

    def operations(self):
        """Names and records of what has a floor, ordered."""
        return sorted(key for key, times in self.times.items() if "floor" in times)

    def costs(self):
        """Of what is timed by itself."""
        return {name: statistics.median(times.get("cost") or times["component"])
                for (name, _), times in self.times.items() if "floor" not in times}

    def median(self, name, records, variant):
        return statistics.median(self.times[name, records][variant])

    def to_floor(self, name, records):
        times = self.times[name, records]
        return ratio(times["component"], times["floor"])

    def to_prepared_floor(self, name, records):
        times = self.times[name, records]
        return ratio(times["component"], times.get("prepared floor", times["floor"]))

    def limits(self):
        """Each figure that has a limit. All of them must have been measured."""
        wanted = [("Notify", 1_000, 1.15), ("next id", 1_000, 1.30),
                  ("records by 10000 ids", 100_000, 1.15), ("ids by time", 100_000, 1.15),
                  ("ids by id range", 100_000, 1.15), ("text of 10000 strings", 0, 8.0)]
        limits = [
            Limit(name + (f" at {records:,}" if records else ""), self.to_floor(name, records),
                  self.to_prepared_floor(name, records) if records else None, limit)
            for name, records, limit in wanted]
        growth = ratio(self.times["Notify", 500_000]["component"],
                       self.times["Notify", 1_000]["component"])
        limits.append(Limit("Notify at 500,000 to 1,000", growth, None, 1.15))
        # Measured once: it is the same each time.
        share = self.memory["most_bytes"] / self.memory["answer_bytes"]
        limits.append(Limit("memory for 10,000 records", Ratio(share, share, share), None, 1.5))
        return limits

    def out_of_reach(self):
        """The text beside the copy of its result, which looks at no single character."""
        text = self.times["text of 10000 strings", 0]["component"]
        copied = self.times["copy the finished text in one piece", 0]["cost"]
        return Limit("text, to a copy of its result", ratio(text, copied), None, 8.0)
