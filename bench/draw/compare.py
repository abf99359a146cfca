#!/usr/bin/env python3
"""Compares Tessera's drawings of generated diagrams with those of other programs: crossings, length and bends of lines, area
and shape; with --speed, the time and memory to make them. Prints the tables of docs/benchmarks.md.

    bench/draw/compare.py --generator FILE --program FILE [--sizes 20,50,...] [--shapes flat,nested] [--limit SECONDS]
    bench/draw/compare.py --generator FILE --program FILE --speed [--sizes 1000,10000] [--runs N]
    bench/draw/compare.py --program FILE --documents FOLDER...

--documents takes folders of documents, each with its database as SQL beside it, such as tests/draw/corpus.

--generator is tessera_bench_layout and --program is tessera, both from a release build. The other programs need `dot` (graphviz),
node, `time`, and one `npm ci` in bench/layout/peers. All programs lay out the same graph from left to right, and Tessera chooses the
direction of documents, as it does by default. Boxes, and boxes for labels, are as large as Tessera draws them."""
import argparse
import json
import os
import pathlib
import resource
import shutil
import signal
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree as ElementTree

import figures

PEERS = pathlib.Path(__file__).resolve().parents[1] / 'layout/peers'
PROGRAMS = ('Tessera', 'dot', 'elkjs')


def make_database(path, nodes):
    """Makes a database with a value for every query of a generated document."""
    with sqlite3.connect(path) as database:
        database.execute('CREATE TABLE nodes(id INTEGER PRIMARY KEY, load REAL, memory INTEGER)')
        database.execute('CREATE TABLE links(id INTEGER PRIMARY KEY, bytes INTEGER, seconds REAL, share REAL)')
        database.executemany('INSERT INTO nodes VALUES (?, ?, ?)', ((i, i % 97 / 97, i * 4096) for i in range(nodes)))
        database.executemany('INSERT INTO links VALUES (?, ?, ?, ?)',
                             ((i, i * 1000 + 1, 1.0 + i % 7, i % 89 / 89) for i in range(2 * nodes)))
    database.close()


def run(command, limit):
    """Seconds and peak bytes of the whole process; None when it took too long, False when it failed.

    The seconds are the smaller of processor time and elapsed time: the first is right on a busy machine, the second for a process
    with several threads."""
    def processor_time():
        usage = resource.getrusage(resource.RUSAGE_CHILDREN)
        return usage.ru_utime + usage.ru_stime

    with tempfile.NamedTemporaryFile('r') as measured:
        begin, used = time.monotonic(), processor_time()
        process = subprocess.Popen(['time', '-q', '-o', measured.name, '-f', '%M', *command], stderr=subprocess.PIPE,
                                   stdout=subprocess.DEVNULL, text=True, start_new_session=True, preexec_fn=raise_stack)
        try:
            _, complaint = process.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            return None
        if process.returncode != 0:
            print(f'{command[0]} ends with {process.returncode}: {complaint[:200]}', file=sys.stderr)
            return False
        return min(time.monotonic() - begin, processor_time() - used), int(measured.read()) * 1024


def raise_stack():
    """Raises the stack limit, because `dot` recurses deeply."""
    _, most = resource.getrlimit(resource.RLIMIT_STACK)
    wanted = 1 << 30
    resource.setrlimit(resource.RLIMIT_STACK, (wanted if most == resource.RLIM_INFINITY else min(wanted, most), most))


def graph_of(document, drawing):
    """Returns the document's groups, nodes and links, with the sizes of boxes and labels in the drawing."""
    sizes, labels = {}, {}
    for group in ElementTree.parse(drawing).getroot().iter(figures.SVG + 'g'):
        box = group.find(figures.SVG + 'rect')
        if group.get('data-kind') == 'node':
            sizes[group.get('data-id')] = [float(box.get('width')), float(box.get('height'))]
        elif group.get('data-kind') == 'label':
            labels.setdefault(group.get('data-link'), []).append([float(box.get('width')), float(box.get('height'))])
    root = ElementTree.parse(document).getroot().find('diagram/graph')
    groups, nodes = [], []
    open_elements = [(root, None)]
    while open_elements:
        element, parent = open_elements.pop()
        for node in element.findall('node'):
            if node.find('node') is not None:
                groups.append([node.get('id'), parent])
                open_elements.append((node, node.get('id')))
            else:
                nodes.append([node.get('id'), parent, *sizes[node.get('id')]])
    return {'groups': groups, 'nodes': nodes,
            'links': [[link.get('from'), link.get('to'), labels.get(link.get('id'), [])] for link in root.findall('link')]}


def write_dot(graph, path):
    inside = {}
    for kind in ('groups', 'nodes'):
        for name, parent, *size in graph[kind]:
            inside.setdefault(parent, []).append((kind == 'groups', name, size))

    def body(parent):
        for is_group, name, size in inside.get(parent, ()):
            if is_group:
                yield f'subgraph "cluster_{name}" {{ label="{name}"; margin=20;'
                yield from body(name)
                yield '}'
            else:
                yield f'"{name}" [width={size[0] / 72},height={size[1] / 72}];'

    def label(sizes):
        return ''.join(f' [label=<<TABLE BORDER="0" FIXEDSIZE="TRUE" WIDTH="{width:.0f}" HEIGHT="{height:.0f}">'
                       f'<TR><TD></TD></TR></TABLE>>]' for width, height in sizes[:1])

    with open(path, 'w', encoding='utf-8') as file:
        print('digraph g { rankdir=LR; node [shape=box,fixedsize=true,label=""];', *body(None),
              *(f'"{a}" -> "{b}"{label(sizes)};' for a, b, sizes in graph['links']), '}', sep='\n', file=file)


class Bench:
    def __init__(self, arguments, folder):
        self.arguments, self.folder = arguments, folder
        self.options = ['--direction', 'lr', '--fold', 'off']

    def prepare(self, shape, nodes):
        options = {'flat': ['--flat'], 'nested': [], 'tangled': ['--tangled']}[shape]
        document = self.folder / 'generated.xml'
        subprocess.run([self.arguments.generator, '--nodes', str(nodes), *options, '--document', document], check=True,
                       stdout=subprocess.DEVNULL)
        (self.folder / 'generated.db').unlink(missing_ok=True)
        make_database(self.folder / 'generated.db', nodes)
        self.draw(document)

    def prepare_document(self, document):
        self.options = []
        shutil.copy(document, self.folder / 'generated.xml')
        (self.folder / 'generated.db').unlink(missing_ok=True)
        with sqlite3.connect(self.folder / 'generated.db') as database:
            database.executescript(document.with_suffix('.sql').read_text(encoding='utf-8'))
        database.close()
        self.draw(document)

    def draw(self, document):
        """Makes Tessera's drawing, and from it the graph as the other programs read it."""
        run(self.command('Tessera'), self.arguments.limit)
        graph = graph_of(document, self.drawing('Tessera'))
        (self.folder / 'graph.json').write_text(json.dumps(graph), encoding='utf-8')
        write_dot(graph, self.folder / 'graph.dot')

    def drawing(self, name):
        return self.folder / f'{name}.svg'

    def command(self, name):
        out = self.drawing(name)
        return {'Tessera': [self.arguments.program, 'render', self.folder / 'generated.xml', '--db',
                            self.folder / 'generated.db', '-o', out, '--log-level', 'fatal', *self.options],
                'dot': ['dot', '-Tsvg', '-o', out, self.folder / 'graph.dot'],
                'elkjs': ['node', '--stack-size=50000', '--max-old-space-size=8000', PEERS / 'elk_svg.mjs',
                          self.folder / 'graph.json', out]}[name]


def row(*cells):
    print('| ' + ' | '.join(str(cell) for cell in cells) + ' |', flush=True)


def head(*cells):
    row(*cells)
    row(*['---'] * len(cells))


def compare_drawings(bench, sizes, shapes):
    head('shape', 'nodes', 'links', *(f'{what}: Tessera, `dot`, elkjs' for what in
                                      ('crossings', 'length, thousand px', 'bends', 'area, million px', 'width to height')))
    ratios = {name: [] for name in PROGRAMS[1:]}
    for shape in shapes:
        for nodes in sizes:
            bench.prepare(shape, nodes)
            drawn = {}
            for name in PROGRAMS:
                done = run(bench.command(name), bench.arguments.limit)
                drawn[name] = figures.figures_of(figures.picture_of(bench.drawing(name))) if done else None
            for name, of_peer in drawn.items():
                if name in ratios and of_peer:
                    ratios[name].append((drawn['Tessera'].crossings + 1) / (of_peer.crossings + 1))
            columns = [', '.join(form(each) if each else 'none' for each in drawn.values()) for form in (
                lambda each: f'{each.crossings:,}', lambda each: f'{each.length / 1e3:,.0f}', lambda each: f'{each.bends:,.0f}',
                lambda each: f'{each.area / 1e6:,.2f}', lambda each: f'{each.aspect:.2f}')]
            row(shape, f'{nodes:,}', f"{drawn['Tessera'].lines:,}", *columns)
    for name, values in ratios.items():
        if values:
            print(f'\nCrossings of Tessera to those of {name}: {statistics.median(values):.2f} in the median, '
                  f'{min(values):.2f} to {max(values):.2f}.')


def compare_documents(bench, folders):
    """Figures of each document, and their sums and medians by folder, of the documents that all programs draw."""
    for folder in folders:
        head(folder.name, 'lines', *(f'{what}: Tessera, `dot`, elkjs' for what in
                                     ('crossings', 'length, px', 'content, million px', 'width to height')))
        of_all = []
        for document in sorted(folder.glob('*.xml')):
            bench.prepare_document(document)
            drawn = {}
            for name in PROGRAMS:
                done = name == 'Tessera' or run(bench.command(name), bench.arguments.limit)
                drawn[name] = figures.figures_of(figures.picture_of(bench.drawing(name))) if done else None
            if all(drawn.values()):
                of_all.append(drawn)
            row(document.stem, drawn['Tessera'].lines, *(
                ', '.join(form(each) if each else 'none' for each in drawn.values()) for form in (
                    lambda each: f'{each.crossings:,}', lambda each: f'{each.length:,.0f}', lambda each: f'{each.content / 1e6:,.2f}',
                    lambda each: f'{each.aspect:.2f}')))
        summarize(of_all)


def summarize(of_all):
    if not of_all:
        return
    def median(value):
        return ', '.join(f'{statistics.median(value(drawn, name) for drawn in of_all):,.2f}' for name in PROGRAMS)
    print(f'\n{len(of_all)} documents that all programs draw (Tessera, dot, elkjs). Crossings: sum '
          + ', '.join(f'{sum(drawn[name].crossings for drawn in of_all):,}' for name in PROGRAMS)
          + f'; median {median(lambda drawn, name: drawn[name].crossings)}. '
          f"Length to Tessera's, median: {median(lambda drawn, name: drawn[name].length / max(drawn['Tessera'].length, 1))}. "
          f"Content to Tessera's, median: {median(lambda drawn, name: drawn[name].content / drawn['Tessera'].content)}. "
          f"Whole picture to Tessera's, median: {median(lambda drawn, name: drawn[name].area / drawn['Tessera'].area)}. "
          'Wider than 4 to 1 or higher than 3 to 1: '
          + ', '.join(str(sum(not 1 / 3 <= drawn[name].aspect <= 4 for drawn in of_all)) for name in PROGRAMS) + '.\n')


def time_of(result, limit):
    if not result:
        return 'fails' if result is False else f'> {limit:.0f} s'
    return f'{result[0]:.2f} s' if result[0] >= 1 else f'{result[0] * 1000:.0f} ms'


def compare_speed(bench, sizes, shapes):
    head('shape', 'nodes', *PROGRAMS, 'fastest peer to Tessera', '`dot` to Tessera', *(f'peak memory of {name}' for name in PROGRAMS))
    for shape in shapes:
        for nodes in sizes:
            bench.prepare(shape, nodes)
            best = {}
            for name in PROGRAMS:
                results = [run(bench.command(name), bench.arguments.limit)
                           for _ in range(bench.arguments.runs if nodes <= 2000 or name == 'Tessera' else 1)]
                best[name] = min(results) if all(results) else False if False in results else None
            own = best['Tessera'][0]
            peers = [best[name][0] for name in PROGRAMS[1:] if best[name]]
            row(shape, f'{nodes:,}', *(time_of(each, bench.arguments.limit) for each in best.values()),
                f'{min(peers) / own:,.0f} times' if peers else 'none finishes',
                f"{best['dot'][0] / own:,.0f} times" if best['dot'] else
                'it fails' if best['dot'] is False else f'> {bench.arguments.limit / own:,.0f} times',
                *(f'{each[1] / 1e6:,.0f} MB' if each else '' for each in best.values()))


def main():
    def names(text):
        return text.split(',')

    def numbers(text):
        return [int(part) for part in text.split(',')]

    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--generator', type=pathlib.Path)
    parser.add_argument('--documents', type=pathlib.Path, nargs='+')
    parser.add_argument('--program', type=pathlib.Path, required=True)
    parser.add_argument('--sizes', type=numbers)
    parser.add_argument('--shapes', type=names, default=['flat', 'nested'])
    parser.add_argument('--limit', type=float, default=120)
    parser.add_argument('--runs', type=int, default=3)
    parser.add_argument('--speed', action='store_true')
    arguments = parser.parse_args()
    if not shutil.which('dot') or not shutil.which('time') or not (PEERS / 'node_modules').is_dir():
        sys.exit('the other programs are not installed; the top of this file lists them')
    with tempfile.TemporaryDirectory(prefix='tessera-drawings-') as folder:
        bench = Bench(arguments, pathlib.Path(folder))
        if arguments.documents:
            compare_documents(bench, arguments.documents)
        elif not arguments.generator:
            parser.error('--generator or --documents is missing')
        elif arguments.speed:
            compare_speed(bench, arguments.sizes or [1000, 10_000], arguments.shapes)
        else:
            compare_drawings(bench, arguments.sizes or [20, 50, 100, 200, 500, 1000, 2000], arguments.shapes)


if __name__ == '__main__':
    main()
