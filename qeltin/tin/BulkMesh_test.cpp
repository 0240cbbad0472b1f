#include "qeltin/tin/BulkMesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/ExpectSound.h"
#include "testing/TINPeer.h"

namespace {

using qeltin::detail::BulkMesh;
using qeltin::testing::TINPeer;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// A surface from 0 to 100 with points loaded and the seed laid.
class Seeded {
 public:
  TIN tin;

  explicit Seeded(std::vector<TPoint> const& points) {
    tin.Init(static_cast<int>(points.size()) + 1, TPoint(0, 0, 0), TPoint(100, 100, 10));
    for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
    TINPeer::Seed(tin);
    m_iCount = static_cast<int>(points.size());
  }

  TArray<TTriangle>* Pool() { return TINPeer::Triangles(tin); }
  BulkMesh Mesh() {
    return {*TINPeer::Points(tin),
            Pool(),
            m_iCount,
            {TPoint(0, 0, 0), TPoint(100, 100, 10)},
            2100.0 + 2100.0};
  }
  void ExpectSound() {
    TINPeer::Location(tin).m_pCurrent = nullptr;
    qeltin::testing::ExpectSound(tin);
  }

 private:
  int m_iCount;
};

// The mesh has an order of its own; the tests go by slots.
bool InsertSlot(BulkMesh& mesh, int slot) {
  int i = 0;
  while (mesh.SlotOf(i) != slot) ++i;
  return mesh.Insert(i);
}

TEST(BulkMesh, WithoutPointsTheSeedStaysAsItIs) {
  Seeded surface(std::vector<TPoint>{});
  TTriangle const first = *surface.Pool()->At(0);
  TTriangle const second = *surface.Pool()->At(1);
  surface.Mesh().Finish();
  ASSERT_EQ(surface.Pool()->m_iCount, 2);
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(surface.Pool()->At(0)->m_pVertex[k], first.m_pVertex[k]);
    EXPECT_EQ(surface.Pool()->At(0)->m_pAdjacent[k], first.m_pAdjacent[k]);
    EXPECT_EQ(surface.Pool()->At(1)->m_pVertex[k], second.m_pVertex[k]);
    EXPECT_EQ(surface.Pool()->At(1)->m_pAdjacent[k], second.m_pAdjacent[k]);
  }
  EXPECT_EQ(surface.Pool()->At(0)->m_Flags, TRI_OUTSIDE);
  EXPECT_EQ(surface.Pool()->At(1)->m_RadiusSq, second.m_RadiusSq);
  surface.ExpectSound();
}

TEST(BulkMesh, PointsOutsideTheBoundsOrWithoutAPlaceOrAHeightAreRefused) {
  Seeded surface({{50, 50, 1},
                  {101, 50, 1},
                  {50, -1, 1},
                  {NOT_A_NUMBER, 50, 1},
                  {50, NOT_A_NUMBER, 1},
                  {50, 60, NOT_A_NUMBER},
                  {1e300, 50, 1},
                  {20, 30, 1}});
  BulkMesh mesh = surface.Mesh();
  EXPECT_TRUE(InsertSlot(mesh, 0));
  for (int slot = 1; slot <= 6; ++slot) EXPECT_FALSE(InsertSlot(mesh, slot)) << slot;
  EXPECT_TRUE(InsertSlot(mesh, 7));
  mesh.Finish();
  EXPECT_EQ(surface.Pool()->m_iCount, 6);
  surface.ExpectSound();
}

TEST(BulkMesh, PointOnTheBoundsIsTaken) {
  Seeded surface({{0, 0, 1}, {100, 100, 1}, {0, 100, 1}, {100, 0, 1}});
  BulkMesh mesh = surface.Mesh();
  for (int slot = 0; slot < 4; ++slot) EXPECT_TRUE(InsertSlot(mesh, slot)) << slot;
  mesh.Finish();
  EXPECT_EQ(surface.Pool()->m_iCount, 10);
  surface.ExpectSound();
}

TEST(BulkMesh, DuplicateIsTakenAndChangesNothing) {
  Seeded surface({{50, 50, 1}, {50, 50, 99}, {50.0005, 49.9995, 99}, {50.002, 50, 2}});
  BulkMesh mesh = surface.Mesh();
  EXPECT_TRUE(InsertSlot(mesh, 0));
  EXPECT_TRUE(InsertSlot(mesh, 1));
  EXPECT_TRUE(InsertSlot(mesh, 2));
  EXPECT_EQ(mesh.Bounds().max.z, 10.0);
  EXPECT_TRUE(InsertSlot(mesh, 3));
  mesh.Finish();
  EXPECT_EQ(surface.Pool()->m_iCount, 6);
  surface.ExpectSound();
}

TEST(BulkMesh, HeightsWidenTheBounds) {
  Seeded surface({{50, 50, -7}, {60, 50, 99}});
  BulkMesh mesh = surface.Mesh();
  EXPECT_TRUE(InsertSlot(mesh, 0));
  EXPECT_TRUE(InsertSlot(mesh, 1));
  EXPECT_EQ(mesh.Bounds().min, TPoint(0, 0, -7));
  EXPECT_EQ(mesh.Bounds().max, TPoint(100, 100, 99));
  mesh.Finish();
}

TEST(BulkMesh, PointOnASideIsFoundInOneOfTheTwoTriangles) {
  std::vector<TPoint> points;
  for (int i = 0; i <= 10; ++i) points.emplace_back(10 * i, 10 * i, 1);  // on the seed's diagonal
  Seeded surface(points);
  BulkMesh mesh = surface.Mesh();
  for (int slot = 0; slot <= 10; ++slot) EXPECT_TRUE(InsertSlot(mesh, slot)) << slot;
  mesh.Finish();
  EXPECT_EQ(surface.Pool()->m_iCount, 2 * 11 + 2);
  surface.ExpectSound();
}

TEST(BulkMesh, HoleOfMoreCellsThanThereIsRoomForIsRefused) {
  constexpr int RING = 300;
  std::vector<TPoint> points;
  for (int i = 0; i < RING; ++i) {
    double const angle = 2.0 * M_PI * i / RING;
    points.emplace_back(50 + 40 * std::cos(angle), 50 + 40 * std::sin(angle), 1);
  }
  points.emplace_back(50, 50, 1);
  points.emplace_back(95, 95, 1);
  Seeded surface(points);
  BulkMesh mesh = surface.Mesh();
  int taken = 0;
  for (int slot = 0; slot < RING; ++slot) taken += InsertSlot(mesh, slot) ? 1 : 0;
  EXPECT_GT(taken, 290);
  EXPECT_FALSE(InsertSlot(mesh, RING));
  EXPECT_TRUE(InsertSlot(mesh, RING + 1));
  mesh.Finish();
  EXPECT_EQ(surface.Pool()->m_iCount, 2 * (taken + 1) + 2);
  surface.ExpectSound();
}

TEST(BulkMesh, UnusedSlotsAreZeroAgain) {
  std::vector<TPoint> points(1000, TPoint(50, 50, 1));
  Seeded surface(points);
  BulkMesh mesh = surface.Mesh();
  for (int slot = 0; slot < 1000; ++slot) EXPECT_TRUE(InsertSlot(mesh, slot));
  mesh.Finish();
  ASSERT_EQ(surface.Pool()->m_iCount, 4);
  auto const* const bytes = reinterpret_cast<unsigned char const*>(surface.Pool()->m_pData + 4);
  std::size_t const size =
      sizeof(TTriangle) * static_cast<std::size_t>(surface.Pool()->m_iCapacity - 4);
  EXPECT_EQ(std::accumulate(bytes, bytes + size, std::size_t{0}), 0U);
}

TEST(BulkMesh, FitsOnlyTheSeedInAPoolInSlotOrder) {
  Seeded surface(std::vector<TPoint>{TPoint(50, 50, 1)});
  EXPECT_TRUE(BulkMesh::Fits(*surface.Pool(), 1));
  EXPECT_FALSE(BulkMesh::Fits(*surface.Pool(), 1000000));
  std::swap(surface.Pool()->m_pIndex[5], surface.Pool()->m_pIndex[6]);
  EXPECT_FALSE(BulkMesh::Fits(*surface.Pool(), 1));
  std::swap(surface.Pool()->m_pIndex[5], surface.Pool()->m_pIndex[6]);
  surface.Pool()->m_iCount = 3;
  EXPECT_FALSE(BulkMesh::Fits(*surface.Pool(), 1));
}

}  // namespace
