#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "qeltin/tin/TIN.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::CentroidOf;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::VerifySurface;

// One visible triangle, with sides of 3, 4 and 5 in plan.
struct Right345 {
  TIN tin;

  Right345() {
    tin.Init(3, TPoint(0, 0, 0), TPoint(4, 3, 1000));
    tin.AddPoint(0, 0, 0);
    tin.AddPoint(4, 0, 1000);
    tin.AddPoint(0, 3, 0);
  }

  TTriangle& Visible() const { return *tin.GetTriangleWithPoint(TPoint(1, 1)); }
};

int HiddenByFilter(TIN const& tin) {
  int hidden = 0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    if ((tin.GetTriangle(i, true)->m_Flags & TRI_FILTERED) != 0) ++hidden;
  }
  return hidden;
}

TEST(TINFilter, TriangleWithASideExactlyAtTheLimitStaysVisible) {
  Right345 s;
  s.tin.FilterTriangles(5.0);
  EXPECT_EQ(s.Visible().m_Flags, 0);
  s.tin.FilterTriangles(std::nextafter(5.0, 0.0));
  EXPECT_EQ(s.Visible().m_Flags, TRI_FILTERED);
}

TEST(TINFilter, LimitAboveEverySideClearsAllMarks) {
  Right345 s;
  s.tin.FilterTriangles(0.0);
  EXPECT_EQ(HiddenByFilter(s.tin), s.tin.GetNumberOfTriangles());
  s.tin.FilterTriangles(1e6);
  EXPECT_EQ(HiddenByFilter(s.tin), 0);
}

TEST(TINFilter, LargerLimitShowsTrianglesAgain) {
  Right345 s;
  s.tin.FilterTriangles(4.5);
  EXPECT_TRUE(s.Visible().IsHidden());
  s.tin.FilterTriangles(5.5);
  EXPECT_FALSE(s.Visible().IsHidden());
}

TEST(TINFilter, EachSideCounts) {
  HandMadeMesh mesh;
  TPoint* const a = mesh.Point(0, 0);
  TPoint* const b = mesh.Point(0, 1);
  TPoint* const c = mesh.Point(9, 0);
  TTriangle* const turns[] = {mesh.Lay(a, b, c), mesh.Lay(b, c, a), mesh.Lay(c, a, b)};
  mesh.tin.FilterTriangles(9.0);
  for (TTriangle const* t : turns) EXPECT_EQ(t->m_Flags, TRI_FILTERED);
  c->x = 8.9;
  mesh.tin.FilterTriangles(9.0);
  for (TTriangle const* t : turns) EXPECT_EQ(t->m_Flags, 0);
}

TEST(TINFilter, OtherMarksStayBesideIt) {
  Right345 s;
  s.Visible().m_Flags = TRI_VISITED;
  s.tin.FilterTriangles(1.0);
  EXPECT_EQ(s.Visible().m_Flags, TRI_VISITED | TRI_FILTERED);
  TTriangle const& outer = *s.tin.GetTriangleWithPoint(TPoint(-10, -10));
  EXPECT_EQ(outer.m_Flags, TRI_OUTSIDE | TRI_FILTERED);
  s.tin.FilterTriangles(1e6);
  EXPECT_EQ(s.Visible().m_Flags, TRI_VISITED);
  EXPECT_EQ(outer.m_Flags, TRI_OUTSIDE);
}

TEST(TINFilter, LimitThatIsNoNumberHidesNothing) {
  Right345 s;
  s.tin.FilterTriangles(1.0);
  s.tin.FilterTriangles(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(HiddenByFilter(s.tin), 0);
}

TEST(TINFilter, EmptySurfaceHasNothingToMark) {
  TIN none;
  none.FilterTriangles(1.0);
  EXPECT_EQ(none.GetNumberOfTriangles(), 0);
  TIN empty(TPoint(0, 0), TPoint(1, 1), 3);
  empty.FilterTriangles(1.0);
  EXPECT_EQ(empty.GetNumberOfTriangles(), 0);
}

TEST(TINFilter, StructureStaysWholeAndHeightsAreHidden) {
  auto const points = MakeSurvey(Survey::Uniform, 500, TestSeed());
  auto const box = ExtentOf(points);
  TIN tin(box.min, box.max, 500);
  for (TPoint const& p : points) tin.AddPoint(p);
  tin.FilterTriangles(60.0);
  int const hidden = HiddenByFilter(tin);
  EXPECT_GT(hidden, 0);
  EXPECT_LT(hidden, tin.GetNumberOfTriangles());
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle* const t = tin.GetTriangle(i, true);
    TPoint const at = CentroidOf(*t);
    EXPECT_EQ(tin.GetTriangleWithPoint(at), t);
    double z = 0.0;
    EXPECT_EQ(tin.GetZ(at.x, at.y, z), !t->IsHidden());
  }
  auto const report = VerifySurface(tin);
  EXPECT_TRUE(report.Ok()) << report;
}

}  // namespace
