#include "apps/qeltin/picture/Legend.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "apps/qeltin/Numbers.h"
#include "apps/qeltin/picture/Canvas.h"

namespace qeltin::cli {

namespace {

// In sizes of letters.
constexpr double BAR_WIDTH = 1.5;
constexpr double TICK = 0.4;
constexpr double LEAST_INNER = 6.5;
constexpr double LEAST_STEP = 2.2;
constexpr double NORTH_HEIGHT = 4.5;
constexpr double ROW = 1.5;
constexpr double SCALE_BAR = 0.4;

constexpr double INK = 0.13;

double LetterSize(int width, int height) {
  constexpr double LEAST = 11.0;
  return std::max(LEAST, std::round(std::min(width * 0.75, height * 1.0) / 55.0));
}

RoundNumber StepFor(LegendContent const& content, double text, int height) {
  // Arrow, contours, scale and margins take no more than so many sizes of letters off the height.
  constexpr double OTHERS = NORTH_HEIGHT + 2 * ROW + 2 * ROW + 5.0;
  double const range = content.highest - content.lowest;
  double const bar = std::max(height - OTHERS * text, text);
  if (!(range > 0.0)) return RoundNumber::NotBelow(1.0);
  // Finer steps are lost in the rounding of large heights.
  constexpr double FINEST = 1e-12;
  double const largest = std::max(std::fabs(content.lowest), std::fabs(content.highest));
  return RoundNumber::NotBelow(std::max(range * LEAST_STEP * text / bar, largest * FINEST));
}

void Write(cairo_t* pen, double x, double y, std::string const& text) {
  cairo_move_to(pen, x, y);
  cairo_show_text(pen, text.c_str());
}

// Writes a text whose letters are centred on y.
void WriteLevel(cairo_t* pen, double x, double y, std::string const& text) {
  cairo_text_extents_t digits;
  cairo_text_extents(pen, "0", &digits);
  Write(pen, x, y + digits.height / 2.0, text);
}

void SetColour(cairo_t* pen, std::uint32_t colour) {
  cairo_set_source_rgb(pen, (colour & 0xFF) / 255.0, (colour >> 8 & 0xFF) / 255.0,
                       (colour >> 16 & 0xFF) / 255.0);
}

void SetInk(cairo_t* pen) { cairo_set_source_rgb(pen, INK, INK, INK); }

}  // namespace

void ChooseLetters(cairo_t* pen, double size) {
  cairo_select_font_face(pen, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(pen, size);
}

double TextWidth(cairo_t* pen, std::string const& text) {
  cairo_text_extents_t extents;
  cairo_text_extents(pen, text.c_str(), &extents);
  return std::max(extents.x_advance, extents.x_bearing + extents.width);
}

Legend::Legend(LegendContent content, int width, int height)
    : m_Content(std::move(content)),
      m_iPictureWidth(width),
      m_iPictureHeight(height),
      m_dText(LetterSize(width, height)),
      m_Step(StepFor(m_Content, m_dText, height)) {
  Canvas const scratch(1, 1);
  ChooseLetters(scratch.Pen(), m_dText);
  double widest = 0.0;
  for (std::string const& label : Labels()) {
    widest = std::max(widest, TextWidth(scratch.Pen(), label));
  }
  m_dInner = std::max(std::ceil((BAR_WIDTH + 2 * TICK) * m_dText + widest), LEAST_INNER * m_dText);
  m_iWidth = static_cast<int>(std::ceil(m_dInner + 2 * Margin()));
}

std::vector<double> Legend::Heights() const {
  std::vector<double> heights;
  for (double const count : m_Step.CountsWithin(m_Content.lowest, m_Content.highest)) {
    heights.push_back(count * m_Step.Value());
  }
  if (m_Content.lowest == m_Content.highest) heights = {m_Content.lowest};
  return heights;
}

std::vector<std::string> Legend::Labels() const {
  constexpr int DECIMALS = 3;
  if (m_Content.lowest == m_Content.highest) {
    return {NumberStyle{DECIMALS}.Text(m_Content.lowest)};
  }
  std::vector<std::string> labels;
  for (double const count : m_Step.CountsWithin(m_Content.lowest, m_Content.highest)) {
    labels.push_back(m_Step.Times(count));
  }
  return labels;
}

std::optional<ScaleBar> Legend::Draw(cairo_t* pen, TPoint const& north,
                                     std::optional<double> pixels_per_unit) const {
  ChooseLetters(pen, m_dText);
  double top = Margin();
  double bottom = m_iPictureHeight - Margin();
  DrawNorth(pen, top, north);
  top += NORTH_HEIGHT * m_dText + Margin();
  std::optional<ScaleBar> bar;
  if (pixels_per_unit) {
    bar = DrawScale(pen, bottom, *pixels_per_unit);
    bottom -= 2 * ROW * m_dText + Margin();
  }
  if (m_Content.contour_interval > 0.0) bottom = DrawContours(pen, bottom) - Margin();
  DrawColours(pen, top, bottom);
  DrawTicks(pen, top, bottom);
  return bar;
}

void Legend::DrawNorth(cairo_t* pen, double top, TPoint const& north) const {
  double const half = 1.15 * m_dText;
  cairo_save(pen);
  cairo_translate(pen, m_iPictureWidth - m_iWidth / 2.0, top + NORTH_HEIGHT / 2.0 * m_dText);
  SetInk(pen);
  cairo_save(pen);
  cairo_rotate(pen, std::atan2(north.x, -north.y));
  cairo_move_to(pen, 0.0, -half);
  cairo_line_to(pen, 0.6 * half, half);
  cairo_line_to(pen, 0.0, 0.6 * half);
  cairo_line_to(pen, -0.6 * half, half);
  cairo_close_path(pen);
  cairo_fill(pen);
  cairo_restore(pen);
  double const beyond = half + 0.75 * m_dText;
  double const length = std::hypot(north.x, north.y);
  WriteLevel(pen, north.x / length * beyond - TextWidth(pen, "N") / 2.0, north.y / length * beyond,
             "N");
  cairo_restore(pen);
}

void Legend::DrawColours(cairo_t* pen, double top, double bottom) const {
  double const left = m_iPictureWidth - m_iWidth + Margin();
  double const range = m_Content.highest - m_Content.lowest;
  cairo_save(pen);
  cairo_set_antialias(pen, CAIRO_ANTIALIAS_NONE);
  for (double y = top; y < bottom; ++y) {
    double const share = (bottom - std::min(y + 0.5, bottom)) / (bottom - top);
    SetColour(pen, m_Content.colours.GetColor(m_Content.lowest + share * range));
    cairo_rectangle(pen, left, y, BAR_WIDTH * m_dText, std::min(1.0, bottom - y));
    cairo_fill(pen);
  }
  cairo_restore(pen);
  SetInk(pen);
  cairo_set_line_width(pen, 1.0);
  cairo_rectangle(pen, std::floor(left) + 0.5, std::floor(top) + 0.5, BAR_WIDTH * m_dText - 1.0,
                  bottom - top - 1.0);
  cairo_stroke(pen);
}

void Legend::DrawTicks(cairo_t* pen, double top, double bottom) const {
  double const left = m_iPictureWidth - m_iWidth + Margin() + BAR_WIDTH * m_dText;
  double const range = m_Content.highest - m_Content.lowest;
  std::vector<double> const heights = Heights();
  std::vector<std::string> const labels = Labels();
  for (std::size_t i = 0; i < heights.size(); ++i) {
    double const share = range > 0.0 ? (heights[i] - m_Content.lowest) / range : 0.5;
    double const y = std::floor(bottom - share * (bottom - top)) + 0.5;
    cairo_move_to(pen, left, y);
    cairo_line_to(pen, left + TICK * m_dText, y);
    cairo_stroke(pen);
    WriteLevel(pen, left + 2 * TICK * m_dText, y, labels[i]);
  }
}

double Legend::DrawContours(cairo_t* pen, double bottom) const {
  constexpr double INDEX_EVERY = 5.0;
  double const left = m_iPictureWidth - m_iWidth + Margin();
  double y = bottom - ROW / 2.0 * m_dText;
  for (bool const index : {true, false}) {
    SetInk(pen);
    cairo_set_line_width(pen, index ? 2.0 : 1.0);
    double const line = std::floor(y) + (index ? 0.0 : 0.5);  // fills whole pixels
    cairo_move_to(pen, left, line);
    cairo_line_to(pen, left + BAR_WIDTH * m_dText, line);
    cairo_stroke(pen);
    WriteLevel(pen, left + (BAR_WIDTH + 2 * TICK) * m_dText, y,
               ShortNumber(m_Content.contour_interval * (index ? INDEX_EVERY : 1.0)));
    y -= ROW * m_dText;
  }
  return bottom - 2 * ROW * m_dText;
}

ScaleBar Legend::DrawScale(cairo_t* pen, double bottom, double pixels_per_unit) const {
  RoundNumber const number = RoundNumber::NotAbove(m_dInner / pixels_per_unit);
  ScaleBar const bar{number.Value(), number.Value() * pixels_per_unit};
  double const left = m_iPictureWidth - m_iWidth + Margin();
  double const height = SCALE_BAR * m_dText;
  SetInk(pen);
  cairo_set_line_width(pen, 1.0);
  cairo_rectangle(pen, left, bottom - height, bar.pixels / 2.0, height);
  cairo_fill(pen);
  cairo_rectangle(pen, left + 0.5, bottom - height + 0.5, bar.pixels - 1.0, height - 1.0);
  cairo_stroke(pen);
  Write(pen, left, bottom - height - 0.5 * m_dText, number.Times(1.0));
  return bar;
}

}  // namespace qeltin::cli
