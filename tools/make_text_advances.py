#!/usr/bin/env python3
"""Writes draw/scene/text_advances.h: the advance width of each character of DejaVu Sans, regular and bold.

Usage: make_text_advances.py [--check] [FONT_FOLDER]

Drawings are laid out with this table, so that they are the same on every machine, with or without the font. --check compares the
table with the font and writes nothing; without the font it ends with status 77."""

import pathlib
import struct
import sys
import unicodedata

import project

BLOCKS = [(0x20, 0x700), (0x1E00, 0x2400), (0x2500, 0x2700)]  # kept character by character
EM = 2048
UNKNOWN = 0xFFFF
HEADER = """// Advances of DejaVu Sans 2.37, in 1/2048 em. Written by tools/make_text_advances.py; do not change by hand.
#pragma once
// clang-format off

#include <array>
#include <cstdint>

namespace tessera_draw {

struct CharacterRange {
    char32_t first;
    char32_t last;
};

inline constexpr std::uint16_t unknownAdvance = 0xFFFF;  // the font lacks the character
"""


def tables(data):
    count = struct.unpack_from('>H', data, 4)[0]
    for index in range(count):
        tag, _, offset, length = struct.unpack_from('>4sIII', data, 12 + 16 * index)
        yield tag.decode(), data[offset:offset + length]


def characters(cmap):
    """Returns the glyph of each character, from the subtable of format 12."""
    for index in range(struct.unpack_from('>H', cmap, 2)[0]):
        offset = struct.unpack_from('>I', cmap, 4 + 8 * index + 4)[0]
        if struct.unpack_from('>H', cmap, offset)[0] != 12:
            continue
        glyphs = {}
        for group in range(struct.unpack_from('>I', cmap, offset + 12)[0]):
            first, last, glyph = struct.unpack_from('>III', cmap, offset + 16 + 12 * group)
            for code in range(first, last + 1):
                glyphs[code] = glyph + code - first
        return glyphs
    raise SystemExit('the font has no character table of format 12')


def advances(path):
    font = dict(tables(path.read_bytes()))
    if struct.unpack_from('>H', font['head'], 18)[0] != EM:
        raise SystemExit(f'{path}: its em is not {EM}')
    long_metrics = struct.unpack_from('>H', font['hhea'], 34)[0]
    return {code: struct.unpack_from('>H', font['hmtx'], 4 * min(glyph, long_metrics - 1))[0]
            for code, glyph in characters(font['cmap']).items()}


def is_zero(code):
    """Whether the character has no width: combining marks and format characters."""
    return unicodedata.category(chr(code)) in ('Mn', 'Me', 'Cf') and code != 0xAD


def ranges(belongs):
    """Returns the runs of characters outside the blocks for which `belongs` is true. Unassigned characters do not end a run."""
    found, inside = [], False
    for code in range(0x300, 0xE0200):
        if any(first <= code < end for first, end in BLOCKS):
            inside = False
        elif unicodedata.category(chr(code)) == 'Cn':
            continue
        elif not belongs(code):
            inside = False
        elif inside:
            found[-1][1] = code
        else:
            found.append([code, code])
            inside = True
    return found


def array(kind, name, items):
    lines, line = [], '   '
    for item in items:
        if len(line) + len(item) + 2 > 108:
            lines.append(line)
            line = '   '
        line += f' {item},'
    lines.append(line)
    return f'inline constexpr std::array<{kind}, {len(items)}> {name}{{{{\n' + '\n'.join(lines) + '\n}};\n'


def text(folder):
    fonts = [advances(folder / 'DejaVuSans.ttf'), advances(folder / 'DejaVuSans-Bold.ttf')]
    parts = [HEADER]
    starts = ', '.join(f'{{0x{first:X}, 0x{end - 1:X}}}' for first, end in BLOCKS)
    parts.append('// The characters of the two tables, block after block.\n'
                 f'inline constexpr std::array<CharacterRange, {len(BLOCKS)}> advanceBlocks{{{{{starts}}}}};\n')
    for name, font in zip(('regularAdvances', 'boldAdvances'), fonts):
        values = [0 if is_zero(code) else font.get(code, UNKNOWN)
                  for first, end in BLOCKS for code in range(first, end)]
        parts.append(array('std::uint16_t', name, [str(value) for value in values]))
    wide = ranges(lambda code: unicodedata.east_asian_width(chr(code)) in 'WF' and not is_zero(code))
    for comment, name, found in (('Characters without width.', 'zeroRanges', ranges(is_zero)),
                                 ('East Asian characters of one em.', 'wideRanges', wide)):
        parts.append(f'// {comment}\n' + array('CharacterRange', name,
                                               [f'{{0x{first:X}, 0x{last:X}}}' for first, last in found]))
    return '\n'.join(parts) + '\n}  // namespace tessera_draw\n'


def main():
    arguments = [each for each in sys.argv[1:] if each != '--check']
    folder = pathlib.Path(arguments[0] if arguments else '/usr/share/fonts/truetype/dejavu')
    target = project.root() / 'draw/scene/text_advances.h'
    if not (folder / 'DejaVuSans-Bold.ttf').is_file():
        print(f'{folder}: DejaVu Sans is not on this machine')
        return 77
    made = text(folder)
    if '--check' not in sys.argv:
        target.write_text(made, encoding='utf-8')
        return 0
    # The two lists of ranges depend on the Unicode version of Python, the advances only on the font.
    same = made.split('// Characters without')[0] == target.read_text(encoding='utf-8').split('// Characters without')[0]
    print('the table agrees with the font' if same else f'{target} does not agree with the font')
    return 0 if same else 1


if __name__ == '__main__':
    sys.exit(main())
