#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/render/GlDrawable.h"
#include "qeltin/render/ZRangeColors.h"

class TGrid;

// Draws a grid as strips of triangles between neighbouring rows, broken where a node has no height.
// The last column is not drawn. There are no normals: with light, the one that GL had last holds.
// Heights and colours are those of GlTIN.
//
// Seen from above, a strip shows its back where it begins with a node of its southern row, as most
// do, and its front where it begins in the northern one: cull neither side.
//
// Threads: as GlDrawable.
class QELTIN_API GlGrid : public GlDrawable, public qeltin::detail::ZRangeColors {
 public:
  // REQUIRES, when it draws: not null. Not owned.
  explicit GlGrid(TGrid const* grid) : m_pGrid(grid) {}

  void Draw(GlContext const* context, double zScale) override;

 private:
  TGrid const* m_pGrid;
};
