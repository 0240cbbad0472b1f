#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "qeltin/models/CModelManager.h"
#include "qeltin/products/TGrid.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/TemporaryFolder.h"
#include "testing/models/frozen/ITin.h"

// This file is a host of long ago: it was compiled against an interface that is never changed, and
// calls the library of today through it.
namespace {

using qeltin::testing::TemporaryFolder;

class ITinOrder : public ::testing::Test {
 protected:
  ITinOrder() {
    IPoint min = {0, 0, 0};
    IPoint max = {10, 20, 5};
    tin = manager.CreateTin(min, max, 100);
    for (IPoint const& p : POINTS) EXPECT_TRUE(tin->AddPoint(p.x, p.y, p.z));
  }

  static constexpr IPoint POINTS[] = {{1, 1, 1}, {9, 1, 2}, {5, 15, 3}, {5, 5, 4}};

  CModelManager manager;  // owns the surface
  ITin* tin;
};

TEST_F(ITinOrder, Boxes) {
  IPoint min;
  IPoint max;
  tin->GetWorldBounds(max, min);
  EXPECT_EQ(min.x, -100.0);
  EXPECT_EQ(min.y, -200.0);
  EXPECT_EQ(min.z, -50.0);
  EXPECT_EQ(max.x, 110.0);
  EXPECT_EQ(max.y, 220.0);
  EXPECT_EQ(max.z, 55.0);
  tin->GetBounds(min, max);
  EXPECT_EQ(min.x, 0.0);
  EXPECT_EQ(max.y, 20.0);

  TriangleCorners const inside = {{{1, 1, 0}, {2, 1, 0}, {1, 2, 0}}};
  TriangleCorners const beyond = {{{1, 1, 0}, {50, 1, 0}, {1, 2, 0}}};
  TriangleCorners const outside = {{{1, 1, 0}, {500, 1, 0}, {1, 2, 0}}};
  EXPECT_TRUE(tin->InWorldBounds(beyond));
  EXPECT_FALSE(tin->InWorldBounds(outside));
  EXPECT_TRUE(tin->InWorldBounds(beyond.vertex[1]));
  EXPECT_FALSE(tin->InWorldBounds(outside.vertex[1]));
  EXPECT_TRUE(tin->InBounds(inside));
  EXPECT_FALSE(tin->InBounds(beyond));
  EXPECT_TRUE(tin->InBounds(inside.vertex[1]));
  EXPECT_FALSE(tin->InBounds(beyond.vertex[1]));
}

TEST_F(ITinOrder, PointsAndTriangles) {
  EXPECT_EQ(tin->GetNumPoints(), 8);
  IPoint p;
  EXPECT_TRUE(tin->GetPoint(7, p));
  EXPECT_EQ(p.z, 4.0);
  EXPECT_TRUE(tin->AddPoint(5, 4, 9));
  EXPECT_FALSE(tin->PointOperationStub());
  EXPECT_EQ(tin->GetNumPoints(), 9);
  EXPECT_EQ(tin->GetNumTriangles(), 12);
  int visible = 0;
  TriangleCorners corners;
  for (int i = 0; i < 12; ++i) visible += tin->GetTriangle(i, corners) ? 1 : 0;
  EXPECT_EQ(visible, 5);
  EXPECT_TRUE(tin->FindTriangle({5, 1.5, 0}, corners));
  EXPECT_EQ(corners.vertex[0].z + corners.vertex[1].z + corners.vertex[2].z, 12.0);
  double z = 0.0;
  EXPECT_TRUE(tin->GetZ(5, 5, &z));
  EXPECT_EQ(z, 4.0);
  tin->ResetPoints();
  EXPECT_EQ(tin->GetNumPoints(), 0);
  EXPECT_EQ(tin->GetNumTriangles(), 12);
}

TEST_F(ITinOrder, Files) {
  TemporaryFolder folder;
  EXPECT_TRUE(tin->SaveXYZ(folder.Wide("a").c_str()));
  EXPECT_EQ(folder.Get("a").size(), 4 * sizeof "1.000000,1.000000,1.000000" + 1);
  EXPECT_TRUE(tin->SaveTin(folder.Wide("b").c_str()));
  EXPECT_NE(folder.Get("b").find("QEL2000 TIN"), std::string::npos);
  EXPECT_FALSE(tin->LoadTin(folder.Wide("a").c_str()));
  EXPECT_TRUE(tin->LoadTin(folder.Wide("b").c_str()));
  EXPECT_FALSE(tin->LoadXYZ(folder.Wide("b").c_str()));
  EXPECT_TRUE(tin->LoadXYZ(folder.Wide("a").c_str()));
}

TEST_F(ITinOrder, SurfaceAndGrid) {
  EXPECT_EQ(tin->GetTIN()->GetNumberOfPoints(), 8);
  EXPECT_EQ(tin->GetGrid(), nullptr);
  tin->CreateGrid(5, 10);
  ASSERT_NE(tin->GetGrid(), nullptr);
  EXPECT_NE(tin->GetGrid()->GetNode(1, 1), nullptr);
  tin->DestroyGrid();
  EXPECT_EQ(tin->GetGrid(), nullptr);
}

TEST_F(ITinOrder, DerivedProducts) {
  std::vector<TPolygon*> lines;
  EXPECT_EQ(tin->GenerateIsoline(lines, 3.5), 1);
  ASSERT_EQ(lines.size(), 1U);
  delete lines[0];

  std::vector<TPolygon> sections;
  TPolygon const path({TPoint(3, 4), TPoint(6, 4), TPoint(6, 6)});
  EXPECT_EQ(tin->GenerateProfile(sections, path), 2);
  EXPECT_EQ(tin->GenerateProfile(sections, IPoint{3, 4, 0}, IPoint{6, 4, 0}), 1);
  EXPECT_EQ(sections.size(), 3U);

  TriangleCorners corners;
  tin->FilterTriangles(0.5);
  for (int i = 0; i < tin->GetNumTriangles(); ++i) EXPECT_FALSE(tin->GetTriangle(i, corners));
}

TEST_F(ITinOrder, Destructor) {
  std::vector<IPoint> points = {{0, 0, 0}, {9, 0, 0}, {0, 9, 0}};
  std::unique_ptr<ITin> const unregistered(manager.CreateTin(&points));
  EXPECT_EQ(unregistered->GetNumPoints(), 7);
}

}  // namespace
