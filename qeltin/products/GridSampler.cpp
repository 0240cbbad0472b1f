#include "qeltin/products/GridSampler.h"

#include <algorithm>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/tin/LocationIndex.h"

namespace qeltin::detail {

namespace {

constexpr int ROWS_AT_ONCE = 16;
constexpr int SMALLEST_WALKED = 2000;   // triangles; fewer stay in the caches anyway
constexpr double LARGEST_ERROR = 1e-6;  // beyond it, walks often go back and forth
constexpr int TRIANGLES_PER_NODE = 4;   // more are not worth a look at each
constexpr double MARGIN = 100.0;        // bands
constexpr int LARGEST_FAN = 100;
constexpr double CORNERS_APART = 0.001;  // the duplicate tolerance of the system

// Returns how many of the ascending `places` lie between the two.
int CountWithin(std::vector<double> const& places, double low, double high) {
  auto const outside = std::find_if_not(
      places.begin(), places.end(), [=](double place) { return place >= low && place <= high; });
  return static_cast<int>(outside - places.begin());
}

bool HoldsWithMargin(TTriangle const& t, TPoint const& p, double error) {
  for (int side = 0; side < 3; ++side) {
    SideProduct const product(*t.m_pVertex[side], *t.m_pVertex[side == 2 ? 0 : side + 1], p, error);
    if (!(product.offset > MARGIN * (product.bound + SIDE_BAND * product.length))) return false;
  }
  return true;
}

TTriangle* WalkToEnd(Walker& walker) {
  while (walker.Look() == Walker::State::Underway) walker.Enter();
  return walker.Current();
}

// Returns true iff another triangle around that corner of `t` takes `p`, or they are too many.
bool FanTakes(TTriangle const& t, TPoint const* hub, TPoint const& p) {
  TTriangle const* current = &t;
  for (int i = 0; i < LARGEST_FAN; ++i) {
    int side = 0;
    while (current->m_pVertex[side] != hub) ++side;
    current = current->m_pAdjacent[side];
    if (current == &t) return false;
    if (current == nullptr || current->WhereTri(p) == 3) break;
  }
  return true;
}

}  // namespace

GridSampler::GridSampler(TIN const& tin, std::vector<double> const& xs,
                         std::vector<double> const& ys, TGrid::Node* nodes)
    : m_Tin(tin),
      m_Location(tin.m_Triangulator),
      m_Xs(xs),
      m_Ys(ys),
      m_pNodes(nodes),
      m_iColumns(CountWithin(xs, tin.m_Min.x, tin.m_Max.x)),
      m_iRows(CountWithin(ys, tin.m_Min.y, tin.m_Max.y)) {}

void GridSampler::Run() {
  if (m_iColumns == 0) return;
  if (!CanWalkAhead()) {
    for (int row = 0; row < m_iRows; ++row) {
      for (int column = 0; column < m_iColumns; ++column) Ask(column, row);
    }
    return;
  }
  m_dError = SideErrorWithin(m_Tin.m_dReach);
  m_pGuess = m_Location.m_pCurrent != nullptr ? m_Location.m_pCurrent : m_Tin.GetTriangle(0, true);
  for (int row = 0; row < m_iRows; ++row) {
    if (row % ROWS_AT_ONCE == 0) WalkAhead(row);
    Settle(row);
  }
}

bool GridSampler::CanWalkAhead() const {
  int const triangles = m_Tin.GetNumberOfTriangles();
  if (triangles < SMALLEST_WALKED || m_iRows < 2) return false;
  if (!m_Tin.m_bTiling && triangles / TRIANGLES_PER_NODE < m_iColumns * m_iRows) {
    m_Location.m_pTin->FindWhetherItTiles();
  }
  TPoint const& min = m_Tin.m_Min;
  TPoint const& max = m_Tin.m_Max;
  return m_Tin.m_bTiling && SideErrorWithin(m_Tin.m_dReach) < LARGEST_ERROR &&
         m_Tin.IsWithinReach(min) && m_Tin.IsWithinReach(max) &&
         m_Tin.IsWithinReach({min.x, max.y}) && m_Tin.IsWithinReach({max.x, min.y});
}

void GridSampler::WalkAhead(int first) {
  int const rows = std::min(ROWS_AT_ONCE, m_iRows - first);
  std::vector<Leg> legs;
  m_Tracks.resize(ROWS_AT_ONCE);
  for (int row = first; row < first + rows; ++row) {
    Track& track = TrackOf(row);
    track = Track();
    track.at.reserve(static_cast<std::size_t>(m_iColumns));
    Walker walker(m_pGuess, PlaceOf(0, row), m_dError);
    m_pGuess = WalkToEnd(walker);
    legs.push_back({row, &track, Walker(m_pGuess, PlaceOf(0, row), m_dError)});
  }

  while (!legs.empty()) {
    std::erase_if(legs, [this](Leg& leg) { return !Advance(leg); });
    for (Leg& leg : legs) leg.walker.Enter();
  }
}

// Walks into the next triangle. Returns false where the leg has come to its end.
bool GridSampler::Advance(Leg& leg) {
  for (;;) {
    Walker::State const state = leg.walker.Look();
    if (state != Walker::State::There) return state == Walker::State::Underway;
    TTriangle* const here = leg.walker.Current();
    Track& track = *leg.track;
    if (static_cast<int>(track.at.size()) == m_iColumns) {
      track.back = {here, leg.walker.Moves()};
      return false;
    }
    Note(leg);
    auto const column = static_cast<int>(track.at.size());
    if (column < m_iColumns) {
      leg.walker.TurnTo(PlaceOf(column, leg.row));
    } else if (m_bReturn && leg.row + 1 < m_iRows) {
      leg.walker.TurnTo(PlaceOf(0, leg.row + 1));
    } else {
      return false;
    }
  }
}

void GridSampler::Note(Leg& leg) {
  Walker const& walker = leg.walker;
  auto const column = static_cast<int>(leg.track->at.size());
  Record(*walker.Current(), walker.Target(), NodeAt(column, leg.row));
  leg.track->at.push_back(walker.Current());
  if (column == 0 || walker.Moves() == 0) return;  // the first is found by a walk from elsewhere
  if (walker.Moves() >= Triangulator::CHEAP_WALK ||
      m_Location.IsFar(*walker.Start(), walker.Target().x, walker.Target().y)) {
    bool const sure = IsSure(*walker.Current(), walker.Target());
    leg.track->far.push_back({column, walker.Moves(), sure});
  }
}

void GridSampler::Settle(int row) {
  Track const& track = TrackOf(row);
  auto const end = static_cast<int>(track.at.size());
  auto far = track.far.begin();
  bool one = SettleStart(row);
  for (int column = 1; column < m_iColumns; ++column) {
    if (one) {
      while (far != track.far.end() && far->column < column) ++far;
      for (; far != track.far.end() && Stands(*far); ++far) CountSteps(far->moves);
      column = far == track.far.end() ? end : far->column;
      m_Location.m_pCurrent = track.at[static_cast<std::size_t>(column - 1)];
      if (column == m_iColumns) break;
    }
    Ask(column, row);
    one = column < end && m_Location.m_pCurrent == track.at[static_cast<std::size_t>(column)];
  }
  m_Back = end == m_iColumns && m_Location.m_pCurrent == track.at.back() ? track.back : Back{};
}

// Returns true iff the plain query comes to where the walk along the row began.
bool GridSampler::SettleStart(int row) {
  Track const& track = TrackOf(row);
  TTriangle* const guess = track.at.empty() ? nullptr : track.at[0];
  TPoint const p = PlaceOf(0, row);
  if (m_Back.start != nullptr && HasNoIndexYet()) {
    CountSteps(m_Back.moves);
    m_Location.m_pCurrent = m_Back.start;
    Record(*m_Back.start, p, NodeAt(0, row));
  } else if (row > 0 && guess != nullptr && IsSure(*guess, p)) {
    if (m_Location.m_pIndex == nullptr) m_Returns.push_back({m_Location.m_pCurrent, row});
    m_Location.m_pCurrent = guess;
  } else {
    Ask(0, row);
    m_bReturn = m_bReturn || row > 0;
  }
  return m_Location.m_pCurrent == guess;
}

// Returns true only where a walk from anywhere comes to `t`: it holds `p`, and none of the
// triangles around does. The bands of a needle meet behind its corner, the sharper the farther; but
// corners stand apart.
bool GridSampler::IsSure(TTriangle const& t, TPoint const& p) const {
  if (!HoldsWithMargin(t, p, m_dError)) return false;
  double const behind_needle = (m_dError + SIDE_BAND) * 4.0 * m_Tin.m_dReach / CORNERS_APART;
  for (TPoint const* corner : t.m_pVertex) {
    bool const near = p.XY_Distance(*corner) <= behind_needle;
    if (near && FanTakes(t, corner, p)) return false;
  }
  return true;
}

bool GridSampler::Stands(Far const& far) const { return far.sure || HasNoIndexYet(); }

// Returns true only where the plain queries have no index, and the next far one builds none.
bool GridSampler::HasNoIndexYet() const {
  return m_Location.m_pIndex == nullptr && m_Returns.empty() && !m_Location.IndexPays();
}

void GridSampler::CountSteps(int moves) {
  if (moves >= Triangulator::CHEAP_WALK) m_Location.m_iLongSteps += moves;
}

// Whether a far query builds an index rests on the steps of the long walks before it.
void GridSampler::CatchUp() {
  std::vector<Walker> walkers;
  while (!m_Returns.empty() || !walkers.empty()) {
    while (!m_Returns.empty() && walkers.size() < ROWS_AT_ONCE) {
      Return const& way = m_Returns.back();
      walkers.emplace_back(way.from, PlaceOf(0, way.row), m_dError);
      m_Returns.pop_back();
    }
    std::erase_if(walkers, [this](Walker& walker) {
      if (walker.Look() == Walker::State::Underway) return false;
      CountSteps(walker.Moves());
      return true;
    });
    for (Walker& walker : walkers) walker.Enter();
  }
}

void GridSampler::Ask(int column, int row) {
  CatchUp();
  TPoint const p = PlaceOf(column, row);
  double z = 0.0;
  bool const valid = m_Tin.GetZ(p, z, nullptr);
  NodeAt(column, row) = valid ? TGrid::Node{true, {p.x, p.y, z}} : TGrid::Node{};
}

// As the plain query that comes to `triangle`, which has an area, as all have that tile.
void GridSampler::Record(TTriangle const& triangle, TPoint const& p, TGrid::Node& node) {
  bool const valid = !triangle.IsHidden();
  node = valid ? TGrid::Node{true, {p.x, p.y, triangle.GetZ(p.x, p.y)}} : TGrid::Node{};
}

GridSampler::Track& GridSampler::TrackOf(int row) {
  return m_Tracks[static_cast<std::size_t>(row % ROWS_AT_ONCE)];
}

}  // namespace qeltin::detail
