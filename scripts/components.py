#!/usr/bin/env python3
"""components.py: checks the includes of the sources against scripts/components.txt.

Reports a dependency between components that is not listed there, a listed one that nothing uses, one on a component
further up, and files that include each other in a cycle (a header and its source count as one file).
"""
import graphlib
import os
import re
import subprocess
import sys

LIST = "scripts/components.txt"
INCLUDE_DIRECTORIES = ("", "include/", "platform/include/")


def read_components():
    """The components from the top down: the paths of each, and the components that it may use."""
    components = {}
    for line in open(LIST, encoding="utf-8"):
        line = line.partition("#")[0].strip()
        if line:
            paths, _, used = line.partition(":")
            components[tuple(paths.split())] = used.split()
    return components


def includes_of(file, files):
    text = open(file, encoding="utf-8").read()
    for name in re.findall(r'^#include ["<]([^">]+)[">]', text, re.MULTILINE):
        yield from (directory + name for directory in INCLUDE_DIRECTORIES if directory + name in files)


def component_of(file, components):
    """The name of the component with the longest path that contains the file; None when there is none."""
    found = max(((path, paths[0]) for paths in components for path in paths if file.startswith(path + "/")),
                default=None, key=lambda found: len(found[0]))
    return found and found[1]


def wrong_dependencies(includes, components):
    order = [paths[0] for paths in components]
    listed = {(paths[0], used) for paths, all_used in components.items() for used in all_used}
    examples = {}
    for file, used in includes.items():
        for other in used:
            pair = component_of(file, components), component_of(other, components)
            examples.setdefault(pair, f"{file} includes {other}")
    found = {pair: example for pair, example in examples.items() if pair[0] != pair[1]}
    for pair in sorted(found.keys() - listed):
        yield f"{found[pair]}: {pair[0]} -> {pair[1]} is not in {LIST}"
    for component, used in sorted(listed - found.keys()):
        yield f"{LIST}: {component} does not use {used}; remove it from the line"
    for component, used in sorted(listed):
        if used not in order[order.index(component):]:
            yield f"{LIST}: {component} -> {used} leads back up, or to no component"


def cycle(includes):
    def one(file):  # a source counts as its header
        name = os.path.splitext(os.path.basename(file))[0] + ".h"
        own = (os.path.join(directory, name) for directory in (os.path.dirname(file), "include/morvath"))
        return next((header for header in own if header in includes[file]), file)
    graph = {}
    for file, used in includes.items():
        graph.setdefault(one(file), set()).update(one(other) for other in used if one(other) != one(file))
    try:
        graphlib.TopologicalSorter(graph).prepare()
    except graphlib.CycleError as error:
        yield "a cycle of includes: " + " -> ".join(reversed(error.args[1]))


def main():
    components = read_components()
    listing = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cc", "*.h"],
                             check=True, capture_output=True, text=True)
    files = {file for file in listing.stdout.split() if os.path.exists(file) and component_of(file, components)}
    includes = {file: list(includes_of(file, files)) for file in sorted(files)}
    problems = [*wrong_dependencies(includes, components), *cycle(includes)]
    print("\n".join(problems) or f"{len(components)} components, no dependency that is not listed, no cycle")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
