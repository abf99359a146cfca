"""Documents and databases that ask for more time or memory than they get: the program stops them, says so, and stays small."""
import json

import program
from program import Case, document, showing

HALF = 'half of what a request may take'
DATA = 'CREATE TABLE t(a, b); INSERT INTO t VALUES (1, 2), (3, 4), (5, 6), (7, 8), (9, 10), (11, 12);'


def doubling(levels):
    """An expression whose compiling takes twice the time and memory with each level."""
    steps = ['a0 AS (SELECT 1 AS x)']
    for i in range(levels):
        steps.append(f'a{i + 1} AS (SELECT x FROM a{i} UNION ALL SELECT x FROM a{i})')
    return f'SUM(b) + (WITH {", ".join(steps)} SELECT COUNT(*) FROM a{levels})'


class Limits(Case):
    def stopped(self, viewpoint, database, *texts, seconds=10, arguments=('--query-timeout', '1')):
        """The value is missing, with a message, and the diagram is written."""
        done = program.measured(self, 'render', self.write('document.xml', viewpoint), '--db', database, *arguments, seconds=seconds)
        for text in texts:
            self.assertIn(text, done.stderr)
        self.assertEqual(json.loads(done.stdout)['nodes']['node'][0]['info'], {})

    def test_compiling_is_stopped(self):
        database = self.database(DATA)
        for levels in (18, 20, 40):
            with self.subTest(levels):
                self.stopped(showing(doubling(levels)), database, 'query "q": it was stopped ')

    def test_compiling_is_stopped_by_check(self):
        path = self.write('document.xml', showing(doubling(40)))
        done = program.measured(self, 'check', path, '--db', self.database(DATA), '--query-timeout', '1', seconds=10)
        self.assertIn('query "q": it was stopped ', done.stderr)

    def test_collecting_is_stopped(self):
        parts = '+'.join(f'length(json_group_{kind}hex(zeroblob(249000)) || {i}))'
                         for i, kind in enumerate(('array(', 'object(u.a, ', 'array(', 'object(u.b, ')))
        expression = f'MAX((SELECT {parts} FROM t u, t v, t w, t x, t y, t z))'
        self.stopped(showing(expression), self.database(DATA), 'a value has more than 500000 bytes')

    def test_temporary_files_are_bounded(self):
        expression = ('MAX((SELECT COUNT(*) FROM (SELECT zeroblob(499000) AS z, random() AS r FROM t u, t v, t w, t x, t y, t z '
                      'ORDER BY r LIMIT -1 OFFSET 1)))')
        self.stopped(showing(expression), self.database(DATA), 'it needs temporary files of more than 64.0 MiB', seconds=10,
                     arguments=('--max-memory', '64M'))

    def test_large_values_are_bounded_together(self):
        references = ''.join(f'<queryRef>/q/{i}</queryRef>' for i in range(3000))
        viewpoint = document(f'<graph><node id="n"/></graph><display><node id="n"><rowSet>{references}</rowSet></node></display>',
                             '<query id="q" from="t" key="a">hex(zeroblob(249900)) || COUNT(*)</query>')
        database = self.database(DATA)
        self.stopped(viewpoint, database, 'the values of this request need more than 512 MiB of memory, ' + HALF)
        self.stopped(viewpoint, database, 'need more than 50.0 MiB of memory, ' + HALF,
                     arguments=('--max-memory', '100M'))

    def test_printf_in_a_view_is_bounded(self):
        calls = '+'.join(f"length(printf('%.*c', {2000000000 + i}, 'x'))" for i in range(20))
        database = self.database(DATA + f'CREATE VIEW bombs AS SELECT {calls} AS a FROM t;')
        self.stopped(showing('MAX(a)', **{'from': 'bombs'}), database, 'a value has more than 500000 bytes')

    def test_printf_in_a_view_is_of_use(self):
        database = self.database(DATA + "CREATE VIEW texts AS SELECT printf('%05.1f|%-4s|', b, 'x') AS a FROM t;")
        diagram = self.render(self.write('document.xml', showing('MIN(a)', **{'from': 'texts'})), database)
        self.assertEqual(program.shown_value(diagram), '002.0|x   |')

    def test_long_definitions_in_the_database(self):
        view = "CREATE VIEW long AS SELECT a /* {} */ FROM t;"
        path = self.write('document.xml', showing('SUM(b)'))
        self.render(path, self.database(DATA + view.format('x' * 190000)))
        done = self.run_program('render', path, '--db', self.database(DATA + view.format('x' * 210000)))
        self.assert_clean_failure(done, 3, 'a definition in the database has more than 200000 bytes, the most that is read')

    def test_sizes(self):
        path, database = self.write('document.xml', showing('SUM(b)')), self.database(DATA)
        for size in ('1M', '1MB', '1 GiB', '1048576', '2g', '1.5G'):
            with self.subTest(size):
                self.render(path, database, '--max-memory', size)
        for size in ('0', '-1', '1K', 'much', '99999999999999999999', '5000T', '0x10', '1e9', '1E', '1G1', 'nan', 'inf'):
            with self.subTest(size):
                done = self.run_program('render', path, '--db', database, f'--max-memory={size}')
                self.assert_clean_failure(done, 2, 'is not a size from 1M to 1024T, such as 512M or 4G')


if __name__ == '__main__':
    program.main()
