#!/usr/bin/env python3
"""bench/check.py BUILD OUT: measures `orvelbox check` on a store of packages, and programs that only list names. Creates
200 archives and 200 directories of 300 DLLs each (58 of them duplicates), one archive of 20,000 DLLs, copies of these with
texts or empty files instead of assemblies, and a platform list of 5,000 names below OUT/store. CPU seconds of whole
processes, which run in turn; medians. For the growth, 100 archives of 20 DLLs are given up to 100 times. Prints a table
and writes OUT/check.json."""
import json
import struct
import sys
import zipfile
from pathlib import Path

from measuring import interleaved, seconds_of

ROUNDS = 7
PACKAGES, DLLS, DUPLICATES, BIG = 200, 300, 58, 20000
MANIFEST = """<manifest package="org.example.p{0}" version="1">
 <ui-application appid="org.example.p{0}.main" exec="App.dll" type="dotnet-inhouse"/></manifest>"""


def assembly(number):
    """30 KB of an assembly: headers, code, metadata with the version, resources."""
    tables = struct.pack("<IBBBBQQII", 0, 2, 0, 0, 1, 1 | 1 << 32, 0, 1, 1)
    tables += struct.pack("<HHHHH", 0, 1, 1, 0, 0)  # Module
    tables += struct.pack("<IHHHHIHHH", 0x8004, 1, number % 1000, 0, 0, 0, 0, 1, 0)  # Assembly
    streams = struct.pack("<II4s", 36, len(tables), b"#~")
    metadata = b"BSJB" + struct.pack("<HHII4sHH", 1, 1, 0, 4, b"v4.0", 0, 1) + streams + tables
    code, address = 12000, 0x2000
    text = struct.pack("<IHHII", 72, 2, 5, address + 72 + code, len(metadata)).ljust(72, b"\0")
    text += bytes(i * number >> 5 & 0xFF for i in range(code)) + metadata
    optional = struct.pack("<H", 0x10B).ljust(92, b"\0") + struct.pack("<I", 16) + bytes(14 * 8)
    optional += struct.pack("<II", address, 72) + bytes(8)
    section = b".text".ljust(8, b"\0") + struct.pack("<IIII", len(text), address, len(text), 0x200) + bytes(16)
    coff = b"PE\0\0" + struct.pack("<HHIIIHH", 0x14C, 1, 0, 0, 0, len(optional), 0x2102)
    head = b"MZ".ljust(0x3C, b"\0") + struct.pack("<I", 0x80)
    file = (head.ljust(0x80, b"\0") + coff + optional + section).ljust(0x200, b"\0") + text
    return file + b"resource" * ((30000 - len(file)) // 8)


CONTENTS = [assembly(i) for i in range(1, 30)]


def names(package, count):
    """About every fifth DLL has a name from the platform."""
    for i in range(count):
        duplicates = i * DUPLICATES // DLLS
        duplicate = duplicates != (i + 1) * DUPLICATES // DLLS
        yield f"bin/Platform.Part{duplicates}.dll" if duplicate else f"bin/Package{package}.Part{i}.dll"


def make_archive(path, package, count, contents=CONTENTS):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("orvel-manifest.xml", MANIFEST.format(package))
        for i, name in enumerate(names(package, count)):
            archive.writestr(name, contents[i % len(contents)])


def make_directory(path, package, count, contents=CONTENTS):
    (path / "bin").mkdir(parents=True)
    (path / "orvel-manifest.xml").write_text(MANIFEST.format(package))
    for i, name in enumerate(names(package, count)):
        (path / name).write_bytes(contents[i % len(contents)])


def make_store(store):
    for i in range(PACKAGES):
        make_archive(store / f"p{i}.opk", i, DLLS)
        make_directory(store / f"d{i}", i, DLLS)
        make_directory(store / f"e{i}", i, DLLS, [b""])
    make_archive(store / "big.opk", "big", BIG)
    make_archive(store / "names.opk", "big", BIG, [b"no assembly " * 2500])
    for i in range(100):
        make_archive(store / f"small{i}.opk", i, 20)
    (store / "platform").write_text(
        "".join(f"/usr/share/dotnet.orvel/framework/Platform.Part{i}.dll\n" for i in range(5000)))


def timed(*commands):
    return lambda: seconds_of(*commands, statuses=(0, 1))


def main():
    build, out = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    store = out / "store"
    if not (store / "platform").exists():
        store.mkdir(parents=True, exist_ok=True)
        make_store(store)
    check = [build / "orvelbox/orvelbox", "check", "--platform", store / "platform"]
    archives = [store / f"p{i}.opk" for i in range(PACKAGES)]
    directories = [store / f"d{i}" for i in range(PACKAGES)]
    big = store / "big.opk"
    small = [store / f"small{i}.opk" for i in range(100)]
    measured = interleaved(ROUNDS, {
        **{f"archives, {form}": timed([*check, "--format", form, *archives]) for form in ("table", "json", "sarif")},
        "archives, one job": timed([*check, "--jobs", 1, *archives]),
        "archives, two jobs": timed([*check, "--jobs", 2, *archives]),
        "archives, unzip -Z1 each": timed(*[["unzip", "-Z1", archive] for archive in archives]),
        "archives, one unzip -Z1": timed(["unzip", "-Z1", store / "p*.opk"]),
        "archives, bsdtar -tf each": timed(*[["bsdtar", "-tf", archive] for archive in archives]),
        "big, table": timed([*check, big]),
        "big, json": timed([*check, "--format", "json", big]),
        "big, sarif": timed([*check, "--format", "sarif", big]),
        "big, no assemblies": timed([*check, store / "names.opk"]),
        "big, unzip -Z1": timed(["unzip", "-Z1", big]),
        "big, bsdtar -tf": timed(["bsdtar", "-tf", big]),
        "directories, table": timed([*check, *directories]),
        "directories, empty DLLs": timed([*check, *[store / f"e{i}" for i in range(PACKAGES)]]),
        "directories, find": timed(["find", *directories, "-name", "*.dll"]),
        "growth, 100": timed([*check, *small]),
        "growth, 1,000": timed([*check, *small * 10]),
        "growth, 10,000": timed([*check, *small * 100]),
    })
    for name, (wall, cpu) in measured.items():
        print(f"{name:<24} {cpu:>8.3f} s of CPU   {wall:>8.3f} s")
    (out / "check.json").write_text(json.dumps(measured, indent=1) + "\n")


if __name__ == "__main__":
    main()
