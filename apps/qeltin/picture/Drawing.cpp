#include "apps/qeltin/picture/Drawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/LineLabels.h"
#include "qeltin/platform/gl/OffscreenWindow.h"
#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlViewer.h"

namespace qeltin::cli {

namespace {

constexpr unsigned char COLOUR_BITS = 24;
constexpr unsigned char DEPTH_BITS = 24;

LegendContent ContentOf(Scene const& scene) {
  return {scene.HeightColours(), scene.Bounds().min.z, scene.Bounds().max.z,
          scene.ContourInterval()};
}

// Writes a text about its spot, y up, with a rim that keeps lines off it.
void DrawLabel(cairo_t* pen, LabelSpot const& spot, std::string const& text, double size) {
  cairo_text_extents_t extents;
  cairo_text_extents(pen, text.c_str(), &extents);
  cairo_save(pen);
  cairo_translate(pen, spot.centre.x, -spot.centre.y);
  cairo_rotate(pen, -spot.turn * std::numbers::pi / 180.0);
  cairo_move_to(pen, -extents.x_bearing - extents.width / 2.0,
                -extents.y_bearing - extents.height / 2.0);
  cairo_text_path(pen, text.c_str());
  cairo_set_line_join(pen, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_width(pen, size / 3.0);
  cairo_set_source_rgb(pen, 1.0, 1.0, 1.0);
  cairo_stroke_preserve(pen);
  cairo_set_source_rgb(pen, 0.1, 0.07, 0.04);
  cairo_fill(pen);
  cairo_restore(pen);
}

}  // namespace

Drawing::Drawing(Scene& scene, PictureOptions const& options)
    : m_Scene(scene),
      m_Options(options),
      m_Legend(ContentOf(scene), options.width, options.height),
      m_iWidth(options.legend ? options.width - m_Legend.Width() : options.width),
      m_Canvas(options.width, options.height),
      m_Camera(options.view ? FromTheSide() : FromAbove()) {}

Camera Drawing::FromAbove() {
  m_Top.emplace(m_Scene.SceneBounds(), m_iWidth, m_Options.height, m_Legend.Margin());
  return m_Top->Eye();
}

Camera Drawing::FromTheSide() const {
  CameraFit fit(*m_Options.view, m_iWidth, m_Options.height, m_Legend.Margin());
  m_Scene.ForEachCorner([&fit](TPoint const& p) { fit.Add(p); });
  CameraCentring centring(fit);
  m_Scene.ForEachCorner([&centring](TPoint const& p) { centring.Add(p); });
  return centring.Result();
}

void Drawing::Draw() {
  m_Canvas.Put(Pixels(), m_iWidth);
  if (m_Top) LabelContours();
  if (m_Options.legend) m_Scale = m_Legend.Draw(m_Canvas.Pen(), North(), PixelsPerUnit());
}

void Drawing::Write(std::string const& file) const { m_Canvas.WritePng(file, m_Options.output); }

std::optional<double> Drawing::PixelsPerUnit() const {
  return m_Top ? std::optional(m_Top->PixelsPerUnit()) : std::nullopt;
}

std::vector<double> Drawing::LegendHeights() const {
  return m_Options.legend ? m_Legend.Heights() : std::vector<double>();
}

std::vector<unsigned char> Drawing::Pixels() {
  // Edges are smooth as long as memory allows for it.
  constexpr double LARGE = 1 << 24;
  constexpr int SAMPLES = 4;
  int const height = m_Options.height;
  bool const is_large = static_cast<double>(m_iWidth) * height > LARGE;
  OffscreenWindow window(m_iWidth, height, is_large ? 0 : SAMPLES);
  GlContext context(&window, COLOUR_BITS, DEPTH_BITS);
  if (!window.IsOk()) throw Failure(m_Options.output, "cannot be drawn: " + window.GetError());
  context.OnSize(m_iWidth, height);
  context.SetBackgroundColor(GlColor::GLC_WHITE);
  // From straight above nothing hides anything, and lines are to be whole.
  context.EnableDepth(!m_Top);
  m_Scene.SetLight(context, m_Camera.frame);
  GlViewer* const viewer = context.CreateViewer();
  m_Camera.ApplyTo(*viewer);
  context.BeginDraw();
  m_Scene.Record(context, m_Scene.Layers());
  context.BeginDrawViewer(viewer);
  m_Scene.Draw(context, m_Scene.Layers());
  context.EndDrawViewer(viewer);
  std::vector<unsigned char> rgb;
  bool const read = window.ReadPixels(rgb);
  context.EndDraw();
  if (!read) throw Failure(m_Options.output, "cannot be drawn: " + window.GetError());
  return rgb;
}

// Returns the direction of north in the picture, y down.
TPoint Drawing::North() const {
  constexpr double LEAST = 1e-9;  // below, north points straight to the eye or away from it
  GlCoord facing = m_Camera.frame;
  facing.SetOrigin(TPoint(0, 0, 0));
  TPoint const seen = facing << TPoint(0, 1, 0);
  if (std::hypot(seen.x, seen.y) < LEAST) return {0, seen.z < 0.0 ? -1.0 : 1.0};
  return {seen.x, -seen.y};
}

void Drawing::LabelContours() const {
  constexpr double SPACING = 20.0;  // sizes of letters
  double const size = std::max(0.75 * m_Legend.TextSize(), 10.5);
  cairo_t* const pen = m_Canvas.Pen();
  ChooseLetters(pen, size);
  for (Scene::IndexContour const& contour : m_Scene.IndexContours()) {
    std::vector<TPoint> line;
    for (TPoint const& p : contour.points) {
      TPoint const pixel = m_Top->PixelOf(m_Scene.ToScene(p));
      line.emplace_back(pixel.x, -pixel.y);
    }
    line = ThinnedLine(line);
    std::string const text = ShortNumber(contour.height);
    double const width = TextWidth(pen, text) + size;
    for (LabelSpot const& spot : LabelSpots(line, text, width, SPACING * size)) {
      DrawLabel(pen, spot, text, size);
    }
  }
}

}  // namespace qeltin::cli
