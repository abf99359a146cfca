#!/usr/bin/env python3
"""Draws the documents of this folder and the examples in README.md, and compares them with the expected drawings.

Usage: run.py PROGRAM [NAME...] [--write] [--page FILE]

--write replaces the expected drawings by the new ones. --page writes an HTML page that shows changed drawings, old and new side by
side, or all drawings when none changed. Look at that page before you use --write, and say in the commit why the new ones are good."""

import html
import pathlib
import sqlite3
import subprocess
import sys
import tempfile

FOLDER = pathlib.Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]
OTHER = 'other.db'  # the values that those of a drawing are compared with, beside its database
# Documents that are drawn a second time, with these options.
ALSO = {'nested_groups': ('_tb', ['--direction', 'tb']), 'chain': ('_tb', ['--direction', 'tb']),
        'levels': ('_against', ['--against', OTHER]), 'several_rows': ('_against', ['--against', OTHER])}
# The drawings in README.md: name, document, options.
SHOWN = (('backup', 'examples/backup/backup', ['--theme', 'auto']),
         ('backup_tb', 'examples/backup/backup', ['--theme', 'dark', '--direction', 'tb']),
         ('first', 'examples/backup/first', ['--theme', 'auto']),
         ('order_life', 'tests/draw/corpus/order-life', ['--theme', 'auto']))
STYLE = ('body{font:14px sans-serif;margin:24px;background:#888}figure{display:inline-block;margin:8px;vertical-align:top}'
         'figcaption{padding:4px 0}')


def make_database(folder, name, *scripts):
    path = pathlib.Path(folder) / name
    with sqlite3.connect(path) as connection:
        for script in scripts:
            connection.executescript(script.read_text(encoding='utf-8'))
    connection.close()
    return path


class Drawing:
    def __init__(self, document, values, kept, options):
        self.document, self.values, self.kept, self.options = document, values, kept, options
        self.name = kept.stem if kept.is_relative_to(FOLDER) else f'{kept.parent.name}/{kept.stem}'

    def old(self):
        return self.kept.read_text(encoding='utf-8') if self.kept.is_file() else None

    def new(self, program):
        with tempfile.TemporaryDirectory() as folder:
            database = make_database(folder, 'values.db', self.values)
            if OTHER in self.options:
                make_database(folder, OTHER, self.values, FOLDER / 'other.sql')
            done = subprocess.run([program, 'render', self.document, '--db', database, '--format', 'svg', '--log-level', 'off',
                                   *self.options], capture_output=True, text=True, encoding='utf-8', timeout=60, cwd=folder)
        if done.returncode != 0:
            sys.exit(f'{self.document.name}: exit status {done.returncode}: {done.stderr}')
        return done.stdout


def drawings():
    for path in sorted((FOLDER / 'documents').glob('*.xml')):
        for suffix, options in filter(None, (('', []), ALSO.get(path.stem))):
            yield Drawing(path, FOLDER / 'values.sql', FOLDER / 'drawings' / f'{path.stem}{suffix}.svg',
                          ['--theme', 'light', *options])
    for name, document, options in SHOWN:
        path = ROOT / f'{document}.xml'
        yield Drawing(path, path.with_suffix('.sql'), ROOT / 'docs/pictures' / f'{name}.svg', options)


def figure(caption, svg):
    # A frame of its own, because the styles and ids of two drawings would clash in one page.
    return (f'<figure><figcaption>{html.escape(caption)}</figcaption>'
            f'<iframe style="border:0;width:1000px;height:600px" srcdoc="{html.escape(svg)}"></iframe></figure>')


def page(shown):
    parts = []
    for drawing, old, new in shown:
        parts.append(f'<h2>{html.escape(drawing.name)}</h2>')
        if old == new:
            parts.append(figure('unchanged', new))
        else:
            parts.append((figure('old', old) if old is not None else '') + figure('new', new))
    return f'<!DOCTYPE html><meta charset="utf-8"><title>Drawings</title><style>{STYLE}</style>' + ''.join(parts)


def main():
    arguments = sys.argv[1:]
    wants_page = '--page' in arguments
    page_file = arguments.pop(arguments.index('--page') + 1) if wants_page else None
    program, *names = [each for each in arguments if not each.startswith('--')]
    program = pathlib.Path(program).resolve()
    wanted = [each for each in drawings() if not names or each.document.stem in names]
    results = [(each, each.old(), each.new(program)) for each in wanted]
    changed = [each for each in results if each[1] != each[2]]
    if wants_page:
        pathlib.Path(page_file).write_text(page(changed or results), encoding='utf-8')
    if '--write' in arguments:
        for drawing, _, new in changed:
            drawing.kept.parent.mkdir(exist_ok=True)
            drawing.kept.write_text(new, encoding='utf-8')
    for drawing, old, _ in changed:
        print(f'{drawing.name}: {"new" if old is None else "changed"}')
    print(f'{len(results)} drawings, {len(changed)} differ')
    return 1 if not results or (changed and '--write' not in arguments) else 0


if __name__ == '__main__':
    sys.exit(main())
