// The colours of every picture that the command makes.

#ifndef KZGIS_TOOLS_PICTURE_COLOUR_H
#define KZGIS_TOOLS_PICTURE_COLOUR_H

#include <cairo.h>

#include <array>

namespace kzgis::tools {

/// Red, green and blue, each from 0 to 1.
struct Colour {
  double red, green, blue;
};

inline void set_colour(cairo_t* cairo, const Colour& c) {
  cairo_set_source_rgb(cairo, c.red, c.green, c.blue);
}

namespace colours {
inline constexpr Colour paper{1.0, 1.0, 1.0};
inline constexpr Colour ocean{0.816, 0.894, 0.937};
inline constexpr Colour chart{0.984, 0.976, 0.949};  // under outlines alone
inline constexpr Colour land{0.945, 0.914, 0.835};
inline constexpr Colour coast{0.376, 0.533, 0.631};
inline constexpr Colour river{0.435, 0.635, 0.761};
inline constexpr Colour border{0.996, 0.992, 0.980};       // between tinted countries
inline constexpr Colour border_line{0.620, 0.525, 0.545};  // a layer of its own
inline constexpr Colour province_line{0.765, 0.702, 0.714};
inline constexpr Colour graticule{0.302, 0.443, 0.541};
inline constexpr Colour frame{0.290, 0.369, 0.427};
inline constexpr Colour mesh{0.502, 0.565, 0.604};
inline constexpr Colour places{0.690, 0.263, 0.204};
inline constexpr Colour text{0.220, 0.259, 0.290};
}  // namespace colours

/// Soft tints for countries and other records that lie side by side.
inline constexpr std::array<Colour, 7> kTints{{{0.953, 0.878, 0.757},    // sand
                                               {0.863, 0.898, 0.765},    // pale green
                                               {0.949, 0.831, 0.780},    // rose
                                               {0.886, 0.855, 0.910},    // lavender
                                               {0.965, 0.929, 0.757},    // straw
                                               {0.800, 0.875, 0.824},    // mint
                                               {0.914, 0.843, 0.796}}};  // clay

}  // namespace kzgis::tools

#endif
