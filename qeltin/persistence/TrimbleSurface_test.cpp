// What can be done with a surface from a Trimble terrain model, from end to end: it has no seed
// rectangle, it may have holes, and its location starts from the places that the file gives.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "qeltin/persistence/TINFile.h"
#include "qeltin/platform/Utf8.h"
#include "qeltin/products/TPolygon.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/TrimbleFileWriter.h"
#include "testing/VerifySurface.h"

namespace {

using namespace qeltin::testing;

constexpr SurfaceRules FROM_A_MODEL = {.seeded = false, .delaunay = false};

// The plane that the heights below lie on.
double Plane(double x, double y) { return 0.5 * x - 0.25 * y + 3.0; }

// A net of 13 by 13 points, 10 apart and a little off their places, that has a hole where its
// middle 25 are missing: between 30 and 90 on both axes.
TrimbleModel NetWithAHole(int startsEvery) {
  Dice dice(7);
  TIN tin;
  tin.Init(169, TPoint(0, 0), TPoint(120, 120));
  for (int i = 0; i < 169; ++i) {
    int const column = i % 13;
    int const row = i / 13;
    if (std::abs(column - 6) < 3 && std::abs(row - 6) < 3) continue;
    double const x = 10 * column + (column % 12 == 0 ? 0 : dice.Between(-1, 1));
    double const y = 10 * row + (row % 12 == 0 ? 0 : dice.Between(-1, 1));
    tin.AddPoint(x, y, Plane(x, y));
  }
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle& t = *tin.GetTriangle(i, true);
    if (t.XY_CircumcircleRadius() > 12) t.m_Flags |= TRI_FILTERED;
  }
  return TrimbleModelOf(tin, startsEvery);
}

bool IsNearTheHole(double x, double y) { return std::fabs(x - 60) < 32 && std::fabs(y - 60) < 32; }

class NetSurface : public ::testing::Test {
 protected:
  explicit NetSurface(int startsEvery = 9) : m_Model(NetWithAHole(startsEvery)) {
    m_Folder.Put("net.ttm", TrimbleFile(m_Model));
    EXPECT_TRUE(m_Tin.Load(Name().c_str()));
  }
  std::wstring Name() const { return m_Folder.Wide("net.ttm"); }

  void ExpectHeight(double x, double y) {
    double z = 0;
    EXPECT_TRUE(m_Tin.GetZ(x, y, z)) << x << ", " << y;
    EXPECT_NEAR(z, Plane(x, y), 1e-9) << x << ", " << y;
  }
  void ExpectNoHeight(double x, double y) {
    double z = 0;
    EXPECT_FALSE(m_Tin.GetZ(x, y, z)) << x << ", " << y;
  }

  TemporaryFolder m_Folder;
  TrimbleModel m_Model;
  TIN m_Tin;
};

// A file without start points: the sample search places the walks.
class NetWithoutStarts : public NetSurface {
 protected:
  NetWithoutStarts() : NetSurface(std::numeric_limits<int>::max()) {}
};

TEST_F(NetSurface, ItsStructureIsThatOfTheFile) {
  SurfaceReport const report = VerifySurface(m_Tin, FROM_A_MODEL);
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.hullLoops, 2);
  EXPECT_EQ(m_Tin.GetNumberOfPoints(), 144);
  EXPECT_EQ(report.triangles, static_cast<int>(m_Model.triangles.size()));
  EXPECT_EQ(TINPeer::Border(m_Tin)->m_iCount, static_cast<int>(m_Model.border.size()));
  for (int i = 0; i < m_Tin.GetNumberOfTriangles(); ++i) {
    EXPECT_NE(m_Tin.GetTriangle(i, false), nullptr);  // nothing is hidden
  }
}

TEST_F(NetSurface, HasHeightsOnAllSidesOfTheHoleAndNoneInIt) {
  for (double along = 2.5; along < 120; along += 5) {
    for (double across : {5.0, 21.0, 99.0, 115.0}) {
      ExpectHeight(along, across);
      ExpectHeight(across, along);
    }
  }
  for (double x = 40; x <= 80; x += 8) {
    for (double y = 40; y <= 80; y += 8) ExpectNoHeight(x, y);
  }
}

TEST_F(NetWithoutStarts, HasHeightsAllTheSame) {
  EXPECT_EQ(TINPeer::StartPoints(m_Tin)->m_iCount, 0);
  int found = 0;
  int asked = 0;
  for (double x = 3.7; x < 120; x += 7) {
    for (double y = 1.3; y < 120; y += 7) {
      double z = 0;
      if (IsNearTheHole(x, y)) {
        if (std::fabs(x - 60) < 22 && std::fabs(y - 60) < 22) ExpectNoHeight(x, y);
        continue;
      }
      ++asked;
      if (!m_Tin.GetZ(x, y, z)) continue;  // the hole was in the way of the walk
      ++found;
      EXPECT_NEAR(z, Plane(x, y), 1e-9);
    }
  }
  EXPECT_GT(found, asked / 2);
}

TEST_F(NetSurface, EveryStartPointLeadsToItsTriangle) {
  TArray<TArrayStartPoint> const& starts = *TINPeer::StartPoints(m_Tin);
  ASSERT_EQ(starts.m_iCount, static_cast<int>(m_Model.starts.size()));
  for (int i = 0; i < starts.m_iCount; ++i) {
    TTriangle* const named = m_Tin.GetTriangle(starts.At(i)->triangle, true);
    EXPECT_EQ(m_Tin.GetTriangleWithPoint(TPoint(starts.At(i)->x, starts.At(i)->y)), named);
  }
}

TEST_F(NetSurface, AStartThatNamesNoTriangleIsPassedOver) {
  TArray<TArrayStartPoint>& starts = *TINPeer::StartPoints(m_Tin);
  for (int i = 0; i < starts.m_iCount; i += 2) starts.At(i)->triangle = i % 4 == 0 ? -1 : 100'000;
  for (double along = 2.5; along < 120; along += 10) ExpectHeight(along, 110);
}

TEST_F(NetSurface, APointInTheTriangleOfTheOnlyStartIsNotFoundFromFar) {
  // The triangle that a search starts from is never its answer. The next query walks from there.
  TrimbleModel model = m_Model;
  TrimbleStart const only = model.starts.back();
  model.starts = {only};
  m_Folder.Put("net.ttm", TrimbleFile(model));
  ASSERT_TRUE(m_Tin.Load(Name().c_str()));
  TPoint const p(only.x, only.y);
  EXPECT_EQ(m_Tin.GetTriangleWithPoint(p), nullptr);
  EXPECT_EQ(m_Tin.GetTriangleWithPoint(p), m_Tin.GetTriangle(only.triangle - 1, true));
}

TEST_F(NetSurface, NeighboursOfAPointAreThoseOfTheFile) {
  m_Tin.BuildPointMap();
  for (int i = 0; i < m_Tin.GetNumberOfPoints(); ++i) {
    std::vector<bool> expected(m_Model.points.size());
    for (TrimbleTriangle const& t : m_Model.triangles) {
      bool const mine = t.corners[0] == i + 1 || t.corners[1] == i + 1 || t.corners[2] == i + 1;
      for (int corner : t.corners) {
        if (mine && corner != i + 1) expected[static_cast<std::size_t>(corner) - 1] = true;
      }
    }
    std::vector<TPoint*> neighbours;
    EXPECT_TRUE(m_Tin.GetNeighbours(m_Tin.GetPoint(i), neighbours));
    std::vector<bool> actual(expected.size());
    for (TPoint const* p : neighbours) {
      actual[static_cast<std::size_t>(p - m_Tin.GetPoint(0))] = true;
    }
    EXPECT_EQ(actual, expected) << "point " << i;
  }
}

TEST_F(NetSurface, ASaveAsNativeKeepsEverythingButTheLists) {
  EXPECT_TRUE(m_Tin.Save(m_Folder.Wide("net.tin").c_str()));
  TIN again;
  EXPECT_TRUE(again.Load(m_Folder.Wide("net.tin").c_str()));
  EXPECT_EQ(again.GetNumberOfPoints(), m_Tin.GetNumberOfPoints());
  EXPECT_EQ(again.GetNumberOfTriangles(), m_Tin.GetNumberOfTriangles());
  EXPECT_TRUE(VerifySurface(again, FROM_A_MODEL).Ok());
  EXPECT_EQ(TINPeer::StartPoints(again), nullptr);
  EXPECT_TRUE(m_Tin.Save(m_Folder.Wide("text.ttm").c_str()));  // text: there is no other writer
  EXPECT_FALSE(again.Load(m_Folder.Wide("text.ttm").c_str()));
}

TEST_F(NetSurface, ALoadSeatsTheLocationAndTheLastTriangle) {
  EXPECT_EQ(TINPeer::LastTriangle(m_Tin), m_Tin.GetTriangle(0, true));
  EXPECT_EQ(TINPeer::Location(m_Tin).m_pCurrent, nullptr);
  EXPECT_EQ(TINPeer::Location(m_Tin).m_pTriangles, TINPeer::Triangles(m_Tin));
}

// --- Profiles -------------------------------------------------------------------------------

// Expects a piece on the plane along y = `y`, from x = `from` to x = `to` up to `slack`, with its
// points in order.
void ExpectPiece(TPolygon const& piece, double y, double from, double to, double slack) {
  ASSERT_GE(piece.GetSize(), 2);
  EXPECT_NEAR(piece.Get(0)->x, from, slack);
  EXPECT_NEAR(piece.Get(piece.GetSize() - 1)->x, to, slack);
  for (int i = 0; i < piece.GetSize(); ++i) {
    TPoint const& p = *piece.Get(i);
    EXPECT_NEAR(p.y, y, 1e-9);
    EXPECT_NEAR(p.z, Plane(p.x, p.y), 1e-9);
    EXPECT_TRUE(i == 0 || p.x > piece.Get(i - 1)->x);
  }
}

TEST_F(NetSurface, AProfileAcrossTheHoleHasThePieceBeforeItTwice) {
  std::vector<TPolygon> pieces;
  EXPECT_EQ(m_Tin.GenerateProfile(pieces, TPoint(5, 57), TPoint(114, 57)), 3);
  ASSERT_EQ(pieces.size(), 3U);
  ExpectPiece(pieces[0], 57, 5, 30, 2);
  ExpectPiece(pieces[1], 57, 5, 30, 2);
  ExpectPiece(pieces[2], 57, 90, 114, 2);
  ASSERT_EQ(pieces[0].GetSize(), pieces[1].GetSize());
  for (int i = 0; i < pieces[0].GetSize(); ++i) EXPECT_EQ(*pieces[0].Get(i), *pieces[1].Get(i));
}

TEST_F(NetSurface, AProfileFromOutsideToOutsideStartsAndEndsAtTheBorder) {
  std::vector<TPolygon> pieces;
  EXPECT_EQ(m_Tin.GenerateProfile(pieces, TPoint(-50, 57), TPoint(300, 57)), 3);
  ASSERT_EQ(pieces.size(), 3U);
  ExpectPiece(pieces[1], 57, 0, 30, 2);
  ExpectPiece(pieces[2], 57, 90, 120, 2);
}

TEST_F(NetSurface, AProfileBesideTheHoleIsOnePiece) {
  std::vector<TPolygon> pieces;
  EXPECT_EQ(m_Tin.GenerateProfile(pieces, TPoint(5, 17), TPoint(114, 17)), 1);
  ASSERT_EQ(pieces.size(), 1U);
  ExpectPiece(pieces[0], 17, 5, 114, 1e-9);
}

TEST_F(NetSurface, WithoutABorderListAProfileEndsAtTheHole) {
  TrimbleModel model = m_Model;
  model.border.clear();
  m_Folder.Put("net.ttm", TrimbleFile(model));
  ASSERT_TRUE(m_Tin.Load(Name().c_str()));
  std::vector<TPolygon> pieces;
  EXPECT_EQ(m_Tin.GenerateProfile(pieces, TPoint(5, 57), TPoint(114, 57)), 1);
  ASSERT_EQ(pieces.size(), 1U);
  EXPECT_LT(pieces[0].Get(pieces[0].GetSize() - 1)->x, 32);
}

// --- Models that no maker writes ------------------------------------------------------------

// The line is so long that rounding leaves a place of it between the exchanged sides.
TEST(TrimbleSurface, AProfileInAWorldBoxWithExchangedCornersIsEmpty) {
  TrimbleModel model = TrimbleSquare();
  model.min.x = 1;
  model.max.x = -1;
  model.border.clear();
  TemporaryFolder folder;
  folder.Put("a.ttm", TrimbleFile(model));
  TIN tin;
  ASSERT_TRUE(tin.Load(folder.Wide("a.ttm").c_str()));
  std::vector<TPolygon> pieces;
  EXPECT_EQ(tin.GenerateProfile(pieces, TPoint(-1e20, 9003), TPoint(1e20, 9003)), 0);
}

// Two triangles that lead to each other across every side, with a great many starts in them.
TEST(TrimbleSurface, AWalkThatGoesRoundInCirclesEnds) {
  TrimbleModel model;
  model.max = TPoint(100, 100);
  constexpr int TRIANGLES = 400'000;
  constexpr int STARTS = 5'000;
  model.points = {TPoint(0, 0), TPoint(0, 2), TPoint(2, 0), TPoint(100, 100)};
  model.triangles.resize(TRIANGLES, {{1, 2, 3}, {2, 2, 2}});
  model.triangles[1].adjacent[0] = model.triangles[1].adjacent[1] = 1;
  model.triangles[1].adjacent[2] = 1;
  for (int i = 0; i < STARTS; ++i) model.starts.push_back({0.001 * i, 0.0, 1 + i % 2});
  TemporaryFolder folder;
  folder.Put("a.ttm", TrimbleFile(model));
  TIN tin;
  ASSERT_TRUE(tin.Load(folder.Wide("a.ttm").c_str()));
  double z = 0;
  EXPECT_FALSE(tin.GetZ(90, 80, z));  // 2 000 000 000 steps, if each walk took as many as it may
}

// --- Models in use --------------------------------------------------------------------------

// The models in the folder that the environment names; the test ends without them.
std::vector<std::filesystem::path> RealModels() {
  std::vector<std::filesystem::path> models;
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) return models;
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".ttm") models.push_back(entry.path());
  }
  return models;
}

class RealModel : public ::testing::Test {
 protected:
  void SetUp() override {
    if (RealModels().empty()) GTEST_SKIP() << "QELTIN_SURVEYS names no folder with .ttm files";
  }

  // Loads each of the models in turn.
  template <typename Check>
  void ForEach(Check check) {
    for (std::filesystem::path const& path : RealModels()) {
      SCOPED_TRACE(path.filename());
      TIN tin;
      ASSERT_TRUE(tin.Load(qeltin::FromUtf8(path.native()).c_str()));
      check(tin, path);
    }
  }
};

TEST_F(RealModel, AgreesWithItsHeader) {
  ForEach([](TIN& tin, std::filesystem::path const& path) {
    TINFile::TINInfo const info = TINFile().GetInfo(0, qeltin::FromUtf8(path.native()).c_str());
    EXPECT_EQ(info.count, tin.GetNumberOfPoints());
    TPoint min;
    TPoint max;
    tin.GetBounds(min, max);
    for (double off : {info.minimum.x - min.x, info.minimum.y - min.y, info.maximum.x - max.x,
                       info.maximum.y - max.y}) {
      EXPECT_LT(std::fabs(off), 0.001);
    }
    TPoint worldMin;
    TPoint worldMax;
    tin.GetWorldBounds(worldMin, worldMax);
    EXPECT_EQ(worldMin.x, info.minimum.x - 10 * (info.maximum.x - info.minimum.x));
    EXPECT_EQ(worldMax.y, info.maximum.y + 10 * (info.maximum.y - info.minimum.y));
    SurfaceReport const report = VerifySurface(tin, FROM_A_MODEL);
    EXPECT_EQ(report.vertices + report.loosePoints, tin.GetNumberOfPoints());
    EXPECT_EQ(report.triangles, tin.GetNumberOfTriangles());
  });
}

TEST_F(RealModel, HasABorderOfTheTrianglesWithAFreeSide) {
  ForEach([](TIN& tin, std::filesystem::path const&) {
    std::vector<bool> listed(static_cast<std::size_t>(tin.GetNumberOfTriangles()));
    TArray<int> const& border = *TINPeer::Border(tin);
    for (int i = 0; i < border.m_iCount; ++i) {
      listed[static_cast<std::size_t>(*border.At(i))] = true;
    }
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
      TTriangle const& t = *tin.GetTriangle(i, true);
      bool const free = !t.m_pAdjacent[0] || !t.m_pAdjacent[1] || !t.m_pAdjacent[2];
      EXPECT_EQ(listed[static_cast<std::size_t>(i)], free) << i;
    }
  });
}

TEST_F(RealModel, EveryStartPointLeadsToItsTriangle) {
  ForEach([](TIN& tin, std::filesystem::path const&) {
    TArray<TArrayStartPoint> const& starts = *TINPeer::StartPoints(tin);
    EXPECT_GT(starts.m_iCount, 0);
    for (int i = 0; i < starts.m_iCount; ++i) {
      TArrayStartPoint const& start = *starts.At(i);
      TTriangle* const named = tin.GetTriangle(start.triangle, true);
      EXPECT_TRUE(named->XY_HasPoint(TPoint(start.x, start.y)));
      bool found = false;
      for (TTriangle* adjacent : named->m_pAdjacent) {
        found = found || tin.FindTriangle(adjacent, start.x, start.y) == named;
      }
      EXPECT_TRUE(found) << "start point " << i;
    }
  });
}

TEST_F(RealModel, HasAHeightWhereverATriangleIs) {
  ForEach([](TIN& tin, std::filesystem::path const&) {
    TPoint min;
    TPoint max;
    tin.GetBounds(min, max);
    constexpr int NODES = 60;
    int covered = 0;
    int found = 0;
    for (int i = 0; i < NODES * NODES; ++i) {
      double const x = min.x + (i % NODES + 0.5) / NODES * (max.x - min.x);
      double const y = min.y + (i / NODES + 0.5) / NODES * (max.y - min.y);
      TPoint const p(x, y);
      bool inside = false;
      for (int t = 0; t < tin.GetNumberOfTriangles() && !inside; ++t) {
        inside = tin.GetTriangle(t, true)->XY_HasPoint(p);
      }
      double z = 0;
      bool const has = tin.GetZ(x, y, z);
      covered += inside;
      found += has;
      EXPECT_TRUE(!has || (z >= min.z - 1e-6 && z <= max.z + 1e-6)) << z;
    }
    std::printf("[ SUMMARY  ] %d of %d nodes covered, %d found\n", covered, NODES * NODES, found);
    EXPECT_GE(found, covered - covered / 100);
  });
}

}  // namespace
