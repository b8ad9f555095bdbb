#!/usr/bin/env python3
"""os.scandir: the package's DLLs whose names the platform has."""
import os
import sys


def files(directory):
    with os.scandir(directory) as entries:
        for entry in entries:
            if entry.is_dir(follow_symlinks=False):
                yield from files(entry.path)
            elif entry.is_file(follow_symlinks=False):
                yield entry.name


platform = set(files(sys.argv[2]))
for name in files(sys.argv[1]):
    if name.endswith(".dll") and name in platform:
        print(name)
