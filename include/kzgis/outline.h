#ifndef KZGIS_OUTLINE_H
#define KZGIS_OUTLINE_H

#include "kzgis/chart.h"
#include "kzgis/export.h"
#include "kzgis/mesh.h"
#include "kzgis/result.h"

// Polygons and lines in degrees, drawn on a chart: cut where the map ends, bent as the projection
// bends them, and valid.

namespace kzgis {

// Coordinates are degrees, x the longitude and y the latitude, as shapefiles have them; rings are
// laid out as for `triangulate`.  Longitudes may be any finite numbers.  Latitudes beyond +-90
// count as the pole.
//
// A side is straight in degrees.  One of more than 180 degrees of longitude goes the short way
// round the globe, unless both its ends lie on a pole.  A ring that goes round the globe holds a
// pole: that of its own hemisphere, which the mean latitude of its vertices tells.  (A ring that,
// apart from poles, would lie on one meridian if its sides went the short way is a band round the
// globe, and they go as they are given.)
//
// What is drawn is what `Chart::parameters` states as the chart's window or reach; azimuthal maps
// of the whole globe end 1e-6 radians before the antipode.  Maps with a window are torn along the
// meridian opposite to the base, Cassini-Soldner along the equator beyond 90 degrees from it.

/// Draws a polygon.
///
/// The inside is odd-even, in degrees and on the plane, whatever the rings do.  Sides become
/// curves, which come as chords: no point of a curve is farther than `tolerance` from its chord,
/// and no chord could be longer.  How a side is drawn depends on the side and the chart alone, not
/// on its ring or its direction: polygons that share a border in degrees share it on the plane,
/// vertex for vertex.  Only where chords cross that the curves did not (in needles narrower than
/// the tolerance), they are cut as `make_valid` does it.
///
/// @param tolerance  in world coordinates, > 0; a trillionth of the radius at least is taken
/// @return rings as of `make_valid`.  Refused are, with ring and vertex, coordinates that are not
///         finite (`bad_data`); with `bad_argument` the globe, which is no plane, a radius outside
///         of 1e-100 to 1e100, a tolerance that is none, arrays that do not fit each other, and
///         what would take 2^28 vertices
KZGIS_EXPORT Result<Outline, Flaw> project_area(const Chart& chart, const Rings& degrees,
                                                double tolerance);

/// Draws lines, one for each ring; they are not closed.
///
/// @return the pieces of the lines on the map, in their order and direction; refused is what
///         `project_area` refuses
KZGIS_EXPORT Result<Outline, Flaw> project_lines(const Chart& chart, const Rings& degrees,
                                                 double tolerance);

/// The edge of the map, as rings of `make_valid`.
///
/// @return refused are the globe, such a radius, and a tolerance that is none
KZGIS_EXPORT Result<Outline> chart_frame(const Chart& chart, double tolerance);

/// Meridians and parallels, as lines.
///
/// They are multiples of the step.  Towards the poles meridians end, at the last parallel where
/// they are a quarter of a step apart from each other or more; those of 0, 90, 180 and 270 degrees
/// meet there.
///
/// @param step_deg  from 1/60 to 90
/// @return refused are the globe, such a radius, a step out of range, and a tolerance that is none
KZGIS_EXPORT Result<Outline> graticule(const Chart& chart, double step_deg, double tolerance);

}  // namespace kzgis

#endif
