// One surface for each format, written to a stream.

#include "tools/picture/render.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <memory>

#include "tools/support/command_error.h"

namespace kzgis::tools {
namespace {

using CairoPtr = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;

/// What Cairo hands its bytes to.
cairo_status_t write_bytes(void* stream, const unsigned char* data, unsigned int length) {
  auto& out = *static_cast<std::ostream*>(stream);
  out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(length));
  return out ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

/// The surface that a format draws on.  A PNG is drawn in memory and written at the end.
CairoSurface make_surface(std::ostream& out, PictureFormat format, double width, double height) {
  cairo_surface_t* surface = nullptr;
  switch (format) {
    case PictureFormat::svg:
      surface = cairo_svg_surface_create_for_stream(write_bytes, &out, width, height);
      cairo_svg_surface_set_document_unit(surface, CAIRO_SVG_UNIT_PX);
      break;
    case PictureFormat::pdf:
      surface = cairo_pdf_surface_create_for_stream(write_bytes, &out, width, height);
      // Left alone, Cairo puts in the time of day, and no two files are the same.
      cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATE_DATE,
                                     "2000-01-01T00:00:00Z");
      break;
    default:
      surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width),
                                           static_cast<int>(height));
  }
  return {surface, cairo_surface_destroy};
}

/// A write that failed is the output file's to report: it knows its name.
void check(cairo_status_t result) {
  if (result != CAIRO_STATUS_SUCCESS && result != CAIRO_STATUS_WRITE_ERROR) {
    throw CommandError(std::string("the picture could not be made: ") +
                       cairo_status_to_string(result));
  }
}

}  // namespace

CairoSurface make_image(int width, int height) {
  CairoSurface image(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height),
                     cairo_surface_destroy);
  check(cairo_surface_status(image.get()));
  return image;
}

void render(std::ostream& out, PictureFormat format, double width, double height,
            const std::function<void(cairo_t*)>& draw) {
  const CairoSurface surface = make_surface(out, format, width, height);
  check(cairo_surface_status(surface.get()));
  const CairoPtr cairo(cairo_create(surface.get()), cairo_destroy);
  draw(cairo.get());
  check(cairo_status(cairo.get()));
  if (format == PictureFormat::png) {
    check(cairo_surface_write_to_png_stream(surface.get(), write_bytes, &out));
  } else {
    cairo_surface_finish(surface.get());
    check(cairo_surface_status(surface.get()));
  }
}

}  // namespace kzgis::tools
