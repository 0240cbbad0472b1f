#include "apps/qeltin/ContourDrawing.h"

#include <algorithm>

#include "apps/qeltin/FileName.h"
#include "apps/qeltin/LineLabels.h"
#include "apps/qeltin/Numbers.h"

namespace qeltin::cli {

namespace {

// All in pixels.
constexpr double LONGER_SIDE = 1600.0;
constexpr double MARGIN = 20.0;
constexpr double LETTER_HEIGHT = 15.0;
constexpr double LETTER_WIDTH = 8.5;
constexpr double LABEL_SPACING = 420.0;

void AppendPixel(std::string& text, double value) { NumberStyle{1}.Append(text, value); }

}  // namespace

bool ContourDrawing::IsFor(std::string const& file) { return EndingOf(file) == ".svg"; }

ContourDrawing::ContourDrawing(std::string const& file, bool overwrite)
    : m_Output(file, overwrite) {}

void ContourDrawing::Add(std::vector<TPoint> const& points, bool index, std::string const& text) {
  m_Strokes.push_back({points, index, text});
}

void ContourDrawing::Close() {
  double width = 0.0;
  ToPage(width, m_dHeight);
  std::string& text = m_Output.Buffer();
  text += "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 ";
  AppendPixel(text, width);
  text += ' ';
  AppendPixel(text, m_dHeight);
  text +=
      "\">\n<style>path{fill:none;stroke:#9a6a3f;stroke-width:.7;stroke-linejoin:round}"
      ".i{stroke:#6b3e12;stroke-width:1.5}text{font:15px sans-serif;fill:#4a2a0a;stroke:#fff;"
      "stroke-width:5;stroke-linejoin:round;paint-order:stroke;text-anchor:middle;"
      "dominant-baseline:central}</style>\n<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
  for (bool const index : {false, true}) {
    for (Stroke const& stroke : m_Strokes) {
      if (stroke.index == index) Draw(stroke);
    }
  }
  for (Stroke const& stroke : m_Strokes) {
    if (stroke.index) Label(stroke);
  }
  text += "</svg>\n";
  m_Output.Close();
}

void ContourDrawing::ToPage(double& width, double& height) {
  TPoint min(0, 0);
  TPoint max(1, 1);
  if (!m_Strokes.empty()) min = max = m_Strokes.front().points.front();
  for (Stroke const& stroke : m_Strokes) {
    for (TPoint const& p : stroke.points) {
      min = TPoint(std::min(min.x, p.x), std::min(min.y, p.y));
      max = TPoint(std::max(max.x, p.x), std::max(max.y, p.y));
    }
  }
  double const extent = std::max(max.x - min.x, max.y - min.y);
  double const scale = extent > 0.0 ? (LONGER_SIDE - 2 * MARGIN) / extent : 1.0;
  for (Stroke& stroke : m_Strokes) {
    for (TPoint& p : stroke.points) {
      p = TPoint((p.x - min.x) * scale + MARGIN, (p.y - min.y) * scale + MARGIN);
    }
    stroke.points = ThinnedLine(stroke.points);
  }
  width = (max.x - min.x) * scale + 2 * MARGIN;
  height = (max.y - min.y) * scale + 2 * MARGIN;
}

void ContourDrawing::Draw(Stroke const& stroke) {
  std::string& text = m_Output.Buffer();
  text += stroke.index ? "<path class=\"i\" d=\"" : "<path d=\"";
  char before = 'M';
  for (TPoint const& p : stroke.points) {
    text += before;
    AppendPixel(text, p.x);
    text += ' ';
    AppendPixel(text, m_dHeight - p.y);
    before = 'L';
  }
  text += "\"/>\n";
  m_Output.Spill();
}

void ContourDrawing::Label(Stroke const& stroke) {
  double const width = LETTER_WIDTH * static_cast<double>(stroke.text.size()) + LETTER_HEIGHT;
  for (LabelSpot const& spot : LabelSpots(stroke.points, stroke.text, width, LABEL_SPACING)) {
    std::string& text = m_Output.Buffer();
    text += "<text transform=\"translate(";
    AppendPixel(text, spot.centre.x);
    text += ' ';
    AppendPixel(text, m_dHeight - spot.centre.y);
    text += ") rotate(";
    AppendPixel(text, -spot.turn);
    text += ")\">" + stroke.text + "</text>\n";
    m_Output.Spill();
  }
}

}  // namespace qeltin::cli
