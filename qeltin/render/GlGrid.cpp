#include "qeltin/render/GlGrid.h"

#include "qeltin/products/TGrid.h"
#include "qeltin/render/GlContext.h"
#include "qeltin/render/ReliefPen.h"

namespace {

// A strip of triangles that opens with a node and closes at a gap.
class Strip {
 public:
  Strip(GlContext const& context, double zScale) : m_Context(context), m_Pen(context, zScale) {}

  // Takes the next node, null at a gap.
  void Add(TPoint const* node) {
    if (node == nullptr) {
      Close();
      return;
    }
    if (!m_bOpen) m_Context.BeginDrawTriangleStrip();
    m_bOpen = true;
    m_Pen.ColoredVertex(*node);
  }

  void Close() {
    if (m_bOpen) m_Context.EndDrawVertices();
    m_bOpen = false;
  }

 private:
  GlContext const& m_Context;
  qeltin::detail::ReliefPen m_Pen;
  bool m_bOpen = false;
};

}  // namespace

void GlGrid::Draw(GlContext const* context, double zScale) {
  m_Attributes.SetRC(context);
  Strip strip(*context, zScale);
  int const columns = m_pGrid->GetNumberOfNodesX();
  int const rows = m_pGrid->GetNumberOfNodesY();
  for (int j = 0; j < rows; ++j) {
    for (int i = 0; i < columns - 1; ++i) {  // hosts have a grid without its last column
      strip.Add(m_pGrid->GetNode(i, j));
      strip.Add(m_pGrid->GetNode(i, j + 1));  // null beyond the last row
    }
    strip.Close();
  }
}
