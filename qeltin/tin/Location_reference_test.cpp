#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/reference/Twin.h"

// Location against its plain version: wherever chance has no say, the same triangle and the same
// place for the next query.

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::FAR_OUT;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::Twin;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

using SurveyAtPlace = std::tuple<Survey, Place>;

constexpr int POINTS = 3000;

// A point on a side or off it by about the tolerance of the walk, to either side.
TPoint NearSide(TTriangle const& t, Dice& dice) {
  int const side = dice.Below(3);
  TPoint const& a = *t.m_pVertex[side];
  TPoint const& b = *t.m_pVertex[(side + 1) % 3];
  double const share = dice.OneIn(5) ? 0.5 : dice.Unit();
  double const offsets[] = {0.0, 1e-12, 1e-10, 4e-10, 9e-10, 1e-9, 1.1e-9, 2e-9};
  double const offset = offsets[dice.Below(8)] * (dice.OneIn(2) ? 1.0 : -1.0);
  double const length = std::hypot(b.x - a.x, b.y - a.y);
  return {a.x + share * (b.x - a.x) - offset * (b.y - a.y) / length,
          a.y + share * (b.y - a.y) + offset * (b.x - a.x) / length};
}

// A point a little behind a corner as seen from the triangle, where the bands of its two sides
// meet: the sharper the corner, the farther behind. A needle accepts it although it lies well
// inside another triangle.
TPoint BehindCorner(TTriangle const& t, int corner, Dice& dice) {
  TPoint const& v = *t.m_pVertex[corner];
  TPoint const& a = *t.m_pVertex[(corner + 1) % 3];
  TPoint const& b = *t.m_pVertex[(corner + 2) % 3];
  double const share = dice.Between(0.2, 0.8);
  double const dx = v.x - (a.x + share * (b.x - a.x));
  double const dy = v.y - (a.y + share * (b.y - a.y));
  double const sine = 2 * std::fabs(t.Area()) / (v.XY_Distance(a) * v.XY_Distance(b));
  double const reach = dice.Unit() * 3e-9 / sine / std::hypot(dx, dy);
  return {v.x + reach * dx, v.y + reach * dy};
}

class LocationReference : public ::testing::TestWithParam<SurveyAtPlace> {
 protected:
  LocationReference()
      : m_Points(MakeSurvey(std::get<0>(GetParam()), POINTS, m_Dice.Bits(),
                            std::get<1>(GetParam()).frame)),
        m_Extent(ExtentOf(m_Points)) {
    m_Twin.Init(POINTS, m_Extent.min, m_Extent.max);
    m_Twin.AddPoints(m_Points);
  }

  TPoint Anywhere(double margin) {
    double const dx = margin * (m_Extent.max.x - m_Extent.min.x);
    double const dy = margin * (m_Extent.max.y - m_Extent.min.y);
    double const x = m_Dice.Between(m_Extent.min.x - dx, m_Extent.max.x + dx);
    return {x, m_Dice.Between(m_Extent.min.y - dy, m_Extent.max.y + dy)};
  }

  TTriangle const* AnyTriangle() {
    return m_Twin.Tin().GetTriangle(m_Dice.Below(m_Twin.Tin().GetNumberOfTriangles()), true);
  }

  // The triangle after some steps over the sides that come up.
  TTriangle const* Stroll(TTriangle const* t, int steps) {
    for (int i = 0; i < steps; ++i) {
      TTriangle const* const next = t->m_pAdjacent[m_Dice.Below(3)];
      if (next != nullptr) t = next;
    }
    return t;
  }

  static TPoint Centroid(TTriangle const& t) {
    return {(t.m_pVertex[0]->x + t.m_pVertex[1]->x + t.m_pVertex[2]->x) / 3.0,
            (t.m_pVertex[0]->y + t.m_pVertex[1]->y + t.m_pVertex[2]->y) / 3.0};
  }

  TPoint NearSide(TTriangle const& t) { return ::NearSide(t, m_Dice); }

  // Behind a corner of the narrowest of a few triangles, the hidden ones left out.
  TPoint BehindNeedle() {
    TTriangle const* needle = AnyTriangle();
    auto const narrowness = [](TTriangle const& t) { return std::fabs(t.Area()) / t.m_RadiusSq; };
    for (int i = 0; i < 6; ++i) {
      TTriangle const* const t = AnyTriangle();
      if (!t->IsHidden() && (needle->IsHidden() || narrowness(*t) < narrowness(*needle))) {
        needle = t;
      }
    }
    return ::BehindCorner(*needle, m_Dice.Below(3), m_Dice);
  }

  Dice m_Dice{TestSeed()};
  std::vector<TPoint> m_Points;
  Extent m_Extent;
  Twin m_Twin{1 << 30};
};

TEST_P(LocationReference, QueriesAnywhereAreEqual) {
  for (int i = 0; i < 1500; ++i) m_Twin.Query(Anywhere(0.01));
  for (int i = 0; i < 300; ++i) m_Twin.Query(Anywhere(5.0));
  for (int i = 0; i < 300; ++i) m_Twin.Query(Anywhere(20.0));  // past the world box, too
  m_Twin.Compare();
  EXPECT_EQ(m_Twin.Fault(), "");
}

TEST_P(LocationReference, QueriesThatDriftAreEqual) {
  for (int round = 0; round < 20; ++round) {
    TPoint p = Anywhere(0.0);
    double const step = (m_Extent.max.x - m_Extent.min.x) / 60;
    for (int i = 0; i < 100; ++i) {
      m_Twin.Query(p);
      p = TPoint(p.x + step * m_Dice.Normal(), p.y + step * m_Dice.Normal());
    }
  }
  EXPECT_EQ(m_Twin.Fault(), "");
}

TEST_P(LocationReference, QueriesAtVerticesAreEqual) {
  for (int i = 0; i < 1000; ++i) {
    TTriangle const* const t = AnyTriangle();
    m_Twin.Query(Centroid(*t));
    m_Twin.Query(*Stroll(t, m_Dice.Below(16))->m_pVertex[m_Dice.Below(3)]);
  }
  EXPECT_EQ(m_Twin.Fault(), "");
}

// The band of 1e-9 lets two triangles accept such a point: the one that the walk reaches first
// has it, also where an index could lead into the other.
TEST_P(LocationReference, QueriesNearSidesAreEqual) {
  for (int i = 0; i < 1500; ++i) m_Twin.Query(Anywhere(0.0));  // far apart, so that an index pays
  for (int i = 0; i < 6000; ++i) {
    TTriangle const* const t = AnyTriangle();
    m_Twin.Query(Centroid(*t));
    m_Twin.Query(NearSide(*Stroll(t, m_Dice.Below(24))));
  }
  EXPECT_EQ(m_Twin.Fault(), "");
}

TEST_P(LocationReference, QueriesBehindNeedlesAreEqual) {
  for (int i = 0; i < 1500; ++i) m_Twin.Query(Anywhere(0.0));
  for (int i = 0; i < 2000; ++i) {
    TPoint const p = BehindNeedle();
    m_Twin.Query(p);
    TTriangle const* const t = TINPeer::Location(m_Twin.Tin()).m_pCurrent;
    m_Twin.Query(Centroid(*Stroll(t, m_Dice.Below(30))));
    m_Twin.Query(p);
  }
  EXPECT_EQ(m_Twin.Fault(), "");
}

TEST_P(LocationReference, QueriesThatAreNoPlaceAreEqual) {
  double const bad[] = {NOT_A_NUMBER, INF, -INF, 1e300, -1e300};
  for (int i = 0; i < 300; ++i) {
    TPoint p = Anywhere(0.0);
    m_Twin.Query(p);
    if (!m_Dice.OneIn(3)) p.x = bad[m_Dice.Below(5)];
    if (!m_Dice.OneIn(3)) p.y = bad[m_Dice.Below(5)];
    m_Twin.Query(p);
  }
  EXPECT_EQ(m_Twin.Fault(), "");
}

TEST_P(LocationReference, WalksOfAnyBudgetAreEqual) {
  for (int i = 0; i < 1500; ++i) {
    m_Twin.Query(Centroid(*AnyTriangle()));
    if (TINPeer::Location(m_Twin.Tin()).m_pCurrent == nullptr) break;
    m_Twin.Walk(i % 2 == 0 ? Anywhere(0.1) : NearSide(*AnyTriangle()), m_Dice.Below(90) - 2);
  }
  EXPECT_EQ(m_Twin.Fault(), "");
}

TEST_P(LocationReference, WalksFromTheLastTriangleAreEqual) {
  for (int i = 0; i < 1500; ++i) {
    m_Twin.TraverseFind(i % 2 == 0 ? Anywhere(0.1) : NearSide(*AnyTriangle()),
                        m_Dice.Below(300) - 2);
  }
  m_Twin.Compare();
  EXPECT_EQ(m_Twin.Fault(), "");
}

TEST_P(LocationReference, QueriesGoOnAfterMoreInsertions) {
  for (int i = 0; i < 1500; ++i) m_Twin.Query(Anywhere(0.0));
  for (int i = 0; i < 500; ++i) {
    m_Twin.AddPoint(Anywhere(0.2));
    TTriangle const* const t = AnyTriangle();
    m_Twin.Query(Centroid(*t));
    m_Twin.Query(NearSide(*Stroll(t, m_Dice.Below(20))));
  }
  m_Twin.Compare();
  EXPECT_EQ(m_Twin.Fault(), "");
}

TEST_P(LocationReference, QueriesOnALoadedSurfaceAreEqual) {
  m_Twin.SaveAndLoad();
  for (int i = 0; i < 500; ++i) {
    m_Twin.Query(Anywhere(0.05));
    TTriangle const* const t = AnyTriangle();
    m_Twin.Query(Centroid(*t));
    m_Twin.Query(NearSide(*Stroll(t, m_Dice.Below(20))));
  }
  m_Twin.Compare();
  EXPECT_EQ(m_Twin.Fault(), "");
}

INSTANTIATE_TEST_SUITE_P(All, LocationReference,
                         ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS),
                                            ::testing::ValuesIn(PLACES)),
                         [](auto const& survey) {
                           return std::string(NameOf(std::get<0>(survey.param))) +
                                  std::get<1>(survey.param).name;
                         });

TEST(LocationReferenceShare, FarOutWalksEndBetweenTwoTriangles) {
  Dice dice(TestSeed());
  std::vector<TPoint> const points = MakeSurvey(Survey::Uniform, 400, dice.Bits(), FAR_OUT);
  Extent const extent = ExtentOf(points);
  Twin twin(1 << 30);
  twin.Init(400, extent.min, extent.max);
  twin.AddPoints(points);
  for (int i = 0; i < 20000; ++i) {
    int const position = dice.Below(twin.Tin().GetNumberOfTriangles());
    twin.Query(NearSide(*twin.Tin().GetTriangle(position, true), dice));
  }
  EXPECT_EQ(twin.Fault(), "");
  EXPECT_GT(twin.Reference().Bounces(), 0);
}

TEST(LocationReferenceEdge, ASurfaceWithoutTrianglesKeepsNoPlace) {
  Twin twin;
  twin.Init(10, TPoint(0, 0), TPoint(10, 10));
  EXPECT_EQ(twin.Tin().GetTriangleWithPoint({5, 5}), nullptr);
  EXPECT_EQ(twin.Reference().Find({5, 5}).triangle, nullptr);
  twin.Compare();
  EXPECT_EQ(twin.Fault(), "");
}

}  // namespace
