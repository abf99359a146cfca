"""A program that is stuck in a call, or whose drawing library ends it: signals and messages all the same."""
import os
import pathlib
import signal
import struct
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / 'program'))
import program  # noqa: E402

LIBRARY = os.environ.get('TESSERA_FAULTS', str(program.ROOT / 'build/dev/lib/libtessera_faults.so'))
IN_THE_QUERIES = 2500    # of 3,400 allocations of a diagram as JSON
IN_THE_DRAWING = 20_000  # of 27,000 allocations of the same as PNG
HITS = 9                 # where the counts say how often a call failed


class Stuck(program.Case):
    def start(self, mode, at, form):
        """Starts a program whose allocation `at` hangs or aborts."""
        database = self.database((program.ROOT / 'examples/backup/first.sql').read_text())
        self.counts = self.write('counts', bytes(8 * (HITS + 1)))
        (self.folder / 'out').mkdir()
        environment = {**os.environ, 'LD_PRELOAD': LIBRARY, 'FAULT_COUNTS': str(self.counts), 'FAULT_KIND': 'allocation',
                       'FAULT_AT': str(at), 'FAULT_MODE': mode}
        process = subprocess.Popen([program.PROGRAM, 'render', str(program.ROOT / 'examples/backup/first.xml'), '--db', str(database),
                                    '-o', str(self.folder / f'out/out.{form}')], env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def wait_until_stuck(self, process):
        deadline = time.monotonic() + 30
        while struct.unpack_from('Q', self.counts.read_bytes(), 8 * HITS)[0] == 0:
            self.assertIsNone(process.poll(), 'ended too early')
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)

    def assert_nothing_is_left(self):
        self.assertEqual(list((self.folder / 'out').iterdir()), [])

    def test_a_second_signal_ends_it_at_once(self):
        pairs = ((signal.SIGINT, signal.SIGINT), (signal.SIGINT, signal.SIGTERM), (signal.SIGTERM, signal.SIGINT),
                 (signal.SIGTERM, signal.SIGHUP), (signal.SIGHUP, signal.SIGINT))
        for first, second in pairs:
            with self.subTest(first=first, second=second):
                process = self.start('hang', IN_THE_QUERIES, 'json')
                self.wait_until_stuck(process)
                process.send_signal(first)
                time.sleep(0.2)
                self.assertIsNone(process.poll())  # it is stuck, and the first signal lets work end by itself
                process.send_signal(second)
                self.assertEqual(process.wait(2), -second)
                self.assert_nothing_is_left()
                (self.folder / 'out').rmdir()

    def children_of(self, process):
        return pathlib.Path(f'/proc/{process.pid}/task/{process.pid}/children').read_text().split()

    def test_one_signal_is_enough_where_a_library_is_stuck(self):
        process = self.start('hang', IN_THE_DRAWING, 'png')
        self.wait_until_stuck(process)
        child, = self.children_of(process)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(3), 130)
        self.assertEqual(process.stderr.read(), 'tessera: interrupted\n')
        self.assertFalse(os.path.exists(f'/proc/{child}'))
        self.assert_nothing_is_left()

    def test_a_drawing_does_not_outlive_the_program(self):
        process = self.start('hang', IN_THE_DRAWING, 'png')
        self.wait_until_stuck(process)
        child, = self.children_of(process)
        process.kill()
        process.wait()
        deadline = time.monotonic() + 5
        while os.path.exists(f'/proc/{child}') and pathlib.Path(f'/proc/{child}/stat').read_text().rpartition(')')[2].split()[0] != 'Z':
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)
        self.assert_nothing_is_left()

    def test_a_library_that_aborts_is_a_message(self):
        process = self.start('abort', IN_THE_DRAWING, 'png')
        out, err = process.communicate(timeout=30)
        self.assertEqual((process.returncode, out), (3, ''), err)
        self.assertEqual(err, 'tessera: png: the drawing ended unexpectedly (signal 6); there may not be enough memory\n')
        self.assert_nothing_is_left()


if __name__ == '__main__':
    if not os.access(LIBRARY, os.R_OK):
        sys.exit(f'{LIBRARY} is not there; build it, or set TESSERA_FAULTS')
    program.main()
