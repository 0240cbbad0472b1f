#include "qeltin/render/GlTIN.h"

#include <cmath>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/gl/RecordedDrawing.h"

namespace {

using qeltin::testing::Append;
using qeltin::testing::GlCall;
using qeltin::testing::GlCalls;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::MetreTable;
using qeltin::testing::Survey;
using qeltin::testing::TINPeer;
using testing::ElementsAre;

class GlTINCalls : public qeltin::testing::RecordedDrawing {
 protected:
  GlTINCalls() { m_Context.SetColorTable(MetreTable()); }

  double Drawn(double z, double zScale) const {
    return (z - m_Context.RefZ()) * zScale + m_Context.RefZ();
  }

  GlCalls Vertex(TPoint const& p, double zScale) const {
    return ColoredVertex(p.x, p.y, p.z, Drawn(p.z, zScale));
  }

  // The calls for all triangles, from the pool's index table.
  GlCalls TrianglesByRule(TIN const& tin, double zScale) const {
    GlCalls calls = {"glBegin(GL_TRIANGLES)"};
    TArray<TTriangle> const* const pool = TINPeer::Triangles(tin);
    for (int i = 0; i < pool->m_iCount; ++i) {
      TTriangle const& t = pool->m_pData[pool->m_pIndex[i]];
      if ((t.m_Flags & (2 | 4)) != 0) continue;
      TPoint n = t.GetNormal();
      if (n.z < 0) n = TPoint(-n.x, -n.y, -n.z);
      calls.push_back(GlCall("glNormal3f", static_cast<float>(n.x), static_cast<float>(n.y),
                             static_cast<float>(n.z)));
      for (TPoint const* corner : t.m_pVertex) Append(calls, Vertex(*corner, zScale));
    }
    calls.push_back("glEnd()");
    return calls;
  }

  GlCalls PointsByRule(TIN const& tin, double zScale) const {
    GlCalls calls = {"glBegin(GL_POINTS)", "glNormal3f(0, 0, 1)"};
    TPoint min, max;
    tin.GetBounds(min, max);
    TArray<TPoint> const* const pool = TINPeer::Points(tin);
    for (int i = 0; i < pool->m_iCount; ++i) {
      TPoint const& p = pool->m_pData[pool->m_pIndex[i]];
      if (p.x < min.x || p.x > max.x || p.y < min.y || p.y > max.y) continue;
      Append(calls, Vertex(p, zScale));
    }
    calls.push_back("glEnd()");
    return calls;
  }
};

void Build(TIN& tin, Survey survey, int count) {
  std::vector<TPoint> const points = MakeSurvey(survey, count, qeltin::testing::TestSeed());
  auto const extent = qeltin::testing::ExtentOf(points);
  tin.Init(count, extent.min, extent.max);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
}

void ShowPoints(GlTIN& drawable) {
  drawable.GetDrawingAttributes()->EnableDrawMode(GlDrawingAttributes::FRONT_POINT);
}

TEST_F(GlTINCalls, EmptySurfaceIsABracketWithoutVertices) {
  TIN const nothing;
  GlTIN drawable(&nothing);
  EXPECT_THAT(CallsOf(drawable, 1), ElementsAre("glBegin(GL_TRIANGLES)", "glEnd()"));

  TIN const empty(TPoint(0, 0), TPoint(10, 10), 10);
  GlTIN other(&empty);
  EXPECT_THAT(CallsOf(other, 1), ElementsAre("glBegin(GL_TRIANGLES)", "glEnd()"));
  ShowPoints(other);
  EXPECT_THAT(CallsOf(other, 1),
              ElementsAre("glBegin(GL_POINTS)", "glNormal3f(0, 0, 1)", "glEnd()"));
}

TEST_F(GlTINCalls, TriangleIsANormalAndThreeColouredCorners) {
  HandMadeMesh mesh;
  mesh.LayClockwise(mesh.Point(0, 0, 51), mesh.Point(0, 1, 51), mesh.Point(1, 0, 102));
  GlTIN drawable(&mesh.tin);
  GlCalls const calls = CallsOf(drawable, 1);
  ASSERT_EQ(calls.size(), 9u);
  EXPECT_EQ(calls[1], GlCall("glNormal3f", static_cast<float>(-51 / std::sqrt(2602.0)), 0.0f,
                             static_cast<float>(1 / std::sqrt(2602.0))));
  EXPECT_EQ(calls[2], "glColor3f(0.2, 0.8, 0.39215687)");
  EXPECT_EQ(calls[3], "glVertex3f(0, 0, 51)");
  EXPECT_EQ(calls[5], "glVertex3f(0, 1, 51)");
  EXPECT_EQ(calls[6], "glColor3f(0.4, 0.6, 0.39215687)");
  EXPECT_EQ(calls[7], "glVertex3f(1, 0, 102)");
}

TEST_F(GlTINCalls, NormalPointsUpWhateverTheTurnOfTheCorners) {
  HandMadeMesh mesh;
  TPoint* const a = mesh.Point(0, 0, 0);
  TPoint* const b = mesh.Point(0, 1, 0.5);
  TPoint* const c = mesh.Point(1, 0, 2);
  mesh.Lay(a, b, c);
  mesh.Lay(a, c, b);
  ASSERT_GT(TINPeer::Triangles(mesh.tin)->At(0)->GetNormal().z, 0.0);
  ASSERT_LT(TINPeer::Triangles(mesh.tin)->At(1)->GetNormal().z, 0.0);
  GlTIN drawable(&mesh.tin);
  GlCalls const calls = CallsOf(drawable, 1);
  ASSERT_EQ(calls.size(), 16u);
  EXPECT_EQ(calls[8], calls[1]);
}

TEST_F(GlTINCalls, HeightIsExaggeratedAboutTheReferenceHeight) {
  HandMadeMesh mesh;
  mesh.LayClockwise(mesh.Point(0, 0, 12), mesh.Point(0, 1, 10), mesh.Point(1, 0, 9));
  m_Context.SetRefZ(10);
  GlTIN drawable(&mesh.tin);
  GlCalls const calls = CallsOf(drawable, 2);
  EXPECT_EQ(calls[3], "glVertex3f(0, 0, 14)");
  EXPECT_EQ(calls[5], "glVertex3f(0, 1, 10)");
  EXPECT_EQ(calls[7], "glVertex3f(1, 0, 8)");
}

TEST_F(GlTINCalls, WithoutExaggerationTheReferenceHeightHasNoEffect) {
  HandMadeMesh mesh;
  mesh.LayClockwise(mesh.Point(0, 0, 12), mesh.Point(0, 1, 10), mesh.Point(1, 0, 9));
  GlTIN drawable(&mesh.tin);
  GlCalls const calls = CallsOf(drawable, 1);
  for (double const refZ : {-100.0, 7.5, 4000.0}) {
    m_Context.SetRefZ(refZ);
    EXPECT_EQ(CallsOf(drawable, 1), calls) << refZ;
  }
}

TEST_F(GlTINCalls, HeightIsRoundedAtTheSizeOfTheReferenceHeight) {
  HandMadeMesh mesh;
  mesh.LayClockwise(mesh.Point(0, 0, 1.25), mesh.Point(0, 1, 0.5), mesh.Point(1, 0, 12));
  m_Context.SetRefZ(1e16);
  GlTIN drawable(&mesh.tin);
  GlCalls const calls = CallsOf(drawable, 1);
  EXPECT_EQ(calls[3], "glVertex3f(0, 0, 2)");
  EXPECT_EQ(calls[5], "glVertex3f(0, 1, 0)");
  EXPECT_EQ(calls[7], "glVertex3f(1, 0, 12)");
}

TEST_F(GlTINCalls, ExaggeratedSurfaceKeepsItsColours) {
  TIN tin;
  Build(tin, Survey::Uniform, 50);
  GlTIN drawable(&tin);
  GlCalls const plain = CallsOf(drawable, 1);
  GlCalls const scaled = CallsOf(drawable, 7);
  ASSERT_EQ(plain.size(), scaled.size());
  for (std::size_t i = 0; i < plain.size(); ++i) {
    if (plain[i].starts_with("glVertex3f")) continue;
    EXPECT_EQ(plain[i], scaled[i]);
  }
}

TEST_F(GlTINCalls, HiddenTrianglesAreLeftOut) {
  for (unsigned char const flag : {TRI_OUTSIDE, TRI_FILTERED}) {
    HandMadeMesh mesh;
    std::vector<TTriangle*> const strip = mesh.LayStrip(3);
    GlTIN drawable(&mesh.tin);
    EXPECT_EQ(CallsOf(drawable, 1).size(), 2u + 3 * 7);
    strip[1]->m_Flags = static_cast<unsigned char>(strip[1]->m_Flags | flag);
    EXPECT_EQ(CallsOf(drawable, 1).size(), 2u + 2 * 7);
    EXPECT_EQ(CallsOf(drawable, 1), TrianglesByRule(mesh.tin, 1));
  }
}

TEST_F(GlTINCalls, OtherMarksAreDrawn) {
  HandMadeMesh mesh;
  mesh.LayStrip(1)[0]->m_Flags = TRI_VISITED | TRI_CAVITY;
  GlTIN drawable(&mesh.tin);
  EXPECT_EQ(CallsOf(drawable, 1).size(), 9u);
}

TEST_F(GlTINCalls, PointsOfAHiddenTriangleAreDrawn) {
  HandMadeMesh mesh;
  TPoint* const inside = mesh.Point(1, 2, 51);
  TPoint* const onTheEdge = mesh.Point(1000, -1000, 102);
  TPoint* const outside = mesh.Point(1000.5, 0, 0);
  TTriangle* const triangle = mesh.Lay(inside, onTheEdge, outside);
  ASSERT_TRUE(triangle->IsHidden());
  GlTIN drawable(&mesh.tin);
  EXPECT_THAT(CallsOf(drawable, 1), ElementsAre("glBegin(GL_TRIANGLES)", "glEnd()"));
  ShowPoints(drawable);
  EXPECT_THAT(
      CallsOf(drawable, 1),
      ElementsAre("glBegin(GL_POINTS)", "glNormal3f(0, 0, 1)", "glColor3f(0.2, 0.8, 0.39215687)",
                  "glVertex3f(1, 2, 51)", "glColor3f(0.4, 0.6, 0.39215687)",
                  "glVertex3f(1000, -1000, 102)", "glEnd()"));
}

TEST_F(GlTINCalls, PointsModeLeavesOutTheSeedCorners) {
  TIN tin;
  Build(tin, Survey::Uniform, 20);
  ASSERT_EQ(tin.GetNumberOfPoints(), 24);
  GlTIN drawable(&tin);
  ShowPoints(drawable);
  EXPECT_EQ(CallsOf(drawable, 1).size(), 3u + 20 * 2);
}

TEST_F(GlTINCalls, SurfaceIsDrawnInItsLiveOrder) {
  m_Context.SetRefZ(-3.25);
  for (Survey const survey : {Survey::Uniform, Survey::ExactGrid, Survey::Swaths}) {
    TIN tin;
    Build(tin, survey, 300);
    tin.FilterTriangles(200);
    for (double const zScale : {1.0, 2.5, 0.0, -1.0}) {
      GlTIN drawable(&tin);
      EXPECT_EQ(CallsOf(drawable, zScale), TrianglesByRule(tin, zScale)) << survey;
      ShowPoints(drawable);
      EXPECT_EQ(CallsOf(drawable, zScale), PointsByRule(tin, zScale)) << survey;
    }
  }
}

TEST_F(GlTINCalls, CoordinatesAreNarrowedAsTheyAre) {
  TIN tin(TPoint(0, 0), TPoint(1e6, 1e7), 10);
  TINPeer::Points(tin)->Add(TPoint(500000.123, 5900000.3, 12.34567891));
  GlTIN drawable(&tin);
  ShowPoints(drawable);
  EXPECT_EQ(CallsOf(drawable, 1)[3], "glVertex3f(500000.12, 5900000.5, 12.345679)");
}

TEST_F(GlTINCalls, RangeColoursAreKeptAndNotDrawn) {
  HandMadeMesh mesh;
  mesh.LayStrip(2);
  GlTIN drawable(&mesh.tin);
  GlColor low;
  GlColor high;
  drawable.GetZRangeColor(low, high);
  EXPECT_EQ(low, GlColor(1, 0.5f, 0, 1));
  EXPECT_EQ(high, GlColor(0, 0, 1, 1));
  GlCalls const before = CallsOf(drawable, 1);
  drawable.SetZRangeColor(GlColor::GLC_PINK, GlColor::GLC_CYAN);
  EXPECT_EQ(CallsOf(drawable, 1), before);
  drawable.GetZRangeColor(low, high);
  EXPECT_EQ(low, GlColor::GLC_PINK);
  EXPECT_EQ(high, GlColor::GLC_CYAN);
}

TEST_F(GlTINCalls, CopyDrawsTheSameSurfaceWithTheSameAttributes) {
  HandMadeMesh mesh;
  mesh.LayStrip(2);
  GlTIN drawable(&mesh.tin);
  ShowPoints(drawable);
  drawable.SetZRangeColor(GlColor::GLC_PINK, GlColor::GLC_CYAN);
  GlTIN const copy(drawable);
  TIN const nothing;
  GlTIN assigned(&nothing);
  assigned = copy;
  EXPECT_EQ(*assigned.GetDrawingAttributes(), *drawable.GetDrawingAttributes());
  GlColor low;
  GlColor high;
  assigned.GetZRangeColor(low, high);
  EXPECT_EQ(low, GlColor::GLC_PINK);
  EXPECT_EQ(high, GlColor::GLC_CYAN);
  EXPECT_EQ(CallsOf(assigned, 2), CallsOf(drawable, 2));
}

}  // namespace
