// Pictures by Cairo, in the formats that people ask for.

#ifndef KZGIS_TOOLS_PICTURE_RENDER_H
#define KZGIS_TOOLS_PICTURE_RENDER_H

#include <cairo.h>

#include <functional>
#include <memory>
#include <ostream>

namespace kzgis::tools {

enum class PictureFormat { png, svg, pdf };

using CairoSurface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

/// Writes a picture: pixels in a PNG or SVG, points in a PDF.  The same command gives the
/// same bytes.  Throws `CommandError` when the picture cannot be made.
void render(std::ostream& out, PictureFormat format, double width, double height,
            const std::function<void(cairo_t*)>& draw);

/// An image of so many pixels with an alpha channel.  Throws `CommandError`: Cairo's images end
/// at 32,767 pixels a side.
CairoSurface make_image(int width, int height);

}  // namespace kzgis::tools

#endif
