#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/render/GlDrawable.h"

class TPolygon;

// Draws a polygon as one open line in a single colour, that of the true height of its first point
// in the colour table of the context. Heights are drawn as those of GlTIN. A polygon without points
// leaves GL alone, attributes too.
//
// Threads: as GlDrawable.
class QELTIN_API GlPolygon : public GlDrawable {
 public:
  // REQUIRES, when it draws: not null. Not owned.
  explicit GlPolygon(TPolygon const* polygon) : m_pPolygon(polygon) {}

  // Whether the line has the complement of its colour. False at first.
  bool GetInvertColors() const { return m_bInvertColors; }
  void SetInvertColors(bool invert) { m_bInvertColors = invert; }

  void Draw(GlContext const* context, double zScale) override;

 private:
  TPolygon const* m_pPolygon;
  bool m_bInvertColors = false;
};
