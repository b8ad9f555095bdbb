#!/usr/bin/env python3
"""rooms.py: holds the includes of the sources against scripts/rooms.txt.

Complains of an arrow between rooms that is not listed there, of a listed one that nothing uses, of one that leads to a
room further up, and of files that include each other in a circle (a header and its source are one).
"""
import graphlib
import os
import re
import subprocess
import sys

LIST = "scripts/rooms.txt"
INCLUDE_DIRECTORIES = ("", "include/", "platform/include/")


def read_rooms():
    """The rooms from the top down: of each its paths, and the rooms that it may use."""
    rooms = {}
    for line in open(LIST, encoding="utf-8"):
        line = line.partition("#")[0].strip()
        if line:
            paths, _, used = line.partition(":")
            rooms[tuple(paths.split())] = used.split()
    return rooms


def includes_of(file, files):
    text = open(file, encoding="utf-8").read()
    for name in re.findall(r'^#include ["<]([^">]+)[">]', text, re.MULTILINE):
        yield from (directory + name for directory in INCLUDE_DIRECTORIES if directory + name in files)


def room_of(file, rooms):
    """The name of the room with the longest path above the file; none for a file outside of all."""
    found = max(((path, paths[0]) for paths in rooms for path in paths if file.startswith(path + "/")), default=None,
                key=lambda found: len(found[0]))
    return found and found[1]


def wrong_arrows(includes, rooms):
    order = [paths[0] for paths in rooms]
    listed = {(paths[0], used) for paths, all_used in rooms.items() for used in all_used}
    examples = {}
    for file, used in includes.items():
        for other in used:
            examples.setdefault((room_of(file, rooms), room_of(other, rooms)), f"{file} includes {other}")
    arrows = {arrow: example for arrow, example in examples.items() if arrow[0] != arrow[1]}
    for arrow in sorted(arrows.keys() - listed):
        yield f"{arrows[arrow]}: {arrow[0]} -> {arrow[1]} is not in {LIST}"
    for room, used in sorted(listed - arrows.keys()):
        yield f"{LIST}: {room} does not use {used}; take it out of the line"
    for room, used in sorted(listed):
        if used not in order[order.index(room):]:
            yield f"{LIST}: {room} -> {used} leads back up, or to no room"


def circle(includes):
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
        yield "a circle of includes: " + " -> ".join(reversed(error.args[1]))


def main():
    rooms = read_rooms()
    listing = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cc", "*.h"],
                             check=True, capture_output=True, text=True)
    files = {file for file in listing.stdout.split() if os.path.exists(file) and room_of(file, rooms)}
    includes = {file: list(includes_of(file, files)) for file in sorted(files)}
    problems = [*wrong_arrows(includes, rooms), *circle(includes)]
    print("\n".join(problems) or f"{len(rooms)} rooms, no arrow that is not listed, no circle")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
