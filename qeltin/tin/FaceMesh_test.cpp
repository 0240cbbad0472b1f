#include "qeltin/tin/FaceMesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "qeltin/kernel/TEdge.h"

namespace {

using qeltin::detail::Face;
using qeltin::detail::FaceMesh;

constexpr int HULL = Face::HULL;
constexpr int OPEN = Face::OPEN;

// A square of 100 and a point in its middle:
//
//   1 --- 2
//   | \1/ |
//   |0 4 2|    faces 0 to 3 from the west, clockwise
//   | /3\ |
//   0 --- 3
class Square : public ::testing::Test {
 protected:
  static constexpr int SLOTS = 8;  // more than are in use

  std::vector<TPoint> m_Points = Corners();
  FaceMesh m_Mesh{m_Points.data(), SLOTS};

  static std::vector<TPoint> Corners() {
    std::vector<TPoint> points;
    points.reserve(SLOTS);
    points = {{0, 0}, {0, 100}, {100, 100}, {100, 0}, {50, 50}};
    return points;
  }

  Square() {
    for (int i = 0; i < 4; ++i) {
      m_Mesh.Faces().push_back({{i, (i + 1) % 4, 4}, {HULL, (i + 1) % 4, (i + 3) % 4}, i});
    }
    m_Mesh.SetSeedCorners({0, 1, 2, 3});
  }

  Face& At(int i) { return m_Mesh.Faces()[static_cast<std::size_t>(i)]; }

  // Takes a face away, so that its neighbours lack one.
  void Lose(int i) {
    At(i).dropped = true;
    for (int neighbour : At(i).adjacent) {
      if (neighbour >= 0) std::replace(At(neighbour).adjacent, At(neighbour).adjacent + 3, i, OPEN);
    }
  }

  double AreaLeft() const {
    double area = 0.0;
    for (Face const& face : m_Mesh.Faces()) {
      if (face.dropped) continue;
      TPoint const& a = m_Points[static_cast<std::size_t>(face.corner[0])];
      TPoint const& b = m_Points[static_cast<std::size_t>(face.corner[1])];
      TPoint const& c = m_Points[static_cast<std::size_t>(face.corner[2])];
      area += ((c.x - a.x) * (b.y - a.y) - (b.x - a.x) * (c.y - a.y)) / 2;
    }
    return area;
  }

  void ExpectMended() {
    EXPECT_TRUE(m_Mesh.Mend());
    EXPECT_TRUE(m_Mesh.IsSound());
    EXPECT_EQ(AreaLeft(), 10000.0);
  }
};

TEST_F(Square, ThatIsWholeIsSound) { EXPECT_TRUE(m_Mesh.IsSound()); }

TEST_F(Square, WithASideThatLacksItsNeighbourIsNotSound) {
  At(0).adjacent[1] = OPEN;
  EXPECT_FALSE(m_Mesh.IsSound());
}

TEST_F(Square, WithATriangleThatTurnsLeftIsNotSound) {
  std::swap(At(2).corner[0], At(2).corner[1]);
  EXPECT_FALSE(m_Mesh.IsSound());
}

TEST_F(Square, WithAnotherHoleThanItsSeedRectangleIsNotSound) {
  m_Points.emplace_back(50, 60);
  At(1).corner[2] = 5;  // still 4 for its neighbours
  EXPECT_FALSE(m_Mesh.IsSound());
}

TEST_F(Square, ThatIsWholeNeedsNoMending) {
  ExpectMended();
  EXPECT_EQ(m_Mesh.Faces().size(), 4u);
}

TEST_F(Square, AHoleAtTheEdgeIsFilled) {
  Lose(1);
  ExpectMended();
  EXPECT_EQ(m_Mesh.Faces().back().slot, Face::MADE);
}

TEST_F(Square, ATriangleThatTurnsLeftIsReplaced) {
  std::swap(At(2).corner[0], At(2).corner[1]);
  std::swap(At(2).adjacent[1], At(2).adjacent[2]);
  ExpectMended();
  EXPECT_TRUE(At(2).dropped);
}

TEST_F(Square, ASmallerPartThatIsNotJoinedIsDropped) {
  m_Points.insert(m_Points.end(), {{10, 40}, {10, 60}, {20, 50}});
  FaceMesh mesh(m_Points.data(), SLOTS);
  mesh.Faces() = m_Mesh.Faces();
  mesh.Faces().push_back({{5, 6, 7}, {HULL, HULL, HULL}, 4});
  mesh.SetSeedCorners({0, 1, 2, 3});
  EXPECT_FALSE(mesh.IsSound());
  EXPECT_TRUE(mesh.Mend());
  EXPECT_TRUE(mesh.Faces()[4].dropped);
}

// Of a surface without a seed rectangle.
class Loose : public Square {
 protected:
  Loose() { m_Mesh.SetSeedCorners({}); }
};

TEST_F(Loose, AHoleInsideIsFilled) {
  m_Points.emplace_back(50, 80);
  FaceMesh mesh(m_Points.data(), SLOTS);
  mesh.Faces() = m_Mesh.Faces();
  mesh.Faces()[1] = {{1, 2, 5}, {HULL, OPEN, 4}, 1};
  mesh.Faces().push_back({{4, 1, 5}, {0, 1, OPEN}, 4});
  std::replace(mesh.Faces()[0].adjacent, mesh.Faces()[0].adjacent + 3, 1, 4);
  std::replace(mesh.Faces()[2].adjacent, mesh.Faces()[2].adjacent + 3, 1, OPEN);
  EXPECT_FALSE(mesh.IsSound());
  EXPECT_TRUE(mesh.Mend());
  EXPECT_TRUE(mesh.IsSound());
  m_Mesh.Faces() = mesh.Faces();
  EXPECT_EQ(AreaLeft(), 10000.0);
}

TEST_F(Loose, ATriangleOnTheHullIsReplaced) {
  std::swap(At(2).corner[0], At(2).corner[1]);
  std::swap(At(2).adjacent[1], At(2).adjacent[2]);
  ExpectMended();
}

TEST_F(Loose, ALostSideOfTheHullCannotBeMended) {
  Lose(1);
  EXPECT_FALSE(m_Mesh.Mend());
}

TEST_F(Loose, AllThatTurnLeftAreTurnedOver) {
  for (Face& face : m_Mesh.Faces()) {
    std::swap(face.corner[0], face.corner[1]);
    std::swap(face.adjacent[1], face.adjacent[2]);
  }
  EXPECT_FALSE(m_Mesh.IsSound());
  m_Mesh.TurnOver();
  EXPECT_TRUE(m_Mesh.IsSound());
  EXPECT_EQ(AreaLeft(), 10000.0);
}

TEST_F(Loose, OneThatTurnsRightKeepsAllAsTheyAre) {
  std::swap(At(0).corner[0], At(0).corner[1]);
  int const before = At(0).corner[0];
  m_Mesh.TurnOver();
  EXPECT_EQ(At(0).corner[0], before);
}

}  // namespace
