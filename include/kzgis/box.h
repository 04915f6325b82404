#ifndef KZGIS_BOX_H
#define KZGIS_BOX_H

namespace kzgis {

/// A rectangle in the plane, its edges included.
///
/// Of a box in degrees x is the longitude and y the latitude; where such a box may cross a
/// meridian at which longitudes begin anew, the operation says what `min_x > max_x` means.
struct Box {
  double min_x = 0.0, min_y = 0.0, max_x = 0.0, max_y = 0.0;
};

}  // namespace kzgis

#endif
