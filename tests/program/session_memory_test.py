"""A session that answers many requests takes no more memory than one that answered a few.

With a number N as argument it sends N requests and prints the memory at intervals.
"""
import itertools
import pathlib
import subprocess
import sys
import threading

import program
from program import Case

EXAMPLE = program.ROOT / 'examples/backup'


def requests(count):
    """Requests of all kinds, unknown ones and lines that are not requests among them."""
    kinds = itertools.cycle((
        lambda number: '{"request":"create"}',
        lambda number: '{"request":"refresh"}',
        lambda number: '{"request":"changeDisplayMode","in":{"mode":{"":"ratio"}}}',
        lambda number: '{"request":"changeDisplayMode","in":{"mode":{"":"bandwidth"}}}',
        lambda number: '{"request":"changeDisplayMode","in":{"mode":{"":"mode %0100d"}}}' % number,
        lambda number: '{"request":"changeDisplayMode","in":{"mode":{"":%d}}}' % number,
        lambda number: '{"request":"request %0100d"}' % number,
        lambda number: '{"name %0100d":{"in":[%d]}}' % (number, number),
        lambda number: '{"request":"create" %d' % number,
        lambda number: '\x00\xff' * 10 + str(number)))
    for number in range(count):
        yield next(kinds)(number) + '\n'


class SessionMemory(Case):
    count = 20_000 // program.SLOW
    report = False

    def memory_after(self, milestones):
        """Returns the kilobytes that a session holds after each of these numbers of requests, and its open files."""
        process = subprocess.Popen([program.PROGRAM, 'session', EXAMPLE / 'first.xml', '--db',
                                    self.database((EXAMPLE / 'first.sql').read_text()), '--log-level', 'off'],
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

        def send():
            for line in requests(milestones[-1]):
                process.stdin.write(line.encode('latin-1'))
            process.stdin.flush()

        sender = threading.Thread(target=send)
        sender.start()
        held = []
        for number in range(1, milestones[-1] + 1):
            self.assertTrue(process.stdout.readline().startswith(b'{"request":'))
            if number in milestones:
                status = dict(line.split(':', 1) for line in pathlib.Path(f'/proc/{process.pid}/status').read_text().splitlines())
                held.append((int(status['VmRSS'].split()[0]), len(list(pathlib.Path(f'/proc/{process.pid}/fd').iterdir()))))
        sender.join()
        process.stdin.close()
        self.assertEqual(process.wait(60), 0)
        process.stdout.close()
        return held

    def test_it_does_not_grow(self):
        milestones = sorted({self.count // 100, self.count // 10, self.count})
        held = self.memory_after(milestones)
        if self.report:
            print(dict(zip(milestones, held)))
        (_, files_first), (first, _), (last, files_last) = held
        self.assertEqual(files_last, files_first)
        # A request in ten that left 2,000 bytes behind would show; the sanitizers keep what was freed.
        if program.SLOW == 1:
            self.assertLess(last - first, 1024 + min(self.count * 200 // 1024, 8192))


if __name__ == '__main__':
    if len(sys.argv) > 1:
        SessionMemory.count = int(sys.argv.pop())
        SessionMemory.report = True
    program.main()
