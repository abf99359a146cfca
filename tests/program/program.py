"""Shared by the tests of the program: running it, building databases, reading its answers."""
import json
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = os.environ.get('TESSERA_PROGRAM', str(ROOT / 'build/dev/bin/tessera'))
# Real documents and data that are too large for the repository; not every machine has them.
REAL = pathlib.Path(os.environ.get('TESSERA_REAL_DATA', ROOT.parent / 'shared/real'))
SLOW = 5 if os.environ.get('TESSERA_SANITIZED') else 1  # how much longer everything may take


class Case(unittest.TestCase):
    """A test case with its own temporary folder."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix='tessera-test-'))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def write(self, name, text):
        path = self.folder / name
        if isinstance(text, bytes):
            path.write_bytes(text)
        else:
            path.write_text(text, encoding='utf-8')
        return path

    def database(self, sql='CREATE TABLE t(a, b); INSERT INTO t VALUES (1, 2);', name='result.db'):
        path = self.folder / name
        path.unlink(missing_ok=True)
        with sqlite3.connect(path) as connection:
            connection.executescript(sql)
        connection.close()
        return path

    def run_program(self, *arguments, **options):
        options.setdefault('timeout', 60 * SLOW)
        return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, encoding='utf-8',
                              stdin=subprocess.DEVNULL, **options)

    def render(self, document, database, *arguments):
        """Renders to standard output and returns the diagram; fails on any message that is not a warning."""
        done = self.run_program('render', document, '--db', database, *arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual([line for line in done.stderr.splitlines() if line.startswith('tessera: ') and ' warning: ' not in line],
                         [])
        return json.loads(done.stdout)

    def session(self, document, database, lines, *arguments):
        """Sends lines (objects become JSON); returns (answers, finished process)."""
        text = ''.join((line if isinstance(line, str) else json.dumps(line)) + '\n' for line in lines)
        done = subprocess.run([PROGRAM, 'session', str(document), '--db', str(database), *map(str, arguments)],
                              input=text, capture_output=True, text=True, encoding='utf-8', timeout=60 * SLOW)
        return [json.loads(line) for line in done.stdout.splitlines()], done

    def assert_clean_failure(self, done, status, *texts):
        """Expects the exit status, each text in the messages, no data, no crash, and only lines that are messages."""
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertEqual(done.stdout, '')
        messages = [line for line in done.stderr.splitlines() if line.startswith('tessera: ')]
        self.assertTrue(messages, done.stderr)
        for text in texts:
            self.assertIn(text, '\n'.join(messages))


def measured(case, *arguments, seconds, mebibytes=1024, status=1):
    """Runs the program; its time and its largest memory stay below these. The times are many times what is wanted and a part
    of what it takes without limits, which is minutes or for ever: the machine may be busy. A sanitizer takes memory and time
    of its own; only the status counts then."""
    code = ('import resource, subprocess, sys; done = subprocess.run(sys.argv[1:]); '
            'print("peak", resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss, file=sys.stderr); '
            'sys.exit(done.returncode % 256)')
    begin = time.monotonic()
    done = subprocess.run([sys.executable, '-c', code, PROGRAM, *map(str, arguments)], capture_output=True, text=True,
                          encoding='utf-8', timeout=60 * SLOW)
    took = time.monotonic() - begin
    case.assertEqual(done.returncode, status, done.stderr)
    if not os.environ.get('TESSERA_SANITIZED'):
        case.assertLess(took, seconds)
        case.assertLess(int(done.stderr.split()[-1]) / 1024, mebibytes)
    return done


def document(diagram='', queries='', filters=''):
    """Returns a viewpoint with the given parts."""
    return (f'<viewpoint><queries>{queries}</queries><filters>{filters}</filters>'
            f'<diagram>{diagram}</diagram></viewpoint>')


def showing(expression, **attributes):
    """Returns a document with one node that shows one query over table t."""
    extra = ''.join(f' {name}="{value}"' for name, value in attributes.items())
    if 'from' not in attributes:
        extra += ' from="t"'
    return document('<graph><node id="n"/></graph><display><node id="n"><rowSet displayName="set">'
                    '<queryRef displayName="row">/q</queryRef></rowSet></node></display>',
                    f'<query id="q"{extra}>{expression}</query>')


def shown_value(diagram, node='n'):
    """Returns the first value that the node shows, or None."""
    info = next(each for each in diagram['nodes']['node'] if each['id'] == node)['info']
    return info['rows']['row'][0]['value'] if info else None


def main():
    if not os.access(PROGRAM, os.X_OK):
        sys.exit(f'{PROGRAM} is not a program; build it, or set TESSERA_PROGRAM')
    unittest.main(module='__main__', verbosity=1)
