#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "qeltin/models/CModelManager.h"
#include "qeltin/models/ITin.h"
#include "qeltin/products/TPolygon.h"
#include "testing/models/frozen/IContour.h"

// This file is a host of long ago: it was compiled against an interface that is never changed, and
// calls the library of today through it.
namespace {

TEST(IContourOrder, EveryOperation) {
  CModelManager manager;
  std::vector<IPoint> points = {{0, 0, 1}, {9, 0, 2}, {0, 9, 3}, {2, 2, 4}};
  ITin* const tin = manager.CreateTin(&points);
  std::unique_ptr<IContour> contour(manager.CreateContour(tin, 3.5));

  EXPECT_EQ(contour->GetNumLines(), 1);
  EXPECT_EQ(contour->GetNumPoints(0), 3);
  EXPECT_EQ(contour->GetLine(0)->GetSize(), 3);
  double v[6] = {};
  EXPECT_TRUE(contour->GetSegment(0, 1, v, v + 1, v + 2, v + 3, v + 4, v + 5));
  EXPECT_EQ(v[0], contour->GetLine(0)->Get(1)->x);
  EXPECT_EQ(v[1], contour->GetLine(0)->Get(1)->y);
  EXPECT_EQ(v[2], 3.5);
  EXPECT_EQ(v[3], contour->GetLine(0)->Get(2)->x);
  EXPECT_EQ(v[4], contour->GetLine(0)->Get(2)->y);
  EXPECT_EQ(v[5], 3.5);
  EXPECT_FALSE(contour->GetSegment(0, 2, v, v + 1, v + 2, v + 3, v + 4, v + 5));
  EXPECT_EQ(contour->Regenerate(3.75), 1);
  EXPECT_EQ(contour->GetNumLines(), 2);

  contour.reset();
  manager.ReleaseTin(tin);
}

}  // namespace
