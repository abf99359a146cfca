"""Documents that are no regular file: what was handed over as an open descriptor is read, all else is refused at once."""
import os
import resource
import socket
import subprocess
import time

import program
from program import Case, showing

GOOD = showing('SUM(a)')


class ByName(Case):
    def refused(self, path, reason):
        for arguments in (['check', path], ['render', path, '--db', self.database()], ['session', path, '--db', self.database()]):
            begin = time.monotonic()
            done = self.run_program(*arguments)
            self.assert_clean_failure(done, 3, f'{path}: {reason}')
            self.assertLess(time.monotonic() - begin, 2 * program.SLOW)

    def test_named_pipe(self):
        os.mkfifo(self.folder / 'pipe')
        self.refused(self.folder / 'pipe', 'this is a named pipe, not a file')

    def test_devices(self):
        for device in ('/dev/zero', '/dev/urandom', '/dev/tty'):
            self.refused(device, 'this is a device, not a file')

    def test_link_to_a_device(self):
        (self.folder / 'v.xml').symlink_to('/dev/zero')
        self.refused(self.folder / 'v.xml', 'this is a device, not a file')

    def test_socket_as_output(self):
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(self.folder / 'socket'))
            done = self.run_program('render', self.write('v.xml', GOOD), '--db', self.database(), '--format', 'json',
                                    '-o', self.folder / 'socket')
        self.assert_clean_failure(done, 3, 'cannot write: No such device or address')

    def test_socket(self):
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(self.folder / 'socket'))
            self.refused(self.folder / 'socket', 'this is a socket, not a file')

    def test_directory(self):
        self.refused(self.folder, 'this is a directory, not a file')


class Opened(Case):
    def check(self, *names, **options):
        return subprocess.run([program.PROGRAM, 'check', *names], capture_output=True, text=True, timeout=60 * program.SLOW, **options)

    def test_pipe(self):
        for name in ('-', '/dev/stdin', '/dev/fd/0', '/proc/self/fd/0'):
            done = self.check(name, input=GOOD)
            self.assertEqual((done.returncode, done.stderr), (0, ''), name)

    def test_process_substitution(self):
        path = self.write('v.xml', GOOD)
        done = subprocess.run(['bash', '-c', '"$0" check <(cat "$1")', program.PROGRAM, path], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ''))

    def test_socket(self):
        ours, theirs = socket.socketpair()
        with ours, theirs:
            ours.sendall(GOOD.encode())
            ours.shutdown(socket.SHUT_WR)
            done = self.check('-', stdin=theirs)
        self.assertEqual((done.returncode, done.stderr), (0, ''))

    def test_device(self):
        with open('/dev/zero') as zero:
            self.assert_clean_failure(self.check('-', stdin=zero), 3, '/dev/stdin: this is a device, not a file')

    def test_nothing(self):
        done = self.check('-', stdin=subprocess.DEVNULL)
        self.assertEqual((done.returncode, done.stderr), (1, '/dev/stdin:1:1: error: the file is empty\n'))

    def test_pipe_without_end(self):
        if program.SLOW > 1:
            return self.endless(None)  # a sanitizer reserves more address space than any limit
        return self.endless(lambda: resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30)))

    def endless(self, limit):
        source = subprocess.Popen(['yes'], stdout=subprocess.PIPE)
        self.addCleanup(source.stdout.close)
        self.addCleanup(source.wait)
        self.addCleanup(source.kill)
        done = self.check('-', stdin=source.stdout, preexec_fn=limit)
        self.assert_clean_failure(done, 3, '/dev/stdin: the file has more than 256 MiB, the most that is read')


if __name__ == '__main__':
    program.main()
