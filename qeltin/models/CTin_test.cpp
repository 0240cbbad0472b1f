#include "qeltin/models/CTin.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "qeltin/models/CModelManager.h"
#include "qeltin/products/TGrid.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::ExtentOf;
using qeltin::testing::FormulaInputs;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SameBits;
using qeltin::testing::Survey;
using qeltin::testing::TemporaryFolder;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

void ExpectPoint(IPoint const& p, double x, double y, double z) {
  EXPECT_EQ(p.x, x);
  EXPECT_EQ(p.y, y);
  EXPECT_EQ(p.z, z);
}

IPoint ToIPoint(TPoint const& p) { return {p.x, p.y, p.z}; }

// An empty surface over the data bounds (0, 0, -5) to (10, 20, 5).
class CTinTest : public ::testing::Test {
 protected:
  CTinTest() : model(MakeSurface()), tin(model), surface(*model.GetTIN()) {}

  // Three corners of a triangle and a point within it, all visible.
  void AddTent() {
    for (TPoint const& p : {TPoint(1, 1, 1), TPoint(9, 1, 2), TPoint(5, 15, 3), TPoint(5, 5, 4)}) {
      EXPECT_TRUE(tin.AddPoint(p.x, p.y, p.z));
    }
  }

  void ExpectSound() const {
    auto const report = VerifySurface(surface);
    EXPECT_TRUE(report.Ok()) << report;
  }

 private:
  static std::unique_ptr<TIN> MakeSurface() {
    auto made = std::make_unique<TIN>();
    made->Init(100, TPoint(0, 0, -5), TPoint(10, 20, 5));
    return made;
  }

 protected:
  CTin model;
  ITin& tin;
  TIN& surface;
};

// --- Boxes --------------------------------------------------------------------------------------

TEST_F(CTinTest, BoundsOfTheManagersSurfaceAreThoseGivenAndTheWorldBoxReachesTenTimesFurther) {
  CModelManager manager;
  IPoint low = {0.1, -2, 7};
  IPoint high = {10.3, 20, 8};
  ITin* const made = manager.CreateTin(low, high, 5);
  IPoint min;
  IPoint max;
  made->GetBounds(min, max);
  ExpectPoint(min, 0.1, -2, 7);
  ExpectPoint(max, 10.3, 20, 8);
  made->GetWorldBounds(max, min);
  ExpectPoint(min, 0.1 - 10 * (10.3 - 0.1), -2 - 10 * 22.0, 7 - 10 * 1.0);
  ExpectPoint(max, 10.3 + 10 * (10.3 - 0.1), 20 + 10 * 22.0, 8 + 10 * 1.0);
}

TEST_F(CTinTest, EdgeOfABoxIsInside) {
  for (IPoint const& p : {IPoint{0, 0, 0}, IPoint{10, 20, 0}, IPoint{0, 20, 0}, IPoint{5, 0, 0}}) {
    EXPECT_TRUE(tin.InBounds(p));
  }
  for (IPoint const& p : {IPoint{-100, -200, 0}, IPoint{110, 220, 0}, IPoint{110, 0, 0}}) {
    EXPECT_TRUE(tin.InWorldBounds(p));
    EXPECT_FALSE(tin.InBounds(p));
  }
}

TEST_F(CTinTest, PointBeyondABoxOnAnySideIsOutside) {
  for (IPoint const& p :
       {IPoint{-0.1, 5, 0}, IPoint{10.1, 5, 0}, IPoint{5, -0.1, 0}, IPoint{5, 20.1, 0}}) {
    EXPECT_FALSE(tin.InBounds(p));
    EXPECT_TRUE(tin.InWorldBounds(p));
  }
  for (IPoint const& p :
       {IPoint{-100.1, 5, 0}, IPoint{110.1, 5, 0}, IPoint{5, -200.1, 0}, IPoint{5, 220.1, 0}}) {
    EXPECT_FALSE(tin.InWorldBounds(p));
  }
}

TEST_F(CTinTest, HeightDoesNotCountInABox) {
  for (double const z : {-1e300, 0.0, 1e300, NOT_A_NUMBER}) {
    EXPECT_TRUE(tin.InBounds(IPoint{5, 5, z}));
    EXPECT_TRUE(tin.InWorldBounds(IPoint{5, 5, z}));
  }
}

TEST_F(CTinTest, CoordinateThatIsNotANumberIsInsideABox) {
  EXPECT_TRUE(tin.InBounds(IPoint{NOT_A_NUMBER, 5, 0}));
  EXPECT_TRUE(tin.InWorldBounds(IPoint{5, NOT_A_NUMBER, 0}));
  EXPECT_FALSE(tin.InBounds(IPoint{NOT_A_NUMBER, 50, 0}));
}

TEST_F(CTinTest, TriangleIsInABoxWithAllItsCorners) {
  IPoint const inside[] = {{0, 0, 0}, {10, 0, 99}, {10, 20, -99}};
  for (std::size_t k = 0; k < 3; ++k) {
    TriangleCorners corners = {{inside[0], inside[1], inside[2]}};
    EXPECT_TRUE(tin.InBounds(corners));
    corners.vertex[k].y = 21;
    EXPECT_FALSE(tin.InBounds(corners));
    EXPECT_TRUE(tin.InWorldBounds(corners));
    corners.vertex[k].y = 221;
    EXPECT_FALSE(tin.InWorldBounds(corners));
  }
}

// --- Points and triangles -----------------------------------------------------------------------

TEST_F(CTinTest, PointsAreThoseOfTheSurfaceInLiveOrder) {
  EXPECT_EQ(tin.GetNumPoints(), 0);
  AddTent();
  ASSERT_EQ(tin.GetNumPoints(), 8);
  TINPeer::Points(surface)->Shuffle();
  for (int i = 0; i < 8; ++i) {
    IPoint p = {};
    EXPECT_TRUE(tin.GetPoint(i, p));
    EXPECT_EQ(TPoint(p), *surface.GetPoint(i));
  }
}

TEST_F(CTinTest, AddPointAnswersWhetherThePointHasAPlace) {
  EXPECT_TRUE(tin.AddPoint(5, 5, 1));
  EXPECT_TRUE(tin.AddPoint(5.0005, 5, 2));
  EXPECT_FALSE(tin.AddPoint(111, 5, 1));
  EXPECT_FALSE(tin.AddPoint(NOT_A_NUMBER, 5, 1));
  EXPECT_EQ(tin.GetNumPoints(), 6);
  ExpectSound();
}

TEST_F(CTinTest, PointOperationStubAnswersFalse) {
  EXPECT_FALSE(tin.PointOperationStub());
  AddTent();
  EXPECT_FALSE(tin.PointOperationStub());
}

TEST_F(CTinTest, ResetPointsLeavesTheTriangles) {
  AddTent();
  TINPeer::Points(surface)->Shuffle();
  int const triangles = tin.GetNumTriangles();
  tin.ResetPoints();
  EXPECT_EQ(tin.GetNumPoints(), 0);
  EXPECT_EQ(tin.GetNumTriangles(), triangles);
  TArray<TPoint> const& pool = *TINPeer::Points(surface);
  for (int i = 0; i < pool.m_iCapacity; ++i) ASSERT_EQ(pool.m_pIndex[i], i);
  TriangleCorners corners;
  EXPECT_TRUE(tin.FindTriangle({5, 4, 0}, corners));
}

TEST_F(CTinTest, HiddenAndFilteredTrianglesAreNotGiven) {
  AddTent();
  ASSERT_EQ(tin.GetNumTriangles(), 10);
  int given = 0;
  for (int i = 0; i < 10; ++i) {
    TTriangle& triangle = *surface.GetTriangle(i, true);
    TriangleCorners corners = {{{7, 7, 7}, {7, 7, 7}, {7, 7, 7}}};
    if (!tin.GetTriangle(i, corners)) {
      EXPECT_TRUE(triangle.m_Flags & TRI_OUTSIDE);
      for (IPoint const& p : corners.vertex) ExpectPoint(p, 7, 7, 7);
      continue;
    }
    ++given;
    for (int k = 0; k < 3; ++k) EXPECT_EQ(TPoint(corners.vertex[k]), *triangle.GetPoint(k));
    triangle.m_Flags = TRI_FILTERED;
    EXPECT_FALSE(tin.GetTriangle(i, corners));
    triangle.m_Flags = TRI_VISITED;
    EXPECT_TRUE(tin.GetTriangle(i, corners));
    triangle.m_Flags = 0;
  }
  EXPECT_EQ(given, 3);
  ExpectSound();
}

TEST_F(CTinTest, FindTriangleGivesHiddenOnesToo) {
  AddTent();
  TriangleCorners corners = {{{7, 7, 7}, {7, 7, 7}, {7, 7, 7}}};
  EXPECT_FALSE(tin.FindTriangle({500, 500, 0}, corners));
  ExpectPoint(corners.vertex[0], 7, 7, 7);
  for (IPoint const& p : {IPoint{5, 4, 0}, IPoint{100, 100, 0}}) {
    ASSERT_TRUE(tin.FindTriangle(p, corners));
    TTriangle const* const triangle = surface.GetTriangleWithPoint(p);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(TPoint(corners.vertex[k]), *triangle->GetPoint(k));
  }
}

TEST_F(CTinTest, FilteredTrianglesComeBackWithALongerLimit) {
  AddTent();
  TriangleCorners corners;
  auto const given = [&] {
    int count = 0;
    for (int i = 0; i < tin.GetNumTriangles(); ++i) count += tin.GetTriangle(i, corners) ? 1 : 0;
    return count;
  };
  tin.FilterTriangles(1);
  EXPECT_EQ(given(), 0);
  double z = -7;
  EXPECT_FALSE(tin.GetZ(5, 5, &z));
  EXPECT_EQ(z, -7.0);
  tin.FilterTriangles(1000);
  EXPECT_EQ(given(), 3);
}

TEST_F(CTinTest, HeightsAreThoseOfTheSurface) {
  auto const points = MakeSurvey(Survey::Uniform, 500, TestSeed());
  auto const box = ExtentOf(points);
  surface.Init(500, box.min, box.max);
  TIN twin;
  twin.Init(500, box.min, box.max);
  for (TPoint const& p : points) {
    tin.AddPoint(p.x, p.y, p.z);
    twin.AddPoint(p);
  }
  qeltin::testing::Dice dice(TestSeed());
  for (int i = 0; i < 2000; ++i) {
    double const x = dice.Between(box.min.x - 50, box.max.x + 50);
    double const y = dice.Between(box.min.y - 50, box.max.y + 50);
    double z = -7;
    double expected = -7;
    EXPECT_EQ(tin.GetZ(x, y, &z), twin.GetZ(TPoint(x, y, 0), expected, nullptr));
    EXPECT_TRUE(SameBits(z, expected));
  }
  ExpectSound();
}

// --- Files --------------------------------------------------------------------------------------

TEST_F(CTinTest, TextGoesOutAndComesBack) {
  TemporaryFolder folder;
  AddTent();
  EXPECT_TRUE(tin.SaveXYZ(folder.Wide("a").c_str()));
  EXPECT_FALSE(tin.SaveXYZ(folder.Wide("no/a").c_str()));
  EXPECT_EQ(folder.Get("a"),
            "1.000000,1.000000,1.000000\n9.000000,1.000000,2.000000\n"
            "5.000000,15.000000,3.000000\n5.000000,5.000000,4.000000\n");
  EXPECT_TRUE(tin.LoadXYZ(folder.Wide("a").c_str()));
  EXPECT_FALSE(tin.LoadXYZ(folder.Wide("b").c_str()));
  EXPECT_EQ(tin.GetNumPoints(), 8);
  ExpectSound();
}

TEST_F(CTinTest, AfterLoadTinTheSurfaceCannotBeLocatedIn) {
  TemporaryFolder folder;
  AddTent();
  EXPECT_TRUE(tin.SaveTin(folder.Wide("a").c_str()));
  EXPECT_TRUE(tin.LoadTin(folder.Wide("a").c_str()));
  EXPECT_EQ(tin.GetNumPoints(), 8);
  EXPECT_EQ(tin.GetNumTriangles(), 10);
  ExpectSound();

  double z = -7;
  TriangleCorners corners;
  std::vector<TPolygon> sections;
  EXPECT_FALSE(tin.GetZ(5, 5, &z));
  EXPECT_FALSE(tin.FindTriangle({5, 5, 0}, corners));
  EXPECT_FALSE(tin.AddPoint(5, 6, 7));
  EXPECT_EQ(tin.GenerateProfile(sections, {3, 4, 0}, {6, 4, 0}), 0);
  std::vector<TPolygon*> lines;
  EXPECT_EQ(tin.GenerateIsoline(lines, 3.5), 1);
  for (TPolygon* line : lines) delete line;

  EXPECT_FALSE(tin.LoadTin(folder.Wide("b").c_str()));
  EXPECT_EQ(tin.GetNumPoints(), 0);
}

TEST_F(CTinTest, SaveTinAnswersTrueAlsoWhereTheFileCannotBeWritten) {
  TemporaryFolder folder;
  EXPECT_TRUE(tin.SaveTin(folder.Wide("no/a").c_str()));
  EXPECT_FALSE(folder.Has("no/a"));
}

// --- Grid ---------------------------------------------------------------------------------------

TEST_F(CTinTest, SecondGridWithOtherSpacingsIsTheFirst) {
  AddTent();
  EXPECT_EQ(tin.GetGrid(), nullptr);
  tin.CreateGrid(5, 10);
  TGrid* const grid = tin.GetGrid();
  ASSERT_NE(grid, nullptr);
  int const nodes = grid->GetNumberOfNodesX();
  tin.CreateGrid(1, 1);
  EXPECT_EQ(tin.GetGrid(), grid);
  EXPECT_EQ(grid->GetNumberOfNodesX(), nodes);
}

TEST_F(CTinTest, DestroyedGridIsGoneAndMakesRoomForAnother) {
  AddTent();
  tin.DestroyGrid();
  tin.CreateGrid(5, 10);
  int const nodes = tin.GetGrid()->GetNumberOfNodesX();
  tin.DestroyGrid();
  EXPECT_EQ(tin.GetGrid(), nullptr);
  tin.CreateGrid(1, 1);
  EXPECT_GT(tin.GetGrid()->GetNumberOfNodesX(), nodes);
}

TEST_F(CTinTest, GridDoesNotFollowTheSurface) {
  AddTent();
  tin.CreateGrid(5, 5);
  TPoint const* const node = tin.GetGrid()->GetNode(1, 1);
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(*node, TPoint(5, 5, 4));
  surface.GetPoint(7)->z = 40;
  double z = 0;
  EXPECT_TRUE(tin.GetZ(5, 5, &z));
  EXPECT_EQ(z, 40.0);
  EXPECT_EQ(tin.GetGrid()->GetNode(1, 1)->z, 4.0);
}

// --- Products -----------------------------------------------------------------------------------

void ExpectSamePoints(TPolygon const& a, TPolygon const& b) {
  ASSERT_EQ(a.GetSize(), b.GetSize());
  for (int i = 0; i < a.GetSize(); ++i) EXPECT_EQ(*a.Get(i), *b.Get(i));
}

TEST_F(CTinTest, ProductsAreThoseOfTheSurface) {
  AddTent();
  std::vector<TPolygon*> lines;
  std::vector<TPolygon*> expected_lines;
  EXPECT_EQ(tin.GenerateIsoline(lines, 3.5), surface.GenerateIsoline(expected_lines, 3.5));
  ASSERT_EQ(lines.size(), 1U);
  ExpectSamePoints(*lines[0], *expected_lines[0]);
  for (TPolygon* line : {lines[0], expected_lines[0]}) delete line;

  std::vector<TPolygon> sections;
  std::vector<TPolygon> expected;
  TPolygon const path({TPoint(3, 4), TPoint(6, 4), TPoint(6, 6)});
  EXPECT_EQ(tin.GenerateProfile(sections, path), surface.GenerateProfile(expected, path));
  TPoint const from(3, 4, 9);
  TPoint const to(6, 6, 9);
  EXPECT_EQ(tin.GenerateProfile(sections, ToIPoint(from), ToIPoint(to)),
            surface.GenerateProfile(expected, from, to));
  ASSERT_EQ(sections.size(), expected.size());
  EXPECT_EQ(sections.size(), 3U);
  for (std::size_t i = 0; i < sections.size(); ++i) ExpectSamePoints(sections[i], expected[i]);
}

TEST(CTin, WithoutASurfaceTheCountsAreNought) {
  CTin tin;
  EXPECT_EQ(tin.GetNumPoints(), 0);
  EXPECT_EQ(tin.GetNumTriangles(), 0);
  EXPECT_FALSE(tin.PointOperationStub());
  EXPECT_EQ(tin.GetTIN(), nullptr);
  EXPECT_EQ(tin.GetGrid(), nullptr);
}

TEST(CTin, WithoutPoolsTheCountsAreNought) {
  CTin tin(std::make_unique<TIN>());
  EXPECT_EQ(tin.GetNumPoints(), 0);
  EXPECT_EQ(tin.GetNumTriangles(), 0);
}

TEST(TriangleCorners, AreNineNumbersInARow) {
  TriangleCorners const corners = {{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}};
  static_assert(sizeof corners == 9 * sizeof(double));
  EXPECT_EQ(corners.vertex[0].z, 3.0);
  EXPECT_EQ(corners.vertex[2].x, 7.0);
}

}  // namespace
