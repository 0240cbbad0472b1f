#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/LevelOptions.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/WholeIsolines.h"
#include "apps/qeltin/picture/DrapedLines.h"
#include "apps/qeltin/picture/RoundNumbers.h"
#include "apps/qeltin/picture/Scene.h"
#include "apps/qeltin/picture/ShiftedPoints.h"
#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlGrid.h"
#include "qeltin/render/GlLines.h"
#include "qeltin/render/GlTIN.h"

// How a scene records its layers.

namespace qeltin::cli {

namespace {

using Mode = GlDrawingAttributes;

// Of the two colours of contours the one that stands off the ramp is taken. The vermilion of lines
// from files stands off blue, green and grey for those, too, who cannot tell red from green.
constexpr GlColor MESH_COLOUR{0.18f, 0.18f, 0.20f, 1.0f};
constexpr GlColor DARK_CONTOUR{0.16f, 0.11f, 0.07f, 1.0f};
constexpr GlColor LIGHT_CONTOUR{0.80f, 0.84f, 0.87f, 1.0f};
constexpr GlColor LINE_COLOUR{0.84f, 0.27f, 0.0f, 1.0f};

constexpr float THIN = 1.0f;  // pixels
constexpr float STRONG = 2.0f;
constexpr float POINT_SIZE = 3.0f;

constexpr long long INDEX_EVERY = 5;

// Replaces the colours of heights by a single one while it lives.
class OneColour {
 public:
  OneColour(GlContext& context, GlColor const& colour)
      : m_Context(context), m_Kept(context.GetColorTable()) {
    auto const channel = [](float value) {
      return static_cast<unsigned char>(std::lround(value * 255.0f));
    };
    ColorTable table;
    table.AddStop(0.0, ColorTable::MakeColor(channel(colour.GetRed()), channel(colour.GetGreen()),
                                             channel(colour.GetBlue())));
    context.SetColorTable(table);
  }
  ~OneColour() { m_Context.SetColorTable(m_Kept); }
  OneColour(OneColour const&) = delete;
  OneColour& operator=(OneColour const&) = delete;

 private:
  GlContext& m_Context;
  ColorTable m_Kept;
};

// A compiled list that is open while this object lives.
class ListInTheMaking {
 public:
  explicit ListInTheMaking(GlContext const& context)
      : m_Context(context), m_iId(context.BeginCompileList()) {}
  ~ListInTheMaking() { m_Context.EndCompileList(); }
  ListInTheMaking(ListInTheMaking const&) = delete;
  ListInTheMaking& operator=(ListInTheMaking const&) = delete;

  int Id() const { return m_iId; }

 private:
  GlContext const& m_Context;
  int m_iId;
};

GlColor ColourOf(ColorTable const& table, double height) {
  std::uint32_t const colour = table.GetColor(height);
  auto const channel = [colour](int shift) {
    return static_cast<float>(colour >> shift & 0xFF) / 255.0f;
  };
  return {channel(0), channel(8), channel(16), 1.0f};
}

bool IsDark(GlColor const& colour) {
  constexpr float DARK = 0.36f;
  return 0.3f * colour.GetRed() + 0.59f * colour.GetGreen() + 0.11f * colour.GetBlue() < DARK;
}

void DrawRelief(GlContext& context, GlDrawable& drawable) {
  // Triangles run clockwise, so that from above their backs are seen, which would be left out.
  drawable.GetDrawingAttributes()->DisableDrawMode(Mode::CULL_BACK);
  context.SetVertexNormal(TPoint(0, 0, 1));
  drawable.Draw(&context, 1.0);
}

void DrawSides(GlContext& context, GlDrawable& drawable) {
  OneColour const colour(context, MESH_COLOUR);
  GlDrawingAttributes& attributes = *drawable.GetDrawingAttributes();
  attributes.DisableDrawMode(Mode::CULL_BACK);
  attributes.EnableDrawMode(Mode::FRONT_LINE | Mode::BACK_LINE);
  attributes.SetLineWidth(THIN);
  context.PushLightAttribute();
  drawable.Draw(&context, 1.0);
  context.PopLightAttribute();
}

// Draws pairs of points, without light.
void DrawPairs(GlContext& context, TPolygon const& pairs, GlColor const& colour, float width) {
  GlLines lines(&pairs);
  lines.SetColor(colour);
  lines.GetDrawingAttributes()->SetLineWidth(width);
  context.PushLightAttribute();
  lines.Draw(&context, 1.0);
  context.PopLightAttribute();
}

void AddPairs(std::vector<TPoint> const& line, TPoint const& origin, TPolygon& pairs) {
  for (std::size_t i = 1; i < line.size(); ++i) {
    for (TPoint const* p : {&line[i - 1], &line[i]}) {
      pairs.Add(p->x - origin.x, p->y - origin.y, p->z);
    }
  }
}

// Returns the sides of the cells that GlGrid draws, which leaves out the last column.
TPolygon SidesOf(TGrid const& grid, TPoint const& origin) {
  TPolygon pairs;
  for (int j = 0; j < grid.GetNumberOfNodesY(); ++j) {
    for (int i = 0; i + 1 < grid.GetNumberOfNodesX(); ++i) {
      TPoint const* const node = grid.GetNode(i, j);
      TPoint const* const east =
          i + 2 < grid.GetNumberOfNodesX() ? grid.GetNode(i + 1, j) : nullptr;
      for (TPoint const* next : {east, static_cast<TPoint const*>(grid.GetNode(i, j + 1))}) {
        if (node != nullptr && next != nullptr) AddPairs({*node, *next}, origin, pairs);
      }
    }
  }
  return pairs;
}

}  // namespace

void Scene::Record(GlContext& context, unsigned layers) {
  context.SetColorTable(m_Colours);
  for (int i = 0; i < LAYERS; ++i) {
    if ((layers & 1U << i) == 0) continue;
    context.DeleteCompiledList(m_Lists[i]);
    ListInTheMaking const list(context);
    m_Lists[i] = list.Id();
    DrawLayer(context, static_cast<Layer>(1U << i));
  }
}

void Scene::DrawLayer(GlContext& context, Layer layer) {
  switch (layer) {
    case SURFACE:
      return DrawSurface(context, false);
    case POINTS:
      return DrawPoints(context);
    case MESH:
      return DrawSurface(context, true);
    case MESH_OF:
      return DrawOther(context);
    case CONTOURS:
      return DrawContours(context);
    case LINES:
      return DrawLines(context);
  }
}

void Scene::DrawSurface(GlContext& context, bool sides) {
  if (m_pGrid != nullptr && sides) {
    // Not by GlGrid in lines: some drivers join the strips of a list, which shows then.
    return DrawPairs(context, SidesOf(*m_pGrid, m_Centre), MESH_COLOUR, THIN);
  }
  if (m_pGrid != nullptr) {
    ShiftedPoints const shifted(*m_pGrid, m_Centre);
    GlGrid grid(m_pGrid.get());
    return DrawRelief(context, grid);
  }
  ShiftedPoints const shifted(m_Tin, m_Centre);
  GlTIN tin(&m_Tin);
  sides ? DrawSides(context, tin) : DrawRelief(context, tin);
}

void Scene::DrawOther(GlContext& context) {
  if (m_pOther == nullptr) return;
  ShiftedPoints const shifted(*m_pOther, m_Centre);
  GlTIN tin(m_pOther.get());
  DrawSides(context, tin);
}

void Scene::DrawPoints(GlContext& context) {
  GlDrawingAttributes attributes;
  attributes.SetPointSize(POINT_SIZE);
  attributes.SetRC(&context);
  context.PushLightAttribute();
  context.BeginDrawPoints();
  for (int i = 0; i < m_Tin.GetNumberOfPoints(); ++i) {
    TPoint const& p = *m_Tin.GetPoint(i);
    if (!m_Bounds.Has({p.x, p.y, p.z})) continue;  // a corner of the seed rectangle
    context.SetVertexColor(ColourOf(m_Colours, p.z));
    context.Vertex(p.x - m_Centre.x, p.y - m_Centre.y, p.z);
  }
  context.EndDrawVertices();
  context.PopLightAttribute();
}

void Scene::DrawContours(GlContext& context) {
  std::vector<Level> const levels = ContourHeights();
  TPolygon pairs[2][2];  // ordinary and strong ones, dark and light ones
  m_IndexContours.clear();
  Progress progress("contours", static_cast<double>(levels.size()), m_Options.quiet);
  WholeIsolines whole(m_Tin, HeightsOf(levels));
  for (std::size_t i = 0; i < levels.size(); ++i) {
    bool const index = levels[i].number % INDEX_EVERY == 0;
    bool const on_dark = IsDark(ColourOf(m_Colours, levels[i].height));
    for (Isoline& line : whole.At(i)) {
      AddPairs(line.points, m_Centre, pairs[index][on_dark]);
      if (index) m_IndexContours.push_back({levels[i].height, std::move(line.points)});
    }
    progress.Done(static_cast<double>(i + 1));
  }
  m_iLevels = levels.size();
  for (bool const index : {false, true}) {
    float const width = index ? STRONG : THIN;
    DrawPairs(context, pairs[index][0], DARK_CONTOUR, width);
    DrawPairs(context, pairs[index][1], LIGHT_CONTOUR, width);
  }
}

std::vector<Level> Scene::ContourHeights() {
  constexpr double SOME = 20.0;
  SurfaceFacts facts;
  facts.lowest = m_Bounds.min.z;
  facts.highest = m_Bounds.max.z;
  double const range = facts.highest - facts.lowest;
  if (m_dInterval == 0.0 && range > 0.0) {
    m_dInterval = RoundNumber::NotBelow(range / SOME).Value();
  }
  if (m_dInterval == 0.0) return {};
  std::optional<std::vector<Level>> levels = LevelsInSteps(facts, 0.0, m_dInterval);
  if (levels) return *std::move(levels);
  throw Failure(m_Options.surface, "contours so close are more than a million levels");
}

void Scene::DrawLines(GlContext& context) {
  TPolygon const draped = DrapeLines(m_Tin, m_Lines, m_Centre.z, m_Options.quiet);
  TPolygon pairs;
  for (int i = 0; i < draped.GetSize(); ++i) {
    TPoint const& p = *draped.Get(i);
    pairs.Add(p.x - m_Centre.x, p.y - m_Centre.y, p.z);
  }
  DrawPairs(context, pairs, LINE_COLOUR, STRONG);
}

}  // namespace qeltin::cli
