#!/usr/bin/env python3
"""Measures the tests: changes one thing at a time in the sources and checks whether a test of theirs fails.

Usage: scripts/mutation.py [--only PATH…] [--every N | --sample N] [--least PERCENT] [--jobs N] [--resume]

Works in copies of the tree below build/mutation. A mutant that does not compile does not count; one that fails a
test, crashes or exceeds a limit is killed. Survivors are listed in build/mutation/survivors.txt, except those in
scripts/mutation-equivalents.txt, which no test can distinguish from the code.
"""
import argparse
import collections
import concurrent.futures
import os
import queue
import re
import shutil
import signal
import subprocess
import sys
from pathlib import Path

from mutants import ROOT, mutants_of

WORK = ROOT / "build" / "mutation"
VERDICTS = WORK / "verdicts.txt"
EQUIVALENTS = ROOT / "scripts" / "mutation-equivalents.txt"
# By source folder, the programs that test it. Each program runs only when the ones before it do not fail.
PLUGIN_TESTS = ["tests/unit/unit_tests", "tests/hostile/hostile_tests"]
TEST_PROGRAMS = {
    "base": PLUGIN_TESTS, "plugin": PLUGIN_TESTS, "util": PLUGIN_TESTS,
    "orvelbox": ["tests/orvelbox/orvelbox_tests", "tests/docs/session_tests", "tests/e2e/e2e_tests"],
    "platform/host": ["tests/host/host_tests", "tests/integration/integration_tests", "tests/e2e/e2e_tests"],
}
SOURCES = ["base", "plugin", "util"]  # without --only
# Enough for several runs of all tests. A mutant in an endless loop exceeds the processor time, whatever else the machine
# does. One that allocates without end exceeds the memory. One that waits for ever exceeds only the wall-clock time, whose
# limit is high, because a busy machine must not kill a mutant.
PROCESSOR_SECONDS, MEMORY_KB, CLOCK_SECONDS = 20, 4_000_000, 300


def files(*paths):
    listed = subprocess.check_output(["git", "ls-files", "-co", "--exclude-standard", *paths], cwd=ROOT, text=True)
    return [name for name in listed.splitlines() if (ROOT / name).is_file()]


def all_mutants(*paths):
    return [mutant for name in files(*paths) if name.endswith((".cc", ".h")) for mutant in mutants_of(name)]


def programs_for(path):
    """The programs that test a source file, in their order; none for a file outside of the folders."""
    return next((programs for folder, programs in TEST_PROGRAMS.items() if path.startswith(f"{folder}/")), [])


def programs_for_all(mutants):
    return list(dict.fromkeys(program for mutant in mutants for program in programs_for(mutant.path)))


def copy_if_changed(origin, copy):
    if copy.exists() and copy.read_bytes() == origin.read_bytes():
        return
    copy.parent.mkdir(parents=True, exist_ok=True)
    shutil.copy(origin, copy)


def update_copy(tree):
    """Makes the tree a copy of the sources, and leaves its build alone."""
    names = files()
    for name in names:
        copy_if_changed(ROOT / name, tree / name)
    expected = {tree / name for name in names}
    for path in tree.rglob("*"):
        if path.relative_to(tree).parts[0] != "build" and path.is_file() and path not in expected:
            path.unlink()


class Worker:
    """A copy of the tree with a build of the tests."""

    def __init__(self, number, programs):
        self.tree = WORK / f"worker-{number}"
        # By test program and source file, the tests that have killed mutants of that file.
        self.killers = collections.defaultdict(dict)
        update_copy(self.tree)
        linker = "-fuse-ld=gold" if shutil.which("ld.gold") else ""
        subprocess.run(["cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                        "-DCMAKE_CXX_FLAGS_DEBUG=-O0", f"-DCMAKE_EXE_LINKER_FLAGS={linker}",
                        f"-DCMAKE_SHARED_LINKER_FLAGS={linker}",
                        "-DCMAKE_PROJECT_INCLUDE=scripts/mutation.cmake",
                        "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"],
                       cwd=self.tree, check=True, stdout=subprocess.DEVNULL)
        for program in programs:
            if not self.builds(program):
                sys.exit(f"the tests do not build; see: ninja -C {self.tree}/build {program}")
            passed, failing = self.run_tests(program)
            if not passed:
                sys.exit(f"{program} fails before anything is changed: {failing or 'it ran into a limit'}")

    def builds(self, program):
        return subprocess.run(["ninja", "-C", "build", program], cwd=self.tree, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0

    def run_tests(self, program, names=("*",)):
        """Whether these tests pass, and the first that failed (None when the program did not report one)."""
        environment = dict(os.environ, GTEST_BRIEF="1", GTEST_FAIL_FAST="1", GTEST_FILTER=":".join(names))
        # `timeout` kills the program together with the processes that it started.
        limited = f'ulimit -t {PROCESSOR_SECONDS} && ulimit -v {MEMORY_KB} && exec timeout -s KILL {CLOCK_SECONDS} "$0"'
        result = subprocess.run(["sh", "-c", limited, f"./{program}"], cwd=self.tree / "build", env=environment,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        if result.returncode == -signal.SIGKILL:
            print(f"{program} was stopped after {CLOCK_SECONDS} s", flush=True)
        failure = re.search(rb"\[  FAILED  \] ([\w.]+)", result.stdout)
        return result.returncode == 0, failure and failure.group(1).decode()

    def tests_pass(self, program, path):
        """Tests that killed mutants of this file before run first: most mutants need no others."""
        killers = self.killers[program, path]
        if killers and not self.run_tests(program, killers)[0]:
            return False
        passed, failing = self.run_tests(program)
        if failing:
            killers[failing] = True
        return passed

    def judge(self, mutant):
        """'invalid', 'killed' or 'survived'."""
        file = self.tree / mutant.path
        text = file.read_text()
        file.write_text(mutant.mutated_text)
        try:
            for program in programs_for(mutant.path):
                if not self.builds(program):
                    return "invalid"
                if not self.tests_pass(program, mutant.path):
                    return "killed"
            return "survived"
        finally:
            file.write_text(text)


def judge_all(mutants, jobs):
    """Yields each mutant with its verdict, in order."""
    workers = queue.Queue()
    for number in range(jobs if mutants else 0):
        workers.put(Worker(number, programs_for_all(mutants)))

    def judge(mutant):
        worker = workers.get()
        try:
            return worker.judge(mutant)
        finally:
            workers.put(worker)

    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        yield from zip(mutants, pool.map(judge, mutants))


def earlier_verdicts():
    """The verdicts of an unfinished or earlier run that are still valid, by digest."""
    if not VERDICTS.exists():
        return {}
    verdicts = dict(line.split() for line in VERDICTS.read_text().splitlines())
    return {digest: verdict for digest, verdict in verdicts.items() if verdict != "survived"}


def verdicts_of(mutants, resume, jobs):
    """The verdict on every mutant, by digest. New ones are saved at once."""
    verdicts = earlier_verdicts() if resume else {}
    open_mutants = [mutant for mutant in mutants if mutant.digest() not in verdicts]
    WORK.mkdir(parents=True, exist_ok=True)
    with VERDICTS.open("a" if resume else "w") as file:
        for done, (mutant, verdict) in enumerate(judge_all(open_mutants, jobs), 1):
            verdicts[mutant.digest()] = verdict
            print(mutant.digest(), verdict, file=file, flush=True)
            if verdict == "survived":
                print(f"survived  {mutant}", flush=True)
            if done % 50 == 0:
                print(f"{done} of {len(open_mutants)}", flush=True)
    return verdicts


def equivalents():
    """Titles of mutants that no test can distinguish from the code, each under a comment that says why."""
    if not EQUIVALENTS.exists():
        return set()
    return {line.strip() for line in EQUIVALENTS.read_text().splitlines() if line.strip() and line[0] != "#"}


def report(mutants, verdicts, known):
    """Prints a line for each file and one for all, and saves the survivors. Returns the share of mutants killed."""
    survivors = []
    counts = collections.defaultdict(collections.Counter)
    for mutant in mutants:
        verdict = verdicts[mutant.digest()]
        if verdict == "survived" and mutant.title in known:
            verdict = "equivalent"
        if verdict == "survived":
            survivors.append(f"{mutant}\n")
        counts[mutant.path][verdict] += 1
    (WORK / "survivors.txt").write_text("".join(survivors))
    total = sum(counts.values(), collections.Counter())
    columns = ("killed", "survived", "equivalent", "invalid")
    print(f"{'':28}" + "".join(f"{column:>12}" for column in columns))
    for name, row in [*counts.items(), ("all", total)]:
        print(f"{name:28}" + "".join(f"{row[column]:12}" for column in columns))
    valid = total["killed"] + total["survived"]
    share = 100 * total["killed"] / valid if valid else 100
    print(f"{total['killed']} of {valid} mutants killed ({share:.1f} %), {total['equivalent']} known to be equivalent, "
          f"{total['invalid']} that do not compile")
    return share


def stale_equivalents(mutants, verdicts, known):
    """The faults of the list of equivalents: entries without a mutant, or whose mutant a test kills."""
    existing = {mutant.title for mutant in all_mutants(*TEST_PROGRAMS)}
    killed = {mutant.title for mutant in mutants if verdicts[mutant.digest()] != "survived"}
    return [f"{EQUIVALENTS.name}: no such mutant: {title}" for title in sorted(known - existing)] + \
           [f"{EQUIVALENTS.name}: not equivalent: {title}" for title in sorted(known & killed)]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--only", nargs="+", default=SOURCES, help="files or directories to mutate")
    parser.add_argument("--every", type=int, default=1, help="take every Nth mutant only")
    parser.add_argument("--sample", type=int, help="take N mutants at random, always the same ones of the same sources")
    parser.add_argument("--least", type=float, default=98.5, metavar="PERCENT",
                        help="fail when a smaller share of the mutants is killed (%(default)s)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--resume", action="store_true",
                        help="take over what earlier runs killed or could not compile; judge only the other mutants")
    options = parser.parse_args()

    mutants = [mutant for mutant in all_mutants(*options.only) if programs_for(mutant.path)][::options.every]
    if options.sample is not None:
        # Drawn by their digests, so that a change of one file leaves the mutants of the others in the sample. Judged file
        # by file, so that what includes a header is built anew once for each of its mutants.
        drawn = sorted(mutants, key=lambda mutant: mutant.digest())[:options.sample]
        mutants = sorted(drawn, key=lambda mutant: mutant.path)
    verdicts = verdicts_of(mutants, options.resume, options.jobs)
    known = equivalents()
    share = report(mutants, verdicts, known)
    mistakes = stale_equivalents(mutants, verdicts, known)
    print("\n".join(mistakes), end="\n" if mistakes else "", file=sys.stderr)
    return 0 if share >= options.least and not mistakes else 1


if __name__ == "__main__":
    sys.exit(main())
