#!/usr/bin/env python3
"""Converts the Natural Earth land polygons (public domain), as carried by the
npm package world-atlas in TopoJSON, into the map's coastline file.

    mkdir -p /tmp/atlas && cd /tmp/atlas && npm install world-atlas
    tools/make_coastlines.py /tmp/atlas/node_modules/world-atlas/land-50m.json \
        data/coastlines.bin

The file, little-endian: "ZKRC", version (uint16, 1), ring count (uint32),
then per ring its point count (uint32) and its points as int16 pairs of
longitude and latitude in hundredths of a degree. Rings are closed outlines
of land; consecutive points that round to the same hundredth are merged.
"""

import json
import struct
import sys


def decode_arcs(topology):
    scale = topology["transform"]["scale"]
    translate = topology["transform"]["translate"]
    arcs = []
    for arc in topology["arcs"]:
        x = y = 0
        points = []
        for dx, dy in arc:
            x += dx
            y += dy
            points.append((x * scale[0] + translate[0], y * scale[1] + translate[1]))
        arcs.append(points)
    return arcs


def ring_points(arcs, indices):
    points = []
    for index in indices:
        arc = arcs[index] if index >= 0 else list(reversed(arcs[~index]))
        # Arcs of a ring share their end points.
        points.extend(arc if not points else arc[1:])
    return points


def rings(topology):
    arcs = decode_arcs(topology)
    for geometry in topology["objects"]["land"]["geometries"]:
        kind = geometry["type"]
        polygons = [geometry["arcs"]] if kind == "Polygon" else geometry["arcs"]
        for polygon in polygons:
            for ring in polygon:
                yield ring_points(arcs, ring)


def quantised(points):
    out = []
    for lon, lat in points:
        q = (round(lon * 100), round(lat * 100))
        q = (max(-18000, min(18000, q[0])), max(-9000, min(9000, q[1])))
        if not out or out[-1] != q:
            out.append(q)
    return out


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: make_coastlines.py land-50m.json coastlines.bin")
    with open(sys.argv[1], encoding="utf-8") as source:
        topology = json.load(source)
    kept = [r for r in (quantised(r) for r in rings(topology)) if len(r) >= 3]
    with open(sys.argv[2], "wb") as out:
        out.write(b"ZKRC" + struct.pack("<HI", 1, len(kept)))
        for ring in kept:
            out.write(struct.pack("<I", len(ring)))
            out.write(b"".join(struct.pack("<hh", lon, lat) for lon, lat in ring))
    print(f"{len(kept)} rings, {sum(len(r) for r in kept)} points")


if __name__ == "__main__":
    main()
