// d3_outlines.mjs: draws polygons by d3-geo as compare.py asks for it.
//
// On standard input: {"polygons": [[ring, ...], ...], "tolerance", "radius", "maps": [{"name", "lat",
// "lon", "reach"}]}, rings of [lon, lat] that shapefiles have, whose first point is repeated.  On
// standard output: for each map {"ns": nanoseconds for a vertex, "outlines": [[ring, ...], ...]}.
//
// d3's sides are great arcs.  Ours are straight in degrees, so that they are cut to half a degree
// before the clock starts; the vertices that the time is divided by are those before.

import * as d3 from 'd3-geo';
import {readFileSync} from 'node:fs';

const kProjections = {
  cartesian: d3.geoEquirectangular,
  mercator: d3.geoMercator,
  gnomonic: d3.geoGnomonic,
  stereographic: d3.geoStereographic,
  orthographic: d3.geoOrthographic,
  postel: d3.geoAzimuthalEquidistant,
  'lambert azimuthal': d3.geoAzimuthalEqualArea,
};
// d3 draws the middle of the stereographic map at half its size.
const kScales = {stereographic: 2};
const kLongest_deg = 0.5;
const kRounds = 5;

function dense(ring) {
  const points = [ring[0]];
  for (let i = 1; i < ring.length; ++i) {
    const [x, y] = ring[i - 1];
    const [dx, dy] = [ring[i][0] - x, ring[i][1] - y];
    const pieces = Math.max(1, Math.ceil(Math.max(Math.abs(dx), Math.abs(dy)) / kLongest_deg));
    for (let k = 1; k <= pieces; ++k) points.push([x + (dx * k) / pieces, y + (dy * k) / pieces]);
  }
  return points;
}

/** Collects rings, y to the north as on maps and not downwards as on screens. */
class Rings {
  rings = [];
  lineStart() { this.rings.push([]); }
  point(x, y) { this.rings.at(-1).push([x, -y]); }
  lineEnd() {}
  polygonStart() {}
  polygonEnd() {}
}

const {polygons, tolerance, radius, maps} = JSON.parse(readFileSync(0));
const vertices = polygons.flat().reduce((sum, ring) => sum + ring.length, 0);
// A shapefile's boundaries run clockwise and its holes the other way, which is what d3 takes as
// inside and outside; as one polygon of several rings, whatever lies in what.
const shapes = polygons.map((rings) => ({type: 'Polygon', coordinates: rings.map(dense)}));
const results = maps.map(({name, lat, lon, reach}) => {
  const projection = kProjections[name]().scale(radius * (kScales[name] ?? 1)).translate([0, 0]).rotate([-lon, -lat])
      .precision(tolerance);
  if (reach) projection.clipAngle(reach);
  const draw = () => shapes.map((shape) => {
    const sink = new Rings();
    d3.geoStream(shape, projection.stream(sink));
    return sink.rings;
  });
  let ns = Infinity;
  let outlines;
  for (let round = 0; round < kRounds; ++round) {
    const start = process.cpuUsage();
    outlines = draw();
    const {user, system} = process.cpuUsage(start);
    ns = Math.min(ns, (user + system) * 1000 / vertices);
  }
  return {ns, outlines};
});
process.stdout.write(JSON.stringify(results));
