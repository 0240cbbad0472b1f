#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <tuple>
#include <vector>

#include "qeltin/tin/BulkMesh.h"
#include "qeltin/tin/InsertionOrder.h"
#include "testing/MakeSurvey.h"
#include "testing/RealSurveys.h"
#include "testing/TINPeer.h"
#include "testing/reference/CompareSurfaces.h"
#include "testing/reference/ReferenceTin.h"

// The bulk mesh against the plain insertion: the same points in the same order, each from the
// triangle in which the mesh found it, must leave the same surface, slot by slot and bit by bit.

namespace {

using qeltin::detail::BulkMesh;
using qeltin::detail::RandomOrder;
using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::AT_UTM;
using qeltin::testing::Dice;
using qeltin::testing::DifferenceOfAllSlots;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::ReadPoints;
using qeltin::testing::RealSurveys;
using qeltin::testing::ReferenceTin;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;

double ReachOf(TIN const& tin) {
  TPoint min, max;
  tin.GetWorldBounds(min, max);
  return std::max(std::fabs(min.x), std::fabs(max.x)) +
         std::max(std::fabs(min.y), std::fabs(max.y));
}

// A surface and its plain version, both with these points loaded and the seed laid.
class BulkTwin {
 public:
  BulkTwin(std::vector<TPoint> const& points, Extent const& extent)
      : m_iCount(static_cast<int>(points.size())) {
    m_Tin.Init(m_iCount, extent.min, extent.max);
    m_Reference.Init(m_iCount, extent.min, extent.max);
    for (TPoint const& p : points) {
      m_Tin.LoadPoint(p.x, p.y, p.z);
      m_Reference.m_pPoints->Add(p);
    }
    TINPeer::Points(m_Tin)->Shuffle();
    std::copy_n(TINPeer::Points(m_Tin)->m_pIndex, m_iCount, m_Reference.m_pPoints->m_pIndex);
    TINPeer::Seed(m_Tin);
    m_Reference.Seed();
  }

  // Inserts what the mesh takes: its points in this order, or in its own.
  void Build(std::vector<int> order = {}) {
    TPoint* const points = TINPeer::Points(m_Tin)->m_pData;
    TArray<TTriangle>* const triangles = TINPeer::Triangles(m_Tin);
    ASSERT_TRUE(BulkMesh::Fits(*triangles, m_iCount));
    BulkMesh mesh(*TINPeer::Points(m_Tin), triangles, m_iCount,
                  {TINPeer::Min(m_Tin), TINPeer::Max(m_Tin)}, ReachOf(m_Tin));
    if (order.empty()) {
      order.resize(static_cast<std::size_t>(m_iCount));
      std::iota(order.begin(), order.end(), 0);
    }
    for (int i : order) {
      int const slot = mesh.SlotOf(i);
      if (!mesh.Insert(i)) {
        ++m_iRefused;
        continue;
      }
      TTriangle* const start = m_Reference.m_pTriangles->At(mesh.FoundIn());
      ASSERT_EQ(start->WhereTri(points[slot]), 3) << "slot " << slot;
      m_Reference.AddPooled(m_Reference.m_pPoints->m_pData + slot, start);
      m_Reference.m_pCurrent = start;
    }
    mesh.Finish();
    if (m_Reference.m_pCurrent != nullptr) {
      TINPeer::Location(m_Tin).m_pCurrent = triangles->At(mesh.FoundIn());
    }
    TINPeer::Min(m_Tin) = mesh.Bounds().min;
    TINPeer::Max(m_Tin) = mesh.Bounds().max;
  }

  std::string Difference() const { return DifferenceOfAllSlots(m_Tin, m_Reference); }
  int Refused() const { return m_iRefused; }

 private:
  TIN m_Tin;
  ReferenceTin m_Reference;
  int m_iCount;
  int m_iRefused = 0;
};

// An order of its own: another one than that of the curve.
std::vector<int> AtRandom(std::vector<TPoint> const& points) {
  return RandomOrder(points.data(), static_cast<int>(points.size()));
}

// Returns how many points the mesh refused.
int ExpectEqual(std::vector<TPoint> const& points, Extent const& extent,
                std::vector<int> const& order = {}) {
  BulkTwin twin(points, extent);
  twin.Build(order);
  EXPECT_EQ(twin.Difference(), "");
  return twin.Refused();
}

bool HasArea(Extent const& extent) {
  return extent.min.x < extent.max.x && extent.min.y < extent.max.y;
}

using SurveyAtPlace = std::tuple<Survey, Place>;

class BulkMeshReference : public ::testing::TestWithParam<SurveyAtPlace> {
 protected:
  std::vector<TPoint> Points(int count, std::uint64_t seed) const {
    return MakeSurvey(std::get<0>(GetParam()), count, seed, std::get<1>(GetParam()).frame);
  }
};

TEST_P(BulkMeshReference, SmallSurfacesAreEqual) {
  std::uint64_t const seed = TestSeed();
  for (int count : {1, 2, 3, 4, 5, 7, 10, 20, 33, 60, 100}) {
    for (std::uint64_t run = 0; run < 8; ++run) {
      SCOPED_TRACE(std::to_string(count) + " points, run " + std::to_string(run));
      std::vector<TPoint> const points = Points(count, seed + run);
      if (!HasArea(ExtentOf(points))) continue;
      ExpectEqual(points, ExtentOf(points), AtRandom(points));
      if (HasFailure()) return;
    }
  }
}

TEST_P(BulkMeshReference, LargeSurfacesAreEqual) {
  std::uint64_t const seed = TestSeed();
  for (int count : {333, 1000}) {
    SCOPED_TRACE(count);
    std::vector<TPoint> const points = Points(count, seed);
    if (!HasArea(ExtentOf(points))) continue;
    ExpectEqual(points, ExtentOf(points));
    ExpectEqual(points, ExtentOf(points), AtRandom(points));
  }
}

// Coordinates and bounds of every size, and points outside the bounds.
TEST_P(BulkMeshReference, ScaledSurfacesWithNarrowBoundsAreEqual) {
  Dice dice(TestSeed());
  for (double const scale : {1e-12, 1e-3, 1e6, 1e100, 1e130}) {
    SCOPED_TRACE(scale);
    std::vector<TPoint> points = Points(200, dice.Bits());
    for (TPoint& p : points) p = TPoint(p.x * scale, p.y * scale, p.z);
    Extent extent = ExtentOf(points);
    if (!HasArea(extent)) continue;
    ExpectEqual(points, extent);
    extent.max.x -= 0.4 * (extent.max.x - extent.min.x);
    extent.min.y += 0.3 * (extent.max.y - extent.min.y);
    EXPECT_GT(ExpectEqual(points, extent), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Surveys, BulkMeshReference,
                         ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS),
                                            ::testing::ValuesIn(PLACES)),
                         [](auto const& test) {
                           return std::string(NameOf(std::get<0>(test.param))) +
                                  std::get<1>(test.param).name;
                         });

// What a survey is made of is built in bulk: few points are left to be inserted one by one.
TEST(BulkMeshReferenceShare, FewPointsOfASurveyAreRefused) {
  std::uint64_t const seed = TestSeed();
  for (Survey const survey : {Survey::Uniform, Survey::Clusters, Survey::Swaths,
                              Survey::JitteredGrid, Survey::SingleBeam, Survey::TwoIslands}) {
    SCOPED_TRACE(survey);
    std::vector<TPoint> const points = MakeSurvey(survey, 3000, seed, AT_UTM);
    EXPECT_LT(ExpectEqual(points, ExtentOf(points)), 10);
  }
  std::vector<TPoint> const grid = MakeSurvey(Survey::ExactGrid, 3000, seed, AT_UTM);
  EXPECT_LT(ExpectEqual(grid, ExtentOf(grid)), 100);
}

TEST(BulkMeshReferenceSurveys, AreEqual) {
  if (RealSurveys().empty()) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  for (auto const& path : RealSurveys()) {
    SCOPED_TRACE(path);
    std::vector<TPoint> const points = ReadPoints(path);
    ExpectEqual(points, ExtentOf(points));
  }
}

}  // namespace
