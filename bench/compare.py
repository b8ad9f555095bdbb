#!/usr/bin/env python3
"""bench/compare.py BUILD OUT: compares the plug-in's pass, including removals and log lines, with common tools that only
find the names. Measures seconds of whole processes and CPU seconds of all their processes, on packages of 100,000 files
without duplicates and with 1,000. New processes run in turn; medians. Prints a table and writes OUT/compare.json."""
import json
import subprocess
import sys
from pathlib import Path

from measuring import Tree, interleaved, seconds_of

ROUNDS = 7
PEERS = Path(__file__).resolve().parent / "peers"
PACKAGE, PLATFORM = "/opt/usr/apps/org.example.bench", "/usr/share/dotnet.orvel"
DUPLICATES = [0, 1000]


def commands(build):
    return {
        "plug-in (removes and logs)": [build / "bench/bench_plugin", "pass"],
        "find | sort | comm": [PEERS / "find_comm.sh", PACKAGE, PLATFORM],
        "find | awk": [PEERS / "find_awk.sh", PACKAGE, PLATFORM],
        "fd, one thread": [PEERS / "fd.sh", PACKAGE, PLATFORM, 1],
        "fd, two threads": [PEERS / "fd.sh", PACKAGE, PLATFORM, 2],
        "Python os.scandir": [PEERS / "scandir.py", PACKAGE, PLATFORM],
        "C++ std::filesystem": [build / "bench/bench_names", PACKAGE, PLATFORM],
        "jdupes (by content)": ["jdupes", "-r", "-q", PACKAGE, PLATFORM],
        "rdfind (by content)": ["rdfind", "-dryrun", "true", "-outputname", "/dev/null", PACKAGE, PLATFORM],
    }


def measure(build, duplicates):
    """(Seconds, CPU seconds) by the names of the commands."""
    with Tree(build, 100000, duplicates) as tree:
        def timed(command):
            def measure_once():
                tree.restore()
                return seconds_of(tree.command(*command))
            return measure_once

        tree.restore()
        for name, command in commands(build).items():
            if "content" in name or "plug-in" in name:
                continue
            found = subprocess.run([str(part) for part in tree.command(*command)], stdout=subprocess.PIPE)
            if len(found.stdout.splitlines()) != duplicates:
                sys.exit(f"bench: {name} found {len(found.stdout.splitlines())} names, not {duplicates}")
        return interleaved(ROUNDS, {name: timed(command) for name, command in commands(build).items()})


def main():
    build, out = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    out.mkdir(parents=True, exist_ok=True)
    results = {}
    for duplicates in DUPLICATES:
        seconds = results[duplicates] = measure(build, duplicates)
        print(f"{duplicates} duplicates")
        own = next(iter(seconds.values()))
        for name, (elapsed, cpu) in sorted(seconds.items(), key=lambda item: item[1]):
            print(f"  {name:<28} {elapsed:>8.3f} s   {elapsed / own[0]:>6.2f}   {cpu:>8.3f} s of CPU   "
                  f"{cpu / own[1]:>6.2f}")
    (out / "compare.json").write_text(json.dumps(results, indent=1) + "\n")


if __name__ == "__main__":
    main()
