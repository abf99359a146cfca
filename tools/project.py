"""Functions that the checks in this folder share: the project's files, their includes, and which files passed before."""

import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess

# The folders that hold C++.
CODE = ("support", "platform", "core", "host", "draw", "cli", "tests", "bench", "fuzz")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def git(base, *arguments):
    """The output of git; None without git, outside a work tree, or when git fails."""
    if not shutil.which("git"):
        return None
    done = subprocess.run(["git", "-C", str(base), *arguments], capture_output=True, text=True, check=False)
    return done.stdout if done.returncode == 0 else None


def root():
    return pathlib.Path(__file__).resolve().parent.parent


def files(base, endings, folders=CODE):
    """The project's files with one of these endings, as paths relative to `base`: those that git tracks or would add; without
    git, all that are there."""
    listed = git(base, "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--", *folders)
    if listed:
        names = listed.split("\0")
    else:
        names = [os.path.relpath(os.path.join(place, name), base)
                 for folder in folders for place, _, found in os.walk(base / folder) for name in found]
    return sorted({name for name in names if name.endswith(tuple(endings)) and (base / name).is_file()})


def includes(path):
    """Yields (line, whether it is quoted, path) for each include directive of a file."""
    with open(path, encoding="utf-8") as text:
        for number, line in enumerate(text, 1):
            if match := INCLUDE.match(line):
                yield number, match[1] == '"', match[2]


def reached(base, name):
    """The file and all of the project's files that it includes, directly or indirectly."""
    seen, open_files = set(), [name]
    while open_files:
        each = open_files.pop()
        if each in seen:
            continue
        seen.add(each)
        open_files += [target for _, quoted, target in includes(base / each) if quoted and (base / target).is_file()]
    return sorted(seen)


def compile_commands(build):
    """The build's compile commands by source file, each a list of words."""
    import shlex
    database = pathlib.Path(build) / "compile_commands.json"
    if not database.is_file():
        raise SystemExit(f"{database} is missing: configure with a preset, or with CMAKE_EXPORT_COMPILE_COMMANDS=ON")
    entries = json.loads(database.read_text(encoding="utf-8"))
    return {os.path.realpath(os.path.join(e["directory"], e["file"])): shlex.split(e["command"]) for e in entries}


class Passed:
    """Remembers in a folder which inputs have passed a check, by a digest of everything that the result depends on."""

    def __init__(self, folder):
        self._folder = pathlib.Path(folder)
        self._folder.mkdir(parents=True, exist_ok=True)

    @staticmethod
    def digest(base, names, *more):
        sha = hashlib.sha256("\0".join(more).encode())
        for name in names:
            sha.update(b"\0" + name.encode() + b"\0" + (base / name).read_bytes())
        return sha.hexdigest()

    def has(self, digest):
        return (self._folder / digest).exists()

    def add(self, digest):
        (self._folder / digest).touch()
