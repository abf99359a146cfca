#!/usr/bin/env python3
"""Measures the layout of generated diagrams, and of other engines on the same graphs. Prints the tables of docs/benchmarks.md.

    bench/layout/run.py PROGRAM [--sizes 1000,10000,...] [--runs N] [--peers | --peers-only] [--peer-sizes 100,1000,...]

PROGRAM is tessera_bench_layout from a release build. --peers measures the other engines too, --peers-only nothing else; they need
`dot` (graphviz), node, and one `npm ci` in bench/layout/peers. A peer has 120 seconds per graph."""
import argparse
import json
import pathlib
import resource
import shutil
import subprocess
import tempfile
import time
import xml.etree.ElementTree as ElementTree

HERE = pathlib.Path(__file__).resolve().parent
LIMIT = 120  # seconds
LARGEST_TANGLED = 100_000  # with more nodes, the ids exceed the limit of the layout
LABEL = '12.3 MB/s'
SHAPES = (('flat', ['--flat']), ('nested', []), ('tangled', ['--tangled']))


def measure(program, nodes, options, runs, document=None):
    command = [program, '--nodes', str(nodes), '--runs', str(runs), *options]
    if document:
        command += ['--document', document]
    return json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)


def row(*cells):
    print('| ' + ' | '.join(str(cell) for cell in cells) + ' |', flush=True)


def head(*cells):
    row(*cells)
    row(*['---'] * len(cells))


def own_table(program, sizes, runs):
    stages = None
    for shape, options in SHAPES:
        before = None
        for nodes in sizes:
            if shape == 'tangled' and nodes > LARGEST_TANGLED:
                continue
            figures = measure(program, nodes, options, runs)
            if stages is None:
                stages = [stage for stage in figures['stages'] if stage != 'data']
                head('shape', 'nodes', 'written nodes, links', 'XML alone', *[f'`{stage}`' for stage in stages],
                     '**create**', 'to XML', 'growth', 'peak memory')
            create = figures['create']
            row(shape, f'{nodes:,}', f"{figures['nodesOut']:,}, {figures['linksOut']:,}", f"{figures['xmlAlone'] * 1000:.1f}",
                *[f"{figures['stages'][stage] * 1000:.1f}" for stage in stages], f'**{create * 1000:.1f}**',
                f"{create / figures['xmlAlone']:.1f}", f'{create / before:.1f}' if before else '',
                f"{figures['peakBytes'] / 1e6:,.0f} MB")
            before = create


def graph_of(document):
    """Returns groups and nodes, each with its parent group, and links, each with whether it has a label."""
    root = ElementTree.parse(document).getroot()
    graph = root.find('diagram/graph')
    labelled = {link.get('id') for link in root.findall('diagram/display/link')}
    groups, nodes = [], []

    def walk(element, parent):
        for node in element.findall('node'):
            is_group = node.find('node') is not None
            (groups if is_group else nodes).append([node.get('id'), parent])
            walk(node, node.get('id'))

    walk(graph, None)
    return {'groups': groups, 'nodes': nodes,
            'links': [[link.get('from'), link.get('to'), link.get('id') in labelled] for link in graph.findall('link')]}


def write_dot(graph, path):
    inside = {}
    for kind in ('groups', 'nodes'):
        for name, parent in graph[kind]:
            inside.setdefault(parent, []).append((kind, name))

    def body(parent):
        for kind, name in inside.get(parent, ()):
            if kind == 'groups':
                yield f'subgraph "cluster_{name}" {{'
                yield from body(name)
                yield '}'
            else:
                yield f'"{name}" [shape=box,width=1.1,height=0.55];'

    with open(path, 'w', encoding='utf-8') as file:
        links = [f'"{a}" -> "{b}" [label="{LABEL}"];' if labelled else f'"{a}" -> "{b}";' for a, b, labelled in graph['links']]
        print('digraph g {', *body(None), *links, '}', sep='\n', file=file)


def timed(command):
    """Returns the time of the whole process, as text and as seconds; None for the seconds when it failed or took too long."""
    def limit_stack():
        resource.setrlimit(resource.RLIMIT_STACK, (1 << 30, resource.RLIM_INFINITY))
    begin = time.monotonic()
    try:
        done = subprocess.run(command, capture_output=True, text=True, timeout=LIMIT, preexec_fn=limit_stack)
    except subprocess.TimeoutExpired:
        return f'> {LIMIT} s', None
    seconds = time.monotonic() - begin
    return (f'{seconds:.2f} s', seconds if done.returncode == 0 else None) if done.returncode == 0 else ('fails', None)


def inner(command):
    """Returns the time that the peer prints for its layout, as text and as seconds."""
    try:
        done = subprocess.run(command, capture_output=True, text=True, timeout=LIMIT)
    except subprocess.TimeoutExpired:
        return f'> {LIMIT} s', None
    if done.returncode != 0:
        return 'fails', None
    return f'{float(done.stdout):.2f} s', float(done.stdout)


def peer_table(program, sizes, runs):
    if not shutil.which('dot') or not (HERE / 'peers/node_modules').is_dir():
        raise SystemExit('the peers are not installed; the top of this file lists them')
    head('shape', 'nodes', 'Tessera, create', '`dot`', 'elkjs', 'dagre', 'fastest peer to Tessera')
    with tempfile.TemporaryDirectory(prefix='tessera-peers-') as folder:
        folder = pathlib.Path(folder)
        for shape, options in SHAPES:
            for nodes in sizes:
                document = folder / 'generated.xml'
                own = measure(program, nodes, options, runs, document)['create']
                graph = graph_of(document)
                (folder / 'graph.json').write_text(json.dumps(graph), encoding='utf-8')
                write_dot(graph, folder / 'graph.dot')
                node = ['node', '--stack-size=50000', '--max-old-space-size=8000']
                results = [timed(['dot', '-Tplain', '-o', str(folder / 'out'), str(folder / 'graph.dot')]),
                           inner([*node, str(HERE / 'peers/elk.mjs'), str(folder / 'graph.json')]),
                           inner([*node, str(HERE / 'peers/dagre.mjs'), str(folder / 'graph.json')])]
                times = [seconds for _, seconds in results if seconds is not None]
                row(shape, f'{nodes:,}', f'{own * 1000:.2f} ms', *[text for text, _ in results],
                    f'{min(times) / own:,.0f} times' if times else 'none finishes')


def main():
    numbers = lambda text: [int(part) for part in text.split(',')]
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('program')
    parser.add_argument('--sizes', type=numbers, default=[1_000, 10_000, 100_000, 1_000_000])
    parser.add_argument('--peer-sizes', type=numbers, default=[100, 1_000, 10_000])
    parser.add_argument('--runs', type=int, default=3)
    parser.add_argument('--peers', action='store_true')
    parser.add_argument('--peers-only', action='store_true')
    arguments = parser.parse_args()
    if not arguments.peers_only:
        own_table(arguments.program, arguments.sizes, arguments.runs)
        print()
    if arguments.peers or arguments.peers_only:
        peer_table(arguments.program, arguments.peer_sizes, arguments.runs)


if __name__ == '__main__':
    main()
