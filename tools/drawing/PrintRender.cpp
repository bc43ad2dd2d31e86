// PDF and PNG from the SVG of the sheets, through librsvg and cairo: one drawing code path, the
// SVG, and renderers that every Linux desktop uses to show it. Both outputs are built in memory,
// so that the caller writes each file whole or not at all.
#include "Section.h"
#include "TextMetrics.h"

#include <cairo-pdf.h>
#include <cairo.h>
#include <cmath>
#include <librsvg/rsvg.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace xklink {

namespace {

constexpr double kCssDpi = 96.0;         // the SVG's user units are CSS pixels
constexpr double kPointsPerPixel = 0.75; // PDF points are 1/72 inch
// A PNG beyond this many pixels (an A1 sheet at about 500 dpi) takes gigabytes to draw.
constexpr double kMaxPixels = 200e6;

struct ObjectUnref {
  void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
};
struct SurfaceDestroy {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDestroy {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Handle = std::unique_ptr<RsvgHandle, ObjectUnref>;
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDestroy>;
using Context = std::unique_ptr<cairo_t, ContextDestroy>;

std::string TakeMessage(GError*& error) {
  std::string message = error != nullptr ? error->message : "unknown error";
  g_clear_error(&error);
  return message;
}

// A parsed SVG and its size in CSS pixels.
struct Document {
  Handle handle;
  double width = 0.0;
  double height = 0.0;
};

Document Load(const std::string& svg) {
  GError* error = nullptr;
  Document document;
  document.handle.reset(rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(svg.data()),
                                                  static_cast<gsize>(svg.size()), &error));
  if (!document.handle) {
    throw DrawingError("cannot render the drawing: " + TakeMessage(error));
  }
  rsvg_handle_set_dpi(document.handle.get(), kCssDpi);
  gdouble width = 0.0;
  gdouble height = 0.0;
  if (!rsvg_handle_get_intrinsic_size_in_pixels(document.handle.get(), &width, &height) ||
      !(width > 0.0) || !(height > 0.0) || !std::isfinite(width) || !std::isfinite(height)) {
    throw DrawingError("cannot render the drawing: it has no size");
  }
  document.width = width;
  document.height = height;
  return document;
}

void Render(const Document& document, cairo_t* context) {
  const RsvgRectangle viewport{0.0, 0.0, document.width, document.height};
  GError* error = nullptr;
  if (!rsvg_handle_render_document(document.handle.get(), context, &viewport, &error)) {
    throw DrawingError("cannot render the drawing: " + TakeMessage(error));
  }
}

cairo_status_t Append(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

void Check(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS) {
    throw DrawingError(std::string("cannot render the drawing: ") + cairo_status_to_string(status));
  }
}

} // namespace

std::string SvgToPdf(const std::vector<std::string>& svgs) {
  std::vector<Document> documents;
  for (const std::string& svg : svgs) {
    documents.push_back(Load(svg));
  }
  if (documents.empty()) {
    throw DrawingError("cannot render the drawing: there is no sheet");
  }
  std::string out;
  {
    Surface surface(
        cairo_pdf_surface_create_for_stream(Append, &out, documents.front().width * kPointsPerPixel,
                                            documents.front().height * kPointsPerPixel));
    Check(cairo_surface_status(surface.get()));
    Context context(cairo_create(surface.get()));
    for (const Document& document : documents) {
      cairo_pdf_surface_set_size(surface.get(), document.width * kPointsPerPixel,
                                 document.height * kPointsPerPixel);
      cairo_save(context.get());
      cairo_scale(context.get(), kPointsPerPixel, kPointsPerPixel);
      Render(document, context.get());
      cairo_restore(context.get());
      cairo_show_page(context.get());
      Check(cairo_status(context.get()));
    }
    context.reset();
    cairo_surface_finish(surface.get());
    Check(cairo_surface_status(surface.get()));
  }
  return out;
}

std::string SvgToPng(const std::string& svg, double dpi) {
  const Document document = Load(svg);
  const double zoom = dpi / kCssDpi;
  const double width = std::round(document.width * zoom);
  const double height = std::round(document.height * zoom);
  if (!(width >= 1.0 && height >= 1.0) || width > 32767.0 || height > 32767.0 ||
      width * height > kMaxPixels) {
    throw DrawingError("a PNG of " + drawing::FormatFixed(width, 0) + " x " +
                       drawing::FormatFixed(height, 0) + " pixels is too large: lower --dpi");
  }
  Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(width),
                                             static_cast<int>(height)));
  Check(cairo_surface_status(surface.get()));
  Context context(cairo_create(surface.get()));
  cairo_set_source_rgb(context.get(), 1.0, 1.0, 1.0);
  cairo_paint(context.get());
  cairo_scale(context.get(), zoom, zoom);
  Render(document, context.get());
  Check(cairo_status(context.get()));
  context.reset();
  cairo_surface_flush(surface.get());
  std::string out;
  Check(cairo_surface_write_to_png_stream(surface.get(), Append, &out));
  return out;
}

} // namespace xklink
