#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::ExtentOf;
using qeltin::testing::SameBits;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

struct Volumes {
  double below = -7.0;
  double above = -7.0;
  bool result = false;
};

Volumes Measure(TIN& tin, TPolygon const& boundary) {
  Volumes v;
  v.result = tin.CalculateVolume(&boundary, &v.below, &v.above);
  return v;
}

TPolygon Polygon(std::vector<TPoint> const& places) { return {places}; }

TPolygon Rectangle(double x1, double y1, double x2, double y2) {
  return Polygon({{x1, y1}, {x1, y2}, {x2, y2}, {x2, y1}, {x1, y1}});
}

// The square from 0 to 8 at whole metres, all at one height unless set.
struct Lattice {
  TIN tin;

  explicit Lattice(double height) {
    tin.Init(81, TPoint(0, 0, height), TPoint(8, 8, height + 1));
    for (int i = 0; i < 81; ++i) tin.AddPoint(i % 9, i / 9, height);
  }
  ~Lattice() {
    auto const report = VerifySurface(tin);
    EXPECT_TRUE(report.Ok()) << report;
  }

  // The points that an operation has added.
  std::vector<TPoint> Added() const {
    std::vector<TPoint> added;
    for (int i = 85; i < tin.GetNumberOfPoints(); ++i) added.push_back(*tin.GetPoint(i));
    return added;
  }
};

// --- Closed forms
// ----------------------------------------------------------------------------------

// A plane over a square of 100 m, and a figure in it that no triangle crosses: the square from 20
// to 80, whose sides have a point each metre and none nearby.
struct Plane {
  double a;
  double b;
  double c;

  double At(double x, double y) const { return a * x + b * y + c; }
};

bool IsNearTheFigure(double x, double y) {
  auto const near = [](double v) { return std::fabs(v - 20) < 0.6 || std::fabs(v - 80) < 0.6; };
  return near(x) || near(y);
}

std::unique_ptr<TIN> SurfaceOf(Plane const& plane, qeltin::testing::Frame const& frame) {
  qeltin::testing::Dice dice(TestSeed());
  std::vector<TPoint> points = {{0, 0}, {100, 0}, {0, 100}, {100, 100}};
  for (int i = 20; i < 80; ++i) {
    points.insert(points.end(),
                  {TPoint(i, 20), TPoint(80, i), TPoint(i + 1, 80), TPoint(20, i + 1)});
  }
  for (int i = 0; i < 2000; ++i) {
    double const x = dice.Between(0, 100);
    double const y = dice.Between(0, 100);
    if (!IsNearTheFigure(x, y)) points.emplace_back(x, y);
  }
  for (TPoint& p : points) p = {p.x + frame.east, p.y + frame.north, plane.At(p.x, p.y)};
  auto const box = ExtentOf(points);
  auto tin = std::make_unique<TIN>(box.min, box.max, static_cast<int>(points.size()));
  for (TPoint const& p : points) tin->LoadPoint(p.x, p.y, p.z);
  tin->Triangulate();
  return tin;
}

TPolygon FigureAt(qeltin::testing::Frame const& frame) {
  return Rectangle(frame.east + 20, frame.north + 20, frame.east + 80, frame.north + 80);
}

class VolumeInPlace : public ::testing::TestWithParam<qeltin::testing::Place> {};

TEST_P(VolumeInPlace, OfAPrismIsHeightTimesArea) {
  auto const tin = SurfaceOf({0, 0, 12.5}, GetParam().frame);
  Volumes const v = Measure(*tin, FigureAt(GetParam().frame));
  ASSERT_TRUE(v.result);
  EXPECT_NEAR(v.above, 45000, 45000 * 1e-9);
  EXPECT_EQ(v.below, 0.0);
}

TEST_P(VolumeInPlace, UnderAPlaneIsItsMeanHeightTimesArea) {
  auto const above = SurfaceOf({0.03, 0.07, 1}, GetParam().frame);
  Volumes v = Measure(*above, FigureAt(GetParam().frame));
  EXPECT_NEAR(v.above, 21600, 21600 * 1e-9);
  EXPECT_EQ(v.below, 0.0);
  auto const below = SurfaceOf({-0.03, -0.07, -1}, GetParam().frame);
  v = Measure(*below, FigureAt(GetParam().frame));
  EXPECT_EQ(v.above, 0.0);
  EXPECT_NEAR(v.below, 21600, 21600 * 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Volume, VolumeInPlace,
                         ::testing::Values(qeltin::testing::PLACES[0], qeltin::testing::PLACES[1]),
                         [](auto const& place) { return place.param.name; });

TEST(Volume, OfWholeCellsIsExact) {
  Lattice s(3);
  Volumes const v = Measure(s.tin, Rectangle(2, 1, 6, 7));
  EXPECT_EQ(v.above, 3 * 4 * 6.0);
  EXPECT_EQ(v.below, 0.0);
}

TEST(Volume, ACutTriangleCountsTheFarPartWithTheOppositeSign) {
  TIN tin(TPoint(0, 0, -10), TPoint(10, 10, 10), 3);
  tin.AddPoint(0, 0, 10);
  tin.AddPoint(0, 10, -10);
  tin.AddPoint(10, 0, -10);
  Volumes const v = Measure(tin, Polygon({{0, 0}, {0, 10}, {10, 0}}));
  constexpr double PYRAMID = 25 * 0.5 * 10 / 3;
  constexpr double WHOLE = -10 * 100.0 / 6;
  EXPECT_EQ(v.above, PYRAMID);
  EXPECT_EQ(v.below, -(PYRAMID - WHOLE));
}

// --- Which triangles count
// -------------------------------------------------------------------------

TEST(Volume, WithoutACentroidInsideIs0AndMinus0) {
  Lattice s(0);  // the height 0 marks a point without a value: nothing is inserted
  Volumes const v = Measure(s.tin, Rectangle(3.1, 3.1, 3.2, 3.2));
  EXPECT_TRUE(v.result);
  EXPECT_TRUE(SameBits(v.above, 0.0));
  EXPECT_TRUE(SameBits(v.below, -0.0));
}

TEST(Volume, ATriangleCountsWhollyOrNotAtAll) {
  TIN tin(TPoint(0, 0, 0), TPoint(9, 9, 3), 3);
  tin.AddPoint(0, 0, 3);
  tin.AddPoint(0, 9, 3);
  tin.AddPoint(9, 0, 3);
  int const before = tin.GetNumberOfPoints();
  // Triangles without points between them: room is wanting.
  TArray<TPoint>& pool = *TINPeer::Points(tin);
  pool.m_iCapacity = pool.m_iCount;
  Volumes v = Measure(tin, Rectangle(2.9, 2.9, 3.1, 3.1));
  EXPECT_EQ(v.above, 3 * 40.5);
  v = Measure(tin, Rectangle(3.1, 3.1, 4, 4));
  EXPECT_EQ(v.above, 0.0);
  EXPECT_EQ(tin.GetNumberOfPoints(), before);
  pool.m_iCapacity = 1007;
}

TEST(Volume, HiddenTrianglesCount) {
  Lattice s(3);
  s.tin.FilterTriangles(0.1);
  EXPECT_EQ(Measure(s.tin, Rectangle(2, 1, 6, 7)).above, 3 * 4 * 6.0);
}

TEST(Volume, FigureWithoutItsClosingVertexIsOpenForTheProfileAndClosedForContainment) {
  Lattice closed(3);
  Lattice open(3);
  Volumes const v = Measure(closed.tin, Rectangle(0.5, 0.25, 7.5, 7.25));
  TPolygon figure = Rectangle(0.5, 0.25, 7.5, 7.25);
  figure.Remove(4);
  Volumes const w = Measure(open.tin, figure);
  EXPECT_EQ(closed.Added().size(), 4U);
  EXPECT_EQ(open.Added().size(), 3U);
  EXPECT_GT(w.above, 3 * 36.0);
  EXPECT_GT(v.above, 3 * 36.0);
}

// --- What is inserted
// ------------------------------------------------------------------------------

TEST(Volume, InsertsOnePointAPieceThatAtThePositionOfThePiece) {
  Lattice s(3);
  TPolygon const figure = Rectangle(0.5, 0.25, 7.5, 7.25);
  std::vector<TPolygon> pieces;
  ASSERT_EQ(s.tin.GenerateProfile(pieces, figure), 4);
  ASSERT_TRUE(Measure(s.tin, figure).result);
  auto const added = s.Added();
  ASSERT_EQ(added.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(SameBits(added[i], *pieces[i].Get(static_cast<int>(i)))) << i;
  }
  EXPECT_EQ(added[0], TPoint(0.5, 0.25, 3));
}

TEST(Volume, PieceShorterThanItsPositionGivesNoPoint) {
  Lattice s(3);
  TPolygon figure;
  for (int i = 0; i < 5; ++i) figure.Add(0.55 + 0.01 * i, 0.3, 0);  // pieces of two points
  ASSERT_TRUE(Measure(s.tin, figure).result);
  EXPECT_EQ(s.Added(), (std::vector<TPoint>{{0.55, 0.3, 3}, {figure.Get(2)->x, 0.3, 3}}));
}

TEST(Volume, PointAtHeight0HasNoValueAndIsNotInserted) {
  Lattice s(0);
  EXPECT_TRUE(Measure(s.tin, Rectangle(0.5, 0.25, 7.5, 7.25)).result);
  EXPECT_TRUE(s.Added().empty());
}

TEST(Volume, PointOutsideTheDataBoundsIsNotInserted) {
  Lattice s(3);
  for (int i = 0; i < 4; ++i) s.tin.GetPoint(i)->z = 5;  // the seed's, which crossings would have
  EXPECT_TRUE(Measure(s.tin, Polygon({{-1, 4}, {9, 4}})).result);
  EXPECT_TRUE(s.Added().empty());
}

TEST(Volume, ASecondCallFindsItsPoints) {
  Lattice s(3);
  TPolygon const figure = Rectangle(0.5, 0.25, 7.5, 7.25);
  TPolygon const start = Polygon({*figure.Get(0), *figure.Get(1)});
  Measure(s.tin, start);
  ASSERT_EQ(s.Added().size(), 1U);
  Measure(s.tin, start);
  EXPECT_EQ(s.Added().size(), 1U);
}

TEST(Volume, PointThatStandsInThePoolUnconnectedIsNotInsertedAgain) {
  Lattice s(3);
  TPolygon const line = Polygon({{2.0004, 3.0002}, {2.0004, 7.5}});
  std::vector<TPolygon> pieces;
  ASSERT_EQ(s.tin.GenerateProfile(pieces, line), 1);
  ASSERT_GT(pieces[0].GetSize(), 2);
  Measure(s.tin, line);
  ASSERT_EQ(s.Added().size(), 1U);  // considered again and again, and it has a slot but no triangle
  EXPECT_EQ(s.Added()[0].x, 2.0004);
  EXPECT_EQ(s.tin.GetNumberOfTriangles(), 2 * 81 + 2);
  Measure(s.tin, line);
  EXPECT_EQ(s.Added().size(), 1U);
}

TEST(Volume, HeightWithoutANumberIsInsertedAsOftenAsThePieceHasPoints) {
  auto const tin = SurfaceOf({0, 0, 1}, qeltin::testing::AT_ORIGIN);
  for (int i = 0; i < tin->GetNumberOfPoints(); ++i) tin->GetPoint(i)->z = NOT_A_NUMBER;
  TPolygon const line = Polygon({{25, 30}, {35, 33}});
  std::vector<TPolygon> pieces;
  ASSERT_EQ(tin->GenerateProfile(pieces, line), 1);
  ASSERT_GT(pieces[0].GetSize(), 2);
  int const before = tin->GetNumberOfPoints();
  EXPECT_TRUE(Measure(*tin, line).result);
  EXPECT_EQ(tin->GetNumberOfPoints(), before + pieces[0].GetSize());
}

TEST(Volume, FullPoolInsertsNothingAndMeasuresAllTheSame) {
  Lattice s(3);
  TArray<TPoint>& pool = *TINPeer::Points(s.tin);
  int const capacity = pool.m_iCapacity;
  pool.m_iCapacity = pool.m_iCount;
  EXPECT_EQ(Measure(s.tin, Rectangle(1.5, 1.25, 6.5, 6.25)).above, 3 * 5 * 5.0);
  EXPECT_TRUE(s.Added().empty());
  pool.m_iCapacity = capacity;
}

// --- What finds nothing
// ----------------------------------------------------------------------------

// A boundary all around the surface crosses hidden triangles only.
TEST(Volume, EmptyProfileIsFalseAndChangesNothing) {
  Lattice s(3);
  for (TPolygon const& figure :
       {TPolygon(), Polygon({{2, 2}}), Polygon({{2, 2}, {2, 2, 9}, {2, 2}}),
        Rectangle(1000, 1000, 1010, 1010), Rectangle(-1, -1, 9, 9)}) {
    Volumes const v = Measure(s.tin, figure);
    EXPECT_FALSE(v.result);
    EXPECT_EQ(v.below, -7.0);
    EXPECT_EQ(v.above, -7.0);
    EXPECT_TRUE(s.Added().empty());
  }
}

TEST(Volume, OfASurfaceWithoutTrianglesIsFalse) {
  TIN none;
  EXPECT_FALSE(Measure(none, Rectangle(1, 1, 5, 5)).result);
  TIN empty(TPoint(0, 0), TPoint(9, 9), 9);
  EXPECT_FALSE(Measure(empty, Rectangle(1, 1, 5, 5)).result);
}

}  // namespace
