"""Counts crossings, lengths and bends in an SVG drawing of a graph, in the same way for every program."""
import collections
import math
import re
import xml.etree.ElementTree as ElementTree

PIECES = 8  # straight pieces that replace a curve
SVG = '{http://www.w3.org/2000/svg}'
NUMBER = re.compile(r'[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?')
COMMAND = re.compile(r'([A-Za-z])([^A-Za-z]*(?:[eE][-+]?\d+[^A-Za-z]*)*)')

Figures = collections.namedtuple('Figures', 'lines crossings length bends area aspect content')


def chains_of(path):
    """Returns the points of each connected part of a path. Understands M, L and C, which all the programs use."""
    chains = []
    for command, rest in COMMAND.findall(path):
        numbers = [float(number) for number in NUMBER.findall(rest)]
        points = list(zip(numbers[::2], numbers[1::2]))
        if command == 'M':
            chains.append(points[:1])
            chains[-1] += points[1:]
        elif command == 'L':
            chains[-1] += points
        elif command == 'C':
            for first, second, end in zip(points[::3], points[1::3], points[2::3]):
                chains[-1] += curve(chains[-1][-1], first, second, end)
        else:
            raise ValueError(f'path command {command}')
    return chains


def curve(start, first, second, end):
    def at(axis, t):
        s = 1 - t
        return s * s * s * start[axis] + 3 * s * s * t * first[axis] + 3 * s * t * t * second[axis] + t * t * t * end[axis]
    return [(at(0, i / PIECES), at(1, i / PIECES)) for i in range(1, PIECES + 1)]


def is_line(group):
    return group.get('data-kind') == 'line' or group.get('class') == 'edge'


def is_stroke(path):
    """Whether the path is a line; arrow heads are closed paths."""
    return not path.get('d').rstrip().lower().endswith('z')


def picture_of(file):
    """Returns width, height, for each line its connected parts, and the corners of all boxes.

    A heading and a legend are no boxes; neither is what is as large as the whole picture."""
    root = ElementTree.parse(file).getroot()
    width, height = (float(NUMBER.match(root.get(name))[0]) for name in ('width', 'height'))
    lines = [[chain for path in group.iter(SVG + 'path') if is_stroke(path) for chain in chains_of(path.get('d'))]
             for group in root.iter(SVG + 'g') if is_line(group)]
    return width, height, lines, list(corners_of(root, width, height))


def corners_of(root, width, height):
    for group in [root, *root.iter(SVG + 'g')]:
        if group.get('data-kind', 'node') not in ('node', 'group', 'label') or 'background' in (group.get('id') or ''):
            continue
        for shape in group:
            if shape.tag == SVG + 'rect' and shape.get('x') and float(shape.get('width')) < width - 1:
                x, y = float(shape.get('x')), float(shape.get('y'))
                yield x, y
                yield x + float(shape.get('width')), y + float(shape.get('height'))
            elif shape.tag == SVG + 'polygon' and group.get('class') in ('node', 'cluster'):
                numbers = [float(number) for number in NUMBER.findall(shape.get('points'))]
                yield from zip(numbers[::2], numbers[1::2])


def crossings_of(pieces):
    """Counts how often pieces (x1, y1, x2, y2, line) of different lines cross.

    Pieces are compared within the squares of a grid; a square is about as large as a piece. A crossing counts in the square that
    contains it."""
    if not pieces:
        return 0
    size = max(8.0, 2 * sum(math.dist(piece[:2], piece[2:4]) for piece in pieces) / len(pieces))
    squares = collections.defaultdict(list)
    for piece in pieces:
        for square in squares_of(piece, size):
            squares[square].append(piece)
    count = 0
    for square, inside in squares.items():
        for i, p in enumerate(inside):
            for q in inside[:i]:
                if p[4] != q[4] and (at := crossing(p, q)) and (at[0] // size, at[1] // size) == square:
                    count += 1
    return count


def squares_of(piece, size):
    """Yields the squares that the piece passes through, column by column, and some beside them."""
    (x1, y1), (x2, y2) = sorted((piece[:2], piece[2:4]))
    column, last = x1 // size, x2 // size
    while column <= last:
        left, right = max(x1, column * size), min(x2, (column + 1) * size)
        slope = (y2 - y1) / (x2 - x1) if x2 > x1 else None
        ends = (y1, y2) if slope is None else (y1 + (left - x1) * slope, y1 + (right - x1) * slope)
        row, bottom = min(ends) // size - (slope is not None), max(ends) // size + (slope is not None)
        while row <= bottom:
            yield column, row
            row += 1
        column += 1


def crossing(p, q):
    """Returns where two pieces cross, or None. Pieces are half open, so that a crossing at a joint counts once. Pieces on top of
    each other do not cross."""
    def side(a, x, y):
        return (a[2] - a[0]) * (y - a[1]) - (a[3] - a[1]) * (x - a[0])
    before, after = side(q, p[0], p[1]), side(q, p[2], p[3])
    if (before >= 0) == (after >= 0) or (side(p, q[0], q[1]) >= 0) == (side(p, q[2], q[3]) >= 0):
        return None
    t = before / (before - after)
    return p[0] + t * (p[2] - p[0]), p[1] + t * (p[3] - p[1])


def turn(a, b, c):
    return abs(math.remainder(math.atan2(c[1] - b[1], c[0] - b[0]) - math.atan2(b[1] - a[1], b[0] - a[0]), 2 * math.pi))


def figures_of(picture):
    """Counts all figures. The content is the area of the smallest rectangle around all boxes and lines. Bends are the sum of all turns in right angles, so that curves and corners are measured alike."""
    width, height, lines, corners = picture
    pieces, length, turns = [], 0.0, 0.0
    for number, chains in enumerate(lines):
        for chain in chains:
            points = [point for i, point in enumerate(chain) if i == 0 or math.dist(point, chain[i - 1]) > 1e-6]
            pieces += [(*a, *b, number) for a, b in zip(points, points[1:])]
            length += sum(math.dist(a, b) for a, b in zip(points, points[1:]))
            turns += sum(turn(a, b, c) for a, b, c in zip(points, points[1:], points[2:]))
    corners = corners + [point for chains in lines for chain in chains for point in chain]
    across, down = (max(values) - min(values) for values in zip(*corners)) if corners else (0, 0)
    return Figures(len(lines), crossings_of(pieces), length, turns / (math.pi / 2), width * height, width / height, across * down)
