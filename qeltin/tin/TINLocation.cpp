#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "qeltin/tin/PlanRay.h"
#include "qeltin/tin/TIN.h"

namespace {

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;
constexpr double SAME_PLACE = 1e-09;
constexpr std::size_t LARGEST_FAN = 250;

bool IsCorner(TTriangle const& t, double x, double y) {
  for (TPoint const* corner : t.m_pVertex) {
    if (std::fabs(corner->x - x) < SAME_PLACE && std::fabs(corner->y - y) < SAME_PLACE) return true;
  }
  return false;
}

// Tells when a walk that follows from where it stands, as one along a straight line does, is going
// round in circles: it compares each place with one that is moved up at ever longer intervals.
// R. P. Brent, An improved Monte Carlo factorization algorithm, BIT 20 (1980).
class RoundTrip {
 public:
  // Returns true only where the walk was in `triangle` by the side `entry` before.
  bool ComesBack(TTriangle const* triangle, int entry) {
    if (triangle == m_pMark && entry == m_iEntry) return true;
    if (--m_iLeft > 0) return false;
    m_pMark = triangle;
    m_iEntry = entry;
    m_iInterval *= 2;
    m_iLeft = m_iInterval;
    return false;
  }

 private:
  TTriangle const* m_pMark = nullptr;
  int m_iEntry = 3;
  long long m_iInterval = 1;
  long long m_iLeft = 1;
};

}  // namespace

TTriangle* TIN::GetTriangleWithPoint(TPoint const& p) const { return m_Triangulator.Find(p); }

TTriangle* TIN::TraverseFind(TPoint const& p, int budget) const {
  TTriangle* current = m_pLastTriangle;
  TTriangle* previous = nullptr;
  for (; budget >= 1; --budget) {
    int const side = current->WhereTri(p);
    if (side == 3) {
      m_pLastTriangle = current;
      return current;
    }
    TTriangle* const next = current->m_pAdjacent[side];
    if (next == nullptr) return nullptr;
    if (next != previous) {
      previous = current;
      current = next;
      continue;
    }
    if (current->XY_HasPoint(p)) return current;
    if (previous->XY_HasPoint(p)) return previous;
    current = m_pTriangles->At(std::rand() % m_pTriangles->m_iCount);
  }
  return nullptr;
}

TTriangle* TIN::FindTriangle(TTriangle* start, double x, double y) const {
  if (start == nullptr) return nullptr;
  double const cx =
      (start->m_pVertex[0]->x + start->m_pVertex[1]->x + start->m_pVertex[2]->x) / 3.0;
  double const cy =
      (start->m_pVertex[0]->y + start->m_pVertex[1]->y + start->m_pVertex[2]->y) / 3.0;
  double const d = TPoint(cx, cy).XY_Distance(TPoint(x, y));
  if (d == 0.0) return nullptr;
  double const ux = (x - cx) / d;
  double const uy = (y - cy) / d;
  auto const crosses = [&](TTriangle const& t, int side) {
    TPoint at;
    return Intersect(cx, cy, ux, uy, t.m_pVertex[side], t.m_pVertex[(side + 1) % 3], at);
  };

  int exit = 0;
  while (exit < 3 && (start->m_pAdjacent[exit] == nullptr || !crosses(*start, exit))) ++exit;
  if (exit == 3) return nullptr;

  TTriangle* t = start->m_pAdjacent[exit];
  int entry = start->TriSide(exit);
  RoundTrip trip;
  for (int steps = GetNumberOfTriangles(); entry <= 2 && steps > 0; --steps) {
    if (trip.ComesBack(t, entry)) return nullptr;
    if (t->XY_HasPoint(TPoint(x, y, 0.0)) || IsCorner(*t, x, y)) return t;
    int const a = (entry + 1) % 3;
    int const b = (entry + 2) % 3;
    int const side = crosses(*t, a) ? a : b;
    entry = t->TriSide(side);
    t = t->m_pAdjacent[side];
  }
  return nullptr;
}

bool TIN::Intersect(double x, double y, double ux, double uy, TPoint* a, TPoint* b, TPoint& out) {
  qeltin::detail::PlanRay const ray{x, y, ux, uy};
  return ray.Meets(ray.See(*a), ray.See(*b), out);
}

TPoint* TIN::FindPoint(TPoint const& p) const {
  for (int i = 0; i < GetNumberOfPoints(); ++i) {
    TPoint* const point = GetPoint(i);
    if (*point == p) return point;
  }
  return nullptr;
}

TEdge TIN::GetNearestEdge(TPoint const& p) {
  TEdge nearest;
  double best = LARGEST_FLOAT;
  for (int i = 0; i < GetNumberOfTriangles(); ++i) {
    TEdge edge;
    double const distance = GetTriangle(i, true)->XY_Distance(p, edge);
    if (distance < best) {
      best = distance;
      nearest = edge;
    }
  }
  return nearest;
}

int TIN::GetTrianglesWithEdge(TEdge const& edge, TTriangle*& first, TTriangle*& second) const {
  first = nullptr;
  second = nullptr;
  for (int i = 0; i < GetNumberOfTriangles(); ++i) {
    TTriangle* const triangle = GetTriangle(i, true);
    if (!triangle->HasEdge(edge)) continue;
    if (first != nullptr) {
      second = triangle;
      return 2;
    }
    first = triangle;
  }
  return first == nullptr ? 0 : 1;
}

bool TIN::GetZ(TPoint const& p, double& z, TTriangle* triangle) const {
  return GetZ(p.x, p.y, z, triangle);
}

bool TIN::GetZ(double x, double y, double& z) const { return GetZ(x, y, z, nullptr); }

// By value: out of a point that was stored just now they would be read as one, which has to wait
// for the store.
bool TIN::GetZ(double x, double y, double& z, TTriangle* triangle) const {
  if (!InBounds({x, y})) return false;
  if (triangle == nullptr) triangle = m_Triangulator.Find(x, y);
  if (triangle == nullptr || triangle->IsHidden()) return false;
  TPoint const& A = *triangle->m_pVertex[0];
  TPoint const& B = *triangle->m_pVertex[1];
  TPoint const& C = *triangle->m_pVertex[2];
  double const d = (C.y - A.y) * (B.x - A.x) - (C.x - A.x) * (B.y - A.y);
  if (d == 0.0) return false;
  z = triangle->GetZ(x, y);
  return true;
}

void TIN::GetTrianglesWithPoint(TPoint const* p, std::deque<TTriangle*>& result) {
  result.clear();
  TTriangle* const start = m_Triangulator.Find(*p);
  if (start == nullptr) return;

  TTriangle* current = start;
  TTriangle* previous = nullptr;
  do {
    result.push_back(current);
    if (result.size() > LARGEST_FAN) {
      result.clear();
      return;
    }
    for (TTriangle* next : current->m_pAdjacent) {
      if (next != nullptr && next != previous && next->XY_FindVertex(p)) {
        previous = current;
        current = next;
        break;
      }
    }
  } while (current != start);
}
