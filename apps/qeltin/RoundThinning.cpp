#include "apps/qeltin/RoundThinning.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>

namespace qeltin::cli {

namespace {

constexpr float NEVER = std::numeric_limits<float>::infinity();
constexpr std::size_t SAMPLES = 20000;
constexpr std::size_t FEWEST_NEIGHBOURS = 4;

// A least-squares plane z = a x + b y + c.
class PlaneFit {
 public:
  void Add(double x, double y, double z) {
    m_dCount += 1.0;
    m_dX += x;
    m_dY += y;
    m_dZ += z;
    m_dXX += x * x;
    m_dXY += x * y;
    m_dYY += y * y;
    m_dXZ += x * z;
    m_dYZ += y * z;
  }

  // Returns the distance of the origin from the plane, or NEVER where the points stand on one line
  // in plan.
  double Distance() const {
    constexpr double FLAT = 1e-12;
    double const xx = m_dXX - m_dX * m_dX / m_dCount;
    double const xy = m_dXY - m_dX * m_dY / m_dCount;
    double const yy = m_dYY - m_dY * m_dY / m_dCount;
    double const xz = m_dXZ - m_dX * m_dZ / m_dCount;
    double const yz = m_dYZ - m_dY * m_dZ / m_dCount;
    double const determinant = xx * yy - xy * xy;
    if (!(determinant > FLAT * (xx * yy))) return NEVER;
    double const a = (xz * yy - yz * xy) / determinant;
    double const b = (yz * xx - xz * xy) / determinant;
    double const c = (m_dZ - a * m_dX - b * m_dY) / m_dCount;
    return std::fabs(c) / std::sqrt(a * a + b * b + 1.0);
  }

 private:
  double m_dCount = 0.0;
  double m_dX = 0.0;
  double m_dY = 0.0;
  double m_dZ = 0.0;
  double m_dXX = 0.0;
  double m_dXY = 0.0;
  double m_dYY = 0.0;
  double m_dXZ = 0.0;
  double m_dYZ = 0.0;
};

// The plan area of a closed figure, from one of its corners as the origin.
template <typename Corners>
double AreaOf(Corners const& figure) {
  TPoint const& origin = **std::begin(figure);
  TPoint const* a = *std::begin(figure);
  double twice = 0.0;
  for (TPoint const* b : figure) {
    twice += (a->x - origin.x) * (b->y - origin.y) - (b->x - origin.x) * (a->y - origin.y);
    a = b;
  }
  return std::fabs(twice) / 2;
}

}  // namespace

RoundThinning::RoundThinning(TIN& tin) : m_Tin(tin) {
  m_Tin.BuildPointMap();
  ListVertices();
  for (TPoint const* p : m_Vertices) StateOf(p).distance = DistanceOf(*p);
}

void RoundThinning::ListVertices() {
  int const count = m_Tin.GetNumberOfPoints();
  for (int i = 0; i < count; ++i) m_Vertices.push_back(m_Tin.GetPoint(i));
  if (m_Vertices.empty()) return;
  auto const [first, last] =
      std::minmax_element(m_Vertices.begin(), m_Vertices.end(), std::less<>());
  m_pFirst = *first;
  TPoint const* const end = *last + 1;
  m_States.assign(static_cast<std::size_t>(end - m_pFirst), {NEVER, 0});
  for (TPoint const* p : m_Vertices) StateOf(p).distance = 0.0f;
  m_Vertices.clear();
  for (TPoint const* p = m_pFirst; p != end; ++p) {
    if (StateOf(p).distance == 0.0f) m_Vertices.push_back(p);
  }
}

int RoundThinning::Round(int wanted, Limits limits) {
  bool asked = true;
  int removed = 0;
  while (removed == 0 && asked && wanted > 0) {
    removed = Sweep(wanted, LimitFor(wanted, limits), asked);
  }
  return removed;
}

// Returns the distance up to which about twice as many points stand as are wanted, since those
// beside one that goes stay, or most of all where that is fewer.
float RoundThinning::LimitFor(int wanted, Limits limits) const {
  constexpr double MOST_AT_ONCE = 0.7;
  constexpr double SURPLUS = 2.0;
  std::size_t const step = std::max<std::size_t>(1, m_Vertices.size() / SAMPLES);
  std::vector<float> distances;
  for (std::size_t i = 0; i < m_Vertices.size(); i += step) {
    float const distance = m_States[static_cast<std::size_t>(m_Vertices[i] - m_pFirst)].distance;
    if (distance < NEVER) distances.push_back(distance);
  }
  if (distances.empty()) return limits.most;
  double const count = static_cast<double>(distances.size()) * static_cast<double>(step);
  double const share = std::min(SURPLUS * wanted / count, MOST_AT_ONCE);
  auto const rank = distances.begin() +
                    static_cast<std::ptrdiff_t>(share * static_cast<double>(distances.size() - 1));
  std::nth_element(distances.begin(), rank, distances.end());
  return std::min(limits.most, std::max(limits.least, *rank));
}

// Goes over the vertices once. `asked` tells whether one was tested against the limit at all.
int RoundThinning::Sweep(int wanted, float limit, bool& asked) {
  ++m_iRound;
  asked = false;
  int removed = 0;
  std::size_t left = 0;
  for (TPoint const* p : m_Vertices) {
    State& state = StateOf(p);
    if (removed < wanted && state.distance <= limit && state.changed != m_iRound) {
      asked = true;
      if (Ask(*p, state, limit) && Remove(*p)) {
        m_Distances.Add(static_cast<double>(state.distance));
        ++removed;
        continue;
      }
    }
    m_Vertices[left++] = p;
  }
  m_Vertices.resize(left);
  return removed;
}

// Returns true iff the point is near enough to its neighbours as they are now, which then stand in
// the ring.
bool RoundThinning::Ask(TPoint const& p, State& state, float limit) {
  if (state.changed == 0) return CollectRing(p);
  state.changed = 0;
  state.distance = DistanceOf(p);
  return state.distance <= limit;
}

// Removes the point in the middle of the ring.
bool RoundThinning::Remove(TPoint const& p) {
  if ((m_bOpen && !LeavesACleanHole(p)) || !m_Tin.RemovePoint(&p)) {
    StateOf(&p).distance = NEVER;
    return false;
  }
  for (TPoint const* neighbour : m_Ring) StateOf(neighbour).changed = m_iRound;
  return true;
}

// Returns true iff the triangles that fill the hole around `p` cover it once.
bool RoundThinning::LeavesACleanHole(TPoint const& p) {
  constexpr double ROUNDING = 1e-9;
  std::deque<TPoint*> hole = HoleAround(p);
  double const area = AreaOf(hole);
  std::vector<TTriangle> fillings;
  Triangulator::FillHole(fillings, hole);
  double covered = 0.0;
  for (TTriangle const& t : fillings) covered += AreaOf(t.m_pVertex);
  return std::fabs(covered - area) <= ROUNDING * area;
}

// Returns the neighbours of `p` in the order in which they stand around it.
std::deque<TPoint*> RoundThinning::HoleAround(TPoint const& p) {
  std::deque<TPoint*> hole;
  auto const& fan = m_Tin.GetMap().FindPoint(&p).GetTriangles();
  for (TTriangle const* t = fan.front(); t != nullptr && hole.size() < fan.size();) {
    int k = 0;
    while (k < 2 && t->m_pVertex[k] != &p) ++k;
    hole.push_back(t->m_pVertex[(k + 1) % 3]);
    t = t->m_pAdjacent[(k + 2) % 3];
  }
  return hole;
}

// Fills the ring with the neighbours of `p`. Returns false where a triangle around it is hidden or
// lacks a neighbour.
bool RoundThinning::CollectRing(TPoint const& p) {
  m_Ring.clear();
  for (TTriangle const* t : m_Tin.GetMap().FindPoint(&p).GetTriangles()) {
    if (t->IsHidden()) return false;
    for (int k = 0; k < 3; ++k) {
      if (t->m_pAdjacent[k] == nullptr) {
        m_bOpen = true;
        return false;
      }
      if (t->m_pVertex[k] == &p) m_Ring.push_back(t->m_pVertex[(k + 1) % 3]);
    }
  }
  return true;
}

float RoundThinning::DistanceOf(TPoint const& p) {
  if (!CollectRing(p) || m_Ring.size() < FEWEST_NEIGHBOURS) return NEVER;
  PlaneFit fit;
  for (TPoint const* q : m_Ring) fit.Add(q->x - p.x, q->y - p.y, q->z - p.z);
  return static_cast<float>(fit.Distance());
}

}  // namespace qeltin::cli
