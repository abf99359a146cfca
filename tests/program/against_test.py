"""Two results on one layout: --against, and the table of changes, on real databases."""
import re

import program
from levels_test import shapes
from program import Case, document

QUERIES = ('<query id="Rate" from="f" key="src dst" format="si:3" unit="B/s">SUM(bytes)</query>'
           '<query id="Errors" from="f" key="src dst" format="percent:1">AVG(err)</query>')
DIAGRAM = ('<graph id="g"><node id="web"/><node id="db"/><node id="ix"/>'
           '<link id="1" from="web" to="db" direction="forward"/><link id="2" from="web" to="ix" direction="forward"/></graph>'
           '<display><graph displayName="Shop"/><node id="web" displayName="Web shop"><rowSet>'
           '<queryRef displayName="Errors">/Errors/web/db</queryRef><queryRef displayName="Other errors">/Errors/web/ix</queryRef>'
           '</rowSet></node>' +
           ''.join(f'<link id="{link}"><label><dataTransfer displayName="sent"><bandwidth><rowSet><queryRef>/Rate/web/{end}</queryRef>'
                   f'</rowSet></bandwidth><ratio><rowSet><queryRef displayName="Errors">/Errors/web/{end}</queryRef></rowSet></ratio>'
                   '</dataTransfer></label></link>' for link, end in ((1, 'db'), (2, 'ix'))) + '</display>')
TABLE = 'CREATE TABLE f(src TEXT, dst TEXT, bytes INT, err REAL);'
NOW = TABLE + "INSERT INTO f VALUES ('web', 'db', 90000, 0.072);"
BEFORE = TABLE + "INSERT INTO f VALUES ('web', 'db', 60000, 0.09), ('web', 'ix', 700, 0.02);"


class Against(Case):
    def setUp(self):
        super().setUp()
        self.viewpoint = self.write('v.xml', document(DIAGRAM, QUERIES))
        self.now, self.before = self.database(NOW, 'now.db'), self.database(BEFORE, 'before.db')

    def run_render(self, *options, status=0):
        done = self.run_program('render', self.viewpoint, '--log-level', 'off', *options)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def drawn(self, *options):
        return self.run_render(*options, '--format', 'svg').stdout

    def changes(self, *options):
        table = self.run_render('--db', self.now, '--against', self.before, '--format', 'changes', *options).stdout
        return [re.split(r' {2,}', line) for line in table.splitlines()]

    def test_the_table_has_the_largest_changes_first(self):
        self.assertEqual(self.changes(), [
            ['value', 'here', 'there', 'difference', 'percent'],
            ['Other errors of Web shop', '2.0 %', 'only there'],
            ['Web shop -> ix', '700 B/s', 'only there'],
            ['Web shop -> db', '90.0 kB/s', '60.0 kB/s', '+30.0 kB/s', '+50.0 %'],
            ['Errors of Web shop', '7.2 %', '9.0 %', '-1.8 %', '-20.0 %']])
        out = self.folder / 'changes.txt'
        self.run_render('--db', self.now, '--against', self.now, '--format', 'changes', '-o', out)
        self.assertEqual(out.read_text(encoding='utf-8').split(), ['value', 'here', 'there', 'difference', 'percent'])

    def test_one_long_value_does_not_widen_the_table(self):
        values = "CREATE TABLE f(src TEXT, dst TEXT, bytes INT, err REAL); INSERT INTO f VALUES ('web', 'db', {}, {});"
        now, before = self.database(values.format(17, "printf('%.*c', 500, 'x')"), 'a.db'), self.database(values.format(12, "'y'"), 'b.db')
        self.viewpoint = self.write('v.xml', document(DIAGRAM, QUERIES.replace('percent:1', 'plain').replace('AVG', 'MAX')))
        lines = self.run_render('--db', now, '--against', before, '--format', 'changes').stdout.splitlines()
        long = [line for line in lines if 'xxx' in line]
        self.assertEqual((len(lines), len(long)), (3, 1))
        self.assertGreater(len(long[0]), 200)
        self.assertLess(max(len(line) for line in lines if line not in long), 100)

    def test_a_picture_has_both_values_and_the_difference(self):
        svg = self.drawn('--db', self.now, '--against', self.before)
        for text in ('90.0 kB/s – vs 60.0 kB/s, +30.0 kB/s, +50.0 %', 'Errors: 7.2 % – vs 9.0 %, -1.8 %, -20.0 %',
                     'Other errors: – – only there: 2.0 %', 'compared with before.db: 1 more, 1 less, 2 only there',
                     '▲ +50.0 %', '▼ ', 'Width of lines: change'):
            self.assertIn(text, svg)
        lines = dict(re.findall(r'data-kind="line" data-id="(\d)".*?<path class="(l[^"]*)"', svg, re.S))
        self.assertEqual(lines, {'1': 'l w3', '2': 'l w5 lg'})
        # The other way around, the value is here, and its line is whole.
        svg = self.drawn('--db', self.before, '--against', self.now)
        self.assertIn('700 B/s – only here', svg)
        self.assertNotIn(' lg"', svg)

    def test_nothing_moves(self):
        for options in ((), ('--mode', 'ratio'), ('--direction', 'tb')):
            same = shapes(self.drawn('--db', self.now, '--against', self.now, *options))
            self.assertEqual(same, shapes(self.drawn('--db', self.now, '--against', self.before, *options)), options)

    def test_modes_have_their_own_changes(self):
        self.assertIn('Errors: 7.2 % – vs 9.0 %', self.drawn('--db', self.now, '--against', self.before, '--mode', 'ratio'))
        self.assertNotIn('90.0 kB/s', str(self.changes('--mode', 'ratio')))

    def test_messages_name_the_other_result(self):
        broken = self.database('CREATE TABLE f(src TEXT, dst TEXT, bytes INT);', 'broken.db')
        done = self.run_render('--db', self.now, '--against', broken, '-o', self.folder / 'x.svg', status=1)
        self.assertIn(f'no such column: err (in {broken})', done.stderr)
        self.assertTrue((self.folder / 'x.svg').exists())
        done = self.run_program('render', self.viewpoint, '--db', self.now, '--against', self.folder / 'none.db', '-o',
                                self.folder / 'y.svg')
        self.assert_clean_failure(done, 3, 'none.db: ')

    def test_wrong_usage(self):
        for options, text in [(['--format', 'changes'], '--format changes needs --against RESULT'),
                              (['--against', self.before], '--against is for svg, png or pdf, and for changes'),
                              (['--against', self.before, '-o', self.before, '--format', 'svg'], 'would be overwritten')]:
            self.assert_clean_failure(self.run_program('render', self.viewpoint, '--db', self.now, *options), 2, text)

    def test_levels_are_those_of_the_first_result(self):
        levels = '<levels><level name="critical" query="Errors" above="0.08"/></levels>'
        self.viewpoint = self.write('v.xml', document(DIAGRAM, QUERIES).replace('<diagram>', levels + '<diagram>'))
        self.run_render('--db', self.now, '--against', self.before, '--format', 'changes', '--fail-on', 'critical')
        done = self.run_render('--db', self.before, '--against', self.now, '--format', 'changes', '--fail-on', 'critical', status=1)
        self.assertIn('1 critical; the worst is /Errors/web/db: 9.0 %', done.stderr)


if __name__ == '__main__':
    program.main()
