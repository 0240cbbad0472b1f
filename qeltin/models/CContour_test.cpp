#include "qeltin/models/CContour.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qeltin/models/CModelManager.h"
#include "qeltin/models/ITin.h"
#include "qeltin/platform/DebugOutput.h"
#include "qeltin/products/TPolygon.h"
#include "testing/ModelManagerPeer.h"

namespace {

using qeltin::testing::ModelManagerPeer;

// A surface with one peak, 9 high over a foot at 1.
class CContourTest : public ::testing::Test {
 protected:
  CContourTest() {
    IPoint min = {0, 0, 0};
    IPoint max = {100, 100, 9};
    tin = manager.CreateTin(min, max, 10);
    for (IPoint const& p : {IPoint{0, 0, 1}, IPoint{100, 0, 1}, IPoint{100, 100, 1},
                            IPoint{0, 100, 1}, IPoint{50, 50, 9}}) {
      tin->AddPoint(p.x, p.y, p.z);
    }
  }

  CModelManager manager;  // owns the surface
  ITin* tin;
};

TEST_F(CContourTest, HoldsTheLinesOfTheSurface) {
  IContour* const contour = manager.CreateContour(tin, 5);
  ASSERT_NE(contour, nullptr);
  std::vector<TPolygon*> lines;
  ASSERT_EQ(tin->GenerateIsoline(lines, 5), contour->GetNumLines());
  ASSERT_EQ(contour->GetNumLines(), 1);
  ASSERT_EQ(contour->GetNumPoints(0), lines[0]->GetSize());
  EXPECT_GE(contour->GetNumPoints(0), 4);
  for (int i = 0; i < contour->GetNumPoints(0); ++i) {
    EXPECT_EQ(*contour->GetLine(0)->Get(i), *lines[0]->Get(i));
  }
  delete lines[0];
  EXPECT_TRUE(manager.ReleaseContour(contour));
}

TEST_F(CContourTest, SegmentsEndWithTheLastButOnePoint) {
  IContour* const contour = manager.CreateContour(tin, 5);
  int const n = contour->GetNumPoints(0);
  TPolygon const& line = *contour->GetLine(0);
  double v[6];
  for (int i = 0; i <= n - 2; ++i) {
    EXPECT_TRUE(contour->GetSegment(0, i, v, v + 1, v + 2, v + 3, v + 4, v + 5));
    EXPECT_EQ(TPoint(v[0], v[1], v[2]), *line.Get(i));
    EXPECT_EQ(TPoint(v[3], v[4], v[5]), *line.Get(i + 1));
  }
  for (double& value : v) value = -7;
  for (int const i : {n - 1, n, 2147483647}) {
    EXPECT_FALSE(contour->GetSegment(0, i, v, v + 1, v + 2, v + 3, v + 4, v + 5));
  }
  for (double const value : v) EXPECT_EQ(value, -7.0);
  EXPECT_TRUE(manager.DestroyContour(contour));
}

TEST_F(CContourTest, LineWithoutPointsHasNoSegment) {
  IContour* const contour = manager.CreateContour(tin, 5);
  contour->GetLine(0)->RemoveAll();
  EXPECT_EQ(contour->GetNumPoints(0), 0);
  double v[6];
  EXPECT_FALSE(contour->GetSegment(0, 0, v, v + 1, v + 2, v + 3, v + 4, v + 5));
  EXPECT_TRUE(manager.ReleaseContour(contour));
}

TEST_F(CContourTest, LevelOutsideTheSurfaceGivesAContourWithoutLines) {
  IContour* const contour = manager.CreateContour(tin, 50);
  ASSERT_NE(contour, nullptr);
  EXPECT_EQ(contour->GetNumLines(), 0);
  EXPECT_TRUE(manager.ReleaseContour(contour));
}

TEST_F(CContourTest, RegenerateAddsToTheLinesThatAreThere) {
  IContour* const contour = manager.CreateContour(tin, 5);
  TPolygon* const first = contour->GetLine(0);
  EXPECT_EQ(contour->Regenerate(5), 1);
  EXPECT_EQ(contour->Regenerate(50), 0);
  EXPECT_EQ(contour->Regenerate(7), 1);
  EXPECT_EQ(contour->GetNumLines(), 3);
  EXPECT_EQ(contour->GetLine(0), first);
  EXPECT_EQ(contour->GetLine(1)->Get(0)->z, 5.0);
  EXPECT_EQ(contour->GetLine(2)->Get(0)->z, 7.0);
  EXPECT_TRUE(manager.ReleaseContour(contour));
}

TEST_F(CContourTest, NullSurfaceGivesNull) {
  EXPECT_EQ(manager.CreateContour(nullptr, 5), nullptr);
}

TEST_F(CContourTest, IsNotRegisteredAndTakesNoCount) {
  IContour* const contour = manager.CreateContour(tin, 5);
  EXPECT_EQ(manager.GetNumberOfModels(), 1);
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, tin), 1);
  EXPECT_TRUE(manager.ReleaseContour(contour));
  EXPECT_EQ(manager.GetNumberOfModels(), 1);
}

TEST_F(CContourTest, RegisteredContourEndsByDestroyWhateverItsCount) {
  IContour* const contour = manager.CreateContour(tin, 5);
  ModelManagerPeer::Insert(manager, L"CO>x<", contour, 5);
  EXPECT_TRUE(manager.ReleaseContour(contour));
  EXPECT_EQ(manager.GetNumberOfModels(), 2);
  EXPECT_TRUE(manager.DestroyContour(contour));
  EXPECT_EQ(manager.GetNumberOfModels(), 1);
}

TEST_F(CContourTest, TellsTheDebuggerOfItself) {
  std::vector<std::wstring> told;
  SetDebugSink([&](wchar_t const* text) { told.emplace_back(text); });
  manager.CreateContour(nullptr, 5);
  EXPECT_TRUE(told.empty());
  manager.ReleaseContour(manager.CreateContour(tin, 50));
  SetDebugSink({});
  EXPECT_EQ(told, std::vector<std::wstring>{L"\n Returning New Contour object"});
}

}  // namespace
