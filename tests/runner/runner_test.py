"""Tests of what runs the tests: run_program.py, test_summary.py and select_tests.py of scripts/lib, on the
program that is named on the command line."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPTS = ROOT / "scripts" / "lib"
RESULTS = ROOT / "build" / "results"
SAMPLE = None  # the program


def run_script(name, *arguments, settings=None):
    environment = {**os.environ, **(settings or {})}
    environment.pop("TSL_TEST_MATCH", None)  # it chose this test
    done = subprocess.run(
        [sys.executable, str(SCRIPTS / name), *map(str, arguments)],
        capture_output=True,
        text=True,
        env=environment,
    )
    return done.returncode, done.stdout + done.stderr


class RunProgram(unittest.TestCase):
    def run_sample(self, pattern, *arguments, settings=None):
        """The exit code, what was printed, and how each test ended by its short name."""
        code, output = run_script(
            "run_program.py", "--name", "sample.runner", "--program", SAMPLE, "--filter", pattern,
            "--limit", "3", *arguments, settings=settings
        )
        report = RESULTS / "sample.runner.xml"
        outcomes = {}
        for case in xml.parse(report).getroot().iter("testcase"):
            kinds = [kind for kind in ("failure", "skipped") if case.find(kind) is not None]
            outcomes[case.get("name")] = kinds[0] if kinds else "passed"
        self.kept_log = (RESULTS / "sample.runner.log").read_text()
        for path in RESULTS.glob("sample.runner.*"):
            path.unlink()
        return code, output, outcomes

    def test_passing_tests_are_counted_and_no_failure(self):
        code, output, outcomes = self.run_sample("*.APasses:*.ZPasses*:*.DIsSkipped")
        self.assertEqual(0, code)
        self.assertIn("3 tests, 0 failed, 1 skipped", output)
        self.assertEqual(
            {"APasses": "passed", "DIsSkipped": "skipped", "ZPassesAtTheEnd": "passed"}, outcomes
        )

    def test_failed_test_is_named_with_its_words_and_run_alone(self):
        code, output, outcomes = self.run_sample("*.APasses:*.BFails")
        self.assertEqual(1, code)
        self.assertIn("FAILED sample.runner.Sample.BFails\n", output)
        self.assertIn("as it should", output)
        self.assertIn("alone: failed", output)
        self.assertEqual({"APasses": "passed", "BFails": "failure"}, outcomes)

    def test_test_that_passes_alone_is_told_so_and_has_failed(self):
        code, output, outcomes = self.run_sample("*.APasses:*.CPassesOnlyAlone")
        self.assertEqual(1, code)
        self.assertIn("alone: passed", output)
        self.assertEqual("failure", outcomes["CPassesOnlyAlone"])

    def test_process_per_test_gives_each_test_its_own(self):
        code, _, outcomes = self.run_sample("*.APasses:*.CPassesOnlyAlone", "--process-per-test")
        self.assertEqual(0, code)
        self.assertEqual({"APasses": "passed", "CPassesOnlyAlone": "passed"}, outcomes)

    def test_test_that_dies_without_a_word_is_told_and_the_others_are_run(self):
        code, output, outcomes = self.run_sample("*.APasses:*.EEnds*:*.ZPasses*")
        self.assertEqual(1, code)
        self.assertIn(
            "Sample.EEndsTheProcessWithoutAWord ended the program with exit code 0, without a word", output
        )
        self.assertEqual(
            {"APasses": "passed", "EEndsTheProcessWithoutAWord": "failure", "ZPassesAtTheEnd": "passed"},
            outcomes,
        )

    def test_last_words_of_a_crash_are_shown(self):
        code, output, outcomes = self.run_sample("*.FSpeaks*:*.ZPasses*")
        self.assertEqual(1, code)
        self.assertIn("last words", output)
        self.assertNotIn("without a word", output)
        self.assertEqual({"FSpeaksAndCrashes": "failure", "ZPassesAtTheEnd": "passed"}, outcomes)

    def test_test_that_hangs_is_ended_and_the_others_are_run(self):
        code, output, outcomes = self.run_sample("*.APasses:*.GHangs:*.ZPasses*")
        self.assertEqual(1, code)
        self.assertIn("Sample.GHangs hung and was ended", output)
        self.assertEqual(
            {"APasses": "passed", "GHangs": "failure", "ZPassesAtTheEnd": "passed"}, outcomes
        )

    def test_test_that_left_half_a_line_before_a_crash_has_passed(self):
        code, _, outcomes = self.run_sample("*.HPrints*:*.FSpeaks*:*.APasses")
        self.assertEqual(1, code)
        self.assertEqual(
            {
                "APasses": "passed",
                "FSpeaksAndCrashes": "failure",
                "HPrintsWithoutEndingItsLine": "passed",
            },
            outcomes,
        )

    def test_program_that_ends_badly_after_its_tests_has_failed(self):
        code, output, outcomes = self.run_sample("Ending.*")
        self.assertEqual(1, code)
        self.assertIn("exit code 7", output)
        self.assertEqual({"IsBadAfterAllTestsHavePassed": "failure"}, outcomes)

    def test_log_has_what_all_processes_printed(self):
        self.run_sample("*.APasses:*.BFails:*.FSpeaks*:*.ZPasses*")
        expected = {"OK ] Sample.APasses": 1, "as it should": 2, "last words": 2, "OK ] Sample.ZPasses": 1}
        self.assertEqual(expected, {words: self.kept_log.count(words) for words in expected}, self.kept_log)

    def test_what_a_dead_test_leaves_behind_is_ended(self):
        code, _, outcomes = self.run_sample("*.IDies*:*.JFinds*")
        self.assertEqual(1, code)
        self.assertEqual({"IDiesAndLeavesAProcess": "failure", "JFindsNoProcessThatHangs": "passed"}, outcomes)

    def test_program_that_dies_before_it_begins_is_started_once_more_and_the_log_tells(self):
        for way in ((), ("--process-per-test",)):  # which lists the tests first
            with tempfile.NamedTemporaryFile(delete=False) as file:
                settings = {"SAMPLE_DIES_AT": f"Z:{file.name}"}
                code, output, outcomes = self.run_sample("*.APasses", *way, settings=settings)
            self.assertEqual((0, {"APasses": "passed"}), (code, outcomes), output)
            for told in (output, self.kept_log):
                self.assertIn("it was started once more", told)

    def test_no_test_at_all_is_a_failure(self):
        code, output, _ = self.run_sample("Nothing.*")
        self.assertEqual(1, code)
        self.assertIn("no test was run", output)
        self.assertNotIn("Traceback", output)
        self.assertNotIn("alone", output)

    def test_skip_is_a_failure_where_none_is_allowed(self):
        code, _, outcomes = self.run_sample("*.DIsSkipped", "--no-skips")
        self.assertEqual(1, code)
        self.assertEqual({"DIsSkipped": "failure"}, outcomes)

    def test_shards_together_are_all_tests_and_share_none(self):
        pattern = "*.APasses:*.ZPasses*:*.DIsSkipped:*.HPrints*"
        shards = [self.run_sample(pattern, "--shard", f"{number}/3")[2] for number in (1, 2, 3)]
        self.assertTrue(all(shards))
        names = [name for shard in shards for name in shard]
        self.assertEqual(
            ["APasses", "DIsSkipped", "HPrintsWithoutEndingItsLine", "ZPassesAtTheEnd"], sorted(names)
        )

    def test_match_runs_only_tests_whose_full_name_matches(self):
        code, _, outcomes = self.run_sample("Sample.*", "--match", r"^sample\.runner\.Sample\.[AZ]")
        self.assertEqual(0, code)
        self.assertEqual({"APasses": "passed", "ZPassesAtTheEnd": "passed"}, outcomes)


    def test_match_finds_tests_with_parameters(self):
        code, _, outcomes = self.run_sample("*", "--match", r"^sample\.runner\.Some/SampleOf\.Passes/N4$")
        self.assertEqual(0, code)
        self.assertEqual({"Passes/N4": "passed"}, outcomes)


class Summary(unittest.TestCase):
    def summarise(self, entries, parts=()):
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            (folder / "ctest.xml").write_text(f"<testsuite>{entries}</testsuite>")
            for name, cases in parts:
                (folder / f"{name}.xml").write_text(f"<testsuite>{cases}</testsuite>")
            return run_script("test_summary.py", folder, folder / "ctest.xml")

    def test_tests_of_a_program_stand_in_the_place_of_its_entry(self):
        code, output = self.summarise(
            '<testcase name="b.store" status="run"/><testcase name="b.day" status="run"/>',
            [("b.store", '<testcase classname="b.store.S" name="A"/>'
                         '<testcase classname="b.store.S" name="B"><skipped/></testcase>')],
        )
        self.assertEqual(0, code)
        self.assertIn("2 passed, 0 failed, 1 skipped", output)

    def test_failed_test_fails_the_run(self):
        code, output = self.summarise(
            '<testcase name="b.store" status="fail"/>',
            [("b.store", '<testcase classname="b.store.S" name="A"><failure/></testcase>')],
        )
        self.assertEqual(1, code)
        self.assertIn("0 passed, 1 failed, 0 skipped", output)

    def test_entry_that_failed_though_its_tests_passed_is_counted(self):
        code, output = self.summarise(
            '<testcase name="b.store" status="fail"/>',
            [("b.store", '<testcase classname="b.store.S" name="A"/>')],
        )
        self.assertEqual(1, code)
        self.assertIn("1 passed, 1 failed, 0 skipped", output)

    def test_entry_that_was_not_run_has_failed(self):
        code, _ = self.summarise('<testcase name="b.day" status="notrun"/>')
        self.assertEqual(1, code)

    def test_nothing_at_all_is_a_failure(self):
        code, output = self.summarise("")
        self.assertEqual(1, code)
        self.assertIn("0 passed, 0 failed, 0 skipped", output)


class SelectTests(unittest.TestCase):
    def select(self, *arguments):
        return run_script("select_tests.py", "release", *arguments)

    def test_folder_chooses_the_programs_that_cover_it(self):
        code, output = self.select("folders", "store")
        self.assertEqual(0, code)
        self.assertIn("release release.store store_tests\n", output)
        self.assertIn("release release.maintenance maintenance_tests\n", output)
        self.assertNotIn("files_tests", output)

    def test_change_chooses_what_depends_on_it_too(self):
        code, output = self.select("changed", "store/Database.cpp")
        self.assertEqual(0, code)
        for program in ("store_tests", "query_tests", "recording_tests", "component_tests"):
            self.assertIn(program, output)
        self.assertNotIn("files_tests", output)

    def test_changed_script_chooses_the_tests_of_the_scripts(self):
        code, output = self.select("changed", "scripts/lib/run_program.py")
        self.assertEqual((0, "release release.runner runner_sample\n"), (code, output))

    def test_changed_test_chooses_its_own_program_only(self):
        code, output = self.select("changed", "tests/store/OpenTests.cpp")
        self.assertEqual(0, code)
        self.assertEqual("release release.store store_tests\n", output)

    def test_changed_fixture_chooses_the_programs_that_include_it(self):
        code, output = self.select("changed", "tests/query/QueryFixture.h")
        self.assertEqual(0, code)
        for program in ("query_tests", "engine_faults_tests"):
            self.assertIn(program, output)
        self.assertNotIn("store_tests", output)

    def test_change_of_what_all_share_chooses_all_but_the_packages(self):
        code, output = self.select("changed", "tests/support/StoreChecks.cpp")
        self.assertEqual(0, code)
        for entry in ("release.store ", "release.leaks ", "release.runner ", "release.day_of_use."):
            self.assertIn(entry, output)
        self.assertNotIn("release.package", output)

    def test_unknown_folder_is_named_with_what_there_is(self):
        code, output = self.select("folders", "sture")
        self.assertEqual(1, code)
        self.assertIn("sture", output)
        self.assertIn(" store ", output)

    def test_change_of_examples_and_of_how_tests_are_built_chooses_all(self):
        for file in ("examples/actions.jsonl", "tests/CMakeLists.txt"):
            code, output = self.select("changed", file)
            self.assertEqual(0, code)
            for entry in ("release.store ", "release.leaks ", "release.day_of_use."):
                self.assertIn(entry, output)

    def test_package_and_its_test_choose_what_is_packed(self):
        for words in (("folders", "package"), ("changed", "packaging/product.wxs.in"), ("match", "release.package")):
            code, output = self.select(*words)
            self.assertEqual(0, code)
            self.assertRegex(output, r"\Arelease release\.package\.\S+ packages\n\Z")

    def test_change_that_no_test_covers_is_a_failure(self):
        code, output = self.select("changed", "README.md", "docs/testing.md")
        self.assertEqual(1, code)
        self.assertIn("no test covers what differs: README.md docs/testing.md", output)

    def test_change_that_no_test_covers_is_told_beside_others(self):
        code, output = self.select("changed", "README.md", "tests/store/OpenTests.cpp")
        self.assertEqual(0, code)
        self.assertIn("release release.store store_tests\n", output)
        self.assertIn("no test covers: README.md\n", output)

    def test_no_change_is_a_failure(self):
        code, output = self.select("changed")
        self.assertEqual(1, code)
        self.assertIn("nothing differs from main", output)

    def test_name_chooses_the_programs_that_have_it(self):
        code, output = self.select("match", "LastLineOfCounterFileWins|release.files.ReadCounter")
        self.assertEqual(0, code)
        self.assertIn("release release.files files_tests\n", output)
        self.assertNotIn("store_tests", output)

    def test_name_with_a_parameter_chooses_the_programs_that_may_have_it(self):
        for pattern in (
            r"release\.dispatch\.Kind/NamesAndKinds\.DecideTheTables/4294967295$",
            "NamesAndKinds.DecideTheTables/4$",
            "NamesAndKinds.*16",
        ):
            code, output = self.select("match", pattern)
            self.assertEqual(0, code, output)
            self.assertIn("release release.dispatch dispatch_tests\n", output)
            self.assertNotIn("store_tests", output)

    def test_unknown_name_and_bad_expression_are_told(self):
        self.assertIn("no test matches NoSuchTestAnywhere", self.select("match", "NoSuchTestAnywhere")[1])
        self.assertIn("no regular expression", self.select("match", "(")[1])


if __name__ == "__main__":
    SAMPLE = sys.argv.pop(1)
    unittest.main()
