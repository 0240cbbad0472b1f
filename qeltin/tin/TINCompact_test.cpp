#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::AT_UTM;
using qeltin::testing::CentroidOf;
using qeltin::testing::Dice;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::SurfaceReport;
using qeltin::testing::SurfaceRules;
using qeltin::testing::Survey;
using qeltin::testing::TemporaryFolder;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

std::vector<TPoint*> Build(TIN& tin, std::vector<TPoint> const& points) {
  auto const extent = ExtentOf(points);
  tin.Init(static_cast<int>(points.size()), extent.min, extent.max);
  std::vector<TPoint*> added;
  for (TPoint const& p : points) added.push_back(tin.AddPoint(p));
  tin.BuildPointMap();
  return added;
}

// Removes every interior point with a chance of `percent` in a hundred. Returns how many went.
int Thin(TIN& tin, std::vector<TPoint*> const& points, int percent, Dice& dice) {
  int removed = 0;
  for (TPoint const* p : points) {
    if (dice.Below(100) < percent && !tin.PointIsOnHull(p) && tin.RemovePoint(p)) ++removed;
  }
  return removed;
}

SurfaceReport Verify(TIN const& tin, bool byNeighbours, bool seeded = true) {
  SurfaceRules rules;
  rules.delaunay = false;
  rules.byNeighbours = byNeighbours;
  rules.seeded = seeded;
  return VerifySurface(tin, rules);
}

// What stands at a place inside a triangle.
struct Probe {
  TPoint place;
  double z;
  bool visible;
};

std::vector<Probe> ProbeStructure(TIN const& tin, PointMap& map) {
  std::vector<Probe> probes;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle* const t = tin.GetTriangle(i, true);
    auto const& known = map.FindPoint(t->m_pVertex[0]).GetTriangles();
    if (std::find(known.begin(), known.end(), t) == known.end()) continue;  // cut off
    TPoint const c = CentroidOf(*t);
    probes.push_back({c, t->GetZ(c.x, c.y), !t->IsHidden()});
  }
  return probes;
}

std::vector<TPoint> SortedPoints(TIN const& tin) {
  std::vector<TPoint> points;
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) points.push_back(*tin.GetPoint(i));
  std::sort(points.begin(), points.end());
  return points;
}

std::string Image(TIN const& tin) {
  TemporaryFolder const folder;
  EXPECT_TRUE(tin.SaveTin(folder.Wide("surface.tin").c_str()));
  return folder.Get("surface.tin");
}

using SurveyAtPlace = std::tuple<Survey, Place>;

class CompactAfterRemovals : public ::testing::TestWithParam<SurveyAtPlace> {};

TEST_P(CompactAfterRemovals, LeavesASoundSurfaceOfThePointsThatWereLeft) {
  Dice dice(TestSeed());
  for (int percent : {0, 20, 60, 95, 100}) {
    TIN tin;
    auto const added = Build(
        tin, MakeSurvey(std::get<0>(GetParam()), 500, dice.Bits(), std::get<1>(GetParam()).frame));
    ASSERT_TRUE(Verify(tin, false).Ok());
    TPoint min, max, worldMin, worldMax;
    tin.GetBounds(min, max);
    tin.GetWorldBounds(worldMin, worldMax);
    int const vertices = Verify(tin, false).vertices;
    int const removed = Thin(tin, added, percent, dice);
    SurfaceReport const before = Verify(tin, true);
    auto const probes = ProbeStructure(tin, tin.GetMap());
    int const capacity = TINPeer::Points(tin)->m_iCapacity;

    ASSERT_TRUE(tin.Compact()) << percent;
    SurfaceReport const report = Verify(tin, false);
    EXPECT_TRUE(report.Ok()) << report;
    EXPECT_EQ(report.loosePoints, 0);
    // Removals may cut a part off, which goes with its points.
    EXPECT_LE(tin.GetNumberOfPoints(), vertices - removed);
    if (before.Ok()) {
      EXPECT_EQ(tin.GetNumberOfPoints(), before.vertices);
    }
    EXPECT_EQ(TINPeer::Points(tin)->m_iCapacity, capacity);
    EXPECT_EQ(TINPeer::Map(tin), nullptr);
    EXPECT_EQ(TINPeer::Min(tin), min);
    EXPECT_EQ(TINPeer::Max(tin), max);
    EXPECT_EQ(TINPeer::WorldMin(tin), worldMin);
    EXPECT_EQ(TINPeer::WorldMax(tin), worldMax);
    if (!before.Ok() || before.vertices != vertices - removed) continue;
    for (Probe const& probe : probes) {
      double z = probe.z;
      EXPECT_EQ(tin.GetZ(probe.place, z, nullptr), probe.visible && tin.InBounds(probe.place));
      EXPECT_EQ(z, probe.z);
    }
  }
}

TEST_P(CompactAfterRemovals, SavesAndLoadsToTheSameThing) {
  Dice dice(TestSeed());
  TIN tin;
  Thin(tin,
       Build(tin,
             MakeSurvey(std::get<0>(GetParam()), 400, dice.Bits(), std::get<1>(GetParam()).frame)),
       80, dice);
  ASSERT_TRUE(tin.Compact());
  TemporaryFolder const folder;
  std::wstring const file = folder.Wide("compact.tin");
  ASSERT_TRUE(tin.SaveTin(file.c_str()));
  TIN loaded;
  ASSERT_TRUE(loaded.Load(file.c_str()));
  SurfaceReport const report = Verify(loaded, false);
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(Image(loaded), Image(tin));
}

TEST_P(CompactAfterRemovals, TakesInsertionsAsAnyOtherSurface) {
  Dice dice(TestSeed());
  TIN tin;
  auto const points =
      MakeSurvey(std::get<0>(GetParam()), 300, dice.Bits(), std::get<1>(GetParam()).frame);
  Thin(tin, Build(tin, points), 70, dice);
  ASSERT_TRUE(tin.Compact());
  for (TPoint const& p : points) EXPECT_NE(tin.AddPoint(p), nullptr);
  SurfaceReport const report = Verify(tin, false);
  EXPECT_TRUE(report.Ok()) << report;
}

std::string NameOfParam(::testing::TestParamInfo<SurveyAtPlace> const& info) {
  return std::string(NameOf(std::get<0>(info.param))) + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(Surveys, CompactAfterRemovals,
                         ::testing::Combine(::testing::Values(Survey::Uniform, Survey::Clusters,
                                                              Survey::Swaths, Survey::JitteredGrid,
                                                              Survey::ExactGrid, Survey::SingleBeam,
                                                              Survey::Cocircular, Survey::Spiral),
                                            ::testing::Values(PLACES[0], PLACES[1])),
                         NameOfParam);

// Removals that fill a hole with triangles over each other.
void BuildFolded(TIN& tin) {
  auto const added = Build(tin, MakeSurvey(Survey::Uniform, 20, 206, AT_UTM));
  int removed = 0;
  for (TPoint const* p : added) {
    if (removed < 4 && !tin.PointIsOnHull(p) && tin.RemovePoint(p)) ++removed;
  }
}

TEST(TINCompact, MendsHolesThatWereFilledWithTrianglesOverEachOther) {
  TIN tin;
  BuildFolded(tin);
  ASSERT_FALSE(Verify(tin, true).Ok());
  ASSERT_TRUE(tin.Compact());
  SurfaceReport const report = Verify(tin, false);
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.vertices, 20);  // 4 of 24 have gone
}

TEST(TINCompact, DropsDuplicatesAndKeepsTheLiveOrder) {
  TIN tin;
  Build(tin, {TPoint(0, 0, 1), TPoint(9, 0, 2), TPoint(4, 7, 3), TPoint(4, 7, 4), TPoint(4, 2, 5)});
  ASSERT_EQ(tin.GetNumberOfPoints(), 9);
  ASSERT_TRUE(tin.Compact());
  ASSERT_EQ(tin.GetNumberOfPoints(), 8);
  EXPECT_EQ(*tin.GetPoint(4), TPoint(0, 0, 1));
  EXPECT_EQ(*tin.GetPoint(6), TPoint(4, 7, 3));
  EXPECT_EQ(*tin.GetPoint(7), TPoint(4, 2, 5));
}

TEST(TINCompact, WhatIsNearInPlanIsNearInMemory) {
  constexpr int COUNT = 3000;
  TIN tin;
  Build(tin, MakeSurvey(Survey::Uniform, COUNT, TestSeed()));
  ASSERT_TRUE(tin.Compact());
  double apart = 0.0;
  double trianglesApart = 0.0;
  int sides = 0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, false);
    if (t == nullptr) continue;
    for (int k = 0; k < 3; ++k) {
      apart += static_cast<double>(std::abs(t->m_pVertex[k] - t->m_pVertex[(k + 1) % 3]));
      trianglesApart += static_cast<double>(std::abs(t->m_pAdjacent[k] - t));
      ++sides;
    }
  }
  EXPECT_LT(apart / sides, COUNT / 15.0);  // in a random order a third
  EXPECT_LT(trianglesApart / sides, 2 * COUNT / 15.0);
}

TEST(TINCompact, OfAnUntouchedSurfaceChangesNothingThatAFileHolds) {
  TIN tin;
  Build(tin, MakeSurvey(Survey::Uniform, 300, TestSeed()));
  for (int i = 0; i < 600; i += 7) tin.GetTriangle(i, true)->m_Flags |= TRI_FILTERED;
  std::string const before = Image(tin);
  ASSERT_TRUE(tin.Compact());
  EXPECT_EQ(Image(tin), before);
}

TEST(TINCompact, BringsBackSlotsThatTheLiveOrderHasLost) {
  TIN tin;
  auto const added = Build(tin, MakeSurvey(Survey::JitteredGrid, 100, TestSeed()));
  std::vector<TPoint> const before = SortedPoints(tin);
  TINPeer::Points(tin)->Remove(added[3]);  // at a distance in bytes: another one goes
  TINPeer::Triangles(tin)->Remove(TINPeer::Triangles(tin)->m_pData + 1);
  EXPECT_NE(SortedPoints(tin), before);
  ASSERT_TRUE(tin.Compact());
  EXPECT_EQ(SortedPoints(tin), before);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 202);
  EXPECT_TRUE(Verify(tin, false).Ok());
}

TEST(TINCompact, LeavesMarkedTrianglesOfAnInsertionBehind) {
  TIN tin;
  Build(tin, MakeSurvey(Survey::JitteredGrid, 50, TestSeed()));
  TTriangle* const loose = TINPeer::AddTriangle(tin, *tin.GetTriangle(10, true));
  loose->m_Flags |= TRI_CAVITY;
  ASSERT_TRUE(tin.Compact());
  EXPECT_EQ(tin.GetNumberOfTriangles(), 102);
}

TEST(TINCompact, MendsAStructureWithAMarkedTriangle) {
  TIN tin;
  Build(tin, MakeSurvey(Survey::JitteredGrid, 50, TestSeed()));
  tin.GetTriangle(10, true)->m_Flags |= TRI_CAVITY;
  ASSERT_TRUE(tin.Compact());
  SurfaceReport const report = Verify(tin, false);
  EXPECT_TRUE(report.Ok()) << report;
}

TEST(TINCompact, LocationAndLastTriangleStartInTheNewPool) {
  TIN tin;
  Build(tin, MakeSurvey(Survey::Uniform, 100, TestSeed()));
  tin.GetTriangleWithPoint(TPoint(500, 500));
  ASSERT_TRUE(tin.Compact());
  TArray<TTriangle> const& pool = *TINPeer::Triangles(tin);
  EXPECT_EQ(TINPeer::Location(tin).m_pCurrent, nullptr);
  EXPECT_EQ(TINPeer::Location(tin).m_pTriangles, &pool);
  EXPECT_GE(TINPeer::LastTriangle(tin), pool.m_pData);
  EXPECT_LT(TINPeer::LastTriangle(tin), pool.m_pData + pool.m_iCount);
}

TEST(TINCompact, KeepsIslandsOfASurfaceWithoutSeed) {
  HandMadeMesh mesh;
  mesh.LayStrip(5);
  mesh.LayClockwise(mesh.Point(100, 0), mesh.Point(101, 0), mesh.Point(100, 1));
  ASSERT_TRUE(mesh.tin.Compact());
  EXPECT_EQ(mesh.tin.GetNumberOfTriangles(), 6);
  EXPECT_EQ(mesh.tin.GetNumberOfPoints(), 10);
}

TEST(TINCompact, TrimbleListsFollowTheirTriangles) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(6);
  TINPeer::RemoveTriangle(mesh.tin, strip[5], false);
  TTriangle* const cut =
      mesh.LayClockwise(mesh.Point(100, 0), mesh.Point(101, 0), mesh.Point(100, 1));
  TINPeer::RemoveTriangle(mesh.tin, strip[0], false);
  strip[0]->m_pAdjacent[0] = strip[0]->m_pAdjacent[1] = strip[0]->m_pAdjacent[2] = strip[1];
  TINPeer::Border(mesh.tin) = new TArray<int>(10);
  for (int position : {6, 0, 1, 4, -3, 99}) TINPeer::Border(mesh.tin)->Add(position);
  TINPeer::StartPoints(mesh.tin) = new TArray<TArrayStartPoint>(10);
  for (int position : {0, 4}) {
    TINPeer::StartPoints(mesh.tin)->Add({1.0 * position, 2.0, 3.0, position});
  }
  EXPECT_EQ(mesh.tin.GetTriangle(6, true), cut);
  ASSERT_TRUE(mesh.tin.Compact());
  TArray<int> const& border = *TINPeer::Border(mesh.tin);
  ASSERT_EQ(border.m_iCount, 3);
  EXPECT_EQ(*border.At(0), 4);  // cut, after the four that are left of the strip
  EXPECT_EQ(*border.At(1), 0);
  EXPECT_EQ(*border.At(2), 3);
  TArray<TArrayStartPoint> const& starts = *TINPeer::StartPoints(mesh.tin);
  ASSERT_EQ(starts.m_iCount, 1);
  EXPECT_EQ(starts.At(0)->x, 4.0);
  EXPECT_EQ(starts.At(0)->triangle, 3);
}

// --- What is not sound ------------------------------------------------------------------------

TEST(TINCompact, AnswersFalseWithoutPoolsPointsOrTriangles) {
  TIN tin;
  EXPECT_FALSE(tin.Compact());
  tin.Init(5, TPoint(0, 0), TPoint(1, 1));
  EXPECT_FALSE(tin.Compact());
  tin.LoadPoint(0.5, 0.5, 0);
  EXPECT_FALSE(tin.Compact());
  EXPECT_EQ(tin.GetNumberOfPoints(), 1);
  tin.Triangulate();
  tin.RemoveAllPoints();
  EXPECT_FALSE(tin.Compact());
}

TEST(TINCompact, AnswersFalseInACopy) {
  TIN tin;
  Build(tin, MakeSurvey(Survey::Uniform, 30, TestSeed()));
  TIN copy(tin);
  EXPECT_FALSE(copy.Compact());
  EXPECT_TRUE(tin.Compact());
}

TEST(TINCompact, AnswersFalseAndChangesNothingWhereANeighbourDoesNotLeadBack) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(5);
  strip[2]->m_pAdjacent[0] = strip[2]->m_pAdjacent[1] = strip[2]->m_pAdjacent[2] = strip[3];
  mesh.tin.BuildPointMap();
  TArray<TTriangle> const* const pool = TINPeer::Triangles(mesh.tin);
  EXPECT_FALSE(mesh.tin.Compact());
  EXPECT_EQ(TINPeer::Triangles(mesh.tin), pool);
  EXPECT_NE(TINPeer::Map(mesh.tin), nullptr);
}

TEST(TINCompact, AnswersFalseWhereATriangleTurnsLeft) {
  HandMadeMesh mesh;
  TTriangle* const t = mesh.LayStrip(3)[0];
  std::swap(t->m_pVertex[0], t->m_pVertex[1]);
  EXPECT_FALSE(mesh.tin.Compact());
}

TEST(TINCompact, AnswersFalseWhereTheHullIsPinched) {
  HandMadeMesh mesh;
  TPoint* const middle = mesh.Point(0, 0);
  mesh.LayClockwise(middle, mesh.Point(1, 0), mesh.Point(1, 1));
  mesh.LayClockwise(middle, mesh.Point(-1, 0), mesh.Point(-1, -1));
  EXPECT_FALSE(mesh.tin.Compact());
}

TEST(TINCompact, AnswersFalseWhereACornerIsMissing) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(4);
  strip[1]->m_pVertex[0] = nullptr;
  EXPECT_FALSE(mesh.tin.Compact());
}

}  // namespace
