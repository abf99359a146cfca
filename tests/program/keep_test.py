"""`render --save-layout` and `--keep`: after a small change, what was there keeps its order, and moves little."""
import json
import random
import sqlite3
import xml.etree.ElementTree as ElementTree

import program
from corpus_test import CORPUS, Picture
from program import document

DIAGRAMS = ['company-chart', 'elevator', 'greek-names', 'game-loop', 'nightly-etl', 'office-network', 'radio-receiver', 'shop-services']


def changed(path, seed, what):
    """The document with one more link, and a node at one of its ends unless `what` is "link"."""
    tree = ElementTree.parse(path)
    graph = tree.getroot().find('diagram/graph')
    parents = {child: parent for parent in graph.iter() for child in parent.findall('node')}
    leaves = [node for node in parents if node.find('node') is None]
    chosen = random.Random(seed)
    old, other = chosen.choice(leaves), chosen.choice(leaves)
    ends = [old.get('id'), other.get('id')]
    if what != 'link':
        parents[old].insert(list(parents[old]).index(old) + 1, ElementTree.Element('node', id='new'))
        ends[1] = 'new'
    if what == 'source':
        ends.reverse()
    ElementTree.SubElement(graph, 'link', {'id': 'new-link', 'from': ends[0], 'to': ends[1], 'direction': 'forward'})
    return ElementTree.tostring(tree.getroot(), encoding='unicode')


def neighbours(picture):
    """Pairs of boxes of one group, of which the second is the next below the first."""
    for name, box in picture.boxes.items():
        below = [(other.top, second) for second, other in picture.boxes.items()
                 if picture.parents[second] == picture.parents[name] and other.left < box.right and box.left < other.right and
                 other.top >= box.bottom]
        if below:
            yield name, min(below)[1]


class Drawing(program.Case):
    def draw(self, viewpoint, database, target, *options):
        done = self.run_program('render', viewpoint, '--db', database, '-o', target, '--log-level', 'off', *options)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertNotIn('too far away', done.stderr)
        return target


class Keep(Drawing):
    def corpus(self, name):
        database = self.folder / f'{name}.db'
        if not database.exists():
            with sqlite3.connect(database) as connection:
                connection.executescript((CORPUS / f'{name}.sql').read_text(encoding='utf-8'))
            connection.close()
        return CORPUS / f'{name}.xml', database

    def test_without_a_change_nothing_changes(self):
        for name in DIAGRAMS:
            viewpoint, database = self.corpus(name)
            layout = self.folder / 'layout.json'
            first = self.draw(viewpoint, database, self.folder / 'first.svg', '--save-layout', layout)
            second = self.draw(viewpoint, database, self.folder / 'second.svg', '--keep', layout)
            self.assertEqual(first.read_bytes(), second.read_bytes(), name)
            ratio = self.draw(viewpoint, database, self.folder / 'ratio.svg', '--keep', layout, '--mode', 'ratio')
            self.assertEqual(len(Picture(viewpoint, first).boxes), len(Picture(viewpoint, ratio).boxes))

    def test_after_a_small_change_order_stays(self):
        moved = anew = boxes = 0
        for name in DIAGRAMS:
            viewpoint, database = self.corpus(name)
            layout, target = self.folder / 'layout.json', self.folder / 'x.svg'
            before = Picture(viewpoint, self.draw(viewpoint, database, target, '--save-layout', layout))
            for what in ('sink', 'source', 'link'):
                path = self.write('changed.xml', changed(viewpoint, name, what))
                with self.subTest(name=name, what=what):
                    after = Picture(path, self.draw(path, database, target, '--keep', layout))
                    # Lines that an order without constraints would part may cross.
                    self.assertEqual([*after.missing(), *after.overlaps(), *after.outside()], [])
                    self.assertEqual([pair for pair in neighbours(before) if after.boxes[pair[0]].top > after.boxes[pair[1]].top], [])
                    moved += self.moved(before, after)
                    anew += self.moved(before, Picture(path, self.draw(path, database, target)))
                    boxes += len(before.boxes)
        self.assertLess(moved, 0.25 * boxes)
        self.assertLess(moved, 0.75 * anew)

    def moved(self, before, after):
        """How many boxes are more than 50 pixels away from where they were."""
        return sum(max(abs(box.left - after.boxes[name].left), abs(box.top - after.boxes[name].top)) > 50
                   for name, box in before.boxes.items())


class Files(Drawing):
    def setUp(self):
        super().setUp()
        self.viewpoint = self.write('v.xml', document('<graph id="g"><node id="a"/><node id="b"/><link id="ab" from="a" to="b"/></graph>'))
        self.result = self.database()
        self.layout = self.folder / 'layout.json'

    def fails(self, status, *options):
        target = self.folder / 'x.svg'
        done = self.run_program('render', self.viewpoint, '--db', self.result, '-o', target, *options)
        self.assert_clean_failure(done, status)
        self.assertFalse(target.exists())
        return done.stderr

    def test_a_layout_is_json_with_ids(self):
        self.draw(self.viewpoint, self.result, self.folder / 'x.svg', '--save-layout', self.layout)
        layout = json.loads(self.layout.read_text(encoding='utf-8'))
        self.assertEqual((layout['kind'], layout['version'], layout['direction']), ('tessera layout', 1, 'lr'))
        self.assertEqual([[point.get('node') for point in layer['points']] for layer in layout['groups'][0]['layers']],
                         [[], ['a'], ['b'], []])

    def test_a_layout_may_be_replaced_by_the_new_one(self):
        self.draw(self.viewpoint, self.result, self.folder / 'x.svg', '--save-layout', self.layout)
        before = self.layout.read_bytes()
        self.draw(self.viewpoint, self.result, self.folder / 'x.svg', '--keep', self.layout, '--save-layout', self.layout)
        self.assertEqual(self.layout.read_bytes(), before)

    def test_other_files_are_refused_with_the_reason(self):
        self.assertIn('none.json', self.fails(3, '--keep', self.folder / 'none.json'))
        for text in ('', '{}', '{"kind": "tessera layout", "version": 9}', '[' * 1_000_000, '<svg/>'):
            error = self.fails(3, '--keep', self.write('other.json', text))
            self.assertRegex(error, r'other\.json: is not a layout that --save-layout has written: .*; without --keep, the picture')
        with open(self.folder / 'other.json', 'wb') as file:
            file.truncate(65 << 20)
        self.assertIn('more than 64 MiB', self.fails(3, '--keep', self.folder / 'other.json'))

    def test_the_layout_of_another_diagram_is_told(self):
        self.draw(self.viewpoint, self.result, self.folder / 'x.svg', '--save-layout', self.layout)
        text = self.layout.read_text(encoding='utf-8').replace('"node":"', '"node":"other ')
        for layout, message in ((self.write('other.json', text), 'other.json: is the layout of another diagram'),
                                (self.layout, '')):
            done = self.run_program('render', self.viewpoint, '--db', self.result, '-o', self.folder / 'y.svg', '--keep', layout,
                                    '--log-level', 'off')
            self.assertEqual(done.returncode, 0)
            self.assertIn(message, done.stderr)
            self.assertEqual(message == '', done.stderr == '')

    def test_places_outside_of_any_drawing_are_ignored(self):
        first = self.draw(self.viewpoint, self.result, self.folder / 'first.svg', '--save-layout', self.layout)
        saved = self.layout.read_text(encoding='utf-8')
        # The place of one node, of both, and of where the drawing's contents begin.
        for place, count, message in (('"node":"b","at":', 1, '1 place of'), (',"at":', 2, '2 places of'), ('{"at":', 1, '1 place of')):
            self.assertEqual(saved.count(place + '0.0'), count)
            layout = self.write('far.json', saved.replace(place + '0.0', place + '1e8'))
            done = self.run_program('render', self.viewpoint, '--db', self.result, '-o', self.folder / 'y.svg', '--log-level', 'off',
                                    '--keep', layout)
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertIn(f'far.json: ignored {message} it, too far away', done.stderr)
            self.assertEqual(*(ElementTree.parse(path).getroot().get('viewBox') for path in (first, self.folder / 'y.svg')))
        self.assertIn('"at" is not a number of pixels', self.fails(3, '--keep', self.write('far.json', saved.replace('0.0', '1e12'))))

    def test_both_are_for_pictures(self):
        for option in ('--keep', '--save-layout'):
            done = self.run_program('render', self.viewpoint, '--db', self.result, option, self.layout)
            self.assert_clean_failure(done, 2, option + ' is for pictures')
        for options in (('--direction', 'tb'), ('--fit', '4x3'), ('--fold', 'off')):
            self.assertIn('--keep', self.fails(2, '--keep', self.layout, *options))
        self.assertIn('different files', self.fails(2, '--save-layout', self.folder / 'x.svg'))
        self.assertIn('is an input', self.fails(2, '--save-layout', self.viewpoint))
        self.assertIn('is an input', self.fails(2, '--save-layout', self.result))


if __name__ == '__main__':
    program.main()
