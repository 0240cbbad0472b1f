#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/qeltin/LevelOptions.h"
#include "apps/qeltin/SceneOptions.h"
#include "apps/qeltin/Surface.h"
#include "qeltin/platform/ColorTable.h"
#include "qeltin/products/TGrid.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

class GlContext;
class GlCoord;

namespace qeltin::cli {

// A surface with all that is shown on it, to be drawn by GL.
//
// The coordinates of the scene are those of the surface less its centre, with heights exaggerated
// about the middle height, so that single precision carries them; light falls on the exaggerated
// form. The surface itself keeps its coordinates: they are moved only while it is recorded.
//
// In a frame of the context: Record once, then Draw in each viewer.
//
// Threads: one at a time.
class Scene {
 public:
  enum Layer : unsigned {
    SURFACE = 1,    // triangles, or the grid, in the colours of their heights
    POINTS = 2,     // the points of the surface, in the colours of their heights
    MESH = 4,       // the sides of the triangles, or of the grid
    MESH_OF = 8,    // the sides of the other surface
    CONTOURS = 16,  // every fifth strong
    LINES = 32,     // lines from files, on the surface where there is one
  };

  // A contour that carries its height: every fifth.
  struct IndexContour {
    double height;
    std::vector<TPoint> points;  // true coordinates
  };

  // Gathers what the options ask for. `tin` is not owned and outlives the scene. Throws Failure
  // where a file cannot be read, and where nothing of the surface is visible.
  Scene(TIN& tin, SceneOptions const& options);
  ~Scene();

  // Returns the layers that the options ask for.
  unsigned Layers() const;

  // Makes the lists of these layers, anew where there are any. Contours without an interval get one
  // that suits the heights. Throws Failure where there are too many. REQUIRES: a frame, outside of
  // a viewer.
  void Record(GlContext& context, unsigned layers);

  // Draws what has been recorded of these layers, the last one on top. REQUIRES: a viewer of a
  // frame.
  void Draw(GlContext& context, unsigned layers) const;

  // Sets the lights of `context`, of which there is at most one, as the options ask, for an eye in
  // the frame `eye`. For each change of the view.
  void SetLight(GlContext& context, GlCoord const& eye) const;

  // May change between two frames, without recording.
  void SetExaggeration(double factor) { m_dExaggeration = factor; }
  double Exaggeration() const { return m_dExaggeration; }

  TPoint ToScene(TPoint const& p) const;
  TPoint FromScene(TPoint const& p) const;

  // Hands the corners of all visible triangles to `take`, in the coordinates of the scene. Most
  // come several times.
  template <typename Take>
  void ForEachCorner(Take const& take) const {
    for (int i = 0; i < m_Tin.GetNumberOfTriangles(); ++i) {
      TTriangle const* const triangle = m_Tin.GetTriangle(i, false);
      if (triangle == nullptr) continue;
      for (TPoint const* corner : triangle->m_pVertex) take(ToScene(*corner));
    }
  }

  // The box of the visible surface, in true coordinates.
  Box const& Bounds() const { return m_Bounds; }

  // The same in the coordinates of the scene.
  Box SceneBounds() const { return {ToScene(m_Bounds.min), ToScene(m_Bounds.max)}; }

  ColorTable const& HeightColours() const { return m_Colours; }
  std::string const& ColoursName() const { return m_ColoursName; }

  double ContourInterval() const { return m_dInterval; }   // 0 for none
  std::size_t ContourLevels() const { return m_iLevels; }  // once contours are recorded
  std::vector<IndexContour> const& IndexContours() const { return m_IndexContours; }  // likewise

 private:
  static constexpr int LAYERS = 6;

  void DrawLayer(GlContext& context, Layer layer);
  void DrawSurface(GlContext& context, bool sides);
  void DrawOther(GlContext& context);
  void DrawPoints(GlContext& context);
  void DrawContours(GlContext& context);
  void DrawLines(GlContext& context);
  std::vector<Level> ContourHeights();

  TIN& m_Tin;
  SceneOptions const& m_Options;
  Box m_Bounds;
  TPoint m_Centre;  // of the bounds: the origin of the scene
  double m_dExaggeration;
  ColorTable m_Colours;
  std::string m_ColoursName;
  HeldSurface m_pOther;  // whose sides are drawn; null for none
  std::unique_ptr<TGrid> m_pGrid;
  std::vector<TPolygon> m_Lines;
  double m_dInterval;
  std::size_t m_iLevels = 0;
  std::vector<IndexContour> m_IndexContours;
  int m_Lists[LAYERS] = {};  // by the bit of the layer; 0 for none
};

}  // namespace qeltin::cli
