"""Memory and system calls that fail: wherever it happens, the program ends with a message and leaves no half of a file.

A preloaded library makes the n-th call of a kind fail. As a test this visits a sample of all n, spread evenly; with
"--all" every one, with "--points N" at most N of each kind and way; "--report" prints how many there were. Commands may
be named: "render json" check.
"""
import argparse
import concurrent.futures
import errno
import json
import os
import pathlib
import re
import sqlite3
import struct
import subprocess
import sys
import xml.etree.ElementTree

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / 'program'))
import program  # noqa: E402

LIBRARY = os.environ.get('TESSERA_FAULTS', str(program.ROOT / 'build/dev/lib/libtessera_faults.so'))
EXAMPLE = program.ROOT / 'examples/backup'
KINDS = ('allocation', 'open', 'read', 'write', 'sync', 'name', 'stat', 'poll', 'make')
NUMBERS = {name: str(getattr(errno, name)) for name in ('ENOMEM', 'EMFILE', 'EACCES', 'EIO', 'EINTR', 'ENOSPC', 'EAGAIN')}
# How the calls of a kind fail; "+" is: and so do all after it.
MODES = {'allocation': ('ENOMEM', 'ENOMEM+'), 'open': ('EMFILE', 'EMFILE+', 'EACCES', 'EINTR', 'ENOMEM'), 'read': ('EIO', 'EIO+', 'EINTR', 'short', 'short+'),
         'write': ('ENOSPC', 'ENOSPC+', 'EIO', 'EINTR', 'short', 'short+'), 'sync': ('EIO', 'ENOSPC'), 'name': ('EIO', 'ENOSPC', 'EACCES'),
         'stat': ('EIO', 'EIO+', 'EACCES'), 'poll': ('EINTR', 'ENOMEM', 'ENOMEM+'), 'make': ('EMFILE', 'EAGAIN', 'ENOMEM+')}
COMMANDS = ('render json', 'render xml', 'render svg', 'render png', 'render pdf', 'check', 'check db', 'session')
REQUESTS = ''.join(json.dumps(request) + '\n' for request in (
    {'request': 'create'}, {'request': 'refresh'}, {'request': 'changeDisplayMode', 'in': {'mode': {'': 'ratio'}}}))
EARLIER = b'what was in the file before'
TIME_LIMIT = 40
# Blocks of memory that a run with a failure may keep beyond those of a run without: the texts of its errors, what the
# logger allocates for its first line, and SQLite's last message.
MORE_BLOCKS = 32


def is_whole(data, form):
    """Whether this is a complete file of the format."""
    try:
        if form == 'json':
            return bool(json.loads(data))
        if form in ('xml', 'svg'):
            return xml.etree.ElementTree.fromstring(data) is not None
    except (ValueError, xml.etree.ElementTree.ParseError):
        return False
    return data.endswith(b'IEND\xaeB`\x82') if form == 'png' else data.rstrip().endswith(b'%%EOF')


class Runner:
    """Runs one command with one call that fails, in a folder of its own."""

    def __init__(self, folder, command):
        self.command = command
        self.folder = folder
        self.folder.mkdir(parents=True)
        self.database = self.folder / 'first.db'
        with sqlite3.connect(self.database) as connection:
            connection.executescript((EXAMPLE / 'first.sql').read_text())
        connection.close()
        self.counts = self.folder / 'counts'
        self.output = self.folder / 'out' / f'out.{self.form}'
        self.output.parent.mkdir()
        self.reference = None
        self.blocks = 0

    @property
    def form(self):
        return self.command.split()[1] if self.command.startswith('render') else None

    def arguments(self):
        name, *rest = self.command.split()
        more = [] if self.command == 'check' else ['--db', str(self.database)]
        if name == 'render':
            more += ['-o', str(self.output)]
        return [program.PROGRAM, name, str(EXAMPLE / 'first.xml'), *more]

    def run(self, kind='', at=0, mode='ENOMEM'):
        """Returns the finished process, the number of calls of each kind, how many of them failed, and the blocks kept."""
        self.counts.write_bytes(bytes(8 * (len(KINDS) + 2)))
        environment = {**os.environ, 'LD_PRELOAD': LIBRARY, 'FAULT_COUNTS': str(self.counts), 'FAULT_KIND': kind,
                       'FAULT_AT': str(at), 'FAULT_MODE': NUMBERS.get(mode.rstrip('+'), mode.rstrip('+'))}
        if mode.endswith('+'):
            environment['FAULT_LASTS'] = '1'
        done = subprocess.run(self.arguments(), input=REQUESTS if self.command == 'session' else '', capture_output=True,
                              encoding='utf-8', errors='replace', env=environment, timeout=TIME_LIMIT)
        *calls, hits, blocks = struct.unpack(f'{len(KINDS) + 2}q', self.counts.read_bytes())
        return done, calls, hits, blocks

    def count(self):
        """Runs without a failure; keeps what came out; returns the number of calls of each kind."""
        done, calls, _, self.blocks = self.run()
        assert done.returncode == 0, done.stderr
        assert self.blocks > 0, 'no memory was counted'
        self.reference = self.output.read_bytes() if self.form else done.stdout
        return dict(zip(KINDS, calls))

    def judge(self, kind, at, mode):
        """Returns what is wrong with a run, or None."""
        if at % 2 and self.form:
            self.output.write_bytes(EARLIER)
        else:
            self.output.unlink(missing_ok=True)
        before = self.output.read_bytes() if self.output.exists() else None
        try:
            done, _, hits, blocks = self.run(kind, at, mode)
        except subprocess.TimeoutExpired:
            return 'it does not end'
        if hits == 0:
            return None  # a run may need fewer calls than another one
        if done.returncode not in (0, 1, 3):
            return f'status {done.returncode}: {done.stderr[-300:]}'
        if done.returncode and not re.search('tessera: .|: error: ', done.stderr):
            return f'status {done.returncode} without a message: {done.stderr[-300:]}'
        if blocks > self.blocks + MORE_BLOCKS:
            return f'{blocks} blocks of memory are kept, {self.blocks} without a failure'
        left = sorted(each.name for each in self.output.parent.iterdir() if each != self.output)
        if left:
            for name in left:
                (self.output.parent / name).unlink()
            return f'files are left over: {left}'
        return self.judge_output(done, before) if self.form else self.judge_answers(done)

    def judge_output(self, done, before):
        after = self.output.read_bytes() if self.output.exists() else None
        # Without fonts or their settings the picture is another one, as on a machine that has none, and it is reported.
        is_reported = re.search('Fontconfig (error|warning)|are drawn as boxes|another width', done.stderr)
        if done.returncode == 0 and after != self.reference and is_reported:
            return None if is_whole(after, self.form) else 'status 0, and a broken picture'
        if done.returncode == 0 and after != self.reference:
            return f'status 0, but the file is not what it should be: {done.stderr[-300:]}'
        if done.returncode == 3 and after != before:
            return f'status 3, but the file changed: {done.stderr[-300:]}'
        if done.returncode == 1 and after != before and (after is None or not is_whole(after, self.form)):
            return f'status 1, and a broken file: {done.stderr[-300:]}'
        return None

    def judge_answers(self, done):
        if self.command != 'session':
            return None if done.returncode or done.stdout == self.reference else 'the output is another one'
        whole = done.stdout[:done.stdout.rfind('\n') + 1]
        if done.returncode == 0 and whole != done.stdout:
            return 'status 0, but the last answer is not whole'
        try:
            answers = [json.loads(line) for line in whole.splitlines()]
        except ValueError as error:
            return f'an answer is not JSON: {error}'
        if done.returncode == 0 and len(answers) != REQUESTS.count('\n'):
            return 'an answer is missing'
        for answer, usual in zip(answers, map(json.loads, self.reference.splitlines())):
            if answer != usual and answer['code'] == 'success' and 'tessera: ' not in done.stderr:
                return f'an answer says success and is another one: {done.stderr[-300:]}'
        return None


def points(count, limit):
    """At most `limit` of the numbers from 1 to `count`, spread evenly."""
    return range(1, count + 1) if not limit or count <= limit else [1 + i * (count - 1) // (limit - 1) for i in range(limit)]


class Faults(program.Case):
    limits = {'allocation': 24, 'other': 3}
    commands = COMMANDS
    report = False

    def sweep(self, command):
        runner = Runner(self.folder / command.replace(' ', '_'), command)
        findings, visited = [], {}
        for kind, count in runner.count().items():
            for mode in MODES[kind]:
                chosen = points(count, self.limits['allocation' if kind == 'allocation' else 'other'])
                visited[kind, mode] = len(chosen)
                for at in chosen:
                    if problem := runner.judge(kind, at, mode):
                        findings.append(f'{command}: {kind} {at} {mode}: {problem}')
                        if self.report:
                            print(findings[-1], flush=True)
        return findings, visited

    def test_every_call_that_fails_is_a_message(self):
        findings = []
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            for command, (found, visited) in zip(self.commands, pool.map(self.sweep, self.commands)):
                findings += found
                self.assertGreater(visited['allocation', 'ENOMEM'], 0)
                if self.report:
                    print(command, len(found), sum(visited.values()), {f'{kind} {mode}': n for (kind, mode), n in visited.items() if n}, flush=True)
        self.assertEqual(findings, [], '\n'.join(findings[:1000]))


if __name__ == '__main__':
    if not os.access(LIBRARY, os.R_OK):
        sys.exit(f'{LIBRARY} is not there; build it, or set TESSERA_FAULTS')
    parser = argparse.ArgumentParser()
    parser.add_argument('--all', action='store_true')
    parser.add_argument('--points', type=int)
    parser.add_argument('--report', action='store_true')
    parser.add_argument('commands', nargs='*', choices=[*COMMANDS, []])
    chosen = parser.parse_args()
    Faults.report = chosen.report
    Faults.commands = chosen.commands or COMMANDS
    if chosen.all or chosen.points:
        Faults.limits = dict.fromkeys(('allocation', 'other'), chosen.points)
    sys.argv[1:] = []
    program.main()
