#!/usr/bin/env python3
"""Draws the documents of this folder and compares the drawings with those kept beside them.

Usage: run.py PROGRAM [NAME...] [--write] [--page FILE]

--write keeps the new drawings; --page writes a page that shows what changed, old beside new (all of them when nothing did).
A drawing is kept because somebody looked at it and found it good: look before you write, and say in the commit why."""

import html
import pathlib
import sqlite3
import subprocess
import sys
import tempfile

FOLDER = pathlib.Path(__file__).resolve().parent
# Documents that are drawn in another way than from left to right as well.
ALSO = {'nested_groups': ['--direction', 'tb'], 'chain': ['--direction', 'tb']}
STYLE = ('body{font:14px sans-serif;margin:24px;background:#888}figure{display:inline-block;margin:8px;vertical-align:top}'
         'figcaption{padding:4px 0}')


def drawings(names):
    """Name of the drawing, its document, and the options."""
    for path in sorted((FOLDER / 'documents').glob('*.xml')):
        if names and path.stem not in names:
            continue
        yield path.stem, path, []
        if path.stem in ALSO:
            yield f'{path.stem}_tb', path, ALSO[path.stem]


def draw(program, document, database, options):
    done = subprocess.run([program, 'render', document, '--db', database, '--format', 'svg', '--theme', 'light', '--log-level', 'off',
                           *options], capture_output=True, text=True, encoding='utf-8', timeout=60)
    if done.returncode != 0:
        sys.exit(f'{document.name}: exit status {done.returncode}: {done.stderr}')
    return done.stdout


def figure(caption, svg):
    # As an image of its own each drawing keeps its style and its ids to itself.
    return (f'<figure><figcaption>{html.escape(caption)}</figcaption>'
            f'<iframe style="border:0;width:1000px;height:600px" srcdoc="{html.escape(svg)}"></iframe></figure>')


def page(shown):
    parts = []
    for name, old, new in shown:
        parts.append(f'<h2>{html.escape(name)}</h2>')
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
    results = []
    with tempfile.TemporaryDirectory() as folder:
        database = pathlib.Path(folder) / 'values.db'
        with sqlite3.connect(database) as connection:
            connection.executescript((FOLDER / 'values.sql').read_text(encoding='utf-8'))
        connection.close()
        for name, document, options in drawings(names):
            kept = FOLDER / 'drawings' / f'{name}.svg'
            old = kept.read_text(encoding='utf-8') if kept.is_file() else None
            results.append((name, old, draw(program, document, database, options)))
    changed = [each for each in results if each[1] != each[2]]
    if wants_page:
        pathlib.Path(page_file).write_text(page(changed or results), encoding='utf-8')
    if '--write' in arguments:
        (FOLDER / 'drawings').mkdir(exist_ok=True)
        for name, _, new in changed:
            (FOLDER / 'drawings' / f'{name}.svg').write_text(new, encoding='utf-8')
    for name, old, _ in changed:
        print(f'{name}: {"new" if old is None else "changed"}')
    print(f'{len(results)} drawings, {len(changed)} differ')
    return 1 if not results or (changed and '--write' not in arguments) else 0


if __name__ == '__main__':
    sys.exit(main())
