#!/usr/bin/env python3
"""Reads a diagram as JSON from standard input and prints it as text: the boxes as a tree, then the values on links.

Usage: show_diagram.py [--boxes] [--links] [--only NODE]

Without an option it prints both parts. --only prints the links of NODE only."""

import argparse
import json
import sys

ON_LINKS = ("label", "dummy")  # types of boxes that lie on a link, between its ends
TABLES = {"fromInfo": "from", "toInfo": "to", "totalInfo": "center"}


def rows(info):
    return ", ".join(f"{row['name']} {row['value']}" for row in info.get("rows", {}).get("row", []))


def print_boxes(boxes, group="", depth=0):
    members = [box for box in boxes if box["group"] == group and box["type"] not in ON_LINKS]
    for box in sorted(members, key=lambda box: box["hierarchicalLevel"]):
        name = "(the group's values)" if box["type"] == "groupInfo" else box["displayName"] or box["id"]
        layer = "" if box["hierarchicalLevel"] < 0 else f"layer {box['hierarchicalLevel']}"
        print(f"  {'  ' * depth + name:<36} {layer:<9} {rows(box['info'])}".rstrip())
        if box["isGroup"]:
            print_boxes(boxes, box["id"], depth + 1)


def values_on_links(boxes, links):
    """Yields (from, to, place, values), for the links' own tables and for the boxes that the layout made of tables."""
    by_id = {box["id"]: box for box in boxes}
    before = {link["to"]: link["from"] for link in links}
    after = {link["from"]: link["to"] for link in links}

    def end(box_id, neighbours):
        while box_id in by_id and by_id[box_id]["type"] in ON_LINKS:
            box_id = neighbours[box_id]
        return by_id.get(box_id, {}).get("displayName") or box_id

    for link in links:
        for table, place in TABLES.items():
            yield end(link["from"], before), end(link["to"], after), place, rows(link[table])
    for box in boxes:
        if box["type"] == "label":
            yield end(box["id"], before), end(box["id"], after), box["location"], rows(box["info"])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--boxes", action="store_true")
    parser.add_argument("--links", action="store_true")
    parser.add_argument("--only")
    options = parser.parse_args()
    both = not options.boxes and not options.links
    diagram = json.load(sys.stdin)
    boxes, links = diagram["nodes"]["node"], diagram["links"]["link"]
    head = diagram["diagram"]
    print(f"{head['name'] or head['id']}, mode {head['displayMode']}: {len(boxes)} boxes, {len(links)} links")
    if options.boxes or both:
        print_boxes(boxes)
    if options.links or both:
        for source, target, place, values in values_on_links(boxes, links):
            if values and options.only in (None, source):
                print(f"  {source + ' -> ' + target:<36} {place:<9} {values}")


if __name__ == "__main__":
    main()
