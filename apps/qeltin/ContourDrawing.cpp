#include "apps/qeltin/ContourDrawing.h"

#include <algorithm>
#include <cmath>

#include "apps/qeltin/FileName.h"
#include "apps/qeltin/Numbers.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/products/TPolygonLabel.h"

namespace qeltin::cli {

namespace {

// All in pixels.
constexpr double LONGER_SIDE = 1600.0;
constexpr double MARGIN = 20.0;
constexpr double FINEST_STEP = 0.25;
constexpr double LETTER_HEIGHT = 15.0;
constexpr double LETTER_WIDTH = 8.5;
constexpr double LABEL_SPACING = 420.0;
constexpr double STRAIGHT_WITHIN = 1.5;

constexpr double PI = 3.14159265358979323846;

// Returns the line without points that hardly differ from the one before.
std::vector<TPoint> Thinned(std::vector<TPoint> const& points) {
  std::vector<TPoint> kept;
  for (TPoint const& p : points) {
    if (kept.empty() || kept.back().XY_Distance(p) >= FINEST_STEP) kept.push_back(p);
  }
  if (kept.size() == 1) kept.push_back(points.back());
  return kept;
}

double DistanceFromChord(TPoint const& p, TPoint const& a, TPoint const& b) {
  TPoint const chord = b - a;
  double const length = chord.XY_Length();
  if (length == 0.0) return a.XY_Distance(p);
  return std::fabs(chord.x * (p.y - a.y) - chord.y * (p.x - a.x)) / length;
}

// Returns the line as few long edges that stay close to it: where a text fits along it.
TPolygon StraightStretches(std::vector<TPoint> const& points) {
  TPolygon stretches;
  std::size_t from = 0;
  stretches.Add(points[0]);
  for (std::size_t to = 2; to <= points.size(); ++to) {
    bool straight = to < points.size();
    for (std::size_t i = from + 1; straight && i < to; ++i) {
      straight = DistanceFromChord(points[i], points[from], points[to]) <= STRAIGHT_WITHIN;
    }
    if (straight) continue;
    from = to - 1;
    stretches.Add(points[from]);
  }
  return stretches;
}

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
    stroke.points = Thinned(stroke.points);
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
  TPolygon const stretches = StraightStretches(stroke.points);
  std::wstring const wide(stroke.text.begin(), stroke.text.end());
  double const width = LETTER_WIDTH * static_cast<double>(wide.size()) + LETTER_HEIGHT;
  TPolygonLabel const label(&stretches, wide.c_str(), width, LABEL_SPACING);
  for (int i = 0; i + 1 < stretches.GetSize(); ++i) {
    TLabeledSegment const* const segment = label.GetLabeledSegment(i);
    if (segment == nullptr) continue;
    double turn = segment->GetAngle() * 180.0 / PI;
    if (turn > 90.0 && turn <= 270.0) turn -= 180.0;  // never upside down
    TPoint const centre = segment->GetCenter();
    std::string& text = m_Output.Buffer();
    text += "<text transform=\"translate(";
    AppendPixel(text, centre.x);
    text += ' ';
    AppendPixel(text, m_dHeight - centre.y);
    text += ") rotate(";
    AppendPixel(text, -turn);
    text += ")\">" + stroke.text + "</text>\n";
    m_Output.Spill();
  }
}

}  // namespace qeltin::cli
