"""Shared by the bench scripts: device trees, running the measured programs in their sandbox, and counting."""
import json
import re
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

SHARED_MEMORY = Path("/dev/shm")
CACHE_DIRECTORY = "opt/usr/home/owner/share/dotnet"


def text_of(command, **options):
    return subprocess.run([str(part) for part in command], check=True, stdout=subprocess.PIPE, text=True,
                          **options).stdout


class Tree:
    """A device tree: `files` is a number or "realistic"."""

    def __init__(self, build, files, duplicates=0):
        self.tool, self.sandbox = build / "bench/bench_tree", build / "bench/bench_sandbox"
        self.shape = [str(files), str(duplicates)]
        # In memory if possible, so that no disk is measured.
        self.root = Path(tempfile.mkdtemp(prefix="orvel-bench-", dir=SHARED_MEMORY if SHARED_MEMORY.is_dir() else None))
        text_of([self.tool, "make", *self.shape, self.root])

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.root)

    def restore(self):
        """Restores what a pass removed."""
        text_of([self.tool, "restore", *self.shape, self.root])

    def put_caches(self, entries, percent):
        for name in ("TPA.txt", "CoBA.txt"):
            text_of([self.tool, "cache", entries, percent, self.root / CACHE_DIRECTORY / name])

    def cache_texts(self):
        return [(self.root / CACHE_DIRECTORY / name).read_bytes() for name in ("TPA.txt", "CoBA.txt")]

    def information_files(self):
        return {path: path.read_bytes() for path in self.root.rglob("*_deleted")}

    def command(self, *command):
        return [self.sandbox, self.root, *command]

    def measure(self, *command):
        """The program's report on its work."""
        return json.loads(text_of(self.command(*command), stderr=subprocess.DEVNULL))

    def instructions(self, *command):
        """Counts only the measured work."""
        valgrind = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
                    "--toggle-collect=measured_work"]
        result = subprocess.run([str(part) for part in self.command(*valgrind, *command)], check=True,
                                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        return int(re.search(rb"Collected : (\d+)", result.stderr).group(1))

    def system_calls(self, *command):
        """Counts only between the two marks around the measured work."""
        with tempfile.NamedTemporaryFile(mode="r", errors="replace") as log:
            subprocess.run([str(part) for part in self.command("strace", "-o", log.name, *command)], check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            lines = log.read().splitlines()
        marks = [number for number, line in enumerate(lines) if line.startswith("getppid")]
        return marks[1] - marks[0] - 1


def seconds_of(*commands, statuses=(0,)):
    """(Seconds, CPU seconds) of the commands, one after the other, with all of their processes."""
    def cpu():
        usage = resource.getrusage(resource.RUSAGE_CHILDREN)
        return usage.ru_utime + usage.ru_stime
    begin = time.monotonic(), cpu()
    for command in commands:
        done = subprocess.run([str(part) for part in command], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if done.returncode not in statuses:
            sys.exit(f"bench: {command[0]} ended with {done.returncode}")
    return time.monotonic() - begin[0], cpu() - begin[1]


def median(values):
    """Of numbers, or of tuples number by number."""
    return tuple(map(statistics.median, zip(*values))) if isinstance(values[0], tuple) else statistics.median(values)


def interleaved(rounds, measurements):
    """Runs all measurements in turn, `rounds` times. Returns the median of each, by name."""
    results = {name: [] for name in measurements}
    for _ in range(rounds):
        for name, measure in measurements.items():
            results[name].append(measure())
    return {name: median(values) for name, values in results.items()}
