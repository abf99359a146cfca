#!/usr/bin/env python3
"""Checks that includes follow the arrows between the folders; prints and fails on each that does not.

    support <- draw, host <- cli       platform <- core, draw, host, cli
    host and cli see four headers of core, and nothing else of it; core sees two headers of support
    only an engine's folder sees its headers and the client library of its database


Usage: check_includes.py [ROOT]"""

import pathlib
import sys

import project

FRONT = {"core/factory.h", "core/layout_options.h", "core/layout_watch.h", "core/vocabulary.h"}  # what hosts see of core
# What a folder may include beside itself: folders, or single headers.
ALLOWED = {
    "support": set(),
    "platform": set(),
    "core": {"platform", "support/ancestor_index.h", "support/utf8.h"},
    "host": {"platform", "support", *FRONT},
    "draw": {"platform", "support"},
    "cli": {"platform", "support", "host", "draw", *FRONT},
    "tests": set(project.CODE),
    "bench": set(project.CODE),
    "fuzz": set(project.CODE),
}
# These use the standard library and the logger alone.
BARE = {"platform", "core"}
# Client libraries of databases, each with the folder of its engine; tests and benchmarks make databases with them.
CLIENTS = {"sqlite3.h": "host/engine/sqlite/"}
MAKERS = {"tests", "bench", "fuzz"}
ENGINES = "host/engine/"
ENGINE_LIST = "host/engine/built_in_engines.cpp"  # the one file that names all engines


def engine_problem(name, target):
    """What is wrong with including this in a file outside of the engine's folder, or None."""
    if name.split("/")[0] in MAKERS:
        return None
    if target in CLIENTS and not name.startswith(CLIENTS[target]):
        return f"only {CLIENTS[target]} may include this"
    own = target.startswith(ENGINES) and "/" in target[len(ENGINES):]
    if own and not name.startswith(target.rsplit("/", 1)[0] + "/") and name != ENGINE_LIST:
        return f"what is in the folder of an engine is included there and in {ENGINE_LIST} only"
    return None


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
        return "not a path from the project's root"
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
            if text := engine_problem(name, target) or problem(base, folder, quoted, target):
                wrong += 1
                print(f"{name}:{line}: {target}: {text}")
    print(f"{len(names)} files, {count} includes, {wrong} against the arrows")
    return 1 if wrong or not names else 0


if __name__ == "__main__":
    sys.exit(main())
