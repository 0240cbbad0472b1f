#include "qeltin/tin/FanLinks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "testing/MakeSurvey.h"

namespace {

using qeltin::detail::FanLinks;
using qeltin::testing::Dice;
using qeltin::testing::TestSeed;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// A hole of edges about a point, its fan, and triangles around.
struct Hole {
  std::vector<TPoint> points;  // the first one is the apex
  FanLinks::Edges edges;
  std::vector<TTriangle> fan_slots;
  std::vector<TTriangle> around_slots;

  FanLinks::Triangles Fan() { return AddressesOf(fan_slots); }
  FanLinks::Triangles Around() { return AddressesOf(around_slots); }

  void AddEdge(int a, int b) {
    edges.emplace_back(&points[static_cast<std::size_t>(a)], &points[static_cast<std::size_t>(b)]);
    fan_slots.emplace_back(&points[0], edges.back().first, edges.back().second);
    fan_slots.back().SortVertices();
  }
  void AddAround(int a, int b, int c) {
    auto const at = [&](int i) { return &points[static_cast<std::size_t>(i)]; };
    around_slots.emplace_back(at(a), at(b), at(c));
  }

 private:
  static FanLinks::Triangles AddressesOf(std::vector<TTriangle>& slots) {
    FanLinks::Triangles addresses;
    for (TTriangle& slot : slots) addresses.push_back(&slot);
    return addresses;
  }
};

// Every side with every other.
void LinkByValue(FanLinks::Triangles const& fan, FanLinks::Triangles const& around) {
  auto const link = [](TTriangle* a, TTriangle* b) {
    if (a->SetAdjacentPointer(b) != -1) b->SetAdjacentPointer(a);
  };
  for (std::size_t i = 0; i < fan.size(); ++i) {
    for (std::size_t j = i + 1; j < fan.size(); ++j) link(fan[i], fan[j]);
    for (TTriangle* t : around) link(fan[i], t);
  }
}

std::vector<TTriangle*> NeighboursIn(Hole& hole) {
  std::vector<TTriangle*> neighbours;
  for (FanLinks::Triangles const& triangles : {hole.Fan(), hole.Around()}) {
    for (TTriangle const* t : triangles) {
      neighbours.insert(neighbours.end(), t->m_pAdjacent, t->m_pAdjacent + 3);
    }
  }
  return neighbours;
}

void ForgetNeighbours(Hole& hole) {
  for (FanLinks::Triangles const& triangles : {hole.Fan(), hole.Around()}) {
    for (TTriangle* t : triangles) std::fill(t->m_pAdjacent, t->m_pAdjacent + 3, nullptr);
  }
}

// Returns whether Link did it; then it did what LinkByValue does.
bool LinksAsByValue(Hole& hole) {
  bool const linked = FanLinks().Link(&hole.points[0], hole.edges, hole.Fan(), hole.Around());
  std::vector<TTriangle*> const by_links = NeighboursIn(hole);
  ForgetNeighbours(hole);
  if (linked) LinkByValue(hole.Fan(), hole.Around());
  EXPECT_EQ(by_links, NeighboursIn(hole));
  return linked;
}

// Points 1 to 4 around point 0, each two of them with a triangle outside.
Hole Square() {
  Hole hole;
  hole.points = {{0, 0}, {-1, -1}, {-1, 1}, {1, 1}, {1, -1}, {-3, 0}, {0, 3}, {3, 0}, {0, -3}};
  for (int i = 1; i <= 4; ++i) hole.AddEdge(i, i % 4 + 1);
  for (int i = 1; i <= 4; ++i) hole.AddAround(i % 4 + 1, i, i + 4);
  return hole;
}

TEST(FanLinks, LinksARingAndWhatIsAroundIt) {
  Hole hole = Square();
  EXPECT_TRUE(LinksAsByValue(hole));
}

TEST(FanLinks, ALaterTriangleOnAnEdgeIsTheNeighbour) {
  Hole hole = Square();
  hole.AddAround(1, 2, 8);
  EXPECT_TRUE(LinksAsByValue(hole));
  FanLinks().Link(&hole.points[0], hole.edges, hole.Fan(), hole.Around());
  EXPECT_EQ(hole.fan_slots[0].m_pAdjacent[1], &hole.around_slots[4]);
}

TEST(FanLinks, LeavesToOthersWhatOnlyComparingAllCanTell) {
  Hole twice = Square();
  twice.points[6] = twice.points[1];  // another vertex at the value of one
  twice.AddEdge(6, 7);
  EXPECT_FALSE(LinksAsByValue(twice));

  Hole apex = Square();
  apex.points[5] = apex.points[0];  // a triangle around that comes to the apex
  EXPECT_FALSE(LinksAsByValue(apex));

  Hole flat = Square();
  flat.points[5] = flat.points[1];  // a side without length
  EXPECT_FALSE(LinksAsByValue(flat));

  Hole third = Square();
  third.AddEdge(1, 3);
  EXPECT_FALSE(LinksAsByValue(third));

  Hole pair = Square();
  pair.AddEdge(5, 6);
  pair.AddEdge(6, 5);
  EXPECT_FALSE(LinksAsByValue(pair));

  Hole bad = Square();
  bad.points[2].z = NOT_A_NUMBER;
  EXPECT_FALSE(LinksAsByValue(bad));
}

TEST(FanLinks, ACornerOutsideThatIsNoNumberIsLikeNoOther) {
  Hole hole = Square();
  hole.points[5].x = NOT_A_NUMBER;
  EXPECT_TRUE(LinksAsByValue(hole));
}

TEST(FanLinks, LinksAnythingAsComparingAllDoesOrNothing) {
  Dice dice(TestSeed());
  int linked = 0;
  for (int run = 0; run < 20000; ++run) {
    Hole hole;
    int const side = 2 + dice.Below(6);
    int const count = 4 + dice.Below(8);
    for (int i = 0; i < count; ++i) {
      hole.points.emplace_back(dice.Below(side), dice.Below(side), dice.OneIn(9) ? -0.0 : 0.0);
    }
    // Mostly parts of rings, so that not every hole has a point with three edges.
    for (int i = 1; i + 1 < count; ++i) {
      if (!dice.OneIn(5)) hole.AddEdge(i, i + 1);
    }
    if (dice.OneIn(2)) hole.AddEdge(count - 1, 1);
    for (int i = dice.Below(8); i > 0; --i) {
      int const from = dice.Below(count);
      hole.AddAround(from, dice.OneIn(2) ? (from + 1) % count : dice.Below(count),
                     dice.Below(count));
    }
    if (LinksAsByValue(hole)) ++linked;
    ASSERT_FALSE(HasFailure()) << "run " << run;
  }
  EXPECT_GT(linked, 1000);
}

}  // namespace
