"""Tests the counting of crossings, lengths and bends on drawings with known figures."""
import io
import math
import random
import unittest

import figures


def svg(*paths):
    lines = ''.join(f'<g class="edge"><path d="{path}"/><path class="a" d="M0 0L1 1L2 0z"/></g>' for path in paths)
    return io.StringIO(f'<svg xmlns="http://www.w3.org/2000/svg" width="200pt" height="100">{lines}</svg>')


def count(*paths):
    return figures.figures_of(figures.picture_of(svg(*paths)))


class Figures(unittest.TestCase):
    def test_lattice(self):
        rows = [f'M0 {10 * i}L1000 {10 * i}' for i in range(1, 21)]
        columns = [f'M{7 * i} 0L{7 * i} 1000' for i in range(1, 31)]
        self.assertEqual(count(*rows, *columns).crossings, 600)

    def test_against_every_pair(self):
        source = random.Random(1)
        pieces = [(*(source.uniform(-300, 300) for _ in range(4)), i // 3) for i in range(300)]
        pieces += [(x, y, x + source.uniform(-5, 5), y + source.uniform(-5, 5), i)
                   for i in range(200) for x, y in [(source.uniform(-50, 50), source.uniform(-50, 50))]]
        pairs = sum(p[4] != q[4] and figures.crossing(p, q) is not None for i, p in enumerate(pieces) for q in pieces[:i])
        self.assertGreater(pairs, 1000)
        self.assertEqual(figures.crossings_of(pieces), pairs)

    def test_crossing_at_a_joint_counts_once(self):
        self.assertEqual(count('M0 0L10 10L20 20', 'M0 20L10 10L20 0').crossings, 1)

    def test_lines_from_one_point_do_not_cross(self):
        self.assertEqual(count('M0 0L10 10', 'M0 0L10 5').crossings, 0)

    def test_touching_from_one_side_is_no_crossing(self):
        self.assertEqual(count('M0 0L10 10L20 0', 'M0 10L20 10').crossings % 2, 0)

    def test_a_line_does_not_cross_itself(self):
        self.assertEqual(count('M0 0L10 10L10 0L0 10').crossings, 0)

    def test_lengths_and_bends(self):
        corner = count('M0 0L30 0L30 40')
        self.assertAlmostEqual(corner.length, 70)
        self.assertAlmostEqual(corner.bends, 1)
        # A quarter of a circle, very nearly.
        arc = count('M0 0C55.228 0 100 44.772 100 100')
        self.assertAlmostEqual(arc.length, math.pi * 50, delta=1)
        self.assertAlmostEqual(arc.bends, 1, delta=0.13)  # the pieces leave out half a turn at each end
        self.assertAlmostEqual(count('M0 0L10 0', 'M0 5L0 15').length, 20)

    def test_gap_in_a_line_has_no_length(self):
        self.assertAlmostEqual(count('M0 0L10 0M20 0L30 0').length, 20)

    def test_size(self):
        drawing = count('M0 0L1 1')
        self.assertEqual((drawing.lines, drawing.area, drawing.aspect, drawing.content), (1, 20000, 2, 1))

    def test_content_is_without_heading_and_frame(self):
        boxes = ('<rect x="0" y="0" width="200" height="100"/><g data-kind="heading"><rect x="0" y="0" width="90" height="9"/></g>'
                 '<g data-kind="node"><rect x="20" y="30" width="40" height="20"/></g><g class="node"><polygon points="90,40 99,45"/></g>')
        root = svg('M30 60L80 60').getvalue().replace('<g class="edge">', boxes + '<g class="edge">')
        self.assertEqual(figures.figures_of(figures.picture_of(io.StringIO(root))).content, 79 * 30)


if __name__ == '__main__':
    unittest.main()
