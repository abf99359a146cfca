#!/usr/bin/env python3
"""Runs clang-tidy over the sources of platform, core, host, draw and cli. A file that passed is not looked at again until it,
a header it includes, its compile command or .clang-tidy changes.

Usage: run_tidy.py BUILD_DIR [FILE]...

CLANG_TIDY names another clang-tidy than clang-tidy-19, TIDY_JOBS how many run at once."""

import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys

import project

FOLDERS = ("support", "platform", "core", "host", "draw", "cli")


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

    def look_at(name):
        """(was it looked at, what was found)"""
        command = commands[os.path.realpath(base / name)]
        digest = passed.digest(base, [".clang-tidy", *project.reached(base, name)], version, *command)
        if passed.has(digest):
            return False, None
        # The build's compiler has warnings that this one does not know.
        result = subprocess.run([tidy, "-p", str(build), "--quiet", "--extra-arg=-Wno-unknown-warning-option",
                                 str(base / name)], capture_output=True, text=True, check=False)
        if result.returncode == 0:
            passed.add(digest)
            return True, None
        return True, result.stdout or result.stderr

    with concurrent.futures.ThreadPoolExecutor(int(os.environ.get("TIDY_JOBS", os.cpu_count() or 1))) as pool:
        results = list(pool.map(look_at, names))
    found = [text for _, text in results if text]
    # A header's finding comes once for each file that includes it.
    findings = dict.fromkeys(part for text in found for part in re.split(r"(?m)^(?=\S+:\d+:\d+: (?:error|warning):)", text))
    print(*findings, sep="", end="\n" if found else "")
    print(f"{len(names)} files, {sum(1 for looked, _ in results if looked)} looked at, {len(found)} with findings")
    return 1 if found or not names else 0


if __name__ == "__main__":
    sys.exit(main())
