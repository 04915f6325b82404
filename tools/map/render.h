#ifndef KZGIS_TOOLS_MAP_RENDER_H
#define KZGIS_TOOLS_MAP_RENDER_H

#include <cairo.h>

#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace kzgis::map {

enum class Format { png, svg, pdf };

/// The format of that name, "png", "svg" or "pdf"; nothing when there is none.
std::optional<Format> format_named(const std::string& name);

/// Writes a picture: pixels in a PNG or SVG, points in a PDF.  The same command gives the
/// same bytes.  Throws `tools::CommandError` when the picture cannot be made.
void render(std::ostream& out, Format format, double width, double height,
            const std::function<void(cairo_t*)>& draw);

}  // namespace kzgis::map

#endif
