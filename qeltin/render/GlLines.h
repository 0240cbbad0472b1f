#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/render/GlDrawable.h"

class TPolygon;

// Draws the points of a polygon as separate lines, 0 to 1, 2 to 3 and so on, in a colour of its
// own. Note that heights are drawn at z * zScale: the reference height of the context has no
// effect, so that lines stand off an exaggerated surface unless it is 0.
//
// Threads: as GlDrawable.
class QELTIN_API GlLines : public GlDrawable {
 public:
  // REQUIRES, when it draws: not null. Not owned.
  explicit GlLines(TPolygon const* polygon) : m_pPolygon(polygon) {}

  // Orange at first.
  void SetColor(GlColor const& color) { m_Color = color; }

  void Draw(GlContext const* context, double zScale) override;

 private:
  TPolygon const* m_pPolygon;
  GlColor m_Color{1.0f, 0.5f, 0.0f, 1.0f};
};
