// Lays out the graph of a JSON file with dagre and prints the time of the layout in seconds.
import dagre from '@dagrejs/dagre';
import {readFileSync} from 'node:fs';

const {groups, nodes, links} = JSON.parse(readFileSync(process.argv[2], 'utf8'));
const graph = new dagre.graphlib.Graph({compound: true, multigraph: true});
graph.setGraph({});
graph.setDefaultEdgeLabel(() => ({}));
for (const [id] of groups) graph.setNode(id, {});
for (const [id] of nodes) graph.setNode(id, {width: 80, height: 40});
for (const [id, parent] of [...groups, ...nodes]) if (parent !== null) graph.setParent(id, parent);
links.forEach(([from, to, labelled], i) =>
  graph.setEdge(from, to, labelled ? {width: 60, height: 15, labelpos: 'c'} : {}, `l${i}`));
const begin = performance.now();
dagre.layout(graph);
console.log((performance.now() - begin) / 1000);
