"""A real document about flights, with real data; skipped where the machine does not have them."""
import subprocess

import program
from values_test import Values

FOLDER = program.REAL


class Flights(Values):
    def setUp(self):
        super().setUp()
        if not (FOLDER / 'flights.xml').exists():
            self.skipTest('the flights are not on this machine')
        self.path = self.build(FOLDER, 'flights.sql')

    def test_all_values_in_all_modes(self):
        self.compare(FOLDER / 'flights.xml', self.path)

    def test_january(self):
        self.compare(FOLDER / 'flights.xml', self.path, {'selection': "date < '2001-02-01'"})

    def test_empty_global_filter_includes_all_rows(self):
        self.compare(FOLDER / 'flights.xml', self.path, {'global': ''})

    def test_its_only_mistake_is_found(self):
        """Links go eastward: from San Francisco to Seattle and from Seattle to Los Angeles, out of California and back into it."""
        done = subprocess.run([program.PROGRAM, 'check', FOLDER / 'flights.xml', '--db', self.path], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout), (1, ''))
        self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
        self.assertIn('form a cycle inside group "Pacific": Pacific.CA -> SEA -> Pacific.CA', done.stderr)


if __name__ == '__main__':
    program.main()
