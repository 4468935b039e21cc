"""Runs one test program, or a shard of it, and leaves its results as XML.

All tests of a shard share a process, unless --process-per-test is given. A process that dies or hangs
costs the test that it was in; the tests behind it are run in another process. What failed is run once
more alone, which tells a test that fails by itself from one that suffers from its neighbours; the shard
has failed all the same. What all of these processes printed is in one log.
"""

import argparse
import dataclasses
import os
import pathlib
import re
import subprocess
import sys
import time
import xml.etree.ElementTree as xml

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build"
LOADER = "/usr/lib/wine/wine64"
CLEAR_LANE = ROOT / "scripts" / "lib" / "clear_lane"
# Of a test's own output, so much is shown when it fails.
SHOWN_LINES = 60


@dataclasses.dataclass
class Result:
    """One test: its full name, how it ended, and what it said when it did not end well."""

    name: str
    outcome: str  # passed, failed, skipped
    seconds: float = 0.0
    message: str = ""
    is_test: bool = True  # else it tells of the program as a whole


def environment(zone):
    """What scripts/lib/in_lane has set, and the time zone."""
    settings = dict(os.environ)
    if "WINEPREFIX" not in settings:
        sys.exit("run it by way of scripts/lib/in_lane, which sets the Wine prefix")
    if zone:
        # Wine takes the machine's zone from the one, the tests see by the other that they may run.
        settings.update(TZ=zone, TSL_TEST_ZONE=zone)
    return settings


@dataclasses.dataclass
class Program:
    """A test program: where it is, where its output goes, its environment, and the seconds that a test may take."""

    path: pathlib.Path
    log: pathlib.Path
    settings: dict
    limit: float
    notes: list = dataclasses.field(default_factory=list)
    begin: int = 0  # of what the last process printed, in the log

    def run(self, arguments, extra=None):
        """Runs it with its output at the end of the log. Returns the exit code, or None when a test hung."""
        exit_code = self._start(arguments, extra)
        if exit_code != 0 and not self.output().strip() and not self.notes:
            # Once in several thousand times Wine ends a program before its first instruction.
            self.note("Wine ended the program before it began; it was started once more")
            exit_code = self._start(arguments, extra)
        return exit_code

    def note(self, text):
        """Told at the end, and in the log where it belongs."""
        self.notes.append(text)
        with open(self.log, "a") as log:
            log.write(f"\nNOTE: {text}\n")

    def clear_lane(self):
        """Ends what it has left behind in its lane."""
        if subprocess.run([CLEAR_LANE]).returncode != 0:
            raise RuntimeError("what the program has left behind could not be ended")

    def _start(self, arguments, extra):
        with open(self.log, "ab") as out:
            self.begin = out.tell()
            process = subprocess.Popen(
                [LOADER, str(self.path), "--gtest_color=no", *arguments],
                stdin=subprocess.DEVNULL,
                stdout=out,
                stderr=subprocess.STDOUT,
                env={**self.settings, **(extra or {})},
            )
            return self._wait(process)

    def _wait(self, process):
        """A test may take so long as the limit says; counted from the last one that began or ended."""
        seen, since = 0, time.monotonic()
        while True:
            try:
                return process.wait(timeout=0.5)
            except subprocess.TimeoutExpired:
                pass
            marks = len(re.findall(r"^\[ +(?:RUN|OK|FAILED|SKIPPED) +\]", self.output(), re.M))
            if marks != seen:
                seen, since = marks, time.monotonic()
            elif time.monotonic() - since > self.limit:
                process.kill()
                process.wait()
                return None

    def output(self):
        """What the last process printed."""
        with open(self.log, "rb") as log:
            log.seek(self.begin)
            return log.read().decode("utf-8", errors="replace").replace("\r", "")

    def tests(self, pattern):
        """The full names of its tests."""
        if self.run(["--gtest_list_tests", f"--gtest_filter={pattern}"]) != 0:
            self.clear_lane()
            raise RuntimeError("the program does not list its tests:\n" + tail(self.output()))
        names, suite = [], ""
        for line in self.output().splitlines():
            name = line.split("  #")[0].rstrip()
            if name.startswith("  "):
                names.append(suite + name.strip())
            elif name.endswith("."):
                suite = name
        return [name for name in names if ".DISABLED_" not in name and not name.startswith("DISABLED_")]


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def tail(text):
    # What the debugger tells of a crash ends with lists of all modules and processes.
    words = re.sub(r"\nModules:\n.*", "", text, flags=re.S)
    return "\n".join(words.splitlines()[-SHOWN_LINES:])


def said_by(output, test):
    """What the program printed from the beginning of a test on, up to the next one."""
    begin = output.rfind(f"[ RUN      ] {test}\n")
    if begin < 0:
        return ""
    end = output.find("\n[ RUN      ] ", begin)
    return output[begin : end if end > 0 else len(output)].strip()


def from_xml(path, output):
    """The results that the test framework wrote; None when it did not come to that."""
    try:
        cases = xml.parse(path).getroot().iter("testcase")
    except (OSError, xml.ParseError):
        return None
    results = []
    for case in cases:
        if case.get("status") == "notrun":
            continue
        name = f"{case.get('classname')}.{case.get('name')}"
        failures = [failure.get("message", "") for failure in case.iter("failure")]
        skips = [skip.get("message", "") for skip in case.iter("skipped")]
        outcome = "failed" if failures else "skipped" if skips else "passed"
        said = said_by(output, name) if failures else "\n".join(skips)
        results.append(Result(name, outcome, float(case.get("time", 0)), said))
    return results


def from_output(output, exit_code):
    """The results of a program that died: what it printed of the tests that had ended, and the one that
    it was in."""
    results, running = [], None
    outcomes = {"OK": "passed", "FAILED": "failed", "SKIPPED": "skipped"}
    for line in output.splitlines():
        begun = re.match(r"\[ RUN      \] (\S+)", line)
        # A test may have printed without ending its line.
        ended = re.search(r"\[ +(OK|FAILED|SKIPPED) +\] (\S+?),? .*\((\d+) ms\)$", line)
        if begun:
            running = begun.group(1)
        elif ended and ended.group(2) == running:
            outcome = outcomes[ended.group(1)]
            said = said_by(output, running) if outcome == "failed" else ""
            results.append(Result(running, outcome, int(ended.group(3)) / 1000, said))
            running = None
    if running:
        end = "hung and was ended" if exit_code is None else f"ended the program with exit code {exit_code}"
        said = said_by(output, running)
        if "\n" not in said:
            end += ", without a word"
        results.append(Result(running, "failed", 0.0, f"{said}\n{running} {end}"))
    return results


def full_name(entry, test):
    """BUILD.PROGRAM.Suite.Test: an entry of ctest is named by the first two, with -PART behind them when it is
    one of several."""
    return f"{entry.split('-')[0]}.{test}"


class Shard:
    """The tests of a program that one ctest entry runs."""

    def __init__(self, program, arguments):
        self.program = program
        self.arguments = arguments
        self.number, self.count = map(int, arguments.shard.split("/"))
        self.results = []

    def run(self):
        if self.arguments.process_per_test or self.arguments.match:
            tests = self._names()
            for test in tests if self.arguments.process_per_test else [":".join(tests)][: len(tests)]:
                self._run(test, test.split(":"))
        else:
            sharding = {
                "GTEST_TOTAL_SHARDS": str(self.count),
                "GTEST_SHARD_INDEX": str(self.number - 1),
            }
            self._run(self.arguments.filter, None, sharding if self.count > 1 else None)

    def _names(self):
        names = self.program.tests(self.arguments.filter)[self.number - 1 :: self.count]
        entry = self.arguments.name
        return [name for name in names if re.search(self.arguments.match or "", full_name(entry, name))]

    def _run(self, pattern, expected, sharding=None):
        """Runs the tests of the pattern until each has ended or was ended."""
        report = self.program.log.with_suffix(".gtest.xml")
        while True:
            report.unlink(missing_ok=True)
            exit_code = self.program.run(self._flags(pattern, report), sharding)
            output = self.program.output()
            results = from_xml(report, output)
            report.unlink(missing_ok=True)
            if results is None or exit_code not in (0, 1):
                self.program.clear_lane()
            if results is not None:
                self.results += results
                if results and exit_code != 0 and not any(each.outcome == "failed" for each in results):
                    self.program.note(f"all tests ended, but the program ended with exit code {exit_code}")
                    self.results[-1].outcome = "failed"
                    self.results[-1].message = tail(output)
                return
            results = from_output(output, exit_code)
            if not results:
                end = "hung" if exit_code is None else f"ended with exit code {exit_code}"
                raise RuntimeError(f"the program {end} before its first test\n{tail(output)}")
            self.results += results
            if results[-1].outcome != "failed":
                self.program.note(f"the program ended with exit code {exit_code} between two tests")
                results[-1].outcome = "failed"
                results[-1].message = tail(output)
            expected = self._names() if expected is None else expected
            done = {result.name for result in self.results}
            left = [name for name in expected if name not in done]
            if left == expected:
                raise RuntimeError(f"the program tells of none of its tests\n{tail(output)}")
            if not left:
                return
            expected, pattern, sharding = left, ":".join(left), None

    def _flags(self, pattern, report):
        """In a file: a command line has room for some hundred names only."""
        flags = self.program.log.with_suffix(".flags")
        flags.write_text(f"--gtest_filter={pattern}\n--gtest_output=xml:{windows_path(report)}\n")
        return [f"--gtest_flagfile={windows_path(flags)}"]

    def failures(self):
        return [result for result in self.results if result.outcome == "failed"]

    def tell_failures(self):
        """Runs each failed test alone and says what it does then."""
        for failure in self.failures():
            print(f"\nFAILED {full_name(self.arguments.name, failure.name)}\n{tail(failure.message)}")
            if failure.is_test:
                print(f"alone: {self._alone(failure.name)}")

    def _alone(self, test):
        alone = Shard(self.program, self.arguments)
        try:
            alone._run(test, [test])
        except RuntimeError as error:
            return str(error)
        return alone.results[0].outcome if alone.results else "not run"


def write_report(path, name, results):
    suite = xml.Element(
        "testsuite",
        name=name,
        tests=str(len(results)),
        failures=str(sum(result.outcome == "failed" for result in results)),
        skipped=str(sum(result.outcome == "skipped" for result in results)),
        time=f"{sum(result.seconds for result in results):.3f}",
    )
    for result in results:
        group, _, test = full_name(name, result.name).rpartition(".")
        case = xml.SubElement(suite, "testcase", classname=group, name=test, time=f"{result.seconds:.3f}")
        if result.outcome != "passed":
            text = "".join(c for c in result.message if c >= " " or c == "\n")
            kind = "failure" if result.outcome == "failed" else "skipped"
            xml.SubElement(case, kind, message=text.split("\n")[0]).text = text
    xml.ElementTree(suite).write(path, encoding="utf-8", xml_declaration=True)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--name", required=True, help="of the ctest entry")
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--shard", default="1/1", help="which part of how many")
    parser.add_argument("--filter", default="*", help="of the test framework")
    parser.add_argument("--match", default=os.environ.get("TSL_TEST_MATCH"), help="regular expression")
    parser.add_argument("--process-per-test", action="store_true")
    parser.add_argument("--limit", type=float, default=120, help="seconds that a test may take")
    parser.add_argument("--zone", help="time zone of the machine")
    parser.add_argument("--no-skips", action="store_true", help="a test that is skipped has failed")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    results = BUILD / "results"
    results.mkdir(parents=True, exist_ok=True)
    log = results / f"{arguments.name}.log"
    log.unlink(missing_ok=True)
    program = Program(arguments.program, log, environment(arguments.zone), arguments.limit)
    shard = Shard(program, arguments)
    try:
        shard.run()
    except RuntimeError as error:
        shard.results.append(Result(f"{arguments.program.stem}.Runs", "failed", 0.0, str(error), is_test=False))
    if arguments.no_skips:
        for result in shard.results:
            if result.outcome == "skipped":
                result.outcome = "failed"
    if not shard.results and not arguments.match:
        name = f"{arguments.program.stem}.HasTests"
        shard.results.append(Result(name, "failed", 0.0, "no test was run", is_test=False))
    write_report(results / f"{arguments.name}.xml", arguments.name, shard.results)
    for note in program.notes:
        print(f"{arguments.name}: {note}")
    skipped = sum(result.outcome == "skipped" for result in shard.results)
    print(f"{len(shard.results)} tests, {len(shard.failures())} failed, {skipped} skipped")
    shard.tell_failures()
    return 1 if shard.failures() else 0


if __name__ == "__main__":
    sys.exit(main())
