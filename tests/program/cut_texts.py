"""Finds texts that a drawing cuts although their box has room for them, from the SVG and the widths of the drawing's font."""
import re

import program

SVG = '{http://www.w3.org/2000/svg}'
WIDTHS = program.ROOT / 'draw/scene/text_advances.h'
RULE = re.compile(r'\.tessera-diagram \.(\w+)\{font-size:([\d.]+)px([^}]*)\}')
SIDES = {'node': 28, 'label': 20, 'header': 32}  # pixels of a box that are never text: left and right together
GAP = 14  # between a name and its value
MARK = 14  # a symbol with its gap, on the first line


def read_advances():
    """Widths in em, by weight and character."""
    source = WIDTHS.read_text(encoding='utf-8')
    blocks = re.findall(r'\{(0x[0-9A-F]+), (0x[0-9A-F]+)\}', source.split('advanceBlocks{{')[1].split('}};')[0] + '}')
    characters = [chr(code) for first, last in blocks for code in range(int(first, 16), int(last, 16) + 1)]
    lists = {name: source.split(name + 'Advances{{')[1].split('}}')[0] for name in ('regular', 'bold')}
    return {name: dict(zip(characters, (int(number) / 2048 for number in re.findall(r'\d+', text)))) for name, text in lists.items()}


class Fonts:
    def __init__(self, style):
        self.advances = read_advances()
        self.roles = {name: (float(size), 'bold' if '700' in rest else 'regular') for name, size, rest in RULE.findall(style)}

    def width(self, text, role):
        size, weight = self.roles[role]
        return sum(self.advances[weight].get(character, 1) for character in text) * size


def role_of(text):
    return text.get('class').split()[0]


def whole_texts(group):
    """What the tooltip says: names, values, and both."""
    title = group.find(SVG + 'title')
    lines = (title.text or '').split('\n') if title is not None else []
    return lines + [part for line in lines for part in line.split(': ')]


def cut_texts(root):
    """Each as its text, and whether its line has room for all of it."""
    fonts = Fonts(root.find(SVG + 'style').text)
    boxes, titles = {}, {}
    for group in root.iter(SVG + 'g'):
        kind = group.get('data-kind')
        if kind == 'group':
            boxes[group.get('data-id')] = group.find(SVG + 'rect')
            titles[group.get('data-id')] = whole_texts(group)
        if kind not in SIDES:
            continue
        box = boxes[group.get('data-id')] if kind == 'header' else group.find(SVG + 'rect')
        wholes = titles[group.get('data-id')] if kind == 'header' else whole_texts(group)
        texts = list(group.iter(SVG + 'text'))
        room = float(box.get('width')) - SIDES[kind]
        for text in texts:
            kept, dots, end = (text.text or '').partition('…')
            if not dots:
                continue
            kept = kept.rstrip()
            widths = [fonts.width(whole, role_of(text)) for whole in wholes
                      if whole.startswith(kept) and whole.endswith(end) and whole != kept]
            others = [other for other in texts if other is not text and other.get('y') == text.get('y')]
            if kind == 'label' and role_of(text) in ('ln', 'lv'):
                taken = -8  # centered texts come closer to the edges
            else:
                taken = 0
            taken += sum(fonts.width(other.text, role_of(other)) + GAP for other in others)
            if role_of(text) == 'n' and group.find(SVG + 'path') is not None:
                taken += MARK
            yield f'{kind} {text.text!r}', bool(widths) and min(widths) + taken <= room
