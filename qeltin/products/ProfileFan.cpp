#include "qeltin/products/ProfileTracer.h"
#include "qeltin/products/ProfileWalk.h"
#include "qeltin/tin/PlanRay.h"

namespace qeltin::detail {

namespace {

// Walks from triangle to triangle about a corner.
class Fan {
 public:
  // Over the side that leaves the corner, or over the other one where no triangle lies there.
  Fan(TTriangle* first, int corner) : m_pCorner(first->m_pVertex[corner]), m_pCurrent(first) {
    Cross(first->m_pAdjacent[corner] != nullptr ? corner : (corner + 2) % 3);
  }

  TTriangle* Current() const { return m_pCurrent; }  // null at the end
  TPoint const& FarVertex() const { return *m_pCurrent->m_pVertex[(m_iEntry + 2) % 3]; }
  int OppositeSide() const { return (m_iCorner + 1) % 3; }

  void Next() { Cross(m_iEntry == m_iCorner ? (m_iCorner + 2) % 3 : m_iCorner); }

 private:
  void Cross(int side) {
    m_iEntry = m_pCurrent->TriSide(side);
    m_pCurrent = m_iEntry == 3 ? nullptr : m_pCurrent->m_pAdjacent[side];
    if (m_pCurrent == nullptr) return;
    m_iCorner = m_iEntry;
    if (m_pCurrent->m_pVertex[m_iCorner] != m_pCorner) m_iCorner = (m_iEntry + 1) % 3;
    if (m_pCurrent->m_pVertex[m_iCorner] != m_pCorner) m_pCurrent = nullptr;
  }

  TPoint const* m_pCorner;
  TTriangle* m_pCurrent;
  int m_iEntry;   // the side that the walk came in by
  int m_iCorner;  // where the corner is
};

// Returns the corner of `t` at `p`, the last of several, or 3.
int CornerAt(TTriangle const& t, TPoint const& p) {
  for (int corner = 2; corner >= 0; --corner) {
    if (IsSamePlace(*t.m_pVertex[corner], p)) return corner;
  }
  return 3;
}

// Calls `visit` for each place of the fan, up to that where the walk is back at `first`, until it
// answers true. Returns true iff it did.
template <typename Visit>
bool VisitFan(TTriangle* first, int corner, int most, Visit visit) {
  Fan fan(first, corner);
  for (; fan.Current() != nullptr && most > 0; --most) {
    if (visit(fan)) return true;
    if (fan.Current() == first) return false;
    fan.Next();
  }
  return false;
}

}  // namespace

// Where the line starts at a corner, lets the walk begin in the triangle that the line enters
// there. Returns false where the line ends at a vertex next to that corner: it runs along a side.
bool ProfileTracer::SettleFirst() {
  int const corner = CornerAt(*m_pFirst, m_From);
  if (corner == 3) return true;
  int const most = m_Tin.GetNumberOfTriangles();
  bool const along_side = VisitFan(
      m_pFirst, corner, most, [&](Fan const& fan) { return IsSamePlace(fan.FarVertex(), m_To); });
  if (along_side) return false;

  PlanRay const ray{m_From.x, m_From.y, m_dUx, m_dUy};
  TTriangle* entered = m_pFirst;
  VisitFan(m_pFirst, corner, most, [&](Fan const& fan) {
    TTriangle* const t = fan.Current();
    int const side = fan.OppositeSide();
    TPoint at;
    if (!ray.Meets(ray.See(*t->m_pVertex[side]), ray.See(*t->m_pVertex[(side + 1) % 3]), at)) {
      return false;
    }
    entered = t;
    return true;
  });
  m_pFirst = entered;
  return true;
}

}  // namespace qeltin::detail
