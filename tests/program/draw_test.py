#!/usr/bin/env python3
"""Pictures from `render`."""
import re
import xml.etree.ElementTree as ElementTree

import program
from program import Case, document

SVG = '{http://www.w3.org/2000/svg}'
ELEMENTS = {'svg', 'title', 'desc', 'style', 'g', 'rect', 'path', 'text'}
HOSTILE = ['<script>alert(1)</script>', '"><script>x</script>', "' onload='alert(1)", ']]><b>', '&amp;&lt;', 'url(http://x)',
           'javascript:alert(1)', '</title></svg>', '{{x}}', 'a\u202eb', '漢字とかな', 'שלום עולם', 'مرحبا', 'हिन्दी', '😀👩\u200d👧',
           'x' * 5000]


def quoted(text):
    return (text.replace('&', '&amp;').replace('<', '&lt;').replace('>', '&gt;').replace('"', '&quot;'))


def label(location, *modes):
    inner = ''.join(f'<{mode}><rowSet displayName="s"><queryRef displayName="Rate">/{query}</queryRef></rowSet></{mode}>'
                    for mode, query in modes)
    return f'<label location="{location}"><dataTransfer displayName="sent">{inner}</dataTransfer></label>'


QUERIES = ('<query id="sum" from="t">SUM(a)</query><query id="none" from="t">MAX(NULL)</query>'
           '<query id="wide" from="t" format="si:3" unit="requests">SUM(a)</query>')
DIAGRAM = ('<graph id="d"><node id="g"><node id="a"/><node id="b"/></node><node id="c"/>'
           '<link id="ab" from="a" to="b" direction="forward"/><link id="bc" from="b" to="c" direction="both"/></graph>'
           '<display><graph displayName="Two and one"/>'
           '<node id="g" displayName="Group"><rowSet displayName="s"><queryRef displayName="Sum">/sum</queryRef></rowSet></node>'
           '<node id="a" displayName="First" type="process"><rowSet displayName="s">'
           '<queryRef displayName="Sum">/sum</queryRef><queryRef displayName="Wide">/wide</queryRef>'
           '<queryRef displayName="None">/none</queryRef></rowSet></node>'
           '<node id="b" displayName="Second" type="storage"/><node id="c" displayName="Third"/>'
           f'<link id="ab" displayName="A to B">{label("center", ("bandwidth", "sum"), ("ratio", "wide"), ("size", "none"))}'
           '</link></display>')


def nested(depth):
    """Returns a document of groups in each other, with one node in the innermost."""
    opening = ''.join(f'<node id="g{at}" type="group">' for at in range(depth))
    return document(f'<graph id="d">{opening}<node id="a"/>{"</node>" * depth}</graph>')


class Drawing(Case):
    def draw(self, *arguments, text=None, sql=None, name='x.svg'):
        viewpoint = self.write('viewpoint.xml', text or document(DIAGRAM, QUERIES))
        database = self.database(sql) if sql else self.database()
        target = self.folder / name
        done = self.run_program('render', viewpoint, '--db', database, '-o', target, *arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        return target

    def tree(self, *arguments, **options):
        return ElementTree.parse(self.draw(*arguments, **options)).getroot()


def elements(root, kind):
    return [each for each in root.iter(SVG + 'g') if each.get('data-kind') == kind]


def title(element):
    return element.find(SVG + 'title').text


def boxes(root):
    """Returns the rectangles of all elements, by the element's kind and id."""
    return {(group.get('data-kind'), group.get('data-id')): [tuple(rect.get(key) for key in ('x', 'y', 'width', 'height'))
                                                            for rect in group.iter(SVG + 'rect')]
            for group in root.iter(SVG + 'g')}


class Svg(Drawing):
    def test_is_one_document_of_plain_shapes(self):
        root = self.tree()
        self.assertEqual(root.tag, SVG + 'svg')
        self.assertLessEqual({each.tag.removeprefix(SVG) for each in root.iter()}, ELEMENTS)
        self.assertEqual(root.find(SVG + 'title').text, 'Two and one')
        self.assertEqual(root.find(SVG + 'desc').text, 'A diagram of 3 nodes in 1 group, with 2 links.')
        ids = [each.get('id') for each in root.iter() if each.get('id')]
        self.assertEqual(len(ids), len(set(ids)))
        for each in root.get('aria-labelledby').split():
            self.assertIn(each, ids)
        self.assertEqual(root.get('viewBox'), f'0 0 {root.get("width")} {root.get("height")}')

    def test_a_browser_scales_a_drawing_to_its_width(self):
        """With a width and height of its own, the width of its page as a limit, and a height that follows."""
        root = self.tree()
        self.assertIn('.tessera-diagram{max-width:100%;height:auto}', root.find(SVG + 'style').text)
        least = float(root.get('style').removeprefix('min-width:').removesuffix('px'))
        self.assertAlmostEqual(least, float(root.get('width')) / 4, delta=0.5)

    def test_scripts_find_nodes_and_lines(self):
        root = self.tree()
        self.assertEqual([each.get('data-id') for each in elements(root, 'node')], ['a', 'b', 'c'])
        self.assertEqual([each.get('data-id') for each in elements(root, 'group')], ['g'])
        self.assertEqual([(each.get('data-id'), each.get('data-from'), each.get('data-to'))
                          for each in elements(root, 'line')], [('ab', 'a', 'b'), ('bc', 'b', 'c')])
        self.assertEqual([(each.get('data-link'), each.get('data-place')) for each in elements(root, 'label')],
                         [('ab', 'center')])
        self.assertEqual(elements(root, 'node')[0].get('data-type'), 'process')

    def test_titles_contain_everything(self):
        root = self.tree()
        self.assertEqual(title(elements(root, 'node')[0]), 'First\nprocess\nSum: 1\nWide: 1.00 requests')
        self.assertEqual(title(elements(root, 'group')[0]), 'Group\nSum: 1')
        self.assertEqual(title(elements(root, 'label')[0]), 'A to B\nFirst → Second\nsent\nRate: 1')
        self.assertEqual([title(each) for each in elements(root, 'line')], ['A to B\nFirst → Second', 'Second ↔ Third'])

    def test_text_from_documents_is_escaped(self):
        nodes = ''.join(f'<node id="{quoted(text)}{at}"/>' for at, text in enumerate(HOSTILE))
        shown = ''.join(f'<node id="{quoted(text)}{at}" displayName="{quoted(text)}" type="{quoted(text)}"/>'
                        for at, text in enumerate(HOSTILE))
        text = document(f'<graph id="g">{nodes}</graph><display><graph displayName="{quoted(HOSTILE[0])}"/>{shown}</display>')
        target = self.draw(text=text)
        root = ElementTree.parse(target).getroot()
        self.assertLessEqual({each.tag.removeprefix(SVG) for each in root.iter()}, ELEMENTS)
        self.assertEqual(root.find(SVG + 'title').text, HOSTILE[0])
        self.assertEqual([each.get('data-id') for each in elements(root, 'node')],
                         [f'{text}{at}' for at, text in enumerate(HOSTILE)])
        for each in root.iter():
            for name in each.attrib:
                self.assertFalse(name.startswith('on') or 'href' in name, name)
        for style in root.iter(SVG + 'style'):
            self.assertNotIn('url', style.text)
            self.assertNotIn('@import', style.text)
        ids = [each.get('id') for each in root.iter() if each.get('id')]
        for each in ids:
            self.assertRegex(each, r'^[a-z0-9-]+$')

    def test_the_same_input_gives_the_same_bytes(self):
        first = self.draw().read_bytes()
        self.assertEqual(first, self.draw(name='y.svg').read_bytes())

    def test_themes(self):
        light = self.draw('--theme', 'light').read_text()
        dark = self.draw('--theme', 'dark').read_text()
        both = self.draw().read_text()
        self.assertIn('#FBFCFE', light)
        self.assertNotIn('#11161F', light)
        self.assertIn('#11161F', dark)
        self.assertNotIn('#FBFCFE', dark)
        self.assertIn('prefers-color-scheme:dark', both)
        self.assertNotIn('prefers-color-scheme', light + dark)
        # Without the rules for dark screens it equals the light drawing, which is for paper and old readers.
        anonymous = [re.sub(r't[0-9a-f]{8}-', 't-', text) for text in (both.replace('tessera-auto', 'tessera-light'), light)]
        self.assertEqual(re.sub(r'@media screen.*?\n}\n', '', anonymous[0], flags=re.S), anonymous[1])
        self.assertEqual(both, self.draw('--theme', 'auto').read_text())

    def test_a_page_can_hold_several(self):
        texts = [self.draw('--theme', theme, '--mode', mode).read_text()
                 for theme in ('light', 'dark', 'auto') for mode in ('bandwidth', 'size')]
        ids = [each for text in texts for each in re.findall(r' id="([^"]*)"', text)]
        self.assertEqual(len(ids), len(set(ids)))
        # Themes differ in colours only.
        rules = {text: re.findall(r'^\.([\w-]+)[^{]*\{([^}]*)\}', text, flags=re.M) for text in texts}
        common = [[rule for rule in rules[text] if rule[0] == 'tessera-diagram'] for text in texts]
        self.assertEqual([each for each in common if each != common[0]], [])
        self.assertNotIn('#', str(common[0]))
        self.assertEqual({rule[0] for rule in rules[texts[0]]}, {'tessera-diagram', 'tessera-light'})

    def test_names_from_right_to_left_leave_arrows_alone(self):
        names = {'a': 'خادم', 'b': 'שרת', 'c': 'Third'}
        shown = ''.join(f'<node id="{each}" displayName="{name}"/>' for each, name in names.items())
        root = self.tree(text=document(
            '<graph id="g"><node id="a"/><node id="b"/><node id="c"/><link id="l" from="a" to="b" direction="forward"/>'
            f'<link id="m" from="b" to="c" direction="forward"/></graph><display>{shown}</display>'))
        self.assertEqual([title(each) for each in elements(root, 'line')],
                         ['\u2068خادم\u2069 → \u2068שרת\u2069', '\u2068שרת\u2069 → \u2068Third\u2069'])

    def test_names_without_letters_are_ids(self):
        names = ('', ' ', '\u00a0\u200b', '\u3000')
        nodes = ''.join(f'<node id="n{at}"/>' for at in range(len(names)))
        shown = ''.join(f'<node id="n{at}" displayName="{name}"/>' for at, name in enumerate(names))
        root = self.tree(text=document(f'<graph id="g">{nodes}</graph><display>{shown}</display>'))
        self.assertEqual([title(each) for each in elements(root, 'node')], ['n0', 'n1', 'n2', 'n3'])

    def test_titles_have_a_maximum_length(self):
        root = self.tree(text=document('<graph id="g"><node id="a"/></graph><display>'
                                       f'<node id="a" displayName="{"ä" * 300000}"/></display>'))
        self.assertEqual(title(elements(root, 'node')[0]), 'ä' * 500 + '…')

    def test_an_empty_diagram_says_so(self):
        root = self.tree(text=document('<graph id="g"/>'))
        texts = [each.text for each in elements(root, 'note')[0].iter(SVG + 'text')]
        self.assertEqual(texts, ['Nothing to show yet', 'This diagram has no nodes.'])

    def test_goes_to_standard_output_with_a_format(self):
        viewpoint = self.write('viewpoint.xml', document(DIAGRAM, QUERIES))
        done = self.run_program('render', viewpoint, '--db', self.database(), '--format', 'svg')
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(ElementTree.fromstring(done.stdout).tag, SVG + 'svg')


class NothingMoves(Drawing):
    def test_between_modes(self):
        places = [boxes(self.tree('--mode', mode)) for mode in ('bandwidth', 'ratio', 'size')]
        self.assertEqual(places[0], places[1])
        self.assertEqual(places[0], places[2])

    def test_between_databases(self):
        def places(value):
            return boxes(self.tree(sql=f'CREATE TABLE t(a); INSERT INTO t VALUES ({value});'))
        for value in ('123456', '-12.5', "'text'"):
            self.assertEqual(places('1'), places(value), value)

    def test_wide_values_are_whole_when_the_diagram_is_made(self):
        def texts(value):
            return {text.text for text in self.tree(sql=f'CREATE TABLE t(a); INSERT INTO t VALUES ({value});').iter(SVG + 'text')}
        self.assertIn('1234567890.25', texts('1234567890.25'))

    def test_lines_neither(self):
        def lines(value):
            root = self.tree(sql=f'CREATE TABLE t(a); INSERT INTO t VALUES ({value});')
            return [path.get('d') for each in elements(root, 'line') for path in each.iter(SVG + 'path')]
        self.assertEqual(lines('1'), lines('99999999999'))

    def test_rows_without_a_value_keep_their_space(self):
        root = self.tree()
        first = boxes(root)[('node', 'a')][0]
        second = boxes(root)[('node', 'b')][0]
        self.assertEqual(float(first[3]) - float(second[3]), 88 - 38)  # three rows compared with none


class Direction(Drawing):
    def test_layers_go_right_or_down(self):
        def corner(root, identity):
            x, y, _, _ = boxes(root)[('node', identity)][0]
            return float(x), float(y)
        across = self.tree()
        down = self.tree('--direction', 'tb')
        self.assertEqual(boxes(across), boxes(self.tree('--direction', 'lr')))
        self.assertGreater(corner(across, 'b')[0], corner(across, 'a')[0] + 84)
        self.assertGreater(corner(down, 'b')[1], corner(down, 'a')[1] + 38)
        # The group's title stays at its top: its members begin below it.
        group = boxes(down)[('group', 'g')][0]
        self.assertGreaterEqual(corner(down, 'a')[1], float(group[1]) + 40)


class Fit(Drawing):
    """A chain of twelve nodes, which is far too wide for most spaces."""

    CHAIN = ('<graph id="g">' + ''.join(f'<node id="n{i}"/>' for i in range(12)) +
             ''.join(f'<link id="l{i}" from="n{i}" to="n{i + 1}"/>' for i in range(11)) + '</graph>')

    def is_wide(self, *arguments):
        root = self.tree(*arguments, text=document(self.CHAIN))
        return float(root.get('width')) > float(root.get('height'))

    def test_what_is_too_wide_goes_down(self):
        self.assertFalse(self.is_wide())
        self.assertFalse(self.is_wide('--direction', 'auto', '--fit', '1080x1920'))
        self.assertTrue(self.is_wide('--fit', '40x1'))
        self.assertTrue(self.is_wide('--direction', 'lr'))


class Usage(Drawing):
    def fails(self, *arguments):
        viewpoint = self.write('viewpoint.xml', document(DIAGRAM, QUERIES))
        done = self.run_program('render', viewpoint, '--db', self.database(), *arguments)
        self.assert_clean_failure(done, 2)
        return done.stderr

    def test_options_of_pictures_are_for_pictures(self):
        self.assertIn('--theme', self.fails('--theme', 'dark'))
        self.assertIn('--direction', self.fails('--direction', 'tb', '-o', self.folder / 'x.xml'))
        self.assertIn('--fit', self.fails('--fit', '4x3'))
        self.assertIn('--fit', self.fails('--fit', '4x3', '--direction', 'lr', '--fold', 'off', '-o', self.folder / 'x.svg'))
        self.assertIn('--layers', self.fails('--layers', 'document'))
        self.assertIn('--paper', self.fails('--paper', 'a4', '-o', self.folder / 'x.png'))
        self.assertIn('--scale', self.fails('--scale', '2', '-o', self.folder / 'x.svg'))
        self.assertIn('--scale', self.fails('--scale', '2', '-o', self.folder / 'x.pdf'))

    def test_values_are_checked(self):
        target = self.folder / 'x.png'
        for arguments in (('--theme', 'blue'), ('--direction', 'up'), ('--scale', '0'), ('--scale', '-1'), ('--scale', 'nan'),
                          ('--scale', '1e9'), ('--scale', '2x'), ('--fit', '16'), ('--fit', '16x'), ('--fit', '0x1'), ('--fit', '-1x1'),
                          ('--fit', '1x2x3'), ('--fit', '99999999999x1'), ('--layers', 'none'), ('--paper', 'a5')):
            self.fails('-o', target, *arguments)
            self.assertFalse(target.exists())


if __name__ == '__main__':
    program.main()
