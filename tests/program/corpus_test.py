"""Drawings of the diagrams in tests/draw/corpus, looked at from the SVG alone: nothing overlaps, nothing is missing, values
are whole, links between a group and what is inside it stay inside, and lines have no fault of line_faults.py."""
import concurrent.futures
import itertools
import re
import sqlite3
import xml.etree.ElementTree as ElementTree

import cut_texts
import line_faults
import program

SVG = '{http://www.w3.org/2000/svg}'
CORPUS = program.ROOT / 'tests/draw/corpus'
NUMBER = re.compile(r'-?\d+(?:\.\d+)?')
LARGE = 80_000  # bytes of a document; such are for the benchmark


class Box:
    def __init__(self, element):
        self.left, self.top, width, height = (float(element.get(name)) for name in ('x', 'y', 'width', 'height'))
        self.right, self.bottom = self.left + width, self.top + height

    def overlaps(self, other):
        return self.left < other.right and other.left < self.right and self.top < other.bottom and other.top < self.bottom

    def contains(self, other):
        return (self.left <= other.left and other.right <= self.right and self.top <= other.top and other.bottom <= self.bottom)

    def has_point(self, x, y):
        return self.left - 1 <= x <= self.right + 1 and self.top - 1 <= y <= self.bottom + 1


class Picture:
    """What a document says, and what its drawing shows."""

    def __init__(self, document, drawing):
        graph = ElementTree.parse(document).getroot().find('diagram/graph')
        self.parents = {child.get('id'): parent.get('id') for parent in graph.iter() for child in parent.findall('node')}
        self.links = {link.get('id'): (link.get('from'), link.get('to')) for link in graph.findall('link')}
        root = ElementTree.parse(drawing).getroot()
        self.boxes, self.labels, self.lines, self.texts = {}, [], {}, []
        for group in root.iter(SVG + 'g'):
            kind, box = group.get('data-kind'), group.find(SVG + 'rect')
            if kind in ('node', 'group'):
                self.boxes[group.get('data-id')] = Box(box)
            elif kind == 'label':
                self.labels.append((group.get('data-link'), Box(box)))
            elif kind == 'line':
                paths = [path.get('d') for path in group.iter(SVG + 'path') if not path.get('d').rstrip().lower().endswith('z')]
                numbers = [float(number) for path in paths for number in NUMBER.findall(path)]
                self.lines[group.get('data-id')] = list(zip(numbers[::2], numbers[1::2]))
            if kind in ('node', 'header', 'label'):
                self.texts += [text.text for text in group.iter(SVG + 'text')]
        self.cut = list(cut_texts.cut_texts(root))
        self.line_faults = list(line_faults.faults(root))

    def is_inside(self, node, group):
        while node is not None and node != group:
            node = self.parents.get(node)
        return node is not None

    def faults(self):
        yield from self.missing()
        yield from self.overlaps()
        yield from self.outside()
        # A value that is cut has a digit before its dots.
        yield from (f'{text} is cut' for text in self.texts if re.search(r'\d…$', text or ''))
        yield from self.line_faults
        yield from (f'{text} is cut, but has room' for text, has_room in self.cut if has_room)

    def missing(self):
        yield from (f'{node} is missing' for node in self.parents if node not in self.boxes)
        yield from (f'the line of {link} is missing' for link in self.links if link not in self.lines)

    def overlaps(self):
        for (name, box), (other, second) in itertools.combinations(self.boxes.items(), 2):
            if self.is_inside(name, other) or self.is_inside(other, name):
                outer, inner = (second, box) if self.is_inside(name, other) else (box, second)
                if not outer.contains(inner):
                    yield f'{name} and {other} are not inside of each other'
            elif box.overlaps(second):
                yield f'{name} overlaps {other}'
        for (link, label), (other, second) in itertools.combinations(self.labels, 2):
            if label.overlaps(second):
                yield f'labels of {link} and {other} overlap'
        for (link, label), (name, box) in itertools.product(self.labels, self.boxes.items()):
            if label.overlaps(box) and not box.contains(label):
                yield f'a label of {link} overlaps {name}'

    def outside(self):
        for link, ends in self.links.items():
            for group, member in (ends, ends[::-1]):
                if group == member or not self.is_inside(member, group):
                    continue
                box = self.boxes[group]
                if not all(box.has_point(*point) for point in self.lines[link]):
                    yield f'the line of {link} leaves {group}'
                if not all(box.contains(label) for name, label in self.labels if name == link):
                    yield f'a label of {link} is outside of {group}'


class Corpus(program.Case):
    def faults_of(self, document, *options):
        database = self.folder / f'{document.stem}.db'
        if not database.exists():
            with sqlite3.connect(database) as connection:
                connection.executescript(document.with_suffix('.sql').read_text(encoding='utf-8'))
            connection.close()
        drawing = self.folder / f'{document.stem}{len(options)}.svg'
        done = self.run_program('render', document, '--db', database, '-o', drawing, '--log-level', 'off', *options)
        if done.returncode != 0:
            return [f'status {done.returncode}: {done.stderr}']
        return list(Picture(document, drawing).faults())

    def test_drawings_are_sound(self):
        documents = sorted(path for path in CORPUS.glob('*.xml') if path.stat().st_size < LARGE)
        self.assertGreaterEqual(len(documents), 36)
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            for options, chosen in (((), documents), (('--direction', 'lr', '--mode', 'ratio', '--acyclic'), documents[::2]),
                                    (('--direction', 'tb', '--fold', 'off'), documents[1::4])):
                for document, faults in zip(chosen, pool.map(lambda document: self.faults_of(document, *options), chosen)):
                    with self.subTest(document=document.stem, options=options):
                        self.assertEqual(faults, [])

    def test_texts_that_are_cut_are_seen(self):
        """Names of this diagram are longer than its boxes may be; in wider boxes they would have room."""
        self.faults_of(CORPUS / 'long-labels.xml')
        root = ElementTree.parse(self.folder / 'long-labels0.svg').getroot()
        self.assertGreater(len(list(cut_texts.cut_texts(root))), 20)
        for box in root.iter(SVG + 'rect'):
            if box.get('x'):
                box.set('width', str(10 * float(box.get('width'))))
        self.assertTrue(all(has_room for _, has_room in cut_texts.cut_texts(root)))

    def test_faults_of_lines_are_seen(self):
        """Each of these is planted into a drawing without faults."""
        line = '<g data-kind="line" data-id="{}" data-from="a" data-to="b"><path d="{}"/>{}</g>'
        label = '<g data-kind="label" data-link="l" data-place="{}"><rect x="{}" y="40" width="40" height="20"/></g>'
        head = '<path d="M{0} {1}L{2} {3}L{2} {4}z"/>'

        def heads(*places):
            return ''.join(head.format(400, y, 391, y - 4, y + 4) for y in places)

        def lines(*parts):
            return ''.join(line.format(*part) for part in parts)

        planted = {
            '': lines(('l', 'M100 50L124 50M164 50L393 50', heads(50)), ('m', 'M100 58L393 58', heads(58))) + label.format('from', 124),
            'is far from its end': lines(('l', 'M100 50L200 50M240 50L400 50', '')) + label.format('from', 200),
            'turns back inside its label center': lines(('l', 'M100 45L200 45M200 55L100 55L400 60', '')) + label.format('center', 200),
            'ends at a corner of b': lines(('l', 'M100 50L400 3', '')),
            'arrow heads at b are too near': lines(('l', 'M100 50L393 50', heads(50)), ('m', 'M100 56L393 56', heads(56))),
            'l and m cross twice': lines(('l', 'M100 50L400 50', ''), ('m', 'M100 40L200 60L400 40', '')),
            'l and m touch': lines(('l', 'M100 50L400 50', ''), ('m', 'M100 40L200 50L300 50L400 40', '')),
        }
        boxes = ''.join(f'<g data-kind="node" data-id="{name}"><rect x="{x}" y="0" width="100" height="100"/></g>'
                        for name, x in (('a', 0), ('b', 400)))
        for expected, parts in planted.items():
            root = ElementTree.fromstring(f'<svg xmlns="http://www.w3.org/2000/svg">{boxes}{parts}</svg>')
            faults = list(line_faults.faults(root))
            with self.subTest(expected=expected):
                self.assertEqual(len(faults), 1 if expected else 0, faults)
                self.assertTrue(not expected or expected in faults[0], faults)

    def test_levels_as_written_are_seen(self):
        """The checks find something: with the levels of the library, labels of such links are outside of their group."""
        faults = self.faults_of(CORPUS / 'elevator.xml', '--layers', 'document')
        self.assertTrue(any('is outside of' in fault or 'leaves' in fault for fault in faults), faults)


if __name__ == '__main__':
    program.main()
