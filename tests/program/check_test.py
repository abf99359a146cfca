"""What `tessera check` reports, line by line."""
import subprocess

import program
from program import Case

SOUND = '''<viewpoint>
  <queries><query id="q" from="t">SUM(a)</query></queries>
  <diagram>
    <graph id="g"><node id="a"/><node id="b"/><link id="l" from="a" to="b"/></graph>
    <display><node id="a"><rowSet><queryRef>/q</queryRef></rowSet></node></display>
  </diagram>
</viewpoint>
'''


class Check(Case):
    def findings(self, text, *options, status=1):
        """The findings without the file's name: "LINE:COLUMN: severity: text"."""
        path = self.write('v.xml', text)
        done = self.run_program('check', path, *options)
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertEqual(done.stdout, '')
        lines = done.stderr.splitlines()
        for line in lines:
            self.assertTrue(line.startswith(f'{path}:'), line)
        return [line[len(str(path)) + 1:] for line in lines]

    def assert_finds(self, text, *expected, options=(), status=1):
        """Exactly these findings, each given by how it begins."""
        found = self.findings(text, *options, status=status)
        for line, begin in zip(found, expected):
            self.assertTrue(line.startswith(begin), f'{line!r} does not begin with {begin!r}')
        self.assertEqual(len(found), len(expected), found)

    def test_sound_document(self):
        self.assert_finds(SOUND, status=0)
        self.assert_finds(SOUND, options=('--db', self.database()), status=0)

    def test_shipped_examples(self):
        for name in ('backup', 'first'):
            folder = program.ROOT / 'examples/backup'
            database = self.database((folder / f'{name}.sql').read_text(), f'{name}.db')
            done = self.run_program('check', folder / f'{name}.xml', '--db', database)
            self.assertEqual((done.returncode, done.stderr), (0, ''))

    def test_malformed_xml(self):
        self.assert_finds('<viewpoint>\n  <diagram>\n</viewpoint>\n', '3:')

    def test_everything_wrong_in_one_run(self):
        self.assert_finds('''<viewpoint>
  <panes/>
  <queries>
    <query id="q" from="t">SUM(a)</query>
    <query id="k" from="t" key="x y">SUM(a)</query>
    <query id="q" from="t">COUNT(*</query>
    <query from="t">1</query>
    <query id="f" from="t" format="fancy">MAX(a)</query>
  </queries>
  <filters>
    <filter name="global">a = 'open</filter>
    <filter name="mine">a = 1</filter>
  </filters>
  <diagram>
    <graph id="g" colour="red">
      <link id="early" from="a" to="b"/>
      <node id="a"/>
      <node id="a"/>
      <node/>
      <node id="b"><edge/></node>
      <link from="a" to="nobody"/>
      <link id="early" from="a" to="b" direction="sideways"/>
    </graph>
    <display>
      <node id="nobody"/>
      <node id="a"><rowSet><queryRef>/none</queryRef><queryRef>/k/1</queryRef><queryRef/></rowSet></node>
      <link id="early"><label location="middle"/><label/></link>
      <node id="late"/>
      <link/>
    </display>
    <graph><node id="late"/></graph>
  </diagram>
</viewpoint>
''', '2:3: warning: unknown element <panes>',
                          '6:5: error: query id "q" is used before, at line 4',
                          '6:5: error: query "q": the expression ',
                          '7:5: error: query without an id',
                          '8:5: error: query "f" has the unknown format "fancy"',
                          '11:5: error: filter "global" ',
                          '12:5: warning: filter "mine" is never applied',
                          '15:5: warning: unknown attribute "colour" of <graph>',
                          '16:7: error: link "early": comes before its node "a", which is declared at line 17',
                          '16:7: error: link "early": comes before its node "b", which is declared at line 20',
                          '18:7: error: node id "a" is used before, at line 17',
                          '19:7: error: a node without id',
                          '20:20: error: unknown element <edge> in <node>',
                          '21:7: error: a link without id',
                          '21:7: error: link "": there is no node "nobody"',
                          '22:7: warning: direction "sideways"',
                          '22:7: error: link id "early" is used before, at line 16',
                          '25:7: error: display entry of node "nobody": there is no such node',
                          '26:28: error: "/none" is no reference: ',
                          '26:54: error: "/k/1" is no reference: ',
                          '26:79: warning: this queryRef refers to no query',
                          '27:24: warning: location "middle"',
                          '27:50: warning: this label at "center" replaces the one at line 27',
                          '28:7: error: display entry of node "late" comes before the node, which is declared at line 31',
                          '29:7: error: a display entry of a link without id')

    def test_no_diagram(self):
        self.assert_finds('<viewpoint><queries/></viewpoint>', '1:1: error: there is no <diagram>')
        self.assert_finds('<viewpoint/>', '1:1: error: the document is empty')

    def graph(self, content):
        return f'<v><diagram>\n<graph id="g">\n{content}\n</graph></diagram></v>'

    def test_cycle_at_top_level(self):
        self.assert_finds(self.graph('<node id="a"/><node id="b"/><node id="c"/>\n<link id="1" from="a" to="b"/>\n'
                                     '<link id="2" from="b" to="c"/>\n<link id="3" from="c" to="a"/>'),
                          '4:1: error: cycle at the top level: a -> b -> c -> a')

    def test_link_to_itself(self):
        self.assert_finds(self.graph('<node id="a"/><link id="1" from="a" to="a"/>'),
                          '3:15: error: cycle at the top level: a -> a')

    def test_cycle_inside_a_group(self):
        self.assert_finds(self.graph('<node id="G"><node id="a"/><node id="b"/></node>\n<link id="1" from="a" to="b"/>\n'
                                     '<link id="2" from="b" to="a"/>'),
                          '4:1: error: cycle inside group "G": a -> b -> a')

    def test_links_between_groups_count_for_the_groups(self):
        self.assert_finds(self.graph('<node id="G"><node id="a"/></node><node id="H"><node id="b"/><node id="c"/></node>\n'
                                     '<link id="1" from="a" to="b"/>\n<link id="2" from="c" to="a"/>'),
                          '4:1: error: cycle at the top level: G -> H -> G')

    def test_link_from_a_member_to_its_own_group(self):
        self.assert_finds(self.graph('<node id="G"><node id="a"/></node>\n<link id="1" from="a" to="G"/>'),
                          '4:1: error: cycle at the top level: G -> G')

    def test_both_ways_round_is_no_cycle(self):
        self.assert_finds(self.graph('<node id="a"/><node id="b"/><link id="1" from="a" to="b" direction="both"/>'
                                     '<link id="2" from="a" to="b" direction="back"/>'), status=0)

    def test_long_cycle_is_told_in_short(self):
        count = 1000
        nodes = ''.join(f'<node id="n{i}"/>' for i in range(count))
        links = ''.join(f'<link id="{i}" from="n{i}" to="n{(i + 1) % count}"/>' for i in range(count))
        found = self.findings(self.graph(nodes + links))
        self.assertEqual(len(found), 1)
        self.assertIn('n0 -> n1 -> n2', found[0])
        self.assertIn('more) -> n0', found[0])
        self.assertLess(len(found[0]), 300)

    def test_database_problems(self):
        text = '''<viewpoint>
  <queries>
    <query id="good" from="t">SUM(a)</query>
    <query id="table" from="gone">SUM(a)</query>
    <query id="column" from="t">SUM(gone)</query>
    <query id="key" from="t" key="gone">SUM(a)</query>
    <query id="where" from="t" where="gone = 1">SUM(a)</query>
    <query id="syntax" from="t">SUM(a b)</query>
    <query id="plain" from="t">a</query>
    <query id="write" from="t">load_extension('x')</query>
  </queries>
  <filters><filter name="global">gone = 2</filter></filters>
  <diagram/>
</viewpoint>
'''
        found = self.findings(text, '--db', self.database())
        for line in (3, 4, 5, 6, 7, 8, 9, 10):  # the filter breaks the good one too
            self.assertTrue(any(each.startswith(f'{line}:') or f'global' in each for each in found), (line, found))
        everything = '\n'.join(found)
        for part in ('4:5: error: query "table"', '5:5: error: query "column"', '6:5: error: query "key"',
                     '7:5: error: query "where"', '8:5: error: query "syntax"', '9:5: error: query "plain"',
                     '10:5: error: query "write"'):
            self.assertIn(part, everything)

    def test_files_that_cannot_be_opened(self):
        done = self.run_program('check', self.folder / 'none.xml')
        self.assertEqual(done.returncode, 3)
        self.assertIn('none.xml', done.stderr)
        done = self.run_program('check', self.write('v.xml', SOUND), '--db', self.folder / 'none.db')
        self.assertEqual(done.returncode, 3)
        self.assertIn('none.db', done.stderr)

    def test_large_document_in_little_time(self):
        depth = 50_000
        nested = ''.join(f'<node id="n{i}">' for i in range(depth)) + '</node>' * depth
        flat = ''.join(f'<node id="m{i}"/>' for i in range(depth))
        links = ''.join(f'<link id="l{i}" from="n{i}" to="m{i}"/>' for i in range(depth))
        path = self.write('v.xml', self.graph(nested + flat + links))
        done = self.run_program('check', path, timeout=20 * program.SLOW)
        self.assertEqual((done.returncode, done.stderr), (0, ''))


if __name__ == '__main__':
    program.main()
