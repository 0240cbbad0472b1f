#include "qeltin/tin/TIN.h"

namespace {

bool HasSideBeyond(TTriangle const& t, double limit) {
  for (int side = 0; side < 3; ++side) {
    if (t.m_pVertex[side]->XY_Distance(*t.m_pVertex[(side + 1) % 3]) > limit) return true;
  }
  return false;
}

}  // namespace

void TIN::FilterTriangles(double limit) {
  for (int i = 0; i < GetNumberOfTriangles(); ++i) {
    TTriangle& t = *GetTriangle(i, true);
    t.m_Flags &= static_cast<unsigned char>(~TRI_FILTERED);
    if (HasSideBeyond(t, limit)) t.m_Flags |= TRI_FILTERED;
  }
}
