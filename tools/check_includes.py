#!/usr/bin/env python3
"""Fails when an include goes against the arrows between the folders.

    support <- draw, host <- cli       platform <- core, draw, host, cli
    host and cli see three headers of core, and nothing else of it; core sees one header of support


Usage: check_includes.py [ROOT]"""

import pathlib
import sys

import project

FRONT = {"core/factory.h", "core/layout_options.h", "core/layout_watch.h"}  # what hosts see of core
# What a folder may include beside itself: folders, or single headers.
ALLOWED = {
    "support": set(),
    "platform": set(),
    "core": {"platform", "support/ancestor_index.h"},
    "host": {"platform", "support", *FRONT},
    "draw": {"platform", "support"},
    "cli": {"platform", "support", "host", "draw", *FRONT},
    "tests": set(project.CODE),
    "bench": set(project.CODE),
    "fuzz": set(project.CODE),
}
# These use the standard library and the logger alone.
BARE = {"platform", "core"}


def problem(base, folder, quoted, target):
    """What is wrong with this include, or None."""
    top = target.split("/")[0]
    if not quoted:
        if "/" in target and top in ALLOWED and (base / target).is_file():
            return "the project's own headers are included with quotes"
        standard = "." not in target and "/" not in target
        if folder in BARE and not standard and top != "log4cplus":
            return f"{folder}/ uses the standard library and log4cplus only"
        return None
    if not (base / target).is_file():
        return "is no path from the project's root"
    if top == folder or top in ALLOWED[folder] or target in ALLOWED[folder]:
        return None
    return f"{folder}/ may not include {top}/" + (f" except {', '.join(sorted(FRONT))}" if FRONT <= ALLOWED[folder] and top == "core" else "")


def main():
    base = pathlib.Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else project.root()
    names = project.files(base, (".h", ".cpp"))
    count = wrong = 0
    for name in names:
        folder = name.split("/")[0]
        for line, quoted, target in project.includes(base / name):
            count += 1
            if text := problem(base, folder, quoted, target):
                wrong += 1
                print(f"{name}:{line}: {target}: {text}")
    print(f"{len(names)} files, {count} includes, {wrong} against the arrows")
    return 1 if wrong or not names else 0


if __name__ == "__main__":
    sys.exit(main())
