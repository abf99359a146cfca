"""Ctrl-C stops the program cleanly, whatever it does."""
import json
import os
import pathlib
import signal
import subprocess
import time

import program
from program import Case, showing

# A query that would run for hours.
ENDLESS = 'SUM((SELECT COUNT(*) FROM t AS b, t AS c, t AS d WHERE b.a + c.a + d.a + t.a = 7))'
MANY_ROWS = ('CREATE TABLE t(a); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) '
             'INSERT INTO t SELECT i FROM n;')


def catches_interrupts(process):
    """Whether the program has installed its handler for Ctrl-C."""
    status = pathlib.Path(f'/proc/{process.pid}/status').read_text()
    caught = next(line.split()[1] for line in status.splitlines() if line.startswith('SigCgt:'))
    return int(caught, 16) >> (signal.SIGINT - 1) & 1


def seconds_of_work(process):
    """The processor time that the program has used."""
    fields = pathlib.Path(f'/proc/{process.pid}/stat').read_text().rpartition(')')[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf('SC_CLK_TCK')


def works(process):
    """Whether it is in the middle of long work. Starting takes only a few hundredths of a second."""
    return seconds_of_work(process) > 0.3 * program.SLOW


def waits(process):
    """Whether it waits for something outside and uses no processor time."""
    used = seconds_of_work(process)
    state = pathlib.Path(f'/proc/{process.pid}/stat').read_text().rpartition(')')[2].split()[0]
    time.sleep(0.05)
    return state == 'S' and seconds_of_work(process) == used


class Interrupt(Case):
    def start(self, *arguments):
        process = subprocess.Popen([program.PROGRAM, *map(str, arguments)], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.kill)
        return process

    def wait_until(self, holds, process):
        """Waits until `holds(process)` is true; expects that the program handles signals by then."""
        deadline = time.monotonic() + 30 * program.SLOW
        while not (catches_interrupts(process) and holds(process)):
            self.assertIsNone(process.poll(), 'ended too early')
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.005)

    def interrupt(self, process, number=signal.SIGINT):
        """Sends the signal; returns the output, the messages and the seconds until the end."""
        process.send_signal(number)
        begin = time.monotonic()
        out, err = process.communicate(timeout=30 * program.SLOW)
        return out, err, time.monotonic() - begin

    def test_render_in_the_middle_of_a_query(self):
        output = self.write('out.json', 'earlier')
        process = self.start('render', self.write('v.xml', showing(ENDLESS)), '--db', self.database(MANY_ROWS), '-o', output)
        self.wait_until(works, process)
        out, err, seconds = self.interrupt(process)
        self.assertEqual((process.returncode, out), (130, ''), err)
        self.assertIn('tessera: interrupted', err)
        self.assertLess(seconds, 2 * program.SLOW)
        self.assertEqual(output.read_text(), 'earlier')
        self.assertEqual(sorted(os.listdir(self.folder)), ['out.json', 'result.db', 'v.xml'])

    def test_render_in_the_middle_of_the_layout(self):
        """A ring of 20,000 nodes with chords: layering takes seconds, and making its dummies takes many more."""
        size = 20000
        document = self.write('v.xml', program.document(
            '<graph><node id="r"/>' + ''.join(f'<node id="n{i}"/>' for i in range(size)) +
            '<link id="in" from="r" to="n0"/>' +
            ''.join(f'<link id="l{i}" from="n{i}" to="n{(i + 1) % size}"/>' for i in range(size)) +
            ''.join(f'<link id="c{i}" from="n{i}" to="n{i * 7919 % size}"/>' for i in range(0, size, 2)) +
            '</graph><display/>'))
        process = self.start('render', document, '--db', self.database(), '-o', self.folder / 'out.json')
        self.wait_until(works, process)
        out, err, seconds = self.interrupt(process)
        self.assertEqual((process.returncode, out, err.splitlines()[-1]), (130, '', 'tessera: interrupted'))
        self.assertLess(seconds, 2 * program.SLOW)
        self.assertFalse((self.folder / 'out.json').exists())

    def test_render_by_other_signals(self):
        for number, status in ((signal.SIGTERM, 130), (signal.SIGHUP, 130), (signal.SIGKILL, -signal.SIGKILL)):
            process = self.start('render', self.write('v.xml', showing(ENDLESS)), '--db', self.database(MANY_ROWS), '-o',
                                 self.folder / 'out.json')
            self.wait_until(works, process)
            self.interrupt(process, number)
            self.assertEqual(process.returncode, status)
            self.assertEqual(sorted(os.listdir(self.folder)), ['result.db', 'v.xml'])

    def test_hanging_up_does_not_end_what_ignores_it(self):
        process = subprocess.Popen(['nohup', program.PROGRAM, 'render', self.write('v.xml', showing(ENDLESS)), '--db',
                                    self.database(MANY_ROWS), '--query-timeout', str(2 * program.SLOW)],
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.wait_until(works, process)
        process.send_signal(signal.SIGHUP)
        process.communicate()
        self.assertEqual(process.returncode, 1)

    def test_while_no_reader_opens_the_output(self):
        pipe = self.folder / 'out.json'
        os.mkfifo(pipe)
        process = self.start('render', self.write('v.xml', showing('SUM(a)')), '--db', self.database(), '-o', pipe)
        self.wait_until(waits, process)
        out, err, seconds = self.interrupt(process)
        self.assertEqual((process.returncode, out, err), (130, '', 'tessera: interrupted\n'))
        self.assertLess(seconds, 2 * program.SLOW)

    def test_output_to_a_named_pipe(self):
        pipe = self.folder / 'out.json'
        os.mkfifo(pipe)
        process = self.start('render', self.write('v.xml', showing('SUM(a)')), '--db', self.database(), '-o', pipe)
        self.wait_until(waits, process)
        self.assertEqual(program.shown_value(json.loads(pipe.read_text())), '1')
        self.assertEqual(process.wait(10 * program.SLOW), 0)

    def test_while_the_input_does_not_come(self):
        for arguments in (['render', '-'], ['check', '-'], ['render', self.write('d.xml', showing('SUM(a)')), '--log-config', '/dev/stdin']):
            process = self.start(*arguments, '--db', self.database())
            self.wait_until(waits, process)
            out, err, _ = self.interrupt(process)
            self.assertEqual((process.returncode, out, err), (130, '', 'tessera: interrupted\n'), arguments)

    def test_session_while_it_waits(self):
        process = self.start('session', self.write('v.xml', showing('SUM(a)')), '--db', self.database())
        process.stdin.write('{"request":"create"}\n')
        process.stdin.flush()
        self.assertIn('"success"', process.stdout.readline())
        out, err, seconds = self.interrupt(process)
        self.assertEqual((process.returncode, out), (130, ''), err)
        self.assertLess(seconds, 2 * program.SLOW)

    def test_while_the_reader_does_not_read_the_output(self):
        nodes = ''.join(f'<node id="n{i}{"y" * 90}"/>' for i in range(2000))
        document = self.write('v.xml', program.document(f'<graph>{nodes}</graph>'))
        for command in ('render', 'session'):
            process = self.start(command, document, '--db', self.database())
            if command == 'session':
                process.stdin.write('{"request":"create"}\n')
                process.stdin.flush()
            self.wait_until(waits, process)
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(10 * program.SLOW), 130)

    def test_check_while_the_reader_does_not_read_the_findings(self):
        # Findings of 256 bytes fill a pipe exactly, so that not even the last message fits.
        path = self.folder / 'v.xml'
        name = 'x' * (256 - len(f'{path}:10000:1: error: unknown element <> in <graph>; expected <node>, <link>\n'))
        self.write('v.xml', '<v><diagram><graph><node id="a"/>' + '\n' * 9999 + f'<{name}/>\n' * 1000 + '</graph></diagram></v>')
        process = self.start('check', path)
        self.wait_until(waits, process)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(10 * program.SLOW), 130)

    def test_check_of_a_large_document(self):
        graph = ''.join(f'<node id="n{i}"><node id="m{i}"/></node><link id="l{i}" from="m{i // 2}" to="n{i}"/>'
                        for i in range(200_000))
        process = self.start('check', '/dev/stdin')
        process.stdin.write(program.document(f'<graph>{graph}</graph>'))
        process.stdin.flush()
        process.stdin.close()  # the rest of the input fits into a pipe; nearly all the work is still to be done
        process.stdin = None
        _, err, seconds = self.interrupt(process)
        # The cycle of m0 and its own group is not reported any more.
        self.assertEqual((process.returncode, err), (130, 'tessera: interrupted\n'))
        self.assertLess(seconds, 2 * program.SLOW)

    def test_check(self):
        process = self.start('check', '/dev/stdin')
        self.wait_until(waits, process)
        self.interrupt(process)
        self.assertNotEqual(process.returncode, 0)

    def test_query_timeout(self):
        done = self.run_program('render', self.write('v.xml', showing(ENDLESS)), '--db', self.database(MANY_ROWS),
                                '--query-timeout', '0.2')
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn('query "q"', done.stderr)


if __name__ == '__main__':
    program.main()
