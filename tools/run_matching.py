#!/usr/bin/env python3
"""Runs the tests of a build whose name contains NAME, ignoring case: tests that ctest lists, and single unit tests.

Usage: run_matching.py BUILD_DIR NAME"""

import json
import os
import pathlib
import re
import subprocess
import sys


def known_tests(build):
    """The tests that ctest lists: name -> (command, environment)."""
    listed = subprocess.run(["ctest", "--show-only=json-v1"], cwd=build, capture_output=True, text=True, check=True)
    tests = {}
    for test in json.loads(listed.stdout)["tests"]:
        environment = {}
        for each in test.get("properties", []):
            if each["name"] == "ENVIRONMENT":
                environment = dict(entry.split("=", 1) for entry in each["value"])
        tests[test["name"]] = (test.get("command", []), environment)
    return tests


def unit_tests(program, environment, name):
    """The matching unit tests of a program, as a GoogleTest filter; empty when there are none."""
    listed = subprocess.run([program, "--gtest_list_tests"], env=environment, capture_output=True, text=True, check=True)
    found, suite = [], ""
    for line in listed.stdout.splitlines():
        word = line.split("#")[0].strip()
        if not line.startswith(" "):
            suite = word
        elif name in (suite + word).lower():
            found.append(suite + word)
    return ":".join(found)


def main():
    if len(sys.argv) != 3:
        raise SystemExit(__doc__)
    build, name = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2].lower()
    tests = known_tests(build)
    whole = [test for test in tests if name in test.lower()]
    ran, failed = 0, []
    if whole:
        ran += len(whole)
        pattern = "^(" + "|".join(map(re.escape, whole)) + ")$"
        if subprocess.run(["ctest", "--output-on-failure", "-R", pattern], cwd=build, check=False).returncode != 0:
            failed.append("ctest")
    # Several of ctest's tests run one program in shards; here the program runs once, with a filter.
    programs = {command[0]: environment for test, (command, environment) in tests.items()
                if test.startswith("unit.") and test not in whole and command}
    for program, environment in programs.items():
        environment = {**os.environ, **{k: v for k, v in environment.items() if not k.startswith("GTEST_")}}
        environment.pop("tessera_ERROR_HANDLING", None)
        chosen = unit_tests(program, environment, name)
        if not chosen:
            continue
        ran += 1
        if subprocess.run([program, "--gtest_filter=" + chosen], env=environment, check=False).returncode != 0:
            failed.append(pathlib.Path(program).name)
    if not ran:
        raise SystemExit(f"no test's name contains \"{sys.argv[2]}\"")
    if failed:
        raise SystemExit("failed: " + ", ".join(failed))


if __name__ == "__main__":
    main()
