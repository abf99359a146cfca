#!/usr/bin/env python3
"""Compares the names that a library exports with the reviewed list, and checks that all are in one namespace.

Usage: check_exports.py LIBRARY LIST [--update]

--update rewrites the list; review the difference before you commit it."""

import pathlib
import re
import subprocess
import sys

NAMESPACE = "tessera_1"
HEADER = f"""\
# What libtessera exports: names of the namespace {NAMESPACE}, one a line, sorted, standard types abbreviated.
# tools/check_exports.py compares this list with the library; with --update it rewrites the list.
"""
# A mangled name of the namespace: a member or function, const or not, or a class's table or type information.
OWN = re.compile(rf"^_Z(T[VTIS])?NK?{len(NAMESPACE)}{NAMESPACE}")
STRING = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"
DEFAULTS = ("std::allocator<", "std::hash<", "std::equal_to<", "std::less<")


def without_defaults(text):
    """Removes template arguments that equal their defaults."""
    text = text.replace(STRING, "std::string")
    for default in DEFAULTS:
        while (start := text.find(", " + default)) >= 0:
            end, depth = start + 2 + len(default), 1
            while depth:
                depth += {"<": 1, ">": -1}.get(text[end], 0)
                end += 1
            text = text[:start] + text[end:].removeprefix(" ")
    return re.sub(r">\s+(?=>)", ">", text)


def exported(library):
    """The mangled names that the library defines and exports."""
    listing = subprocess.run(["nm", "-D", "--defined-only", "--format=posix", library],
                             capture_output=True, text=True, check=True).stdout
    return [line.split()[0].split("@")[0] for line in listing.splitlines()]


def readable(mangled):
    filtered = subprocess.run(["c++filt"], input="\n".join(mangled), capture_output=True, text=True, check=True)
    return sorted({without_defaults(name) for name in filtered.stdout.splitlines()})


def main():
    arguments = [word for word in sys.argv[1:] if word != "--update"]
    if len(arguments) != 2:
        raise SystemExit(__doc__)
    library, reviewed = arguments[0], pathlib.Path(arguments[1])
    mangled = exported(library)
    foreign = [name for name in mangled if not OWN.match(name)]
    for name in readable(foreign):
        print(f"outside {NAMESPACE}: {name}")
    now = readable([name for name in mangled if OWN.match(name)])
    if "--update" in sys.argv:
        reviewed.parent.mkdir(parents=True, exist_ok=True)
        reviewed.write_text(HEADER + "\n".join(now) + "\n", encoding="utf-8")
    before = [line for line in reviewed.read_text(encoding="utf-8").splitlines() if line and not line.startswith("#")]
    added, gone = sorted(set(now) - set(before)), sorted(set(before) - set(now))
    for name in added:
        print(f"not in {reviewed.name}: {name}")
    for name in gone:
        print(f"no longer exported: {name}")
    print(f"{len(now)} names exported, {len(added)} new, {len(gone)} gone, {len(foreign)} foreign")
    return 1 if added or gone or foreign or not now else 0


if __name__ == "__main__":
    sys.exit(main())
