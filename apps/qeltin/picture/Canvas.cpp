#include "apps/qeltin/picture/Canvas.h"

#include <png.h>

#include <cstdint>
#include <cstring>
#include <new>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

Canvas::Canvas(int width, int height)
    : m_iWidth(width),
      m_iHeight(height),
      m_pSurface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)),
      m_pPen(cairo_create(m_pSurface)) {
  if (cairo_surface_status(m_pSurface) != CAIRO_STATUS_SUCCESS) {
    cairo_destroy(m_pPen);
    cairo_surface_destroy(m_pSurface);
    throw std::bad_alloc();
  }
  cairo_set_source_rgb(m_pPen, 1.0, 1.0, 1.0);
  cairo_paint(m_pPen);
}

Canvas::~Canvas() {
  cairo_destroy(m_pPen);
  cairo_surface_destroy(m_pSurface);
}

void Canvas::Put(std::vector<unsigned char> const& rgb, int width) {
  cairo_surface_flush(m_pSurface);
  unsigned char* const pixels = cairo_image_surface_get_data(m_pSurface);
  auto const stride = static_cast<std::size_t>(cairo_image_surface_get_stride(m_pSurface));
  auto const columns = static_cast<std::size_t>(width);
  for (std::size_t i = 0; i < rgb.size() / 3; ++i) {
    unsigned char const* const from = rgb.data() + 3 * i;
    std::uint32_t const pixel =
        std::uint32_t{from[0]} << 16 | std::uint32_t{from[1]} << 8 | from[2];
    std::memcpy(pixels + i / columns * stride + i % columns * sizeof pixel, &pixel, sizeof pixel);
  }
  cairo_surface_mark_dirty(m_pSurface);
}

void Canvas::WritePng(std::string const& file, std::string const& told) const {
  cairo_surface_flush(m_pSurface);
  unsigned char const* const pixels = cairo_image_surface_get_data(m_pSurface);
  auto const stride = static_cast<std::size_t>(cairo_image_surface_get_stride(m_pSurface));
  std::vector<unsigned char> rgb;
  rgb.reserve(3 * static_cast<std::size_t>(m_iWidth) * static_cast<std::size_t>(m_iHeight));
  for (int y = 0; y < m_iHeight; ++y) {
    for (int x = 0; x < m_iWidth; ++x) {
      std::uint32_t pixel = 0;
      std::memcpy(&pixel, pixels + static_cast<std::size_t>(y) * stride + sizeof pixel * x,
                  sizeof pixel);
      for (int shift : {16, 8, 0}) rgb.push_back(static_cast<unsigned char>(pixel >> shift & 0xFF));
    }
  }
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(m_iWidth);
  image.height = static_cast<png_uint_32>(m_iHeight);
  image.format = PNG_FORMAT_RGB;
  if (png_image_write_to_file(&image, file.c_str(), 0, rgb.data(), 0, nullptr) != 0) return;
  std::string const why = image.message;
  png_image_free(&image);
  throw Failure(told, "cannot be written: " + why);
}

}  // namespace qeltin::cli
