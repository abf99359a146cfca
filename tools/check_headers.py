#!/usr/bin/env python3
"""Compiles headers alone, to show that each includes what it needs. Skips a header that its own source includes first, because
the build shows the same. A header that passed is not compiled again until it or a header that it includes changes.

Usage: check_headers.py BUILD_DIR"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys

import project

FLAGS = ["-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", "-x", "c++", "-"]


def search_flags(commands):
    """All -I, -isystem and -D options of the build, without duplicates."""
    flags = []
    for words in commands.values():
        for i, word in enumerate(words):
            flag = words[i:i + 2] if word == "-isystem" else [word] if word.startswith(("-I", "-D")) else []
            if flag and flag not in flags:
                flags.append(flag)
    return [word for flag in flags for word in flag]


def is_shown_by_its_source(base, name):
    """Whether the header's own source includes it before anything else."""
    source = base / (name[:-len(".h")] + ".cpp")
    if not source.is_file():
        return False
    first = next(iter(project.includes(source)), None)
    return first is not None and first[2] == name


def main():
    if len(sys.argv) != 2:
        raise SystemExit(__doc__)
    base, build = project.root(), pathlib.Path(sys.argv[1])
    commands = project.compile_commands(build)
    compiler = os.environ.get("CXX", "g++")
    command = [compiler, "-I", str(base), *search_flags(commands), *FLAGS]
    version = subprocess.run([compiler, "--version"], capture_output=True, text=True, check=True).stdout
    passed = project.Passed(build / "passed-headers")
    # A folder without a target has no flags to compile with.
    built = {os.path.relpath(path, base).split("/")[0] for path in commands}
    names = [name for name in project.files(base, (".h",), [folder for folder in project.CODE if folder in built])
             if not is_shown_by_its_source(base, name)]

    def compile_alone(name):
        digest = passed.digest(base, project.reached(base, name), version, *command)
        if passed.has(digest):
            return None
        result = subprocess.run(command, input=f'#include "{name}"\n', capture_output=True, text=True, check=False)
        if result.returncode == 0:
            passed.add(digest)
            return None
        return f"{name} does not compile alone:\n{result.stderr}"

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        failures = [text for text in pool.map(compile_alone, names) if text]
    print(*failures, sep="\n", end="\n" if failures else "")
    print(f"{len(names)} headers, {len(failures)} do not compile alone")
    return 1 if failures or not names else 0


if __name__ == "__main__":
    sys.exit(main())
