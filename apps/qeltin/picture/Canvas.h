#pragma once

#include <cairo.h>

#include <string>
#include <vector>

namespace qeltin::cli {

// A picture in memory to draw on with Cairo: pixels from the upper left corner, y down.
class Canvas {
 public:
  // A white one. Throws std::bad_alloc.
  Canvas(int width, int height);
  ~Canvas();
  Canvas(Canvas const&) = delete;
  Canvas& operator=(Canvas const&) = delete;

  // Puts a picture in the upper left corner: three bytes a pixel, red, green, blue, rows from the
  // top down without gaps. REQUIRES: it is no larger than the canvas.
  void Put(std::vector<unsigned char> const& rgb, int width);

  // Owned by the canvas.
  cairo_t* Pen() const { return m_pPen; }

  // Writes all of it as PNG. Throws Failure, in the name of `told`.
  void WritePng(std::string const& file, std::string const& told) const;

 private:
  int m_iWidth;
  int m_iHeight;
  cairo_surface_t* m_pSurface;  // owned
  cairo_t* m_pPen;              // owned
};

}  // namespace qeltin::cli
