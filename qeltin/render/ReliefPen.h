#pragma once

#include "qeltin/kernel/TPoint.h"
#include "qeltin/render/GlColor.h"

class GlContext;

namespace qeltin::detail {

// Emits vertices of a model whose heights are exaggerated about the reference height of a context
// and coloured, by their true height, from its colour table.
class ReliefPen {
 public:
  // Takes the reference height as it is now. REQUIRES: the context outlives the pen.
  ReliefPen(GlContext const& context, double zScale);

  // Returns the colour of a true height, opaque.
  GlColor ColorOf(double z) const;

  // Emits the vertex alone, in whatever colour GL has.
  void Vertex(TPoint const& p) const;

  // Emits the colour of the vertex, then the vertex.
  void ColoredVertex(TPoint const& p) const;

 private:
  GlContext const& m_Context;
  double m_dRefZ;
  double m_dScale;
};

}  // namespace qeltin::detail
