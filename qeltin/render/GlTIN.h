#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/render/GlDrawable.h"
#include "qeltin/render/ZRangeColors.h"

class TIN;

// Draws a surface: its visible triangles, each with one normal that points up, or its points where
// the attributes have FRONT_POINT. Every vertex has the colour of its true height in the colour
// table of the context, and is drawn at (z - RefZ) * zScale + RefZ.
//
// Corners run clockwise, so that a surface seen from above shows its back, which the default
// attributes cull: take GlDrawingAttributes::CULL_BACK away to look at it from above.
//
// Points are those within the data bounds, edges included, whatever their triangles are.
//
// Threads: as GlDrawable.
class QELTIN_API GlTIN : public GlDrawable, public qeltin::detail::ZRangeColors {
 public:
  // REQUIRES, when it draws: not null. Not owned.
  explicit GlTIN(TIN const* tin) : m_pTIN(tin) {}

  void Draw(GlContext const* context, double zScale) override;

 private:
  void DrawPoints(GlContext const& context, double zScale) const;
  void DrawTriangles(GlContext const& context, double zScale) const;

  TIN const* m_pTIN;
};
