"""What is wrong with the lines of a drawing, seen from the SVG alone."""
import collections
import itertools
import math
import re
import sys

import program

sys.path.insert(0, str(program.ROOT / 'bench/draw'))
import figures  # noqa: E402

SVG = figures.SVG
NUMBER = re.compile(r'-?\d+(?:\.\d+)?')
FAR = 80  # pixels along the line that a label of an end may be away from its box
HEADS = 8  # pixels between arrow heads on one side of a box
CORNER = 6  # pixels between the end of a line and a corner of its box
NEAR = 0.6  # pixels: coordinates are rounded
HEAD_LENGTH = 7.6  # from the tip of an arrow head to where its line begins


class Line:
    def __init__(self, group):
        self.id, self.ends = group.get('data-id'), (group.get('data-from'), group.get('data-to'))
        paths = list(group.iter(SVG + 'path'))
        chains = [chain for path in paths if figures.is_stroke(path) for chain in figures.chains_of(path.get('d'))]
        self.points = [point for chain in chains for point in chain]
        self.pieces = [(a, b) for chain in chains for a, b in zip(chain, chain[1:]) if math.dist(a, b) > 1e-6]
        self.tips = [tuple(map(float, NUMBER.findall(path.get('d'))[:2])) for path in paths if not figures.is_stroke(path)]

    def end(self, at_to):
        """Where the line ends, and whether it has a head there."""
        point = self.points[-1 if at_to else 0]
        tip = min((tip for tip in self.tips if math.dist(tip, point) < HEAD_LENGTH), key=lambda tip: math.dist(tip, point), default=None)
        return tip or point, tip is not None


def rectangle(group):
    return [float(group.find(SVG + 'rect').get(name)) for name in ('x', 'y', 'width', 'height')]


def is_at(point, box):
    x, y, width, height = box
    return x - NEAR <= point[0] <= x + width + NEAR and y - NEAR <= point[1] <= y + height + NEAR


def faults(root):
    boxes, labels, lines = {}, [], {}
    for group in root.iter(SVG + 'g'):
        kind = group.get('data-kind')
        if kind in ('node', 'group'):
            boxes[group.get('data-id')] = rectangle(group)
        elif kind == 'label':
            labels.append((group.get('data-link'), group.get('data-place'), rectangle(group)))
        elif kind == 'line':
            lines[group.get('data-id')] = Line(group)
    for link, place, box in labels:
        if link in lines:
            yield from label_faults(lines[link], place, box)
    yield from end_faults(boxes, lines.values())
    yield from pair_faults(lines.values())


def label_faults(line, place, box):
    x, y, width, height = box
    touching = [point for point in line.points if is_at(point, box)]

    def has(axis, value):
        return any(abs(point[axis] - value) < NEAR for point in touching)

    if not (has(0, x) and has(0, x + width)) and not (has(1, y) and has(1, y + height)):
        yield f'the line of {line.id} turns back inside its label {place}'
    if place not in ('from', 'to'):
        return
    points = line.points if place == 'from' else line.points[::-1]
    before = itertools.takewhile(lambda pair: not is_at(pair[0], box), zip(points, points[1:]))
    if sum(math.dist(a, b) for a, b in before) > FAR:
        yield f'label {place} of {line.id} is far from its end'


def end_faults(boxes, lines):
    heads = collections.defaultdict(list)
    for line in lines:
        for at_to, box in enumerate(line.ends):
            point, has_head = line.end(at_to)
            x, y, width, height = boxes[box]
            axis = 1 if min(abs(point[0] - x), abs(point[0] - x - width)) < NEAR else 0
            begin, length = (y, height) if axis else (x, width)
            if min(point[axis] - begin, begin + length - point[axis]) < CORNER - NEAR / 2:
                yield f'{line.id} ends at a corner of {box}'
            if has_head:
                heads[box, axis, round(point[1 - axis])].append(point[axis])
    for (box, *_), places in heads.items():
        if any(b - a < HEADS - NEAR / 2 for a, b in itertools.pairwise(sorted(places))):
            yield f'arrow heads at {box} are too near to each other'


def pair_faults(lines):
    """Lines that cross each other twice, or lie on each other."""
    squares = collections.defaultdict(list)
    for line in lines:
        for a, b in line.pieces:
            for square in figures.squares_of((*a, *b), 60):
                squares[square].append((a, b, line.id))
    crossings = collections.defaultdict(set)
    for square in squares.values():
        for (a, b, line), (c, d, other) in itertools.combinations(square, 2):
            if line == other:
                continue
            pair = (line, other) if line < other else (other, line)
            if lie_on_each_other(a, b, c, d):
                crossings[pair] |= {'touch', pair}
            elif figures.crossing((*a, *b), (*c, *d)):
                crossings[pair].add((a, b, c, d) if line < other else (c, d, a, b))
    for (line, other), at in crossings.items():
        if len(at) > 1:
            yield f'{line} and {other} ' + ('touch' if 'touch' in at else 'cross twice')


def lie_on_each_other(a, b, c, d):
    length = math.dist(a, b)
    for point in (c, d):
        if abs((b[0] - a[0]) * (point[1] - a[1]) - (b[1] - a[1]) * (point[0] - a[0])) > 0.3 * length:
            return False
    axis = 0 if abs(b[0] - a[0]) > abs(b[1] - a[1]) else 1
    return min(max(a[axis], b[axis]), max(c[axis], d[axis])) - max(min(a[axis], b[axis]), min(c[axis], d[axis])) > 1
