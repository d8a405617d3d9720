// SVG documents drawn by librsvg, from memory. A document without an address of its own may refer
// to nothing outside itself: librsvg refuses every reference but those into the document.

#include <cairo.h>
#include <librsvg/rsvg.h>
#include <png.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
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

// Cairo's points are words of alpha, red, green and blue, the colours multiplied by alpha; those of
// PNG are four bytes from red to alpha, and not multiplied. Both are of one size.
void straighten(uint8_t* points, size_t count) {
  for (uint8_t* place = points; place != points + count * 4; place += 4) {
    uint32_t point = 0;
    std::memcpy(&point, place, sizeof point);
    const uint32_t alpha = point >> 24U;
    const auto colour = [&](uint32_t shift) {
      const uint32_t multiplied = point >> shift & 0xFFU;
      if (alpha == 0 || alpha == 0xFF) return static_cast<uint8_t>(multiplied);
      return static_cast<uint8_t>(std::min(0xFFU, (multiplied * 0xFFU + alpha / 2) / alpha));
    };
    place[0] = colour(16);
    place[1] = colour(8);
    place[2] = colour(0);
    place[3] = static_cast<uint8_t>(alpha);
  }
}

// Drawings are flat: the fast way takes a small part of the time and makes the file little larger.
PartResult writePNG(cairo_surface_t* surface, PartSink png, PartSink error) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(cairo_image_surface_get_width(surface));
  image.height = static_cast<png_uint_32>(cairo_image_surface_get_height(surface));
  image.format = PNG_FORMAT_RGBA;
  image.flags = PNG_IMAGE_FLAG_FAST;
  uint8_t* points = cairo_image_surface_get_data(surface);  // rows of this format have no padding
  straighten(points, size_t{image.width} * image.height);
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  const auto file = std::make_unique_for_overwrite<char[]>(size);
  if (png_image_write_to_memory(&image, file.get(), &size, 0, points, 0, nullptr) == 0) {
    return failed(error, image.message);
  }
  return put(png, {file.get(), size}) ? PartResult::done : PartResult::failed;
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
  const cairo_status_t status = cairo_surface_status(surface.get());
  if (status != CAIRO_STATUS_SUCCESS) return failed(error, cairo_status_to_string(status));
  return writePNG(surface.get(), png, error);
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
