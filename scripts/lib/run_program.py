"""Runs one test program, or a shard of it, and leaves its results as XML.

All tests of a shard share a process, unless --process-per-test is given. A process that dies or hangs
costs the test that it was in; the tests behind it are run in another process. What failed is run once
more alone, which tells a test that fails by itself from one that suffers from its neighbours; the shard
has failed all the same.
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
# Of a test's own output, so much is shown when it fails.
SHOWN_LINES = 60


@dataclasses.dataclass
class Result:
    """One test: its full name, how it ended, and what it said when it did not end well."""

    name: str
    outcome: str  # passed, failed, skipped
    seconds: float = 0.0
    message: str = ""


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

    def start(self, arguments, extra=None):
        """Runs it with its output in the log. Returns the exit code, or None when a test hung."""
        with open(self.log, "wb") as out:
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
            marks = len(re.findall(rb"^\[ (?:RUN|      OK|  FAILED) ", self.log.read_bytes(), re.M))
            if marks != seen:
                seen, since = marks, time.monotonic()
            elif time.monotonic() - since > self.limit:
                process.kill()
                process.wait()
                return None

    def output(self):
        return self.log.read_text(encoding="utf-8", errors="replace").replace("\r", "")

    def tests(self, pattern):
        """The full names of its tests."""
        if self.start(["--gtest_list_tests", f"--gtest_filter={pattern}"]) != 0:
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


def folder_name(name):
    """A ctest entry is named BUILD.FOLDER, with -NUMBER behind it when it is a shard."""
    return name.split("-")[0]


class Shard:
    """The tests of a program that one ctest entry runs."""

    def __init__(self, program, arguments):
        self.program = program
        self.arguments = arguments
        self.number, self.count = map(int, arguments.shard.split("/"))
        self.results = []
        self.notes = []

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
        folder = folder_name(self.arguments.name)
        return [name for name in names if re.search(self.arguments.match or "", f"{folder}.{name}")]

    def _run(self, pattern, expected, sharding=None):
        """Runs the tests of the pattern until each has ended or was ended."""
        report = self.program.log.with_suffix(".gtest.xml")
        while True:
            report.unlink(missing_ok=True)
            exit_code = self.program.start(self._flags(pattern, report), sharding)
            output = self.program.output()
            if exit_code != 0 and not output.strip() and not self.notes:
                # Once in several thousand times Wine ends a program before its first instruction.
                self.notes.append("Wine ended the program before it began; it was started once more")
                continue
            results = from_xml(report, output)
            report.unlink(missing_ok=True)
            if results is not None:
                self.results += results
                if results and exit_code != 0 and not any(each.outcome == "failed" for each in results):
                    self.notes.append(f"all tests ended, but the program ended with exit code {exit_code}")
                    self.results[-1].outcome = "failed"
                    self.results[-1].message = tail(output)
                return
            results = from_output(output, exit_code)
            if not results:
                end = "hung" if exit_code is None else f"ended with exit code {exit_code}"
                raise RuntimeError(f"the program {end} before its first test\n{tail(output)}")
            self.results += results
            if results[-1].outcome != "failed":
                self.notes.append(f"the program ended with exit code {exit_code} between two tests")
                results[-1].outcome = "failed"
                results[-1].message = tail(output)
            expected = self._names() if expected is None else expected
            done = {result.name for result in self.results}
            expected = [name for name in expected if name not in done]
            if not expected:
                return
            pattern, sharding = ":".join(expected), None

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
            print(f"\nFAILED {self.arguments.name}: {failure.name}\n{tail(failure.message)}")
            # With a log of its own: that of the shard stays to be read.
            alone = Shard(
                dataclasses.replace(self.program, log=self.program.log.with_suffix(".alone.log")), self.arguments
            )
            try:
                alone._run(failure.name, [failure.name])
                verdict = alone.results[0].outcome
            except RuntimeError as error:
                verdict = str(error)
            print(f"alone: {verdict}")


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
        group, _, test = result.name.rpartition(".")
        case = xml.SubElement(
            suite, "testcase", classname=f"{folder_name(name)}.{group}", name=test, time=f"{result.seconds:.3f}"
        )
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
    program = Program(arguments.program, log, environment(arguments.zone), arguments.limit)
    shard = Shard(program, arguments)
    try:
        shard.run()
    except RuntimeError as error:
        shard.results.append(Result(f"{arguments.program.stem}.Runs", "failed", 0.0, str(error)))
    if arguments.no_skips:
        for result in shard.results:
            if result.outcome == "skipped":
                result.outcome = "failed"
    if not shard.results and not arguments.match:
        shard.results.append(Result(f"{arguments.program.stem}.HasTests", "failed", 0.0, "no test was run"))
    write_report(results / f"{arguments.name}.xml", arguments.name, shard.results)
    for note in shard.notes:
        print(f"{arguments.name}: {note}")
    skipped = sum(result.outcome == "skipped" for result in shard.results)
    print(f"{len(shard.results)} tests, {len(shard.failures())} failed, {skipped} skipped")
    shard.tell_failures()
    return 1 if shard.failures() else 0


if __name__ == "__main__":
    sys.exit(main())
