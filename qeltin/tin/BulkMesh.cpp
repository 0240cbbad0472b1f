#include "qeltin/tin/BulkMesh.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

#include "qeltin/kernel/Circumcircle.h"
#include "qeltin/kernel/SideTest.h"

namespace qeltin::detail {

namespace {

constexpr std::size_t MOST_CELLS = 1U << 29;  // their sides are numbered by an int
constexpr double EMPTY = -1.0;                // the squared radius of a circle without points
constexpr int CAREFUL_WALK = 20;              // steps
constexpr double FAR_FROM_VERTEX = 0.0021;    // twice the duplicate tolerance, and a little
constexpr int AFTER[3] = {1, 2, 0};
constexpr int BEFORE[3] = {2, 0, 1};

// Two numbers in one register.
using Pair [[gnu::vector_size(16)]] = double;
using Mask [[gnu::vector_size(16)]] = long long;

void Store(Pair pair, double* to) { std::memcpy(to, &pair, sizeof pair); }
Pair Size(Pair pair) {
  return std::bit_cast<Pair>(std::bit_cast<Mask>(pair) & std::numeric_limits<long long>::max());
}

// Lane by lane. Written out, since compilers make branches of ?: here.
Pair Select(Mask mask, Pair yes, Pair no) {
  return std::bit_cast<Pair>((std::bit_cast<Mask>(yes) & mask) | (std::bit_cast<Mask>(no) & ~mask));
}

// A place as the point to be inserted sees it.
struct Offset {
  double x;
  double y;
  double size;
};

Offset OffsetOf(double x, double y, TPoint const& p) {
  double const dx = x - p.x;
  double const dy = y - p.y;
  return {dx, dy, std::fabs(dx) + std::fabs(dy)};
}

// Positive where the corners (p, from, to) are clockwise.
double Turn(Offset const& from, Offset const& to) { return from.y * to.x - from.x * to.y; }

}  // namespace

// Two for each point, the two of the seed, and one beyond the hull.
std::size_t BulkMesh::CellsFor(int count) { return 2 * static_cast<std::size_t>(count) + 3; }

bool BulkMesh::Fits(TArray<TTriangle> const& pool, int count) {
  if (pool.m_iCount != 2 || CellsFor(count) > MOST_CELLS) return false;
  std::size_t const vertices = static_cast<std::size_t>(count) + SEED_CORNERS;
  static_assert(sizeof(Vertex) <= sizeof(Cell), "the cells are room enough to sort vertices in");
  std::size_t const bytes = CellsFor(count) * sizeof(Cell) + vertices * sizeof(Vertex);
  if (bytes > static_cast<std::size_t>(pool.m_iCapacity) * sizeof(TTriangle)) return false;
  // The index of a pool that has released slots is some other permutation.
  for (int i = 0; i < pool.m_iCapacity; ++i) {
    if (pool.m_pIndex[i] != i) return false;
  }
  return true;
}

BulkMesh::BulkMesh(TArray<TPoint> const& points, TArray<TTriangle>* triangles, int count,
                   Box const& bounds, double reach)
    : m_pPoints(points.m_pData),
      m_pTriangles(triangles),
      m_pCells(reinterpret_cast<Cell*>(triangles->m_pData)),
      m_pVertices(reinterpret_cast<Vertex*>(m_pCells + CellsFor(count))),
      m_iVertices(SEED_CORNERS + count),
      m_iHull(4 * static_cast<int>(CellsFor(count) - 1)),
      m_Bounds(bounds),
      m_dError(SideErrorWithin(reach)) {
  TTriangle seed[2];
  std::memcpy(static_cast<void*>(seed), triangles->m_pData, sizeof seed);
  OrderInRounds(m_pPoints, points.m_pIndex, count, m_pVertices + SEED_CORNERS,
                reinterpret_cast<Vertex*>(m_pCells));

  new (m_pCells + (m_iHull >> 2)) Cell{0.0, 0.0, EMPTY, {}, {}};
  AddSeed(seed[0], {0, 2, 1}, {4 + 2, m_iHull, m_iHull});
  AddSeed(seed[1], {0, 3, 2}, {m_iHull, m_iHull, 0});
  TPoint const* const corners[SEED_CORNERS] = {seed[0].m_pVertex[0], seed[0].m_pVertex[2],
                                               seed[0].m_pVertex[1], seed[1].m_pVertex[1]};
  for (int i = 0; i < SEED_CORNERS; ++i) {
    TPoint const& corner = *corners[i];
    m_bSeedCornerOutside[i] = !InBounds(corner);
    new (m_pVertices + i)
        Vertex{corner.x, corner.y, corner.z, static_cast<int>(&corner - m_pPoints), 0};
  }
}

void BulkMesh::AddSeed(TTriangle const& seed, std::array<int, 3> const& vertex,
                       std::array<int, 3> const& beside) {
  new (m_pCells + m_iCells++) Cell{seed.m_CentreX,
                                   seed.m_CentreY,
                                   seed.m_RadiusSq,
                                   {vertex[0], vertex[1], vertex[2]},
                                   {beside[0], beside[1], beside[2]}};
}

bool BulkMesh::Insert(int i) {
  Vertex const& vertex = m_pVertices[SEED_CORNERS + i];
  TPoint const p(vertex.x, vertex.y, vertex.z);
  if (!InBounds(p) || p.z != p.z) return false;
  Place const place = Locate(p);
  if (place.cell == NONE) return false;
  if (!(place.near_vertex && HasVertexAt(p, place.cell))) {
    if (!CollectCavity(p, place.cell) || !CalculateFan(p)) {
      m_Hole.edges = 0;
      return false;
    }
    Fill(p, SEED_CORNERS + i);
  }
  m_iCurrent = place.cell;
  return true;
}

// Returns the side of the last fan that leads towards `p`. Of two cells side by side the one on the
// side of `p` has the lower power of `p`: the square of a tangent from there to the circle.
int BulkMesh::SideToward(TPoint const& p) const {
  Hole const& hole = m_Hole;
  int best = 0;
  double least = std::numeric_limits<double>::infinity();
  for (int i = 0; i < hole.edges; ++i) {
    double const dx = p.x - hole.centre_x[i];
    double const dy = p.y - hole.centre_y[i];
    double const power = dx * dx + dy * dy - hole.radius_sq[i];
    best = power < least ? i : best;
    least = power < least ? power : least;
  }
  return 4 * hole.fan[best] + hole.first[best] + 1;
}

BulkMesh::Place BulkMesh::Locate(TPoint const& p) const {
  auto const offset = [&](int vertex) {
    return OffsetOf(m_pVertices[vertex].x, m_pVertices[vertex].y, p);
  };
  int const side = m_Hole.edges > 0 ? SideToward(p) : 4 * m_iCurrent;
  int cell = side >> 2;
  int entry = side & 3;  // the walk looks from there first, as if it had come that way
  Cell const* at = m_pCells + cell;
  Offset begin = offset(at->vertex[entry]);
  Offset end = offset(at->vertex[AFTER[entry]]);
  double const turn = Turn(begin, end);
  double const bound = m_dError * (begin.size + end.size) + SIDE_FLOOR;
  if (!(turn > bound)) {
    if (!(turn < -bound)) return LocateCarefully(p, cell);
    int const across = at->beside[entry];
    if (across == m_iHull) return {NONE, false};
    cell = across >> 2;
    entry = across & 3;
    at = m_pCells + cell;
    std::swap(begin, end);
  }
  for (int steps = m_iCells; steps > 0; --steps) {
    __builtin_prefetch(m_pCells + (at->beside[AFTER[entry]] >> 2));
    __builtin_prefetch(m_pCells + (at->beside[BEFORE[entry]] >> 2));
    Offset const apex = offset(at->vertex[BEFORE[entry]]);
    double const after = Turn(end, apex);
    double const before = Turn(apex, begin);
    double const least = std::min(after, before);
    double const error = m_dError * (begin.size + end.size + apex.size) + SIDE_FLOOR;
    if (least > error) {
      double const nearest = std::min(std::min(begin.size, end.size), apex.size);
      return {error < SIDE_CEILING ? cell : NONE, nearest < FAR_FROM_VERTEX};
    }
    if (!(least < -error)) return LocateCarefully(p, cell);
    bool const is_after = after < before;
    int const across = at->beside[is_after ? AFTER[entry] : BEFORE[entry]];
    if (across == m_iHull) break;
    begin = is_after ? apex : begin;
    end = is_after ? end : apex;
    cell = across >> 2;
    entry = across & 3;
    at = m_pCells + cell;
  }
  return {NONE, false};
}

// As Triangulator::Walk, where only the rounding of the side test can tell.
BulkMesh::Place BulkMesh::LocateCarefully(TPoint const& p, int cell) const {
  int previous = NONE;
  for (int steps = 0; steps < CAREFUL_WALK; ++steps) {
    TPoint corner[3];
    int const side = TriangleOf(cell, corner).WhereTri(p);
    if (side == 3) return {cell, true};
    int const across = m_pCells[cell].beside[side];
    if (across == m_iHull || across >> 2 == previous) break;
    previous = cell;
    cell = across >> 2;
  }
  return {NONE, false};
}

bool BulkMesh::HasVertexAt(TPoint const& p, int cell) const {
  TPoint corner[3];
  return TriangleOf(cell, corner).XY_FindVertex(p) != nullptr;
}

// Returns the triangle of the corners that it puts into `corner`, without heights.
TTriangle BulkMesh::TriangleOf(int cell, TPoint* corner) const {
  for (int i = 0; i < 3; ++i) {
    Vertex const& v = m_pVertices[m_pCells[cell].vertex[i]];
    corner[i] = TPoint(v.x, v.y);
  }
  return {corner, corner + 1, corner + 2};
}

// Collects the cells around `p` depth-first, sides 0, 1, 2 of each, and the rim in the same order.
// Returns false where they are too many, as they are too where `p` cuts a vertex off and the search
// goes round it. Which cells the circles hold is not to be foreseen: nothing here branches on it.
bool BulkMesh::CollectCavity(TPoint const& p, int start) {
  Hole& hole = m_Hole;
  Cell const* const cells = m_pCells;
  int* const open = hole.open;
  int* const last_cell = hole.cell + Hole::MOST_CELLS;
  int found = 0;
  int edges = 0;
  int opened = 0;
  auto const is_in = [&](int across) {
    Cell const& c = cells[across >> 2];
    double const dx = p.x - c.centre_x;
    double const dy = p.y - c.centre_y;
    return int{c.radius_sq >= dx * dx + dy * dy};
  };
  auto const note = [&](int from, int to, int across, int in) {
    hole.from[edges] = from;
    hole.to[edges] = to;
    hole.outer[edges] = across;
    edges += 1 - in;
  };
  auto const push = [&](int across, int in) {
    open[opened] = across;
    opened += in;
  };
  {
    Cell const& c = cells[start];
    last_cell[-++found] = start;
    int const in[3] = {is_in(c.beside[0]), is_in(c.beside[1]), is_in(c.beside[2])};
    for (int side = 2; side >= 0; --side) push(c.beside[side], in[side]);
    for (int side = 0; side < 3; ++side) {
      note(c.vertex[side], c.vertex[AFTER[side]], c.beside[side], in[side]);
    }
  }
  constexpr int LOWER[3] = {1, 0, 0};
  constexpr int UPPER[3] = {2, 2, 1};
  constexpr int AFTER_LOWER[3] = {2, 1, 1};
  constexpr int AFTER_UPPER[3] = {0, 0, 2};
  while (opened > 0) {
    int const across = open[--opened];
    if (found == Hole::MOST_CELLS) return false;
    Cell const& c = cells[across >> 2];
    last_cell[-++found] = across >> 2;
    int const entry = across & 3;
    int const lower = c.beside[LOWER[entry]];
    int const upper = c.beside[UPPER[entry]];
    int const lower_in = is_in(lower);
    int const upper_in = is_in(upper);
    push(upper, upper_in);
    push(lower, lower_in);
    note(c.vertex[LOWER[entry]], c.vertex[AFTER_LOWER[entry]], lower, lower_in);
    note(c.vertex[UPPER[entry]], c.vertex[AFTER_UPPER[entry]], upper, upper_in);
  }
  last_cell[0] = m_iCells;
  last_cell[1] = m_iCells + 1;
  last_cell[2] = NONE;
  hole.fan = last_cell - found;
  hole.edges = edges;
  return true;
}

// Works out the fan, two cells at a time. Returns false where one is not certainly clockwise.
bool BulkMesh::CalculateFan(TPoint const& p) {
  Hole& hole = m_Hole;
  Vertex* const vertices = m_pVertices;
  int const edges = hole.edges;
  hole.from[edges] = hole.from[edges - 1];
  hole.to[edges] = hole.to[edges - 1];
  Pair const px = {p.x, p.x};
  Pair const py = {p.y, p.y};
  Mask doubtful = {0, 0};
  for (int i = 0; i < edges; i += 2) {
    Vertex& from0 = vertices[hole.from[i]];
    Vertex& from1 = vertices[hole.from[i + 1]];
    Vertex const& to0 = vertices[hole.to[i]];
    Vertex const& to1 = vertices[hole.to[i + 1]];
    hole.first[i] = int{from0.slot > to0.slot};
    hole.first[i + 1] = int{from1.slot > to1.slot};
    from1.scratch = 4U * hole.fan[i + 1] + hole.first[i + 1];
    from0.scratch = 4U * hole.fan[i] + hole.first[i];  // last: an odd edge stands in both places
    Mask const ascending = {hole.first[i] - 1, hole.first[i + 1] - 1};
    Pair const fx = {from0.x, from1.x};
    Pair const fy = {from0.y, from1.y};
    Pair const tx = {to0.x, to1.x};
    Pair const ty = {to0.y, to1.y};
    Circumcircle<Pair> const circle(Select(ascending, px, tx), Select(ascending, py, ty),
                                    Select(ascending, fx, px), Select(ascending, fy, py),
                                    Select(ascending, tx, fx), Select(ascending, ty, fy));
    Store(circle.centre_x, hole.centre_x + i);
    Store(circle.centre_y, hole.centre_y + i);
    Store(circle.radius_sq, hole.radius_sq + i);
    Pair const size = Size(circle.a) + Size(circle.b) + Size(circle.c) + Size(circle.d);
    Pair const bound = size * m_dError + SIDE_FLOOR;
    doubtful |= ~((-circle.g > bound) & (bound < SIDE_CEILING));
  }
  return (doubtful[0] | doubtful[1]) == 0;
}

void BulkMesh::Fill(TPoint const& p, int made) {
  Hole const& hole = m_Hole;
  Cell* const cells = m_pCells;
  Vertex const* const vertices = m_pVertices;
  int const edges = hole.edges;
  for (int i = 0; i < edges; ++i) {
    int const first = hole.first[i];
    int const last = 2 - 2 * first;
    int const side = 4 * hole.fan[i];
    auto const next = static_cast<int>(vertices[hole.to[i]].scratch);
    int const outer = hole.outer[i];
    Cell& c = cells[hole.fan[i]];
    c.centre_x = hole.centre_x[i];
    c.centre_y = hole.centre_y[i];
    c.radius_sq = hole.radius_sq[i];
    c.vertex[first] = made;
    c.vertex[first + 1] = hole.from[i];
    c.vertex[last] = hole.to[i];
    c.beside[first + 1] = outer;
    c.beside[last] = next;
    cells[next >> 2].beside[next & 3] = side + last;
    cells[outer >> 2].beside[outer & 3] = side + first + 1;
  }
  m_iCells += 2;
  m_Bounds.min.z = std::min(m_Bounds.min.z, p.z);
  m_Bounds.max.z = std::max(m_Bounds.max.z, p.z);
}

// A triangle is larger than a cell, so the last one comes first: where it is written, only cells
// have stood that are triangles already.
void BulkMesh::Finish() {
  auto const vertices = static_cast<std::size_t>(m_iVertices);
  std::vector<int> slots(vertices);
  for (std::size_t i = 0; i < vertices; ++i) slots[i] = m_pVertices[i].slot;

  TTriangle* const triangles = m_pTriangles->m_pData;
  auto const* const cells = reinterpret_cast<std::byte const*>(m_pCells);
  auto const* const end = reinterpret_cast<std::byte const*>(m_pVertices + m_iVertices);
  for (int i = m_iCells - 1; i >= 0; --i) {
    Cell cell;
    std::memcpy(&cell, cells + static_cast<std::size_t>(i) * sizeof(Cell), sizeof(Cell));
    auto const corner = [&](int k) {
      return m_pPoints + slots[static_cast<std::size_t>(cell.vertex[k])];
    };
    auto const neighbour = [&](int k) {
      return cell.beside[k] == m_iHull ? nullptr : triangles + (cell.beside[k] >> 2);
    };
    auto* const t = new (triangles + i) TTriangle(corner(0), corner(1), corner(2));
    for (int k = 0; k < 3; ++k) t->m_pAdjacent[k] = neighbour(k);
    bool const hidden =
        IsOutside(cell.vertex[0]) || IsOutside(cell.vertex[1]) || IsOutside(cell.vertex[2]);
    if (hidden) t->m_Flags = TRI_OUTSIDE;
    t->m_CentreX = cell.centre_x;
    t->m_CentreY = cell.centre_y;
    t->m_RadiusSq = cell.radius_sq;
  }
  auto* const unused = reinterpret_cast<std::byte*>(triangles + m_iCells);
  if (unused < end) std::memset(unused, 0, static_cast<std::size_t>(end - unused));
  m_pTriangles->m_iCount = m_iCells;
}

}  // namespace qeltin::detail
