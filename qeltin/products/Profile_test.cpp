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

using qeltin::testing::HandMadeMesh;
using qeltin::testing::TINPeer;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

using Profiles = std::vector<TPolygon>;

std::vector<TPoint> PointsOf(TPolygon const& polygon) {
  std::vector<TPoint> points;
  for (int i = 0; i < polygon.GetSize(); ++i) points.push_back(*polygon.Get(i));
  return points;
}

std::vector<std::vector<TPoint>> PointsOf(Profiles const& profiles) {
  std::vector<std::vector<TPoint>> pieces;
  for (TPolygon const& profile : profiles) pieces.push_back(PointsOf(profile));
  return pieces;
}

using Pieces = std::vector<std::vector<TPoint>>;

// A square of four corners and a middle: z = 5 + x + 2 y, which no rounding touches at halves.
class ProfileOnSlope : public ::testing::Test {
 protected:
  ProfileOnSlope() {
    m_Tin.Init(5, TPoint(0, 0, 0), TPoint(8, 8, 50));
    for (TPoint const& p : {TPoint(0, 0), TPoint(8, 0), TPoint(8, 8), TPoint(0, 8), TPoint(4, 4)}) {
      m_Tin.AddPoint(p.x, p.y, 5 + p.x + 2 * p.y);
    }
  }

  Pieces Trace(TPoint const& from, TPoint const& to) {
    Profiles profiles;
    int const count = m_Tin.GenerateProfile(profiles, from, to);
    EXPECT_EQ(count, static_cast<int>(profiles.size()));
    return PointsOf(profiles);
  }

  TIN m_Tin;
};

TEST_F(ProfileOnSlope, EndsAtOnePlaceGiveNothing) {
  EXPECT_EQ(Trace({3, 3, 1}, {3, 3, 9}), Pieces());
}

TEST_F(ProfileOnSlope, LineOutsideTheWorldBoxGivesNothing) {
  EXPECT_EQ(Trace({-500, 200}, {900, 200}), Pieces());
}

TEST_F(ProfileOnSlope, LineInOneTriangleKeepsTheHeightOfItsStart) {
  EXPECT_EQ(Trace({3, 1}, {5, 2}), (Pieces{{TPoint(3, 1, 10), TPoint(5, 2, 10)}}));
}

TEST_F(ProfileOnSlope, LineGetsAPointAtEverySideAndAtBothEnds) {
  EXPECT_EQ(Trace({1, 3}, {7, 3}),
            (Pieces{{TPoint(1, 3, 12), TPoint(3, 3, 14), TPoint(5, 3, 16), TPoint(7, 3, 18)}}));
}

TEST_F(ProfileOnSlope, EndAtAVertexIsLeftOut) { EXPECT_EQ(Trace({1, 3}, {8, 8}).size(), 1U); }

TEST_F(ProfileOnSlope, LineAlongOneSideKeepsItsStartOnly) {
  EXPECT_EQ(Trace({4, 4}, {8, 8}), (Pieces{{TPoint(4, 4, 17)}}));
}

}  // namespace
