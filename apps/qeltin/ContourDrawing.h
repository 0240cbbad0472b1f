#pragma once

#include <string>
#include <vector>

#include "apps/qeltin/TextOutput.h"
#include "qeltin/kernel/TPoint.h"

namespace qeltin::cli {

// A picture of contours from above, as SVG: true to scale, north up, index contours bold and with
// their heights along them, never upside down.
class ContourDrawing {
 public:
  // Returns true iff the name ends in .svg.
  static bool IsFor(std::string const& file);

  // Throws Failure where the file cannot be made.
  ContourDrawing(std::string const& file, bool overwrite);

  // Adds a line. `text` is written along index contours.
  void Add(std::vector<TPoint> const& points, bool index, std::string const& text);

  // Writes the picture. Throws Failure.
  void Close();

 private:
  struct Stroke {
    std::vector<TPoint> points;
    bool index;
    std::string text;
  };

  void ToPage(double& width, double& height);
  void Draw(Stroke const& stroke);
  void Label(Stroke const& stroke);

  TextOutput m_Output;
  std::vector<Stroke> m_Strokes;  // in the unit of the survey; in pixels, y up, once on the page
  double m_dHeight = 0.0;
};

}  // namespace qeltin::cli
