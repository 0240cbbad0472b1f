#include "testing/SurfaceVerifier.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <numeric>
#include <string>

#include "testing/ExactPlane.h"

namespace qeltin::testing {

namespace {

constexpr unsigned char KNOWN_FLAGS = TRI_VISITED | TRI_FILTERED | TRI_OUTSIDE | TRI_CAVITY;

std::string Text(TPoint const& p) {
  std::ostringstream out;
  out.precision(17);
  out << "(" << p.x << ", " << p.y << ", " << p.z << ")";
  return out.str();
}

bool SameNumber(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

// The side test, written out: the library's own is not trusted here.
double OffsetToRight(TPoint const& a, TPoint const& b, TPoint const& p) {
  double const dx = b.x - a.x;
  double const dy = b.y - a.y;
  if (std::fabs(dx) >= std::fabs(dy)) {
    double const m = dy / dx;
    double const d = (a.y - a.x * m + m * p.x) - p.y;
    return dx > 0.0 ? d : -d;
  }
  double const m = dx / dy;
  double const d = (a.x - a.y * m + m * p.y) - p.x;
  return dy > 0.0 ? -d : d;
}

// The circle that a triangle with these corners must hold, operation by operation.
struct Circle {
  double x;
  double y;
  double radiusSq;

  Circle(TPoint const& A, TPoint const& B, TPoint const& C) {
    double const a = B.y - A.y;
    double const b = C.x - A.x;
    double const c = C.y - A.y;
    double const d = B.x - A.x;
    double const e = (A.y + B.y) * a + (A.x + B.x) * d;
    double const f = (C.y + A.y) * c + (C.x + A.x) * b;
    double const g = (C.y - B.y) * d - (C.x - B.x) * a;
    x = (e * c - f * a) / (2 * g);
    y = (f * d - e * b) / (2 * g);
    radiusSq = (x - A.x) * (x - A.x) + (y - A.y) * (y - A.y);
  }

  bool IsFinite() const { return std::isfinite(x) && std::isfinite(y) && std::isfinite(radiusSq); }
};

template <typename T>
std::vector<std::pair<T const*, int>> SortedPlaces(std::vector<T const*> const& elements) {
  std::vector<std::pair<T const*, int>> places;
  places.reserve(elements.size());
  for (std::size_t i = 0; i < elements.size(); ++i) {
    places.emplace_back(elements[i], static_cast<int>(i));
  }
  std::sort(places.begin(), places.end());
  return places;
}

// Returns the position of `element`, or -1.
template <typename T>
int PlaceOf(std::vector<std::pair<T const*, int>> const& places, T const* element) {
  auto const at = std::lower_bound(places.begin(), places.end(), std::pair(element, 0));
  return at != places.end() && at->first == element ? at->second : -1;
}

int Root(std::vector<int>& parts, int i) {
  while (parts[i] != i) i = parts[i] = parts[parts[i]];
  return i;
}

// Returns the lowest side of `n` that leads back to `t` across the corners a and b, or -1.
int SideBack(TTriangle const& n, TTriangle const* t, TPoint const* a, TPoint const* b) {
  for (int side = 0; side < 3; ++side) {
    TPoint const* const c = n.m_pVertex[side];
    TPoint const* const d = n.m_pVertex[(side + 1) % 3];
    if (n.m_pAdjacent[side] == t && ((a == d && b == c) || (a == c && b == d))) return side;
  }
  return -1;
}

}  // namespace

SurfaceReport SurfaceVerifier::Run() {
  m_Triangles = m_View.triangles;
  if (m_Rules.byNeighbours) FindStructure();
  m_Places = SortedPlaces(m_Triangles);
  for (std::size_t i = 1; i < m_Places.size(); ++i) {
    if (m_Places[i].first == m_Places[i - 1].first) {
      Fault(m_Places[i].second) << "stands in the live order twice";
    }
  }
  m_Report.triangles = Count();
  m_Parts.resize(m_Triangles.size());
  std::iota(m_Parts.begin(), m_Parts.end(), 0);

  CheckCorners();
  if (m_bPlanar) {
    for (int i = 0; i < Count(); ++i) {
      CheckShape(i);
      CheckFlags(i);
      for (int side = 0; side < 3; ++side) CheckNeighbour(i, side);
    }
    CheckHull();
    CheckCounts();
    if (m_Report.flat == 0) CheckStars();
    CheckCover();
  }
  for (std::ostringstream const& line : m_Lines) m_Report.firstFaults.push_back(line.str());
  return m_Report;
}

std::ostream& SurfaceVerifier::Fault(int position) {
  if (++m_Report.faults > FAULTS_SHOWN) return m_Unseen;
  std::ostringstream& line = m_Lines.emplace_back();
  if (position != NONE) line << "triangle " << position << " ";
  return line;
}

// Everything that is joined by neighbours that point at each other, the largest such part.
void SurfaceVerifier::FindStructure() {
  std::vector<TTriangle const*> all = m_View.triangles;
  std::map<TTriangle const*, int> number;
  for (std::size_t i = 0; i < all.size(); ++i) number.emplace(all[i], static_cast<int>(i));
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (TTriangle const* n : all[i]->m_pAdjacent) {
      if (n != nullptr && number.emplace(n, static_cast<int>(all.size())).second) all.push_back(n);
    }
  }

  std::vector<int> parts(all.size());
  std::iota(parts.begin(), parts.end(), 0);
  for (int i = 0; i < static_cast<int>(all.size()); ++i) {
    TTriangle const& t = *all[i];
    for (int side = 0; side < 3; ++side) {
      TTriangle const* const n = t.m_pAdjacent[side];
      if (n != nullptr &&
          SideBack(*n, &t, t.m_pVertex[side], t.m_pVertex[(side + 1) % 3]) != NONE) {
        parts[Root(parts, i)] = Root(parts, number.at(n));
      }
    }
  }
  std::vector<std::vector<TTriangle const*>> members(all.size());
  for (int i = 0; i < static_cast<int>(all.size()); ++i) {
    members[Root(parts, i)].push_back(all[i]);
  }
  auto const smaller = [](auto const& a, auto const& b) { return a.size() < b.size(); };
  auto const largest = std::max_element(members.begin(), members.end(), smaller);
  m_Triangles = largest == members.end() ? std::vector<TTriangle const*>() : *largest;

  auto const kept = SortedPlaces(m_Triangles);
  for (TTriangle const* t : m_View.triangles) {
    if (PlaceOf(kept, t) == NONE) ++m_Report.cutOffTriangles;
  }
}

void SurfaceVerifier::CheckCorners() {
  auto const live = SortedPlaces(m_View.points);
  for (int i = 0; i < Count(); ++i) {
    for (int k = 0; k < 3; ++k) CheckCorner(i, k, live);
  }
  if (m_bPlanar) NumberVertices();
}

void SurfaceVerifier::CheckCorner(int position, int corner, Places<TPoint> const& live) {
  TPoint* const* const corners = m_Triangles[position]->m_pVertex;
  TPoint const* const p = corners[corner];
  if (p == nullptr) {
    Fault(position) << "has no corner " << corner;
    m_bPlanar = false;
    return;
  }
  if (!m_Rules.byNeighbours && PlaceOf(live, p) == NONE) {
    Fault(position) << "has a corner " << corner << " that is no live point";
  }
  if (!std::isfinite(p->x) || !std::isfinite(p->y)) {
    Fault(position) << "has a corner " << corner << " at " << Text(*p);
    m_bPlanar = false;
  }
  if (p == corners[(corner + 1) % 3]) Fault(position) << "has one point as two corners";
}

void SurfaceVerifier::NumberVertices() {
  for (TTriangle const* t : m_Triangles) {
    m_Vertices.insert(m_Vertices.end(), t->m_pVertex, t->m_pVertex + 3);
  }
  std::sort(m_Vertices.begin(), m_Vertices.end());
  m_Vertices.erase(std::unique(m_Vertices.begin(), m_Vertices.end()), m_Vertices.end());
  for (TTriangle const* t : m_Triangles) {
    for (TPoint const* p : t->m_pVertex) {
      auto const at = std::lower_bound(m_Vertices.begin(), m_Vertices.end(), p);
      m_Corners.push_back(static_cast<int>(at - m_Vertices.begin()));
    }
  }
  m_Report.vertices = static_cast<int>(m_Vertices.size());
  for (TPoint const* p : m_View.points) {
    if (!std::binary_search(m_Vertices.begin(), m_Vertices.end(), p)) ++m_Report.loosePoints;
  }
}

void SurfaceVerifier::CheckShape(int position) {
  TTriangle const& t = *m_Triangles[position];
  TPoint const& a = Corner(position, 0);
  TPoint const& b = Corner(position, 1);
  TPoint const& c = Corner(position, 2);
  if (OffsetToRight(a, b, c) < 0.0) {
    Fault(position) << "runs counter-clockwise: " << Text(a) << Text(b) << Text(c);
  } else if (!(TwiceAreaClockwise(a, b, c) > 0.0)) {
    ++m_Report.flat;
  }

  Circle const circle(a, b, c);
  if (!SameNumber(circle.x, t.m_CentreX) || !SameNumber(circle.y, t.m_CentreY) ||
      !SameNumber(circle.radiusSq, t.m_RadiusSq)) {
    Fault(position) << "has a cached circle that its corners do not give";
  }
  if (!circle.IsFinite()) ++m_Report.notANumberCircles;
}

void SurfaceVerifier::CheckFlags(int position) {
  TTriangle const& t = *m_Triangles[position];
  if ((t.m_Flags & TRI_CAVITY) != 0) Fault(position) << "is still marked TRI_CAVITY";
  if ((t.m_Flags & ~KNOWN_FLAGS) != 0) Fault(position) << "has unknown flags " << int{t.m_Flags};
  if ((t.m_Flags & TRI_OUTSIDE) != 0) return;
  for (TPoint const* p : t.m_pVertex) {
    if (p->x < m_View.boundsMin.x || p->x > m_View.boundsMax.x || p->y < m_View.boundsMin.y ||
        p->y > m_View.boundsMax.y) {
      Fault(position) << "reaches out of the data bounds without TRI_OUTSIDE";
      return;
    }
  }
}

void SurfaceVerifier::CheckNeighbour(int position, int side) {
  TTriangle const& t = *m_Triangles[position];
  TPoint const* const a = t.m_pVertex[side];
  TPoint const* const b = t.m_pVertex[(side + 1) % 3];
  TTriangle const* const n = t.m_pAdjacent[side];
  if (n == nullptr) {
    m_Hull.emplace_back(VertexAt(position, side), VertexAt(position, side + 1));
    return;
  }
  int const other = PlaceOf(m_Places, n);
  if (other == NONE) {
    Fault(position) << "has a neighbour " << side << " that is not in the structure";
    return;
  }
  int const back = other == position ? NONE : SideBack(*n, &t, a, b);
  if (back == NONE) {
    Fault(position) << "is not the neighbour of its neighbour " << side << ", triangle " << other;
    return;
  }
  m_Parts[Root(m_Parts, position)] = Root(m_Parts, other);
  if (m_Rules.delaunay && position < other) {
    CheckDelaunay(position, side, *n->m_pVertex[(back + 2) % 3]);
  }
}

void SurfaceVerifier::CheckDelaunay(int position, int side, TPoint const& opposite) {
  TPoint const& a = Corner(position, side);
  TPoint const& b = Corner(position, side + 1);
  TPoint const& c = Corner(position, side + 2);
  double const determinant = InCircle(a, b, c, opposite);
  if (!(determinant > 0.0)) return;
  double const area = TwiceAreaClockwise(a, b, c);
  if (!(area > 0.0)) return;

  double const bound = InCircleRounding(a, b, c, opposite);
  if (determinant <= bound) {
    ++m_Report.nearViolations;
    m_Report.worstNear = std::max(m_Report.worstNear, determinant / bound);
    return;
  }
  ++m_Report.violations;
  m_Report.worstDepth = std::max(m_Report.worstDepth, determinant / area);
  Fault(position) << "has " << Text(opposite) << " across side " << side
                  << " inside its circle, with a power of " << determinant / area
                  << " where rounding explains " << bound / area;
}

void SurfaceVerifier::CheckHull() {
  std::map<int, int> next;
  for (auto const& [from, to] : m_Hull) {
    if (!next.emplace(from, to).second) {
      Fault(NONE) << "the hull is pinched at " << Text(*m_Vertices[from]);
    }
  }
  m_Report.hullEdges = static_cast<int>(m_Hull.size());
  while (!next.empty()) {
    ++m_Report.hullLoops;
    for (auto step = next.begin(); step != next.end();) {
      int const to = step->second;
      next.erase(step);
      step = next.find(to);
    }
  }

  if (!m_Rules.seeded) return;
  bool rectangle = m_Hull.size() == 4;
  for (auto const& edge : m_Hull) {
    TPoint const& p = *m_Vertices[edge.first];
    rectangle = rectangle && (p.x == m_View.worldMin.x || p.x == m_View.worldMax.x) &&
                (p.y == m_View.worldMin.y || p.y == m_View.worldMax.y);
  }
  if (!rectangle) Fault(NONE) << "the hull is not the rectangle of the world box";
}

// The formula of Euler for a plane figure of `parts` parts.
void SurfaceVerifier::CheckCounts() {
  int parts = 0;
  for (int i = 0; i < Count(); ++i) {
    if (Root(m_Parts, i) == i) ++parts;
  }
  if (parts > 1) Fault(NONE) << "the structure is in " << parts << " parts";
  int const expected =
      2 * m_Report.vertices - m_Report.hullEdges - 4 * parts + 2 * m_Report.hullLoops;
  if (Count() != expected) {
    Fault(NONE) << Count() << " triangles where " << m_Report.vertices << " vertices, "
                << m_Report.hullEdges << " hull edges in " << m_Report.hullLoops
                << " loops ask for " << expected;
  }
}

// No vertex is surrounded more than once. Going clockwise about it, exactly one triangle holds the
// eastward ray: the one that comes from above it, or starts on it, and ends below.
void SurfaceVerifier::CheckStars() {
  std::vector<int> turns(m_Vertices.size());
  for (int i = 0; i < Count(); ++i) {
    for (int k = 0; k < 3; ++k) {
      TPoint const& v = Corner(i, k);
      TPoint const& from = Corner(i, k + 1);
      TPoint const& to = Corner(i, k + 2);
      bool const starts = from.y == v.y && from.x > v.x;
      if ((from.y > v.y && to.y < v.y) || starts) ++turns[VertexAt(i, k)];
    }
  }
  for (std::size_t i = 0; i < turns.size(); ++i) {
    if (turns[i] > 1) Fault(NONE) << turns[i] << " turns about " << Text(*m_Vertices[i]);
  }
}

// The exact areas of all triangles add up to that of the hull, so that none covers another.
void SurfaceVerifier::CheckCover() {
  ExactAreas const areas(m_Vertices);
  mpz_class triangles = 0;
  for (int i = 0; i < Count(); ++i) {
    triangles += abs(areas.Twice(VertexAt(i, 0), VertexAt(i, 1), VertexAt(i, 2)));
  }
  mpz_class hull = 0;
  for (auto const& [from, to] : m_Hull) hull += areas.Side(from, to);
  if (triangles == hull) return;
  m_Report.overlap = areas.Area(triangles - hull) / 2;
  if (m_Report.flat == 0) {
    Fault(NONE) << "the triangles cover " << areas.Area(triangles) << ", the hull "
                << areas.Area(hull);
  }
}

}  // namespace qeltin::testing
