// Lays out the graph of a JSON file with elkjs and prints the time of the layout in seconds.
import ELK from 'elkjs/lib/elk.bundled.js';
import {readFileSync} from 'node:fs';

const {groups, nodes, links} = JSON.parse(readFileSync(process.argv[2], 'utf8'));
const root = {
  id: '/',
  layoutOptions: {'elk.algorithm': 'layered', 'elk.hierarchyHandling': 'INCLUDE_CHILDREN'},
  children: [],
  edges: links.map(([from, to, labelled], i) => ({
    id: `l${i}`, sources: [from], targets: [to],
    labels: labelled ? [{text: '12.3 MB/s', width: 60, height: 15}] : [],
  })),
};
const byId = new Map([[null, root]]);
for (const [id] of groups) byId.set(id, {id, children: []});
for (const [id, parent] of groups) byId.get(parent).children.push(byId.get(id));
for (const [id, parent] of nodes) byId.get(parent).children.push({id, width: 80, height: 40});
const begin = performance.now();
await new ELK().layout(root);
console.log((performance.now() - begin) / 1000);
process.exit(0);
