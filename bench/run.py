#!/usr/bin/env python3
"""bench/run.py BUILD OUT: compares the plug-in with minimal programs that do the same work.

Prints a table and writes OUT/results.json and OUT/growth.svg. Times are CPU seconds of new processes that run in turn,
medians. Counts do not depend on the machine.
"""
import json
import math
import sys
from pathlib import Path

from growth_plot import growth_svg
from measuring import Tree, interleaved, text_of

ROUNDS = 15
LIBRARY_SIZE = Path(__file__).parent.parent / "scripts/library-size.sh"
CALLS_REACH = 1.15
SERIES = (1000, 10000, 100000, 300000)
CACHES = [(entries, percent) for entries in (100, 1000, 10000, 20000) for percent in (0, 10, 50)]


class Bench:
    def __init__(self, build):
        self.build = build
        self.plugin = build / "bench/bench_plugin"
        self.reference = build / "bench/bench_reference"
        self.rows = []

    def row(self, figure, value, reach, detail):
        self.rows.append({"figure": figure, "value": round(value, 3), "reach": reach, "detail": detail})
        aim = f"<= {reach}" if reach else ""
        print(f"{figure:<58} {value:>8.3f}   {aim:<9} {detail}", flush=True)

    def pass_over(self, name, tree, time_reach, instructions_reach):
        """Compares the pass with floor and limit on one tree. All three must leave the same files."""
        programs = {"plug-in": [self.plugin, "pass"], "floor": [self.reference, "floor", "pass"],
                    "limit": [self.reference, "limit", "pass"]}
        lines, left = {}, {}

        def measured(program, command):
            def measure():
                tree.restore()
                result = tree.measure(*command)
                lines[program], left[program] = (result["lines"], result["spans"]), tree.information_files()
                return result["seconds"]
            return measure

        seconds = interleaved(ROUNDS, {program: measured(program, command) for program, command in programs.items()})
        if not left["plug-in"] == left["floor"] == left["limit"] or lines["plug-in"] != lines["limit"]:
            sys.exit(f"bench: the programs did different work on {name}")
        self.row(f"pass / floor, {name}", seconds["plug-in"] / seconds["floor"], time_reach,
                 f"{seconds['plug-in'] * 1e3:.2f} ms; limit {seconds['limit'] * 1e3:.2f} ms; "
                 f"{lines['plug-in'][0]} log lines, {lines['plug-in'][1]} begins and ends of spans")
        counts = {}
        for count in ("instructions", "system_calls"):
            for program, command in programs.items():
                tree.restore()
                counts[count, program] = getattr(tree, count)(*command)
        for count, reach in (("instructions", instructions_reach), ("system_calls", CALLS_REACH)):
            own, limit = counts[count, "plug-in"], counts[count, "limit"]
            self.row(f"{count.replace('_', ' ')} / limit, {name}", own / limit, reach,
                     f"{own}; limit {limit}; floor {counts[count, 'floor']}")

    def passes(self):
        with Tree(self.build, "realistic") as tree:
            self.pass_over("realistic", tree, 1.25, 1.15)
        with Tree(self.build, 100000) as tree:
            self.pass_over("large, no duplicates", tree, 0.70, 1.15)
        with Tree(self.build, 100000, 1000) as tree:
            self.pass_over("large, 1,000 duplicates", tree, 0.75, 1.15)

    def growth(self, out):
        trees = {files: Tree(self.build, files) for files in SERIES}
        try:
            seconds = interleaved(ROUNDS, {files: lambda tree=tree: tree.measure(self.plugin, "pass")["seconds"]
                                           for files, tree in trees.items()})
            memory = {files: tree.measure(self.plugin, "pass")["memory_kib"] for files, tree in trees.items()}
        finally:
            for tree in trees.values():
                tree.__exit__()
        (out / "growth.svg").write_text(growth_svg(seconds))
        # The fixed cost of the platform's catalogues would lower the exponent, so it is computed from a size at which
        # the package dominates.
        exponent = math.log(seconds[300000] / seconds[10000]) / math.log(30)
        self.row("growth exponent of the pass, 10k to 300k files", exponent, 1.03,
                 ", ".join(f"{files}: {value * 1e3:.1f} ms" for files, value in seconds.items()))
        self.row("memory of the pass, 300k files over 1k (KiB)", memory[300000] - memory[1000], 64,
                 f"{memory[300000]} KiB in all, catalogues included")

    def caches(self):
        with Tree(self.build, "realistic") as tree:
            for entries, percent in CACHES:
                texts = {}

                def measured(program, *command):
                    def measure():
                        tree.put_caches(entries, percent)
                        seconds = tree.measure(*command)["seconds"]
                        texts[program] = tree.cache_texts()
                        return seconds
                    return measure

                seconds = interleaved(ROUNDS, {"plug-in": measured("plug-in", self.plugin, "remove"),
                                               "limit": measured("limit", self.reference, "limit", "remove")})
                if texts["plug-in"] != texts["limit"]:
                    sys.exit("bench: the programs left different cache texts")
                share = f"{percent} %" if percent else "one"
                self.row(f"cache edit / limit, {entries} entries, {share} erased",
                         seconds["plug-in"] / seconds["limit"], 1.25, f"{seconds['plug-in'] * 1e3:.2f} ms")

    def load(self):
        load = self.build / "bench/bench_load"
        libraries = {"plug-in": self.build / "plugin/libmorvath.so", "empty": self.build / "bench/libbench_empty.so"}
        with Tree(self.build, "realistic") as tree:
            seconds = interleaved(3 * ROUNDS, {name: lambda path=path: tree.measure(load, path)["seconds"]
                                               for name, path in libraries.items()})
            counts = {name: tree.instructions(load, path) for name, path in libraries.items()}
            self.row("dlopen + dlclose / empty library", seconds["plug-in"] / seconds["empty"], 1.15,
                     f"instructions {counts['plug-in'] / counts['empty']:.3f}")
            calls = tree.system_calls(self.plugin, "unconcerned")
            self.row("system calls, install of another kind of package", calls, 2, "its line on standard error")

    def size(self):
        """The size of the plug-in in this build and in those for the devices' processors."""
        for build in (self.build, self.build.parent / "armhf", self.build.parent / "arm64"):
            if not (build / "plugin/libmorvath.so").exists():
                continue
            size, relocations, processor = text_of([LIBRARY_SIZE, build]).strip().split(" ", 2)
            self.row(f"size in bytes, {processor}", int(size), None, f"{relocations} relocations")


def main():
    build, out = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    out.mkdir(parents=True, exist_ok=True)
    bench = Bench(build)
    bench.passes()
    bench.growth(out)
    bench.caches()
    bench.load()
    bench.size()
    (out / "results.json").write_text(json.dumps(bench.rows, indent=1) + "\n")


if __name__ == "__main__":
    main()
