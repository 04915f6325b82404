// Colours for heights.

#ifndef KZGIS_TOOLS_DEM_TINT_H
#define KZGIS_TOOLS_DEM_TINT_H

#include "tools/picture/colour.h"

namespace kzgis::tools {

/// The colour of a height: from valley green by straw and brown to the white of summits.
///
/// @param share  of the way from the lowest to the highest place, from 0 to 1
Colour tint(double share);

/// A colour in the light.
///
/// @param brightness  as `shade` gives it; level ground under the usual sun keeps nearly
///                    its own colour
Colour lit(const Colour& colour, double brightness);

}  // namespace kzgis::tools

#endif
