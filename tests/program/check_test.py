"""What `tessera check` reports, line by line."""
import json
import subprocess

import program
from check_case import CheckCase

SOUND = '''<viewpoint>
  <queries><query id="q" from="t">SUM(a)</query></queries>
  <diagram>
    <graph id="g"><node id="a"/><node id="b"/><link id="l" from="a" to="b"/></graph>
    <display><node id="a"><rowSet><queryRef>/q</queryRef></rowSet></node></display>
  </diagram>
</viewpoint>
'''


class Check(CheckCase):
    def test_sound_document(self):
        self.assert_finds(SOUND, status=0)
        self.assert_finds(SOUND, options=('--db', self.database()), status=0)

    def test_shipped_examples(self):
        for name in ('backup', 'first'):
            folder = program.ROOT / 'examples/backup'
            database = self.database((folder / f'{name}.sql').read_text(), f'{name}.db')
            done = self.run_program('check', folder / f'{name}.xml', '--db', database)
            self.assertEqual((done.returncode, done.stderr), (0, ''))

    def test_standard_input(self):
        done = subprocess.run([program.PROGRAM, 'check', '-'], input='<viewpoint/>', capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr),
                         (1, '/dev/stdin:1:1: error: the document is empty, so no diagram is made\n'))
        database = self.database()
        done = subprocess.run([program.PROGRAM, 'render', '-', '--db', database], input=SOUND, capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(json.loads(done.stdout)['diagram']['id'], 'g')
        done = self.run_program('session', '-', '--db', database)
        self.assert_clean_failure(done, 2, 'session reads requests from standard input; VIEWPOINT must be a file')

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
                          '6:5: error: duplicate query id "q": the query at line 4 ',
                          '6:5: error: query "q": the expression ',
                          '7:5: error: query without an id',
                          '8:5: error: query "f" has the unknown format "fancy"',
                          '11:5: error: filter "global" ',
                          '12:5: warning: filter "mine" is never applied',
                          '15:5: warning: unknown attribute "colour" of <graph>',
                          '16:7: error: link "early": comes before the node "a" of its "from", which is declared at line 17',
                          '16:7: error: link "early": comes before the node "b" of its "to", which is declared at line 20',
                          '18:7: error: duplicate node id "a": the node at line 17 ',
                          '19:7: error: a node without id',
                          '20:20: error: unknown element <edge> in <node>',
                          '21:7: error: a link without id',
                          '21:7: error: link "": there is no node "nobody" for its "to"',
                          '22:7: warning: direction "sideways"',
                          '22:7: error: duplicate link id "early": the link at line 16 ',
                          '25:7: error: display entry of node "nobody": there is no such node',
                          '26:28: error: "/none" is not a reference: ',
                          '26:54: error: "/k/1" is not a reference: ',
                          '26:79: warning: this queryRef refers to no query',
                          '27:24: warning: location "middle"',
                          '27:50: warning: this label at "center" replaces the one at column 24 of this line',
                          '28:7: error: display entry of node "late" comes before the node, which is declared at line 31',
                          '29:7: error: a display entry of a link without id',
                          '31:5: warning: the id "" of this <graph> replaces the diagram\'s id "g" given at line 15')

    def test_nothing_to_show(self):
        self.assert_finds('<viewpoint/>', '1:1: error: the document is empty, so no diagram is made')
        self.assert_finds('<viewpoint><queries/></viewpoint>',
                          '1:1: error: there is no <diagram>, so the diagram has no nodes')
        self.assert_finds('<v><diagram/></v>', '1:4: error: there is no <graph> in <diagram>, so the diagram has no nodes')
        self.assert_finds('<v><diagram/>\n<diagram><display/></diagram></v>', '1:4: error: there is no <graph>')
        self.assert_finds('<v><diagram>\n<graph/></diagram></v>',
                          '2:1: warning: there is no <node> in <graph>, so the diagram has no nodes', status=0)
        self.assert_finds('<v><diagram/>\n<diagram><graph/><graph><node id="a"/></graph></diagram></v>', status=0)

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
