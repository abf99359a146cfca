#!/usr/bin/env python3
"""PNG and PDF from `render`: sizes, fonts, paper, and the library that draws them."""
import os
import re
import shutil
import struct
import subprocess

import program
from draw_test import DIAGRAM, QUERIES, Drawing, nested
from program import document


class Png(Drawing):
    def size(self, target):
        data = target.read_bytes()
        self.assertEqual(data[:8], b'\x89PNG\r\n\x1a\n')
        self.assertEqual(data[-8:-4], b'IEND')
        return struct.unpack('>II', data[16:24])

    def test_is_as_large_as_the_drawing_times_the_scale(self):
        root = self.tree()
        width, height = int(root.get('width')), int(root.get('height'))
        self.assertEqual(self.size(self.draw(name='x.png')), (width, height))
        self.assertEqual(self.size(self.draw('--scale', '2', name='x.png')), (2 * width, 2 * height))
        self.assertEqual(self.size(self.draw('--scale', '0.5', name='x.png')), (round(width / 2), round(height / 2)))

    def test_themes_differ(self):
        light = self.draw('--theme', 'light', name='x.png').read_bytes()
        self.assertNotEqual(light, self.draw('--theme', 'dark', name='y.png').read_bytes())
        self.assertEqual(light, self.draw('--theme', 'auto', name='z.png').read_bytes())

    def test_a_large_one_is_scaled_down_and_reported(self):
        nodes = ''.join(f'<node id="n{at}"/>' for at in range(1200))
        viewpoint = self.write('viewpoint.xml', document(f'<graph id="g">{nodes}</graph>'))
        done = self.run_program('render', viewpoint, '--db', self.database(), '-o', self.folder / 'x.png', '--scale', '4')
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn('scaled by', done.stderr)
        width, height = self.size(self.folder / 'x.png')
        self.assertLessEqual(width * height, 51_000_000)
        self.assertLessEqual(max(width, height), 32_000)

    def test_one_that_cannot_be_read_is_small(self):
        # 40 by 60 for each group: 40,168 by 60,138 in all, whose texts 50 million pixels could not show.
        viewpoint = self.write('viewpoint.xml', nested(1000))
        done = self.run_program('render', viewpoint, '--db', self.database(), '-o', self.folder / 'x.png', timeout=20 * program.SLOW)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stderr, r'scaled by 0\.07\d* to fit into a png')
        width, height = self.size(self.folder / 'x.png')
        self.assertAlmostEqual(width * height / 12e6, 1, delta=0.01)
        self.assertAlmostEqual(height / width, 60138 / 40168, delta=0.01)

    def test_one_that_could_not_show_a_box_is_refused_at_once(self):
        viewpoint = self.write('viewpoint.xml', nested(20_000))
        database = self.database()
        for name in ('x.png', 'x.pdf'):
            target = self.folder / name
            if name == 'x.pdf':
                viewpoint = self.write('viewpoint.xml', nested(100_000))
            done = self.run_program('render', viewpoint, '--db', database, '-o', target, timeout=20 * program.SLOW)
            self.assert_clean_failure(done, 3, f'{name[2:]}: the drawing is', 'could not be read; svg has no limit')
            self.assertFalse(target.exists())

    def test_characters_without_a_font_are_reported(self):
        (self.folder / 'fonts').mkdir()
        settings = self.write('fonts.conf', f'<fontconfig><dir>{self.folder}/fonts</dir></fontconfig>')
        viewpoint = self.write('viewpoint.xml', document(DIAGRAM, QUERIES))
        for name in ('x.png', 'x.pdf'):
            done = self.run_program('render', viewpoint, '--db', self.database(name=name + '.db'), '-o', self.folder / name,
                                    env={**os.environ, 'FONTCONFIG_FILE': str(settings)})
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertRegex(done.stderr, r'\d+ characters are drawn as boxes')
        self.assertEqual(self.run_program('render', viewpoint, '--db', self.database(name='f.db'), '-o', self.folder / 'x.png').stderr, '')


class PdfDrawing(Drawing):
    def text(self, target):
        return subprocess.run(['pdftotext', '-layout', target, '-'], capture_output=True, text=True, encoding='utf-8',
                              check=True, timeout=60).stdout


class Pdf(PdfDrawing):
    def test_text_can_be_selected(self):
        text = self.text(self.draw(name='x.pdf'))
        for each in ('Two and one', 'Group', 'First', 'Second', 'Third', 'sent', 'bandwidth'):
            self.assertIn(each, text)

    def test_the_same_input_gives_the_same_bytes(self):
        first = self.draw(name='x.pdf').read_bytes()
        self.assertTrue(first.startswith(b'%PDF-'))
        self.assertEqual(first, self.draw(name='y.pdf').read_bytes())

    def test_one_that_is_scaled_far_down_has_no_outlines_of_letters(self):
        # With them it takes 20 MB and 15 s.
        target = self.folder / 'x.pdf'
        viewpoint = self.write('viewpoint.xml', nested(20_000))
        done = self.run_program('render', viewpoint, '--db', self.database(), '-o', target, timeout=20 * program.SLOW)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertLess(target.stat().st_size, 5_000_000)

    def test_any_title_and_name_can_be_written(self):
        long = 'x' + 150 * 'ü'  # 301 bytes: the title ends at 200, inside a character
        for name in (long, 'a&#xFDD0;b', 'a&#xFFFD;&#x1FFFF;', 'a&#9;b&#127;c'):
            text = document(f'<graph id="g"><node id="{name}"/></graph><display><graph displayName="{name}"/></display>')
            self.assertTrue(self.draw(text=text, name='x.pdf').read_bytes().rstrip().endswith(b'%%EOF'), name)


class Paper(PdfDrawing):
    """A chain of twelve nodes, which is far too wide for a page."""

    CHAIN = document('<graph id="g">' + ''.join(f'<node id="n{i}"/>' for i in range(12)) +
                     ''.join(f'<link id="l{i}" from="n{i}" to="n{i + 1}"/>' for i in range(11)) + '</graph>')
    ACROSS = ('--direction', 'lr', '--fold', 'off')

    def sizes(self, target):
        """Width and height of each page in points."""
        done = subprocess.run(['pdfinfo', '-l', '1000', target], capture_output=True, text=True, check=True, timeout=60)
        return [tuple(map(float, size)) for size in re.findall(r'^Page +\d+ size: +([\d.]+) x ([\d.]+)', done.stdout, re.M)]

    def test_pages_have_the_size_of_the_paper(self):
        for paper, sides in (('a4', (841.89, 595.28)), ('a3', (1190.55, 841.89)), ('letter', (792, 612))):
            sizes = self.sizes(self.draw('--paper', paper, *self.ACROSS, text=self.CHAIN, name='x.pdf'))
            self.assertIn(sides, sizes)
            self.assertEqual(len(set(sizes)), 1)
        small = self.draw('--paper', 'a4', name='x.pdf')
        self.assertEqual(len(self.sizes(small)), 1)
        self.assertNotIn(' of ', self.text(small))

    def test_pages_are_numbered_and_show_everything(self):
        target = self.draw('--paper', 'a4', *self.ACROSS, text=self.CHAIN, name='x.pdf')
        pages = self.text(target).strip('\f\n').split('\f')
        self.assertGreater(len(pages), 1)
        for number, page in enumerate(pages, 1):
            self.assertIn(f'{number} of {len(pages)} (row 1, column {number})', page)
        self.assertEqual(set(re.findall(r'\bn\d+\b', ' '.join(pages))), {f'n{i}' for i in range(12)})
        self.assertNotIn('n11', pages[0])
        self.assertNotRegex(pages[-1], r'\bn0\b')
        self.assertEqual(target.read_bytes(), self.draw('--paper', 'a4', *self.ACROSS, text=self.CHAIN, name='y.pdf').read_bytes())

    def test_what_needs_too_many_pages_is_scaled_down_and_reported(self):
        chain = document('<graph id="g">' + ''.join(f'<node id="n{i}"/>' for i in range(1500)) +
                         ''.join(f'<link id="l{i}" from="n{i}" to="n{i + 1}"/>' for i in range(1499)) + '</graph>')
        viewpoint, target = self.write('viewpoint.xml', chain), self.folder / 'x.pdf'
        done = self.run_program('render', viewpoint, '--db', self.database(), '-o', target, '--paper', 'a4', *self.ACROSS)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stderr, r'it was scaled by 0\.\d+ to fit on 100 pages')
        self.assertLessEqual(len(self.sizes(target)), 100)


class OtherFonts(Drawing):
    def test_a_missing_font_is_reported(self):
        """With only a font whose letters are all as wide, texts have other widths."""
        fonts = self.folder / 'fonts'
        fonts.mkdir()
        shutil.copy('/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf', fonts)
        settings = self.write('fonts.conf', f'<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd"><fontconfig>'
                                            f'<dir>{fonts}</dir><cachedir>{self.folder}/cache</cachedir></fontconfig>')
        viewpoint = self.write('viewpoint.xml', document(DIAGRAM, QUERIES))
        for name in ('x.png', 'x.pdf'):
            for environment, expected in (({'FONTCONFIG_FILE': str(settings)}, True), ({}, False)):
                done = self.run_program('render', viewpoint, '--db', self.database(), '-o', self.folder / name,
                                        env={**os.environ, **environment})
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertEqual('another width' in done.stderr, expected, done.stderr)


class Loading(Drawing):
    def test_what_few_diagrams_need_is_not_linked(self):
        linked = subprocess.run(['ldd', program.PROGRAM], capture_output=True, text=True, check=True, timeout=60).stdout
        self.assertIn('libtessera', linked)
        for name in ('cairo', 'pango', 'glib', 'freetype', 'fontconfig', 'boost_locale', 'icu'):
            self.assertNotIn(name, linked)


if __name__ == '__main__':
    program.main()
