"""The options that show the layout at work. Without them nothing changes."""
import re

import program
from program import Case, ROOT

# The rows of the table in docs/pipeline.md: (member function, file).
ROWS = re.findall(r'^\| \d+ \| `(\w+)`.*\| `([\w/.*]+)` \|$', (ROOT / 'docs/pipeline.md').read_text(encoding='utf-8'),
                  re.MULTILINE)
# Their stages. The two passes of info_nodes.cpp are one stage.
STAGES = list(dict.fromkeys({'parseViewpoint': 'viewpoint', 'getData': 'data'}.get(member, file.removesuffix('.cpp'))
                            for member, file in ROWS))

# Two groups with a link between them, a long link, labels at an end and in the centre, values of a group.
DOCUMENT = program.document(
    '<graph id="g"><node id="g"><node id="a"/><node id="b"/><node id="c"/></node><node id="h"><node id="d"/></node>'
    '<link id="ab" from="a" to="b"/><link id="bc" from="b" to="c"/><link id="ac" from="a" to="c" direction="forward"/>'
    '<link id="ad" from="a" to="d"/></graph>'
    '<display><node id="g"><rowSet><queryRef>/q</queryRef></rowSet></node>'
    '<link id="ab"><label location="from"><dataTransfer><bandwidth><rowSet><queryRef>/q</queryRef></rowSet></bandwidth>'
    '</dataTransfer></label></link>'
    '<link id="bc"><label location="center"><dataTransfer><bandwidth><rowSet><queryRef>/q</queryRef></rowSet></bandwidth>'
    '</dataTransfer></label></link></display>',
    '<query id="q" from="t">SUM(a)</query>')


class Inspection(Case):
    def setUp(self):
        super().setUp()
        self.document = self.write('v.xml', DOCUMENT)
        self.result = self.database()

    def stopped_after(self, stage):
        diagram = self.render(self.document, self.result, '--stop-after', stage)
        return diagram['nodes']['node'], diagram['links']['link']

    def test_stages_are_the_rows_of_the_pipeline_page(self):
        self.assertGreaterEqual(len(STAGES), 10)
        folder = self.folder / 'dumps'
        self.render(self.document, self.result, '--dump-passes', folder)
        self.assertEqual(sorted(path.name for path in folder.iterdir()),
                         [f'{number:02}-{stage}.txt' for number, stage in enumerate(STAGES, 1)])

    def test_the_members_are_called_in_the_order_of_the_page(self):
        members = [member for member, _ in ROWS]
        source = (ROOT / 'core/data_provider.cpp').read_text(encoding='utf-8')
        table = source[source.index(' steps{{'):source.index('\n}};')].replace('readViewpoint', 'parseViewpoint')
        called = re.findall(r'\b(' + '|'.join(members) + r')\b', table)
        self.assertEqual(list(dict.fromkeys(called)), members)  # a row names its member in the check, too

    def test_stop_before_the_values(self):
        nodes, links = self.stopped_after('viewpoint')
        self.assertEqual([node['id'] for node in nodes], ['a', 'b', 'c', 'g', 'd', 'h'])
        self.assertEqual([link['id'] for link in links], ['ab', 'bc', 'ac', 'ad'])
        self.assertEqual({node['hierarchicalLevel'] for node in nodes}, {-1})

    def test_stop_with_values_and_no_layout(self):
        nodes, links = self.stopped_after('data')
        self.assertEqual(len(nodes), 6)
        group = next(node for node in nodes if node['id'] == 'g')
        self.assertEqual(group['info']['rows']['row'][0]['value'], '1')
        self.assertEqual(len(links), 4)

    def test_stop_after_the_info_nodes(self):
        nodes, _ = self.stopped_after('info_nodes')
        self.assertEqual([node['id'] for node in nodes if node['type'] == 'label'], ['b_a_dummy_a_label', 'c_b_label'])
        self.assertEqual([node['id'] for node in nodes if node['type'] == 'dummy'], ['b_a_dummy'])
        self.assertEqual([node['id'] for node in nodes if node['type'] == 'groupInfo'], ['g_info'])
        self.assertEqual({node['hierarchicalLevel'] for node in nodes}, {-1})

    def test_stop_after_the_levels_and_after_the_dummies(self):
        nodes, _ = self.stopped_after('hierarchical_levels')
        levels = {node['id']: node['hierarchicalLevel'] for node in nodes}
        self.assertEqual((levels['a'], levels['b'], levels['c']), (0, 3, 5))  # a, label, dummy, b, label, c
        self.assertEqual((levels['g'], levels['h']), (0, 1))
        before = sum(node['type'] == 'dummy' for node in nodes)
        nodes, _ = self.stopped_after('label_dummies')
        # ac: one in each of the layers 4 to 1; ad leaves g from layer 0 down to layer 5 and is in layer 0 of h.
        self.assertEqual(sum(node['type'] == 'dummy' for node in nodes) - before, 4 + 5)
        self.assertEqual({node['groupLevel'] for node in nodes}, {0})

    def test_the_last_stage_stops_nothing(self):
        self.assertEqual(self.render(self.document, self.result, '--stop-after', 'group_levels'),
                         self.render(self.document, self.result))

    def test_dumps_say_what_a_stage_did(self):
        self.render(self.document, self.result, '--dump-passes', self.folder)
        before = (self.folder / '04-group_links.txt').read_text(encoding='utf-8')
        after = (self.folder / '05-hierarchical_levels.txt').read_text(encoding='utf-8')
        self.assertIn('  "g" / "c" "node" level -1 depth 0\n', before)
        self.assertIn('  "g" / "c" "node" level 5 depth 0\n', after)
        self.assertIn('  "g_h_dummy" "dummy": "g" -> "h" "none" for "ad"\n', before)
        self.assertNotIn('layers', before)
        self.assertIn('layers of "g": 6\n  0: "a" "g_info"\n', after)

    def test_dumps_keep_to_one_line_an_object(self):
        document = self.write('odd.xml', '<viewpoint><diagram><graph><node id="a&#10;b&quot;\\&#9;"/></graph>'
                                         '<display/></diagram></viewpoint>')
        self.render(document, self.result, '--dump-passes', self.folder / 'a' / 'b')
        text = (self.folder / 'a' / 'b' / '10-group_levels.txt').read_text(encoding='utf-8')
        self.assertIn('  - / "a\\nb\\"\\\\\\x09" "node" level 0 depth 0\n', text)

    def test_dumps_only_up_to_where_it_stops(self):
        folder = self.folder / 'dumps'
        self.render(self.document, self.result, '--dump-passes', folder, '--stop-after', 'data')
        self.assertEqual(sorted(path.name for path in folder.iterdir()), ['01-viewpoint.txt', '02-data.txt'])

    def test_dumps_show_values_and_depths(self):
        self.render(self.document, self.result, '--dump-passes', self.folder)
        texts = [(self.folder / f'{number:02}-{stage}.txt').read_text(encoding='utf-8')
                 for number, stage in enumerate(STAGES, 1)]
        self.assertIn('  - / "g" "node" level -1 depth 0 members 3 value ""\n', texts[0])
        self.assertIn('  - / "g" "node" level -1 depth 0 members 3 value "1"\n', texts[1])
        self.assertIn('  "ab" "link": "a" -> "b" "" from "1"\n', texts[1])
        self.assertIn('  "g" / "c" "node" level 5 depth 0\n', texts[8])
        self.assertIn('  "g" / "c" "node" level 5 depth 1\n', texts[9])

    def test_dumps_do_not_overwrite_what_is_used(self):
        folder = self.folder / 'dumps'
        folder.mkdir()
        kept = self.result.rename(folder / '02-data.txt')
        before = kept.read_bytes()
        done = self.run_program('render', self.document, '--db', kept, '--dump-passes', folder)
        self.assert_clean_failure(done, 2, f'{kept}: would be overwritten by --dump-passes')
        self.assertEqual(kept.read_bytes(), before)
        output = self.folder / 'other' / '01-viewpoint.txt'
        done = self.run_program('render', self.document, '--db', kept, '--format', 'json', '-o', output,
                                '--dump-passes', output.parent)
        self.assertEqual(done.returncode, 3)  # the folder of the output is not there yet
        output.parent.mkdir()
        done = self.run_program('render', self.document, '--db', kept, '--format', 'json', '-o', output,
                                '--dump-passes', output.parent)
        self.assert_clean_failure(done, 2, f'{output}: would be overwritten by --dump-passes')
        self.assertFalse(output.exists())

    def test_dump_takes_the_place_of_a_link_and_leaves_what_it_leads_to(self):
        folder = self.folder / 'dumps'
        folder.mkdir()
        precious = self.write('precious', 'precious')
        (folder / '01-viewpoint.txt').symlink_to(precious)
        self.render(self.document, self.result, '--dump-passes', folder)
        self.assertEqual(precious.read_text(), 'precious')
        self.assertTrue((folder / '01-viewpoint.txt').read_text(encoding='utf-8').startswith('graph "g"'))

    def test_limits(self):
        for option, value, limit in (('--max-elements', 20, '20 nodes and links'),
                                     ('--max-id-bytes', 200, '200 bytes in the ids of its nodes and links')):
            with self.subTest(option):
                done = self.run_program('render', self.document, '--db', self.result, option, value)
                self.assertEqual(done.returncode, 1)
                self.assertIn('Link <ac> does not get all of its dummy nodes: the limit is ' + limit, done.stderr)
                self.assertIn('tessera: ' + str(self.document) + ': the diagram is incomplete: ', done.stderr)
                self.assertIn('"nodes"', done.stdout)

    def test_a_session_reports_once_that_a_limit_was_reached(self):
        answers, done = self.session(self.document, self.result, [{'request': 'create'}] * 2, '--max-elements', 20)
        self.assertEqual(done.returncode, 0)
        self.assertEqual([answer['code'] for answer in answers], ['success', 'success'])
        self.assertEqual(done.stderr.count(': the diagram is incomplete: '), 1, done.stderr)

    def test_limits_are_positive_integers(self):
        for value in ('-1', '0', '', '1.5', '0x10', '+5', ' 5', '99999999999999999999'):
            with self.subTest(value):
                done = self.run_program('render', self.document, '--db', self.result, f'--max-elements={value}')
                text = 'is not an integer from 1 to 999999999999999' if value else 'required'
                self.assert_clean_failure(done, 2, '--max-elements', text)

    def test_folder_that_cannot_be_made(self):
        done = self.run_program('render', self.document, '--db', self.result, '--dump-passes', self.document)
        self.assert_clean_failure(done, 3, f'{self.document}: cannot be made')

    def test_file_that_cannot_be_written(self):
        (self.folder / '03-info_nodes.txt').mkdir()
        done = self.run_program('render', self.document, '--db', self.result, '--dump-passes', self.folder)
        self.assertEqual(done.returncode, 3)
        self.assertIn('03-info_nodes.txt: cannot be written', done.stderr)
        self.assertFalse((self.folder / '04-group_links.txt').exists())

    def test_times(self):
        done = self.run_program('render', self.document, '--db', self.result, '--time-passes')
        self.assertEqual(done.returncode, 0)
        lines = re.findall(r'^tessera: (\w+) +([0-9.]+) ms$', done.stderr, re.MULTILINE)
        self.assertEqual([name for name, _ in lines], [*STAGES, 'total'])
        times = [float(time) for _, time in lines]
        self.assertAlmostEqual(sum(times[:-1]), times[-1], delta=0.02)
        self.assertGreater(times[-1], 0)

    def test_a_sound_layout_is_verified_in_silence(self):
        plain = self.run_program('render', self.document, '--db', self.result)
        verified = self.run_program('render', self.document, '--db', self.result, '--verify')
        self.assertEqual((verified.returncode, verified.stdout, verified.stderr),
                         (plain.returncode, plain.stdout, plain.stderr))

    def test_cycles_and_doubled_ids_are_no_errors_of_the_layout(self):
        document = self.write('cycle.xml', program.document(
            '<graph><node id="g"><node id="r"/><node id="a"/><node id="b"/><node id="a"/></node><node id="g"/>'
            '<link id="l" from="r" to="a"/><link id="l" from="a" to="b"/><link id="m" from="b" to="a"/></graph><display/>'))
        done = self.run_program('render', document, '--db', self.result, '--verify', '--log-level', 'off')
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stderr.count('\n'), 1, done.stderr)
        self.assertIn(': warning: links "l" (line 1) and "m" (line 1) form a cycle inside group "g"', done.stderr)

    def test_unknown_pass(self):
        done = self.run_program('render', self.document, '--db', self.result, '--stop-after', 'nothing')
        self.assert_clean_failure(done, 2, '--stop-after', 'group_levels')


if __name__ == '__main__':
    program.main()
