#!/usr/bin/env python3
"""Runs clang-tidy on the sources of the product that a change touches, and on those that include what it touches. A file that
passed is not checked again until it, a header that it includes, its compile command or .clang-tidy changes.

Usage: run_tidy.py BUILD_DIR [FILE]...

The change is everything since TESSERA_BASE (a commit, such as origin/main); without it, the last commit. Uncommitted work is part
of it. TESSERA_TIDY=everything checks all sources, which takes a quarter of an hour.
CLANG_TIDY is the program to run (clang-tidy-19), TIDY_JOBS the number of processes."""

import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys

import project

SKIPPED = 77  # as an exit status, for ctest
FOLDERS = ("support", "platform", "core", "host", "draw", "cli")


def changed_files(base):
    """The files that the change touches, the last changed first; None when that is unknown."""
    def lines(*arguments):
        return (project.git(base, *arguments) or "").splitlines()

    start = "".join(lines("rev-parse", "--verify", "--quiet", os.environ.get("TESSERA_BASE", "HEAD~1")))
    if not start:
        return None
    uncommitted = lines("diff", "--name-only", "HEAD") + lines("ls-files", "--others", "--exclude-standard")
    committed = lines("log", "--format=", "--name-only", f"{start}..HEAD")
    return list(dict.fromkeys(uncommitted + committed))


def touched(base, names, change):
    """The sources that the change touches, or that include what it touches; the last changed first."""
    age = {name: i for i, name in enumerate(change)}
    ages = {name: min((age[each] for each in project.reached(base, name) if each in age), default=None) for name in names}
    return sorted((name for name in names if ages[name] is not None), key=ages.get)


def main():
    if len(sys.argv) < 2:
        raise SystemExit(__doc__)
    base, build = project.root(), pathlib.Path(sys.argv[1])
    tidy = os.environ.get("CLANG_TIDY", "clang-tidy-19")
    if not shutil.which(tidy):
        raise SystemExit(f"{tidy} is not installed; scripts/install-packages.sh installs it")
    version = subprocess.run([tidy, "--version"], capture_output=True, text=True, check=True).stdout
    commands = project.compile_commands(build)
    passed = project.Passed(build / "passed-tidy")
    asked = {os.path.relpath(os.path.realpath(name), base) for name in sys.argv[2:]}
    names = [name for name in project.files(base, (".cpp",), FOLDERS)
             if os.path.realpath(base / name) in commands and (not asked or name in asked)]
    if not asked and os.environ.get("TESSERA_TIDY") != "everything":
        change = changed_files(base)
        if change is None:
            print("without git, or with one commit only, the change is unknown; TESSERA_TIDY=everything checks all sources")
            return SKIPPED
        names = touched(base, names, change)
        if not names:
            print("the change touches no source")
            return 0

    def look_at(name):
        """Returns (whether it was checked, the findings)."""
        command = commands[os.path.realpath(base / name)]
        digest = passed.digest(base, [".clang-tidy", *project.reached(base, name)], version, *command)
        if passed.has(digest):
            return False, None
        # The build's compiler has warning options and a form of precompiled headers that clang-tidy does not know.
        result = subprocess.run([tidy, "-p", str(build), "--quiet", "--extra-arg=-Wno-unknown-warning-option",
                                 "--extra-arg=-Wno-ignored-gch", str(base / name)], capture_output=True, text=True, check=False)
        if result.returncode == 0:
            passed.add(digest)
            return True, None
        return True, result.stdout or result.stderr

    with concurrent.futures.ThreadPoolExecutor(int(os.environ.get("TIDY_JOBS", os.cpu_count() or 1))) as pool:
        results = list(pool.map(look_at, names))
    found = [text for _, text in results if text]
    # A finding in a header is reported by each file that includes it.
    findings = dict.fromkeys(part for text in found for part in re.split(r"(?m)^(?=\S+:\d+:\d+: (?:error|warning):)", text))
    print(*findings, sep="", end="\n" if found else "")
    print(f"{len(names)} files, {sum(1 for looked, _ in results if looked)} checked, {len(found)} with findings")
    return 1 if found or not names else 0


if __name__ == "__main__":
    sys.exit(main())
