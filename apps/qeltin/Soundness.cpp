#include "apps/qeltin/Soundness.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "apps/qeltin/PlaneTests.h"

namespace qeltin::cli {

namespace {

using Element = Finding::Element;

struct Description {
  char const* word;
  char const* meaning;
  bool native_fault;
  bool trimble_fault;
};

constexpr Description DESCRIPTIONS[] = {
    {"cut_short", "tables that end early", true, true},
    {"excess_bytes", "bytes after the last table", true, true},
    {"unreadable_table", "tables of no known layout", true, true},
    {"point_identity", "points whose slot or key is another's or none", true, true},
    {"triangle_identity", "triangles whose slot or key is another's or none", true, true},
    {"not_finite", "points that are no ordinary numbers", true, true},
    {"corner_range", "corners that are no point", true, true},
    {"repeated_corner", "triangles with one point as two corners", true, true},
    {"counter_clockwise", "triangles that run counter-clockwise", true, false},
    {"neighbour_range", "neighbours that are no triangle", true, true},
    {"not_mutual", "neighbours that do not lead back", true, true},
    {"other_side", "neighbours across a side that they do not share", true, true},
    {"unlinked", "shared sides without neighbours", true, true},
    {"stored_circle", "stored circles that do not fit the corners", true, true},
    {"not_delaunay", "sides that are not Delaunay", false, false},
    {"flags", "triangles with unknown flags", true, true},
    {"start_point", "start points without a triangle", true, true},
    {"border_entry", "border entries without a triangle", true, true},
    {"flat", "flat triangles", false, false},
    {"duplicate", "points at the place of an earlier one", false, false},
    {"unconnected", "points that are no corner", false, false},
};
constexpr std::size_t FLAW_COUNT = std::size(DESCRIPTIONS);

std::size_t Index(Flaw flaw) { return static_cast<std::size_t>(flaw); }

bool IsFinite(TPoint const& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

class MeshCheck {
 public:
  explicit MeshCheck(Mesh const& mesh) : m_Mesh(mesh), m_Whole(mesh.triangles.size()) {
    for (std::size_t i = 0; i < FLAW_COUNT; ++i) m_Findings[i].flaw = static_cast<Flaw>(i);
  }

  std::vector<Finding> Run() {
    CheckTables();
    CheckPoints();
    ForEachTriangle(m_Mesh, [this](std::int32_t i) { CheckTriangle(i); });
    for (std::int32_t i = 0; i < TriangleCount(); ++i) {
      FetchAround(i);
      for (std::size_t side = 0; side < 3; ++side) CheckNeighbour(i, side);
    }
    CheckOpenSides();
    std::vector<Finding> found;
    for (Finding const& finding : m_Findings) {
      if (finding.count > 0) found.push_back(finding);
    }
    return found;
  }

 private:
  static constexpr unsigned char KNOWN_FLAGS = TRI_VISITED | TRI_FILTERED | TRI_OUTSIDE;

  // Two ends of a side without a neighbour, the lower first, and whose it is.
  using OpenSide = std::tuple<std::int32_t, std::int32_t, std::int32_t>;

  std::int32_t PointCount() const { return static_cast<std::int32_t>(m_Mesh.points.size()); }
  std::int32_t TriangleCount() const { return static_cast<std::int32_t>(m_Mesh.triangles.size()); }

  MeshTriangle const& At(std::int32_t i) const {
    return m_Mesh.triangles[static_cast<std::size_t>(i)];
  }

  bool HasPoint(std::int32_t corner) const { return corner >= 0 && corner < PointCount(); }

  TPoint const& Point(std::int32_t i) const { return m_Mesh.points[static_cast<std::size_t>(i)]; }
  TPoint const& Corner(MeshTriangle const& t, std::size_t k) const {
    return Point(t.corners[k % 3]);
  }

  // Returns true iff the triangle can be reckoned with.
  bool IsWhole(MeshTriangle const& t) const {
    return std::all_of(t.corners.begin(), t.corners.end(),
                       [this](std::int32_t c) { return HasPoint(c) && IsFinite(Point(c)); });
  }

  bool HasTriangle(std::int32_t i) const { return i >= 0 && i < TriangleCount(); }

  // Fetches what the checks of triangles soon to come look at in a large surface: the neighbours of
  // one, and the corners of the neighbours of another, which have come meanwhile.
  void FetchAround(std::int32_t i) const {
    constexpr std::int32_t NEAR = 8;
    constexpr std::int32_t FAR = 16;
    if (i >= TriangleCount() - FAR) return;
    for (std::int32_t const other : At(i + FAR).neighbours) {
      if (HasTriangle(other)) __builtin_prefetch(&At(other));
    }
    for (std::int32_t const other : At(i + NEAR).neighbours) {
      if (!HasTriangle(other)) continue;
      for (std::int32_t const corner : At(other).corners) {
        if (HasPoint(corner)) __builtin_prefetch(&Point(corner));
      }
    }
  }

  Finding& Count(Flaw flaw, Element element, std::int32_t position) {
    Finding& finding = m_Findings[Index(flaw)];
    if (finding.count++ == 0 || position < finding.position) {
      finding.element = element;
      finding.position = position;
    }
    return finding;
  }

  void CountPoint(Flaw flaw, std::int32_t i) {
    Finding& finding = Count(flaw, Element::POINT, i);
    if (finding.position != i || i >= PointCount()) return;
    finding.placed = IsFinite(Point(i));
    finding.place = Point(i);
  }

  void CountTriangle(Flaw flaw, std::int32_t i) {
    Finding& finding = Count(flaw, Element::TRIANGLE, i);
    if (finding.position != i || i >= TriangleCount()) return;
    for (std::int32_t const corner : At(i).corners) {
      finding.placed = HasPoint(corner) && IsFinite(Point(corner));
      if (finding.placed) finding.place = Point(corner);
      if (finding.placed) return;
    }
  }

  void CheckTables() {
    for (std::string const& table : m_Mesh.cut_short) Tell(Flaw::CUT_SHORT, table);
    for (std::string const& table : m_Mesh.unreadable) Tell(Flaw::UNREADABLE, table);
    m_Findings[Index(Flaw::EXCESS)].count = static_cast<long long>(m_Mesh.excess);
    for (std::int32_t const i : m_Mesh.bad_points) CountPoint(Flaw::BAD_POINT, i);
    for (std::int32_t const i : m_Mesh.bad_triangles) CountTriangle(Flaw::BAD_TRIANGLE, i);
    for (std::int32_t const i : m_Mesh.bad_starts) Count(Flaw::START_POINT, Element::ENTRY, i);
    for (std::int32_t const i : m_Mesh.bad_borders) Count(Flaw::BORDER_ENTRY, Element::ENTRY, i);
  }

  void Tell(Flaw flaw, std::string const& table) {
    Finding& finding = m_Findings[Index(flaw)];
    if (finding.count++ == 0) finding.detail = table;
  }

  void CheckPoints() {
    std::vector<bool> connected(m_Mesh.points.size());
    for (MeshTriangle const& t : m_Mesh.triangles) {
      for (std::int32_t const corner : t.corners) {
        if (HasPoint(corner)) connected[static_cast<std::size_t>(corner)] = true;
      }
    }
    for (std::int32_t i = 0; i < PointCount(); ++i) {
      if (!IsFinite(Point(i))) CountPoint(Flaw::NOT_FINITE, i);
      if (!connected[static_cast<std::size_t>(i)]) CountPoint(Flaw::UNCONNECTED, i);
    }
    CheckDuplicates();
  }

  void CheckDuplicates() {
    std::vector<std::tuple<double, double, std::int32_t>> places;
    places.reserve(m_Mesh.points.size());
    for (std::int32_t i = 0; i < PointCount(); ++i) {
      TPoint const& p = Point(i);
      if (IsFinite(p)) places.emplace_back(p.x, p.y, i);
    }
    std::sort(places.begin(), places.end());
    for (std::size_t i = 1; i < places.size(); ++i) {
      auto const& [x, y, position] = places[i];
      if (x == std::get<0>(places[i - 1]) && y == std::get<1>(places[i - 1])) {
        CountPoint(Flaw::DUPLICATE, position);
      }
    }
  }

  void CheckTriangle(std::int32_t i) {
    MeshTriangle const& t = At(i);
    for (std::size_t k = 0; k < 3; ++k) {
      if (t.corners[k] == MeshTriangle::NOWHERE) CountTriangle(Flaw::CORNER, i);
      if (t.neighbours[k] == MeshTriangle::NOWHERE) CountTriangle(Flaw::NEIGHBOUR, i);
      if (t.neighbours[k] == MeshTriangle::NONE) AddOpenSide(i, k);
    }
    if ((t.flags & ~KNOWN_FLAGS) != 0) CountTriangle(Flaw::FLAGS, i);
    if (!IsWhole(t)) return;
    m_Whole[static_cast<std::size_t>(i)] = true;
    if (t.corners[0] == t.corners[1] || t.corners[1] == t.corners[2] ||
        t.corners[2] == t.corners[0]) {
      CountTriangle(Flaw::REPEATED_CORNER, i);
      return;
    }
    int const turn = TurnOf(Corner(t, 0), Corner(t, 1), Corner(t, 2));
    if (turn == 0) CountTriangle(Flaw::FLAT, i);
    if (turn > 0) CountTriangle(Flaw::COUNTER_CLOCKWISE, i);
    if (!m_Mesh.circles.empty() && !FitsCircle(t, m_Mesh.circles[static_cast<std::size_t>(i)])) {
      CountTriangle(Flaw::STORED_CIRCLE, i);
    }
  }

  bool FitsCircle(MeshTriangle const& t, StoredCircle const& circle) const {
    return IsCircleOf(Corner(t, 0), Corner(t, 1), Corner(t, 2), {circle.x, circle.y},
                      circle.radius_sq);
  }

  void AddOpenSide(std::int32_t i, std::size_t side) {
    std::int32_t const a = At(i).corners[side];
    std::int32_t const b = At(i).corners[(side + 1) % 3];
    if (a >= 0 && b >= 0 && a != b) m_OpenSides.emplace_back(std::min(a, b), std::max(a, b), i);
  }

  void CheckOpenSides() {
    std::sort(m_OpenSides.begin(), m_OpenSides.end());
    auto const same = [](OpenSide const& a, OpenSide const& b) {
      return std::get<0>(a) == std::get<0>(b) && std::get<1>(a) == std::get<1>(b);
    };
    for (std::size_t i = 1; i < m_OpenSides.size(); ++i) {
      if (same(m_OpenSides[i - 1], m_OpenSides[i])) {
        CountTriangle(Flaw::UNLINKED, std::get<2>(m_OpenSides[i - 1]));
      }
    }
  }

  bool SamePlace(std::int32_t a, std::int32_t b) const {
    return a == b || (HasPoint(a) && HasPoint(b) && Point(a).XY_EqualsTo(Point(b)));
  }

  // An end that the file does not have may be any.
  bool SameSide(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) const {
    if (std::min({a, b, c, d}) < 0) return true;
    return (SamePlace(a, c) && SamePlace(b, d)) || (SamePlace(a, d) && SamePlace(b, c));
  }

  void CheckNeighbour(std::int32_t i, std::size_t side) {
    MeshTriangle const& t = At(i);
    std::int32_t const other = t.neighbours[side];
    if (!HasTriangle(other)) return;  // told already, or not there to be asked
    MeshTriangle const& n = At(other);
    std::int32_t const a = t.corners[side];
    std::int32_t const b = t.corners[(side + 1) % 3];
    bool back = false;
    for (std::size_t k = 0; k < 3 && other != i; ++k) {
      if (n.neighbours[k] != i) continue;
      back = true;
      std::int32_t const c = n.corners[k];
      std::int32_t const d = n.corners[(k + 1) % 3];
      if (!SameSide(a, b, c, d)) continue;
      if (i < other) CheckDelaunay(i, side, other, k);
      return;
    }
    CountTriangle(back ? Flaw::OTHER_SIDE : Flaw::NOT_MUTUAL, i);
  }

  bool IsFlat(MeshTriangle const& t) const {
    return TurnOf(Corner(t, 0), Corner(t, 1), Corner(t, 2)) == 0;
  }

  void CheckDelaunay(std::int32_t i, std::size_t side, std::int32_t other, std::size_t back) {
    if (!m_Whole[static_cast<std::size_t>(i)] || !m_Whole[static_cast<std::size_t>(other)]) return;
    MeshTriangle const& t = At(i);
    MeshTriangle const& n = At(other);
    bool const inside = IsInsideCircle(Corner(t, side), Corner(t, side + 1), Corner(t, side + 2),
                                       Corner(n, back + 2));
    if (inside && !IsFlat(t) && !IsFlat(n)) CountTriangle(Flaw::NOT_DELAUNAY, i);
  }

  Mesh const& m_Mesh;
  Finding m_Findings[FLAW_COUNT];
  std::vector<OpenSide> m_OpenSides;
  std::vector<bool> m_Whole;  // triangles that can be reckoned with
};

}  // namespace

char const* WordFor(Flaw flaw) { return DESCRIPTIONS[Index(flaw)].word; }

char const* MeaningOf(Flaw flaw) { return DESCRIPTIONS[Index(flaw)].meaning; }

bool IsFault(Flaw flaw, FileKind kind) {
  Description const& description = DESCRIPTIONS[Index(flaw)];
  return kind == FileKind::TRIMBLE ? description.trimble_fault : description.native_fault;
}

std::vector<Finding> CheckMesh(Mesh const& mesh) { return MeshCheck(mesh).Run(); }

}  // namespace qeltin::cli
