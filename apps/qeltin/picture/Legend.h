#pragma once

#include <cairo.h>

#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/picture/RoundNumbers.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/ColorTable.h"

namespace qeltin::cli {

// What a legend explains.
struct LegendContent {
  ColorTable colours;
  double lowest = 0.0;
  double highest = 0.0;
  double contour_interval = 0.0;  // 0 for no contours
};

// A scale bar: a round length, and how long that is in the picture.
struct ScaleBar {
  double length = 0.0;
  double pixels = 0.0;
};

// A column on the right of a picture: a north arrow, a bar of the colours with round heights beside
// it, a sample of the contours and, where there is a scale, a scale bar. Nothing in it overlaps or
// is cut off in pictures of 400 by 300 pixels or more; everything grows with the picture.
class Legend {
 public:
  // Lays out the column for a picture of this size.
  Legend(LegendContent content, int width, int height);

  // Pixels from the right edge of the picture.
  int Width() const { return m_iWidth; }

  // The free edge around everything in the picture.
  double Margin() const { return m_dText; }

  // The size of letters.
  double TextSize() const { return m_dText; }

  // The heights beside the colours, rising.
  std::vector<double> Heights() const;

  // Draws the column. `north` is the direction of north in the picture, y down. Without a scale in
  // pixels there is no scale bar.
  std::optional<ScaleBar> Draw(cairo_t* pen, TPoint const& north,
                               std::optional<double> pixels_per_unit) const;

 private:
  std::vector<std::string> Labels() const;
  void DrawNorth(cairo_t* pen, double top, TPoint const& north) const;
  void DrawColours(cairo_t* pen, double top, double bottom) const;
  void DrawTicks(cairo_t* pen, double top, double bottom) const;
  double DrawContours(cairo_t* pen, double bottom) const;
  ScaleBar DrawScale(cairo_t* pen, double bottom, double pixels_per_unit) const;

  LegendContent m_Content;
  int m_iPictureWidth;
  int m_iPictureHeight;
  double m_dText;       // size of letters
  RoundNumber m_Step;   // between heights
  double m_dInner = 0;  // width without margins
  int m_iWidth = 0;
};

// Chooses the letters that all texts are written in, `size` pixels high.
void ChooseLetters(cairo_t* pen, double size);

// Returns how many pixels a text takes.
double TextWidth(cairo_t* pen, std::string const& text);

}  // namespace qeltin::cli
