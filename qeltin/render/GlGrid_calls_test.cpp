#include "qeltin/render/GlGrid.h"

#include <algorithm>
#include <string>
#include <vector>

#include "qeltin/products/TGrid.h"
#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/gl/RecordedDrawing.h"

namespace {

using qeltin::testing::Append;
using qeltin::testing::GlCalls;
using qeltin::testing::MetreTable;
using qeltin::testing::Survey;
using testing::IsEmpty;

class GlGridCalls : public qeltin::testing::RecordedDrawing {
 protected:
  GlGridCalls() { m_Context.SetColorTable(MetreTable()); }

  void Emit(GlCalls& calls, TPoint const& p, double zScale) const {
    double const refZ = m_Context.RefZ();
    Append(calls, ColoredVertex(p.x, p.y, p.z, (p.z - refZ) * zScale + refZ));
  }

  // The calls for all strips, as the rule has it.
  GlCalls StripsByRule(TGrid const& grid, double zScale) const {
    GlCalls calls;
    int const nx = grid.GetNumberOfNodesX();
    int const ny = grid.GetNumberOfNodesY();
    for (int j = 0; j < ny; ++j) {
      bool open = false;
      for (int i = 0; i <= nx - 2; ++i) {
        for (int row = j; row <= j + 1; ++row) {
          TPoint const* const node = row < ny ? grid.GetNode(i, row) : nullptr;
          if (node != nullptr) {
            if (!open) calls.push_back("glBegin(GL_TRIANGLE_STRIP)");
            open = true;
            Emit(calls, *node, zScale);
          } else if (open) {
            calls.push_back("glEnd()");
            open = false;
          }
        }
      }
      if (open) calls.push_back("glEnd()");
    }
    return calls;
  }
};

// A surface over the points with whole x and y from 0 to `last`, except those given. Its grid of
// spacing 1 has a node on each of them.
class Lattice {
 public:
  TIN tin;

  explicit Lattice(int last, std::vector<TPoint> const& gaps = {}) {
    tin.Init((last + 1) * (last + 1), TPoint(0, 0), TPoint(last, last));
    for (int y = 0; y <= last; ++y) {
      for (int x = 0; x <= last; ++x) {
        auto const isHere = [x, y](TPoint const& gap) { return gap.x == x && gap.y == y; };
        if (std::none_of(gaps.begin(), gaps.end(), isHere)) tin.AddPoint(x, y, 10 * y + x);
      }
    }
    tin.FilterTriangles(1.5);
  }
};

std::vector<std::string> Vertices(GlCalls const& calls) {
  std::vector<std::string> vertices;
  for (std::string const& call : calls) {
    if (!call.starts_with("glColor3f")) vertices.push_back(call);
  }
  return vertices;
}

TEST_F(GlGridCalls, RowsAreStripsWithoutTheirLastColumn) {
  Lattice const lattice(2);
  TGrid const grid(lattice.tin, 1, 1);
  ASSERT_NE(grid.GetNode(0, 0), nullptr);
  ASSERT_NE(grid.GetNode(1, 2), nullptr);
  GlGrid drawable(&grid);
  GlCalls const expected = {
      "glBegin(GL_TRIANGLE_STRIP)", "glVertex3f(0, 0, 0)",  "glVertex3f(0, 1, 10)",
      "glVertex3f(1, 0, 1)",        "glVertex3f(1, 1, 11)", "glEnd()",
      "glBegin(GL_TRIANGLE_STRIP)", "glVertex3f(0, 1, 10)", "glVertex3f(0, 2, 20)",
      "glVertex3f(1, 1, 11)",       "glVertex3f(1, 2, 21)", "glEnd()",
      "glBegin(GL_TRIANGLE_STRIP)", "glVertex3f(0, 2, 20)", "glEnd()",
      "glBegin(GL_TRIANGLE_STRIP)", "glVertex3f(1, 2, 21)", "glEnd()"};
  EXPECT_EQ(Vertices(CallsOf(drawable, 1)), expected);
}

TEST_F(GlGridCalls, NodeWithoutHeightBreaksTheStripAndTheNextOpensAnother) {
  Lattice const lattice(8, {TPoint(4, 4)});
  TGrid const grid(lattice.tin, 2, 2);
  ASSERT_EQ(grid.GetNode(2, 2), nullptr);
  GlGrid drawable(&grid);
  GlCalls const calls = Vertices(CallsOf(drawable, 1));
  GlCalls const rowsAtTheGap = {"glBegin(GL_TRIANGLE_STRIP)",
                                "glVertex3f(0, 2, 20)",
                                "glVertex3f(0, 4, 40)",
                                "glVertex3f(2, 2, 22)",
                                "glVertex3f(2, 4, 42)",
                                "glVertex3f(4, 2, 24)",
                                "glEnd()",
                                "glBegin(GL_TRIANGLE_STRIP)",
                                "glVertex3f(6, 2, 26)",
                                "glVertex3f(6, 4, 46)",
                                "glEnd()",
                                "glBegin(GL_TRIANGLE_STRIP)",
                                "glVertex3f(0, 4, 40)",
                                "glVertex3f(0, 6, 60)",
                                "glVertex3f(2, 4, 42)",
                                "glVertex3f(2, 6, 62)",
                                "glEnd()",
                                "glBegin(GL_TRIANGLE_STRIP)",
                                "glVertex3f(4, 6, 64)",
                                "glVertex3f(6, 4, 46)",
                                "glVertex3f(6, 6, 66)",
                                "glEnd()"};
  EXPECT_NE(std::search(calls.begin(), calls.end(), rowsAtTheGap.begin(), rowsAtTheGap.end()),
            calls.end());
}

TEST_F(GlGridCalls, OneColumnDrawsNothing) {
  TIN tin;
  tin.Init(5, TPoint(3, 0), TPoint(3, 4));
  for (int y = 0; y <= 4; ++y) tin.AddPoint(3, y, y);
  TGrid const grid(tin, 1, 1);
  ASSERT_EQ(grid.GetNumberOfNodesX(), 1);
  ASSERT_EQ(grid.GetNumberOfNodesY(), 5);
  GlGrid drawable(&grid);
  EXPECT_THAT(CallsOf(drawable, 1), IsEmpty());
}

TEST_F(GlGridCalls, GridWithoutNodesSetsItsAttributesOnly) {
  TGrid const grid;
  ASSERT_EQ(grid.GetNumberOfNodesY(), 0);
  GlGrid drawable(&grid);
  EXPECT_THAT(CallsOf(drawable, 1), IsEmpty());
}

TEST_F(GlGridCalls, NoNormalsAreEmitted) {
  Lattice const lattice(3);
  TGrid const grid(lattice.tin, 1, 1);
  GlGrid drawable(&grid);
  for (std::string const& call : CallsOf(drawable, 1)) {
    EXPECT_FALSE(call.starts_with("glNormal3f")) << call;
  }
}

TEST_F(GlGridCalls, HeightIsExaggeratedAboutTheReferenceHeightInItsTrueColour) {
  m_Context.SetRefZ(10);
  Lattice const lattice(2);
  TGrid const grid(lattice.tin, 1, 1);
  GlGrid drawable(&grid);
  GlCalls const plain = CallsOf(drawable, 1);
  GlCalls const scaled = CallsOf(drawable, 2);
  ASSERT_EQ(plain.size(), scaled.size());
  EXPECT_EQ(plain[8], "glVertex3f(1, 1, 11)");
  EXPECT_EQ(scaled[8], "glVertex3f(1, 1, 12)");
  EXPECT_EQ(scaled[7], plain[7]);
}

TEST_F(GlGridCalls, GridIsDrawnRowByRow) {
  m_Context.SetRefZ(-2.5);
  for (Survey const survey : {Survey::Clusters, Survey::Swaths, Survey::JitteredGrid}) {
    std::vector<TPoint> const points =
        qeltin::testing::MakeSurvey(survey, 400, qeltin::testing::TestSeed());
    auto const extent = qeltin::testing::ExtentOf(points);
    TIN tin(extent.min, extent.max, 400);
    for (TPoint const& p : points) tin.AddPoint(p);
    double const width = extent.max.x - extent.min.x;
    tin.FilterTriangles(width / 8);
    TGrid const grid(tin, width / 37, width / 23);
    GlGrid drawable(&grid);
    for (double const zScale : {1.0, 3.5, -1.0}) {
      GlCalls const expected = StripsByRule(grid, zScale);
      EXPECT_GT(std::count(expected.begin(), expected.end(), "glEnd()"), grid.GetNumberOfNodesY());
      EXPECT_EQ(CallsOf(drawable, zScale), expected) << survey;
    }
  }
}

TEST_F(GlGridCalls, RangeColoursAreKeptAndNotDrawn) {
  Lattice const lattice(2);
  TGrid const grid(lattice.tin, 1, 1);
  GlGrid drawable(&grid);
  GlColor low;
  GlColor high;
  drawable.GetZRangeColor(low, high);
  EXPECT_EQ(low, GlColor(1, 0.5f, 0, 1));
  EXPECT_EQ(high, GlColor(0, 0, 1, 1));
  GlCalls const before = CallsOf(drawable, 1);
  drawable.SetZRangeColor(GlColor::GLC_PINK, GlColor::GLC_CYAN);
  EXPECT_EQ(CallsOf(drawable, 1), before);
}

TEST_F(GlGridCalls, CopyDrawsTheSameGrid) {
  Lattice const lattice(2);
  TGrid const grid(lattice.tin, 1, 1);
  GlGrid drawable(&grid);
  drawable.SetZRangeColor(GlColor::GLC_PINK, GlColor::GLC_CYAN);
  drawable.GetDrawingAttributes()->EnableDrawMode(GlDrawingAttributes::FRONT_LINE);
  GlGrid const copy(drawable);
  GlGrid assigned(nullptr);
  assigned = copy;
  EXPECT_EQ(*assigned.GetDrawingAttributes(), *drawable.GetDrawingAttributes());
  EXPECT_EQ(CallsOf(assigned, 1), CallsOf(drawable, 1));
  GlColor low;
  GlColor high;
  assigned.GetZRangeColor(low, high);
  EXPECT_EQ(low, GlColor::GLC_PINK);
  EXPECT_EQ(high, GlColor::GLC_CYAN);
}

}  // namespace
