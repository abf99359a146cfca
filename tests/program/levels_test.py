"""What values mean: levels, widths and --fail-on, on a real database."""
import re

import program
from program import Case, document

QUERIES = ('<query id="Rate" from="f" key="src dst" unit="B/s">SUM(bytes)</query>'
           '<query id="Errors" from="f" key="src dst" format="percent:1">AVG(err)</query>'
           '<query id="Text" from="f">MAX(src)</query><query id="None" from="f">MAX(missing)</query>')
LEVELS = ('<levels><level name="critical" query="Errors" above="0.05"/><level name="warning" query="Errors" above="0.01"/>'
          '<level name="busy" query="Rate" key="web db" above="100" colour="#8A4FBF"/>'
          '<level name="good" query="Text" above="0"/><level name="good" query="None" below="1"/></levels>'
          '<widths query="Rate" from="0" to="1000"/>')
DIAGRAM = ('<graph id="g"><node id="web"/><node id="db"/><node id="ix"/>'
           '<link id="1" from="web" to="db" direction="forward"/><link id="2" from="web" to="ix" direction="forward"/></graph>'
           '<display><graph displayName="Shop"/><node id="web" displayName="Web shop"><rowSet>'
           '<queryRef displayName="Errors">/Errors/web/db</queryRef><queryRef displayName="Name">/Text</queryRef>'
           '<queryRef displayName="Nothing">/None</queryRef></rowSet></node>'
           '<link id="1"><label><dataTransfer displayName="sent"><bandwidth><rowSet><queryRef>/Rate/web/db</queryRef></rowSet>'
           '</bandwidth><ratio><rowSet><queryRef>/Errors/web/db</queryRef></rowSet></ratio></dataTransfer></label></link>'
           '<link id="2"><label><dataTransfer displayName="sent"><bandwidth><rowSet><queryRef>/Rate/web/ix</queryRef></rowSet>'
           '</bandwidth></dataTransfer></label></link></display>')
DATA = ("CREATE TABLE f(src TEXT, dst TEXT, bytes INT, err REAL, missing REAL);"
        "INSERT INTO f VALUES ('web', 'db', 900, 0.072, NULL), ('web', 'ix', 150, 0.02, NULL);")


def with_levels(levels=LEVELS):
    return document(DIAGRAM, QUERIES).replace('<diagram>', levels + '<diagram>')


def shapes(svg):
    """Returns the boxes and lines of a drawing, without badges, heading and legend."""
    found = []
    for kind, body in re.findall(r'data-kind="(\w+)"(.*?)</g>', svg, re.S):
        if kind not in ('heading', 'legend'):
            found.append((kind, re.findall(r'<rect class="(?!lb)[^"]*"([^>]*)/>', body), re.findall(r'class="l[^"]*" d="([^"]*)"', body)))
    return found


class Levels(Case):
    def drawn(self, text, *options, status=0):
        out = self.folder / 'x.svg'
        done = self.run_program('render', self.write('v.xml', text), '--db', self.database(DATA), '-o', out, *options)
        self.assertEqual(done.returncode, status, done.stderr)
        return out.read_text(encoding='utf-8'), done.stderr

    def test_values_have_the_first_level_that_holds(self):
        svg, _ = self.drawn(with_levels())
        self.assertIn('Errors: 7.2 % (critical)', svg)
        self.assertIn('data-id="web" data-level="critical"', svg)
        self.assertIn('900 B/s (busy)', svg)
        self.assertIn('150 B/s</title>', svg)  # the level is about the other reference
        # A text and a missing value have no level, so "good" is declared and counted nowhere.
        self.assertIn(' 1 critical. 0 warning. 1 busy. 0 good.</desc>', svg)
        self.assertIn('worst: Errors of Web shop', svg)

    def test_links_are_as_wide_as_their_values(self):
        svg, _ = self.drawn(with_levels())
        widths = dict(re.findall(r'data-kind="line" data-id="(\d)".*?<path class="(l[^"]*)"', svg))
        self.assertEqual(widths, {'1': 'l w5', '2': 'l'})
        for text in ('Width of lines: Rate', '≤ 200 B/s', '≤ 800 B/s', '&gt; 800 B/s'):
            self.assertIn(text, svg)
        # In a mode without the query's values, all lines are alike.
        self.assertNotIn('class="l w', self.drawn(with_levels(), '--mode', 'ratio')[0])

    def test_nothing_moves(self):
        for options in ((), ('--mode', 'ratio'), ('--direction', 'tb')):
            plain, described = (self.drawn(text, *options)[0] for text in (with_levels(''), with_levels()))
            self.assertEqual(shapes(plain), shapes(described), options)
            self.assertTrue(any(boxes for _, boxes, _ in shapes(plain)))

    def test_data_formats_and_session_do_not_know_levels(self):
        database = self.database(DATA)
        plain, described = self.write('a.xml', with_levels('')), self.write('b.xml', with_levels())
        self.assertEqual(self.render(plain, database), self.render(described, database))
        self.assertEqual(self.session(plain, database, [{'request': 'create'}])[0],
                         self.session(described, database, [{'request': 'create'}])[0])
        done = self.run_program('render', described, '--db', database, '--fail-on', 'critical')
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stdout, self.run_program('render', plain, '--db', database).stdout)

    def test_fail_on_ends_with_status_1_after_the_picture(self):
        message = 'v.xml: 1 critical; the worst is /Errors/web/db: 7.2 % (above 0.05)\n'
        svg, messages = self.drawn(with_levels(), '--fail-on', 'critical', status=1)
        self.assertTrue(svg.endswith('</svg>\n'))
        self.assertTrue(messages.startswith('tessera: ') and messages.endswith(message), messages)
        self.assertEqual(messages.count('\n'), 1)
        # A worse level counts as well, a better one does not.
        self.assertIn('v.xml: 1 critical; ', self.drawn(with_levels(), '--fail-on', 'warning', status=1)[1])
        self.assertIn('v.xml: 1 critical, 1 busy; ', self.drawn(with_levels(), '--fail-on', 'good', status=1)[1])
        calm = with_levels().replace('above="0.05"', 'above="0.5"').replace('above="0.01"', 'above="0.1"')
        self.assertEqual(self.drawn(calm, '--fail-on', 'critical'), (self.drawn(calm)[0], ''))
        # Only what is shown counts.
        self.assertIn('1 critical;', self.drawn(with_levels(), '--fail-on', 'busy', '--mode', 'ratio', status=1)[1])

    def test_an_empty_level_is_wrong_usage(self):
        done = self.run_program('render', 'v.xml', '--db', 'v.db', '--fail-on', '')
        self.assertEqual(done.returncode, 2)
        self.assertIn('--fail-on: the name of a level is empty', done.stderr)

    def test_an_unknown_level_is_wrong_usage(self):
        for text, level, answer in [(with_levels(), 'crit', 'has no such level; it has "critical", "warning", "busy" and "good"'),
                                    (with_levels(''), 'critical', 'has no such level; it has none')]:
            done = self.run_program('render', self.write('v.xml', text), '--db', self.database(DATA), '-o', self.folder / 'y.svg',
                                    '--fail-on', level)
            self.assert_clean_failure(done, 2, f'--fail-on {level}: ', answer)
            self.assertFalse((self.folder / 'y.svg').exists())

    def test_check_reports_wrong_levels_at_their_place(self):
        text = with_levels('\n<levels>\n<level name="critical" query="Errrors" above="1"/>\n<level name="slow" query="Rate" '
                           'below="1"/></levels>\n<widths query="Rate" from="1" to="0"/>')
        path = self.write('v.xml', text)
        done = self.run_program('check', path)
        self.assertEqual(done.returncode, 1)
        self.assertEqual([line.replace(str(path), 'v.xml') for line in done.stderr.splitlines()], [
            'v.xml:3:1: error: level "critical": there is no query "Errrors"',
            'v.xml:4:1: error: level "slow" needs a colour, such as "#8A4FBF"; only "critical", "warning" and "good" have one',
            'v.xml:5:1: error: <widths>: "from" must be less than "to"'])

    def test_pictures_of_every_format(self):
        for name in ('x.png', 'x.pdf'):
            done = self.run_program('render', self.write('v.xml', with_levels()), '--db', self.database(DATA), '-o', self.folder / name,
                                    '--theme', 'dark')
            self.assertEqual((done.returncode, done.stderr), (0, ''))


if __name__ == '__main__':
    program.main()
