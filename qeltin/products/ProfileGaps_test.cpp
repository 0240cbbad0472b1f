#include <gtest/gtest.h>

#include <vector>

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/HandMadeMesh.h"
#include "testing/TINPeer.h"

// Profiles where triangles end: surfaces that do not fill their world box, and structures in which
// neighbours are missing or know nothing of each other.

namespace {

using qeltin::testing::HandMadeMesh;
using qeltin::testing::TINPeer;

using Pieces = std::vector<std::vector<TPoint>>;

constexpr int NO_LIST = -1;

// Squares of side 4 along the x axis, 8 apart, with z = x. The diagonal of each goes up; the
// triangle above it is laid first.
class Squares : public HandMadeMesh {
 public:
  explicit Squares(int squares, int border_entries) {
    SetBox(TPoint(-10, -10), TPoint(90, 20));
    for (int i = 0; i < squares; ++i) LaySquare(8.0 * i);
    if (border_entries == NO_LIST) return;
    TINPeer::Border(tin) = new TArray<int>(100);
    for (int i = 0; i < border_entries; ++i) TINPeer::Border(tin)->Add(i);
  }

  void SetBox(TPoint const& min, TPoint const& max) {
    TINPeer::Min(tin) = TINPeer::WorldMin(tin) = min;
    TINPeer::Max(tin) = TINPeer::WorldMax(tin) = max;
  }

  Pieces Trace(TPoint const& from, TPoint const& to) {
    std::vector<TPolygon> profiles;
    int const count = tin.GenerateProfile(profiles, from, to);
    EXPECT_EQ(count, static_cast<int>(profiles.size()));
    Pieces pieces;
    for (TPolygon const& profile : profiles) {
      pieces.emplace_back();
      for (int i = 0; i < profile.GetSize(); ++i) pieces.back().push_back(*profile.Get(i));
    }
    return pieces;
  }

  std::vector<TTriangle*> above;  // the diagonals
  std::vector<TTriangle*> below;

 private:
  void LaySquare(double x) {
    TPoint* const a = Point(x, 0, x);
    TPoint* const b = Point(x, 4, x);
    TPoint* const c = Point(x + 4, 4, x + 4);
    TPoint* const d = Point(x + 4, 0, x + 4);
    above.push_back(LayClockwise(a, b, c));
    below.push_back(LayClockwise(a, c, d));
    Link(above.back(), below.back());
  }
};

// --- Gaps
// -----------------------------------------------------------------------------------------

TEST(ProfileGaps, PieceBeforeAGapIsAppendedTwiceAndTheLastOnce) {
  EXPECT_EQ(Squares(2, 4).Trace(TPoint(1, 1), TPoint(11, 1)),
            (Pieces{{TPoint(1, 1, 1), TPoint(4, 1, 4)},
                    {TPoint(1, 1, 1), TPoint(4, 1, 4)},
                    {TPoint(8, 1, 8), TPoint(9, 1, 9), TPoint(11, 1, 11)}}));
}

TEST(ProfileGaps, LineMayStartAndEndOffTheSurface) {
  EXPECT_EQ(Squares(2, 4).Trace(TPoint(-2, 1), TPoint(14, 1)),
            (Pieces{{TPoint(0, 1, 0), TPoint(1, 1, 1), TPoint(4, 1, 4)},
                    {TPoint(0, 1, 0), TPoint(1, 1, 1), TPoint(4, 1, 4)},
                    {TPoint(8, 1, 8), TPoint(9, 1, 9), TPoint(12, 1, 12)}}));
}

TEST(ProfileGaps, LineThatMissesTheSurfaceGivesNothing) {
  EXPECT_EQ(Squares(2, 4).Trace(TPoint(5, -3), TPoint(7, 9)), Pieces());
  EXPECT_EQ(Squares(2, 4).Trace(TPoint(5, 1), TPoint(7, 2)), Pieces());
}

TEST(ProfileGaps, LineThatEndsInAGapEndsWhereItLeavesTheSurface) {
  EXPECT_EQ(Squares(2, 4).Trace(TPoint(3, 1), TPoint(6, 1)),
            (Pieces{{TPoint(3, 1, 3), TPoint(4, 1, 3)}}));
}

TEST(ProfileGaps, MoreGapsThanTheBorderListHasEntriesAreAllCrossed) {
  Pieces const pieces = Squares(10, 1).Trace(TPoint(-2, 1), TPoint(78, 1));
  ASSERT_EQ(pieces.size(), 19U);
  for (std::size_t i = 0; i < 18; i += 2) EXPECT_EQ(pieces[i], pieces[i + 1]) << i;
  EXPECT_NEAR(pieces.back().back().x, 76.0, 1e-9);
}

// The line enters at the corner (8, 0), which both triangles of the square touch. The one above the
// diagonal is met first, the one below holds the place.
TEST(ProfileGaps, StartMovesIntoTheNeighbourThatHoldsIt) {
  EXPECT_EQ(Squares(2, 4).Trace(TPoint(7, -0.5), TPoint(11, 1.5)),
            (Pieces{{TPoint(8, 0, 8), TPoint(11, 1.5, 8)}}));
}

// The line leaves through the triangle below the diagonal. Its neighbour is taken for the end
// because it holds the start, so that the line counts as one in a single triangle.
TEST(ProfileGaps, NeighbourForTheEndIsTheOneThatHoldsTheStart) {
  EXPECT_EQ(Squares(1, 2).Trace(TPoint(2, 3), TPoint(4.5, -2)),
            (Pieces{{TPoint(2, 3, 2), TPoint(3.5, 0, 2)}}));
}

// A gap before a corner from which the line runs along a side to its end.
TEST(ProfileGaps, PassAlongASideGoesOnAsThePassBeforeDid) {
  Squares mesh(0, 2);
  TPoint* const corner = mesh.Point(12, 4, 1);
  TPoint* const top = mesh.Point(10, 8, 2);
  TPoint* const end = mesh.Point(8, 4, 5);
  TTriangle* const beside = mesh.LayClockwise(corner, top, mesh.Point(14, 8, 3));
  HandMadeMesh::Link(beside, mesh.LayClockwise(end, top, corner));
  mesh.LayClockwise(mesh.Point(20, 3, 7), mesh.Point(20, 6, 7), mesh.Point(23, 3, 7));

  Pieces const pieces = mesh.Trace(TPoint(21, 4), *end);
  ASSERT_EQ(pieces.size(), 5U);
  Pieces::value_type const first = {TPoint(21, 4, 7), TPoint(20, 4, 7)};
  EXPECT_EQ(pieces[0], first);
  EXPECT_EQ(pieces[1], first);
  EXPECT_EQ(pieces[2], (Pieces::value_type{TPoint(12, 4, 1)}));
  EXPECT_EQ(pieces[3], pieces[2]);
  ASSERT_EQ(pieces[4].size(), 2U);
  EXPECT_NEAR(pieces[4][0].x, 11.999, 1e-9);
  EXPECT_EQ(pieces[4][1], TPoint(8, 4, pieces[4][0].z));
}

// --- Without a border list
// ------------------------------------------------------------------------

TEST(ProfileWithoutBorder, MissingListIsAnEmptyOne) {
  for (int const entries : {NO_LIST, 0}) {
    Pieces const pieces = Squares(2, entries).Trace(TPoint(1, 2), TPoint(11, 2));
    EXPECT_EQ(pieces, (Pieces{{TPoint(1, 2, 1), TPoint(2, 2, 2), TPoint(4, 2, 4)}})) << entries;
  }
}

TEST(ProfileWithoutBorder, StartOffTheSurfaceGivesNothing) {
  for (int const entries : {NO_LIST, 0}) {
    EXPECT_EQ(Squares(2, entries).Trace(TPoint(-2, 1), TPoint(3, 1)), Pieces()) << entries;
    EXPECT_EQ(Squares(2, entries).Trace(TPoint(5, 1), TPoint(7, 1)), Pieces()) << entries;
  }
}

TEST(ProfileWithoutBorder, EndOffTheSurfaceEndsTheWalkWhereNoNeighbourIsCrossed) {
  EXPECT_EQ(Squares(1, NO_LIST).Trace(TPoint(3, 1), TPoint(6, 1)), (Pieces{{TPoint(3, 1, 3)}}));
}

// --- Broken structures
// ----------------------------------------------------------------------------

// A strip whose second triangle does not know the first: the walk appends what it crosses there and
// stops.
TEST(ProfileOnBrokenStructure, NeighbourThatDoesNotPointBackStopsTheWalk) {
  HandMadeMesh mesh;
  std::vector<TTriangle*> const strip = mesh.LayStrip(6);
  for (TTriangle*& neighbour : strip[3]->m_pAdjacent) {
    if (neighbour == strip[2]) neighbour = nullptr;
  }
  std::vector<TPolygon> profiles;
  EXPECT_EQ(mesh.tin.GenerateProfile(profiles, TPoint(1, 0.5), TPoint(6, 0.5)), 1);
  ASSERT_EQ(profiles[0].GetSize(), 4);
  EXPECT_EQ(*profiles[0].Get(0), TPoint(1, 0.5, 10));
  EXPECT_EQ(*profiles[0].Get(1), TPoint(1.5, 0.5, 15));
  EXPECT_EQ(*profiles[0].Get(2), TPoint(2.5, 0.5, 25));
  EXPECT_EQ(*profiles[0].Get(3), TPoint(3.5, 0.5, 35));
}

// Two triangles in one place, each handing the walk on to the next.
TEST(ProfileOnBrokenStructure, WalkInCirclesEnds) {
  HandMadeMesh mesh;
  TPoint* const a = mesh.Point(0, 0, 1);
  TPoint* const b = mesh.Point(0, 4, 2);
  TPoint* const c = mesh.Point(4, 2, 3);
  TTriangle* const one = mesh.LayClockwise(a, b, c);
  TTriangle* const two = mesh.LayClockwise(a, b, c);
  for (TTriangle* const t : {one, two}) {
    for (TTriangle*& neighbour : t->m_pAdjacent) neighbour = t == one ? two : one;
  }
  for (int const entries : {NO_LIST, 2}) {
    if (entries != NO_LIST) TINPeer::Border(mesh.tin) = new TArray<int>(5);
    for (int i = 0; i < entries; ++i) TINPeer::Border(mesh.tin)->Add(i);
    std::vector<TPolygon> profiles;
    mesh.tin.GenerateProfile(profiles, TPoint(1, 2), TPoint(500, 2.5));
    int points = 0;
    for (TPolygon const& profile : profiles) points += profile.GetSize();
    EXPECT_LE(points, 100);
  }
}

// A side on the line counts as met at the start of the walk, so that a line along the rim is sent
// away there in every pass. It creeps on as often as the border list has entries, plus two.
TEST(ProfileOnBrokenStructure, LineAlongTheRimEnds) {
  HandMadeMesh mesh;
  TPoint* const middle = mesh.Point(0, 4, 1);
  TPoint* const low = mesh.Point(4, 0, 2);
  TPoint* const high = mesh.Point(4, 8, 3);
  TTriangle* const inner = mesh.LayClockwise(middle, high, low);
  HandMadeMesh::Link(inner, mesh.LayClockwise(mesh.Point(0, 0, 0), middle, low));
  HandMadeMesh::Link(inner, mesh.LayClockwise(mesh.Point(0, 8, 0), middle, high));
  TINPeer::Border(mesh.tin) = new TArray<int>(5);
  for (int i = 0; i < 2; ++i) TINPeer::Border(mesh.tin)->Add(i);

  std::vector<TPolygon> profiles;
  EXPECT_EQ(mesh.tin.GenerateProfile(profiles, TPoint(0, 1), TPoint(0, 6)), 9);
  for (TPolygon const& profile : profiles) {
    ASSERT_EQ(profile.GetSize(), 2);
    EXPECT_TRUE(profile.Get(0)->XY_EqualsTo(*profile.Get(1)));
  }
  EXPECT_NEAR(profiles.back().Get(0)->y, 1.004, 1e-12);
}

}  // namespace
