// Lays out the graph of a JSON file with elkjs and writes it as SVG, boxes and lines without text.
import ELK from 'elkjs/lib/elk.bundled.js';
import {readFileSync, writeFileSync} from 'node:fs';

const {groups, nodes, links} = JSON.parse(readFileSync(process.argv[2], 'utf8'));
// The distances of Tessera's drawings.
const spacing = {
  'elk.spacing.nodeNode': 24, 'elk.layered.spacing.nodeNodeBetweenLayers': 40,
  'elk.spacing.edgeNode': 10, 'elk.layered.spacing.edgeNodeBetweenLayers': 10,
  'elk.spacing.edgeEdge': 10, 'elk.layered.spacing.edgeEdgeBetweenLayers': 10,
};
const padding = {...spacing, 'elk.padding': '[top=40,left=20,bottom=20,right=20]'};
const root = {
  id: '/',
  layoutOptions: {'elk.algorithm': 'layered', 'elk.hierarchyHandling': 'INCLUDE_CHILDREN', 'elk.direction': 'RIGHT', ...spacing},
  children: [],
  edges: links.map(([from, to, labels], i) => ({
    id: `l${i}`, sources: [from], targets: [to],
    labels: labels.map(([width, height]) => ({text: 'x', width, height})),
  })),
};
const byId = new Map([[null, root]]);
for (const [id] of groups) byId.set(id, {id, children: [], layoutOptions: padding});
for (const [id, parent] of groups) byId.get(parent).children.push(byId.get(id));
for (const [id, parent, width, height] of nodes) byId.get(parent).children.push({id, width, height});
await new ELK().layout(root);

const origin = new Map();
const shapes = [];
const open = [[root, 0, 0]];
while (open.length > 0) {
  const [box, x, y] = open.pop();
  const at = [x + (box.x ?? 0), y + (box.y ?? 0)];
  origin.set(box.id, at);
  shapes.push(`<rect x="${at[0]}" y="${at[1]}" width="${box.width}" height="${box.height}"/>`);
  for (const child of box.children ?? []) open.push([child, ...at]);
}
for (const edge of root.edges) {
  const [x, y] = origin.get(edge.container ?? '/');
  for (const {startPoint, bendPoints, endPoint} of edge.sections ?? []) {
    const points = [startPoint, ...(bendPoints ?? []), endPoint].map((point) => `${x + point.x} ${y + point.y}`);
    shapes.push(`<g class="edge"><path d="M${points.join('L')}"/></g>`);
  }
}
writeFileSync(process.argv[3], `<svg xmlns="http://www.w3.org/2000/svg" width="${root.width}" height="${root.height}">` +
  `${shapes.join('\n')}</svg>\n`);
process.exit(0);
