// SVG documents drawn by librsvg, from memory. A document without an address of its own may refer
// to nothing outside itself: librsvg refuses every reference but those into the document.

#include <cairo.h>
#include <librsvg/rsvg.h>

#include <algorithm>
#include <memory>

#include "Modules/PartGuard.h"

namespace lk::part {

namespace {

constexpr int kLargestSide = 8192;

struct ObjectUnref {
  void operator()(RsvgHandle* object) const { g_object_unref(object); }
};
struct SurfaceDestroy {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDestroy {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
struct ErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};

cairo_status_t takePNG(void* closure, const unsigned char* data, unsigned int size) {
  const PartSink& sink = *static_cast<const PartSink*>(closure);
  const bool isTaken = sink.take(sink.target, reinterpret_cast<const char*>(data), size);
  return isTaken ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

PartResult draw(PartBytes svg, int width, int height, PartSink png, PartSink error) {
  GError* reason = nullptr;
  const std::unique_ptr<RsvgHandle, ObjectUnref> document(rsvg_handle_new_from_data(
      reinterpret_cast<const guint8*>(svg.data), static_cast<gsize>(svg.size), &reason));
  std::unique_ptr<GError, ErrorFree> owned(reason);
  if (document == nullptr) return PartResult::nothing;

  const std::unique_ptr<cairo_surface_t, SurfaceDestroy> surface(
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
  const std::unique_ptr<cairo_t, ContextDestroy> context(cairo_create(surface.get()));
  const RsvgRectangle whole = {0, 0, static_cast<double>(width), static_cast<double>(height)};
  if (rsvg_handle_render_document(document.get(), context.get(), &whole, &reason) == FALSE) {
    owned.reset(reason);
    return PartResult::nothing;
  }
  cairo_surface_flush(surface.get());
  const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), takePNG, &png);
  if (status != CAIRO_STATUS_SUCCESS) return failed(error, cairo_status_to_string(status));
  return PartResult::done;
}

}  // namespace

}  // namespace lk::part

PartResult larkspirePNGOfSVG(PartBytes svg, int width, int height, PartSink png,
                             PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] {
    return draw(svg, std::clamp(width, 1, kLargestSide), std::clamp(height, 1, kLargestSide), png,
                error);
  });
}
