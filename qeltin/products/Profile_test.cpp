#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

using Pieces = std::vector<std::vector<TPoint>>;

Pieces PointsOf(std::vector<TPolygon> const& profiles) {
  Pieces pieces;
  for (TPolygon const& profile : profiles) {
    pieces.emplace_back();
    for (int i = 0; i < profile.GetSize(); ++i) pieces.back().push_back(*profile.Get(i));
  }
  return pieces;
}

// `lines` is what the surface's profile runs along: two points or one polygon.
template <typename... Lines>
Pieces Trace(TIN const& tin, Lines const&... lines) {
  std::vector<TPolygon> profiles;
  int const count = tin.GenerateProfile(profiles, lines...);
  EXPECT_EQ(count, static_cast<int>(profiles.size()));
  return PointsOf(profiles);
}

// A square of four corners and a middle: z = 5 + x + 2 y. The world box reaches from -80 to 88.
class ProfileOnSlope : public ::testing::Test {
 protected:
  ProfileOnSlope() {
    m_Tin.Init(5, TPoint(0, 0, 0), TPoint(8, 8, 50));
    for (TPoint const& p : {TPoint(0, 0), TPoint(8, 0), TPoint(8, 8), TPoint(0, 8), TPoint(4, 4)}) {
      m_Tin.AddPoint(p.x, p.y, 5 + p.x + 2 * p.y);
    }
  }

  TIN m_Tin;
};

TEST_F(ProfileOnSlope, EndsAtOnePlaceGiveNothingWhateverTheirHeights) {
  EXPECT_EQ(Trace(m_Tin, TPoint(3, 3, 1), TPoint(3, 3, 9)), Pieces());
}

TEST_F(ProfileOnSlope, LineOutsideTheWorldBoxGivesNothing) {
  EXPECT_EQ(Trace(m_Tin, TPoint(-500, 200), TPoint(900, 200)), Pieces());
  EXPECT_EQ(Trace(m_Tin, TPoint(-90, 0), TPoint(-81, 0)), Pieces());
}

TEST_F(ProfileOnSlope, LineInOneTriangleKeepsTheHeightOfItsStart) {
  EXPECT_EQ(Trace(m_Tin, TPoint(3, 1), TPoint(5, 2)),
            (Pieces{{TPoint(3, 1, 10), TPoint(5, 2, 10)}}));
}

TEST_F(ProfileOnSlope, LineGetsAPointAtEverySideAndAtBothEnds) {
  EXPECT_EQ(Trace(m_Tin, TPoint(1, 3), TPoint(7, 3)),
            (Pieces{{TPoint(1, 3, 12), TPoint(3, 3, 14), TPoint(5, 3, 16), TPoint(7, 3, 18)}}));
}

TEST_F(ProfileOnSlope, LineThatEndsAtAVertexDoesNotGetItsEnd) {
  EXPECT_EQ(Trace(m_Tin, TPoint(4, 6), TPoint(0, 0)), (Pieces{{TPoint(4, 6, 21)}}));
}

// Nor does it get the crossing into the triangle that has the end as a corner.
TEST(ProfileOnStrip, LineThatEndsAtAVertexStopsBeforeTheTrianglesThere) {
  HandMadeMesh mesh;
  mesh.LayStrip(6);
  TPoint const from(1, 0.5);
  TPoint const to(5, 1);
  double const length = from.XY_Distance(to);
  TPoint second;
  TPoint a(2, 0, 20);
  TPoint b(3, 1, 30);
  ASSERT_TRUE(TINPeer::Intersect(1, 0.5, (to.x - from.x) / length, (to.y - from.y) / length, &a, &b,
                                 second));
  Pieces const pieces = Trace(mesh.tin, from, to);
  ASSERT_EQ(pieces.size(), 1U);
  ASSERT_EQ(pieces[0].size(), 3U);
  EXPECT_EQ(pieces[0][0], TPoint(1, 0.5, 10));
  EXPECT_NEAR(pieces[0][1].x, 1.4444444444444444, 1e-12);
  EXPECT_EQ(pieces[0][2], second);
}

TEST_F(ProfileOnSlope, LineFromAVertexToTheNextKeepsItsStartOnly) {
  EXPECT_EQ(Trace(m_Tin, TPoint(4, 4), TPoint(8, 8)), (Pieces{{TPoint(4, 4, 17)}}));
}

TEST_F(ProfileOnSlope, LineFromAVertexToTheNextInOneLocatedTriangleHasTwoPoints) {
  EXPECT_EQ(Trace(m_Tin, TPoint(8, 8), TPoint(4, 4)),
            (Pieces{{TPoint(8, 8, 29), TPoint(4, 4, 29)}}));
}

TEST_F(ProfileOnSlope, CrossingsBetweenTwoTrianglesOutsideAreLeftOut) {
  double const beyond = m_Tin.GetTriangleWithPoint(TPoint(9, 3))->GetZ(9, 3);
  EXPECT_EQ(Trace(m_Tin, TPoint(-20, 3), TPoint(9, 3)),
            (Pieces{{TPoint(0, 3, 11), TPoint(3, 3, 14), TPoint(5, 3, 16), TPoint(8, 3, 19),
                     TPoint(9, 3, beyond)}}));
}

TEST_F(ProfileOnSlope, LineOnlyOverTrianglesOutsideGivesNothing) {
  EXPECT_EQ(Trace(m_Tin, TPoint(-20, 30), TPoint(20, 40)), Pieces());
}

TEST_F(ProfileOnSlope, EndsOnAndBeyondTheWorldBoxAreTheSameLine) {
  Pieces const profile = Trace(m_Tin, TPoint(-80, 3), TPoint(88, 3));
  ASSERT_EQ(profile.size(), 1U);
  EXPECT_EQ(profile[0].front(), TPoint(0, 3, 11));
  EXPECT_EQ(Trace(m_Tin, TPoint(-200, 3), TPoint(200, 3)), profile);
  EXPECT_EQ(Trace(m_Tin, TPoint(-1e15, 3), TPoint(1e15, 3))[0][0], profile[0][0]);
}

TEST_F(ProfileOnSlope, LineWithoutAFiniteExtentGivesNothing) {
  for (double const bad : {NOT_A_NUMBER, INF, -INF}) {
    EXPECT_EQ(Trace(m_Tin, TPoint(bad, 3), TPoint(7, 3)), Pieces());
    EXPECT_EQ(Trace(m_Tin, TPoint(1, 3), TPoint(7, bad)), Pieces());
    EXPECT_EQ(Trace(m_Tin, TPoint(bad, bad), TPoint(bad, bad)), Pieces());
  }
}

TEST_F(ProfileOnSlope, FilteredStartIsLeftOutAndTheWalkGoesOn) {
  m_Tin.GetTriangleWithPoint(TPoint(1, 3))->m_Flags |= TRI_FILTERED;
  EXPECT_EQ(Trace(m_Tin, TPoint(1, 3), TPoint(7, 3)),
            (Pieces{{TPoint(3, 3, 14), TPoint(5, 3, 16), TPoint(7, 3, 18)}}));
  EXPECT_EQ(Trace(m_Tin, TPoint(1, 3), TPoint(1, 4)), Pieces());
}

TEST_F(ProfileOnSlope, EntriesThatAreThereStay) {
  std::vector<TPolygon> profiles(2);
  profiles[1].Add(1, 2, 3);
  EXPECT_EQ(m_Tin.GenerateProfile(profiles, TPoint(3, 1), TPoint(5, 2)), 1);
  EXPECT_EQ(PointsOf(profiles),
            (Pieces{{}, {TPoint(1, 2, 3)}, {TPoint(3, 1, 10), TPoint(5, 2, 10)}}));
}

TPolygon PolygonOf(std::vector<TPoint> const& points) { return TPolygon(points); }

TEST_F(ProfileOnSlope, LineOfFewerThanTwoVerticesGivesNothing) {
  EXPECT_EQ(Trace(m_Tin, PolygonOf({})), Pieces());
  EXPECT_EQ(Trace(m_Tin, PolygonOf({TPoint(1, 3)})), Pieces());
}

TEST_F(ProfileOnSlope, EverySegmentHasEntriesOfItsOwnAndTheFigureIsNotClosed) {
  EXPECT_EQ(Trace(m_Tin, PolygonOf({TPoint(3, 1), TPoint(5, 2), TPoint(5, 2), TPoint(5, 6)})),
            (Pieces{{TPoint(3, 1, 10), TPoint(5, 2, 10)},
                    {TPoint(5, 2, 14), TPoint(5, 3, 16), TPoint(5, 5, 20), TPoint(5, 6, 22)}}));
}

TEST_F(ProfileOnSlope, SegmentThatGivesNothingDoesNotStopTheLine) {
  EXPECT_EQ(Trace(m_Tin, PolygonOf({TPoint(-90, 3), TPoint(-90, 99), TPoint(3, 1)})).size(), 1U);
}

TEST(Profile, SurfaceWithoutPoolsGivesNothing) {
  EXPECT_EQ(Trace(TIN(), TPoint(-1, -1), TPoint(1, 1)), Pieces());
  EXPECT_EQ(Trace(TIN(TPoint(0, 0), TPoint(9, 9), 5), TPoint(1, 1), TPoint(5, 5)), Pieces());
}

// Heights on a plane are those of the plane, whatever triangles lie below.
TEST(Profile, HeightsOnAPlaneAreThoseOfThePlane) {
  Dice dice(TestSeed());
  auto const plane = [](double x, double y) { return 12.0 - 0.25 * x + 0.125 * y; };
  TIN tin(TPoint(0, 0), TPoint(1000, 1000), 3000);
  auto const sound = [&](double x, double y) { tin.AddPoint(x, y, plane(x, y)); };
  for (int i = 0; i < 2800; ++i) {
    double const x = dice.Between(0, 1000);
    sound(x, dice.Between(0, 1000));
  }
  // A rim, so that no triangle from outside reaches in.
  for (double at = 0; at < 1000; at += 25) {
    sound(at, 0);
    sound(1000, at);
    sound(1000 - at, 1000);
    sound(0, 1000 - at);
  }
  int points = 0;
  for (int i = 0; i < 100; ++i) {
    TPoint const from(dice.Between(50, 950), dice.Between(50, 950));
    TPoint const to(dice.Between(50, 950), dice.Between(50, 950));
    Pieces const profile = Trace(tin, from, to);
    ASSERT_EQ(profile.size(), 1U);
    for (TPoint const& p : profile[0]) {
      EXPECT_NEAR(p.z, plane(p.x, p.y), 1e-8);
      double const off = (p.y - from.y) * (to.x - from.x) - (p.x - from.x) * (to.y - from.y);
      EXPECT_NEAR(off / from.XY_Distance(to), 0.0, 1e-9);
    }
    EXPECT_EQ(profile[0].front().x, from.x);
    EXPECT_EQ(profile[0].back().x, to.x);
    points += static_cast<int>(profile[0].size());
  }
  EXPECT_GT(points, 2000);
}

}  // namespace
