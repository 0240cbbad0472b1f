#include <algorithm>

#include "qeltin/persistence/LoadedPools.h"
#include "qeltin/persistence/NativeFormat.h"
#include "qeltin/persistence/TINFile.h"

using qeltin::detail::Element;
using qeltin::detail::MakePool;
using qeltin::detail::NO_ORDINAL;
using qeltin::detail::POINT_MARGIN;
using qeltin::detail::SetCorner;
using qeltin::detail::TRIANGLE_MARGIN;
using qeltin::detail::TriangleTail;

namespace {

// A circle is calculated this many triangles after its corners were fetched: those of a large
// surface are far apart in memory.
constexpr std::int32_t LAG = 16;

}  // namespace

unsigned int TINFile::LoadVersion3(TIN& tin) {
  FileStream& in = *m_pFile;
  ReadBoxes(tin);

  std::int32_t const points = ReadInt(0);
  tin.m_pPoints = MakePool<TPoint>(points, points + 0LL + POINT_MARGIN, m_iMemory);
  if (tin.m_pPoints == nullptr) return Refuse(tin);
  TPoint p;
  for (std::int32_t i = 0; i < points; ++i) {
    in.Read(&p, sizeof p);
    tin.m_pPoints->Add(p);
  }

  std::int32_t const triangles = ReadInt(0);
  tin.m_pTriangles = MakePool<TTriangle>(triangles, triangles + 0LL + TRIANGLE_MARGIN, m_iMemory);
  if (tin.m_pTriangles == nullptr) return Refuse(tin);
  std::int32_t corners[3] = {NO_ORDINAL, NO_ORDINAL, NO_ORDINAL};
  std::int32_t adjacent[3] = {NO_ORDINAL, NO_ORDINAL, NO_ORDINAL};
  TriangleTail tail;
  for (std::int32_t i = 0; i < triangles; ++i) {
    // Two reads: a file may end between them.
    in.Read(corners, sizeof corners);
    in.Read(adjacent, sizeof adjacent);
    in.Read(&tail, sizeof tail);
    TTriangle t;
    t.m_Flags = tail.flags;
    for (int k = 0; k < 3; ++k) {
      SetCorner(t, k, Element(*tin.m_pPoints, corners[k], points), *tin.m_pPoints);
      t.m_pAdjacent[k] = Element(*tin.m_pTriangles, adjacent[k], triangles);
    }
    tin.m_pTriangles->Add(t);
    for (TPoint const* corner : t.m_pVertex) __builtin_prefetch(corner);
    if (i >= LAG) tin.m_pTriangles->At(i - LAG)->CalcTri();
  }
  for (std::int32_t i = std::max(0, triangles - LAG); i < triangles; ++i) {
    tin.m_pTriangles->At(i)->CalcTri();
  }
  return static_cast<unsigned int>(points);
}
