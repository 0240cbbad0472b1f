#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/reference/ReferenceIsolines.h"
#include "testing/reference/StatedGeometry.h"

// Isolines against their plain version on another copy of the surface: the same lines in the same
// order with the same bits, and the same marks.

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::FAR_OUT;
using qeltin::testing::IsToBeReversed;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::SameBits;
using qeltin::testing::Survey;
using qeltin::testing::TemporaryFolder;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::TraceReferenceIsolines;

constexpr unsigned SAME_DRAWS = 1;
constexpr int FEW = 400;    // points: fewer than 2000 triangles, and no hint where to look
constexpr int MANY = 2500;  // points

std::vector<TPoint> PointsOf(TPolygon const& line) {
  return {line.Get(0), line.Get(0) + line.GetSize()};
}

bool HaveSameBits(std::vector<TPoint> const& a, std::vector<TPoint> const& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](TPoint const& p, TPoint const& q) { return bool{SameBits(p, q)}; });
}

// Returns true iff a triangle that takes `p` would have the line turned round as it was, or not.
bool CouldBeTurned(TIN const& tin, std::vector<TPoint>& line, double level, bool turned) {
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, true);
    if (qeltin::testing::stated::WhereTri(*t, line[0]) != 3) continue;
    if (IsToBeReversed(line, t, level) == turned) return true;
  }
  return false;
}

class IsolineReference : public ::testing::TestWithParam<std::tuple<Survey, Place>> {
 protected:
  void Build(int count) {
    m_Points =
        MakeSurvey(std::get<0>(GetParam()), count, m_Dice.Bits(), std::get<1>(GetParam()).frame);
    Extent const extent = ExtentOf(m_Points);
    m_dLow = extent.min.z;
    m_dHigh = extent.max.z;
    TIN tin;
    tin.Init(count, extent.min, extent.max);
    for (TPoint const& p : m_Points) tin.LoadPoint(p.x, p.y, p.z);
    tin.Triangulate();
    tin.SaveTin(m_Folder.Wide("surface.tin").c_str());
    m_pTraced = std::make_unique<TIN>(m_Folder.Wide("surface.tin").c_str());
    m_pStated = std::make_unique<TIN>(m_Folder.Wide("surface.tin").c_str());
  }

  // Does the same to a point, by its live position, of both.
  void SetHeight(int position, double z) {
    m_pTraced->GetPoint(position)->z = z;
    m_pStated->GetPoint(position)->z = z;
  }

  // Plateaus, and vertices at the level.
  void RoundHeights(double step) {
    for (int i = 0; i < m_pTraced->GetNumberOfPoints(); ++i) {
      SetHeight(i, step * std::round(m_pTraced->GetPoint(i)->z / step));
    }
  }

  void MarkSome(unsigned char flag, int one_in) {
    for (int i = 0; i < m_pTraced->GetNumberOfTriangles(); ++i) {
      if (!m_Dice.OneIn(one_in)) continue;
      m_pTraced->GetTriangle(i, true)->m_Flags |= flag;
      m_pStated->GetTriangle(i, true)->m_Flags |= flag;
    }
  }

  // `sure`: no chance decides how the lines are turned.
  void ExpectEqualLines(double level, bool sure) {
    SCOPED_TRACE(level);
    std::srand(SAME_DRAWS);
    std::vector<TPolygon*> traced;
    int const count = m_pTraced->GenerateIsoline(traced, level);
    ASSERT_EQ(count, static_cast<int>(traced.size()));
    std::vector<std::unique_ptr<TPolygon>> const owner(traced.begin(), traced.end());
    std::srand(SAME_DRAWS);
    std::vector<std::vector<TPoint>> stated = TraceReferenceIsolines(*m_pStated, level);
    ASSERT_EQ(traced.size(), stated.size());
    for (std::size_t i = 0; i < stated.size(); ++i) ExpectEqual(*traced[i], stated[i], level, sure);
    ExpectEqualMarks();
  }

  // The lines of all levels at once, and those of one after the other on the second copy.
  void ExpectEqualTogether(std::vector<double> const& levels) {
    std::vector<TPolygon*> together;
    std::vector<TPolygon*> apart;
    std::srand(SAME_DRAWS);
    int const number = m_pTraced->GenerateIsolines(together, levels);
    std::srand(SAME_DRAWS);
    for (double level : levels) m_pStated->GenerateIsoline(apart, level);
    std::vector<std::unique_ptr<TPolygon>> const owner(together.begin(), together.end());
    std::vector<std::unique_ptr<TPolygon>> const other_owner(apart.begin(), apart.end());
    ASSERT_EQ(number, static_cast<int>(together.size()));
    ASSERT_EQ(together.size(), apart.size());
    for (std::size_t i = 0; i < apart.size(); ++i) {
      ASSERT_TRUE(HaveSameBits(PointsOf(*together[i]), PointsOf(*apart[i])));
    }
    ExpectEqualMarks();
  }

  void ExpectEqualMarks() {
    for (int i = 0; i < m_pTraced->GetNumberOfTriangles(); ++i) {
      ASSERT_EQ(m_pTraced->GetTriangle(i, true)->m_Flags, m_pStated->GetTriangle(i, true)->m_Flags);
    }
  }

  void ExpectEqual(TPolygon const& traced, std::vector<TPoint>& stated, double level, bool sure) {
    std::vector<TPoint> const points = PointsOf(traced);
    TTriangle const* found = nullptr;
    if (!stated.empty()) found = TINPeer::Location(*m_pStated).Find(stated[0]);
    std::vector<TPoint> reversed(stated.rbegin(), stated.rend());
    if (sure) {
      ASSERT_TRUE(HaveSameBits(points, IsToBeReversed(stated, found, level) ? reversed : stated));
      return;
    }
    bool const kept = HaveSameBits(points, stated) && CouldBe(stated, level, false);
    bool const turned = HaveSameBits(points, reversed) && CouldBe(stated, level, true);
    ASSERT_TRUE(kept || turned);
  }

  // Far out, a walk that is about to go straight back may answer with any triangle.
  bool CouldBe(std::vector<TPoint>& line, double level, bool turned) {
    if (line.size() < 2) return !turned;
    return std::get<1>(GetParam()).frame.east == FAR_OUT.east ||
           CouldBeTurned(*m_pStated, line, level, turned);
  }

  double AnyLevel() { return m_Dice.Between(m_dLow, m_dHigh); }
  double HeightOfAPoint() { return m_Points[static_cast<std::size_t>(m_Dice.Below(FEW))].z; }

  Dice m_Dice{TestSeed()};
  std::vector<TPoint> m_Points;
  double m_dLow = 0.0;
  double m_dHigh = 0.0;
  TemporaryFolder m_Folder;
  std::unique_ptr<TIN> m_pTraced;
  std::unique_ptr<TIN> m_pStated;
};

TEST_P(IsolineReference, LinesAreEqual) {
  Build(FEW);
  for (int i = 0; i < 10; ++i) ExpectEqualLines(i % 2 == 0 ? AnyLevel() : HeightOfAPoint(), true);
}

TEST_P(IsolineReference, LinesAmongPlateausAreEqual) {
  Build(FEW);
  double const step = (m_dHigh - m_dLow) / 5;
  RoundHeights(step);
  for (int i = 0; i < 10; ++i) ExpectEqualLines(step * std::round(AnyLevel() / step), true);
  ExpectEqualLines(AnyLevel(), true);
}

// Heights that agree to about the limit for a flat triangle.
TEST_P(IsolineReference, LinesAmongNearlyFlatTrianglesAreEqual) {
  Build(FEW);
  double const offsets[] = {0.0, 4e-12, 9e-12, 1.1e-11, 2e-11, 1e-9, 6.4e-8};
  for (double base : {5.0, 5.0 + 5e-10, 5.0 - 5e-10}) {
    for (int i = 0; i < m_pTraced->GetNumberOfPoints(); ++i) {
      double const z = m_Dice.OneIn(4) ? 7.0 : base;
      SetHeight(i, z + offsets[m_Dice.Below(7)] * (m_Dice.OneIn(2) ? 1.0 : -1.0));
    }
    for (double level : {base, base + 5e-12, base - 1e-11, 6.0, 7.0}) ExpectEqualLines(level, true);
  }
}

TEST_P(IsolineReference, LinesAcrossTheDataBoundsAreEqual) {
  Build(FEW);
  for (TIN* tin : {m_pTraced.get(), m_pStated.get()}) {
    TPoint& min = TINPeer::Min(*tin);
    TPoint const& max = TINPeer::Max(*tin);
    min = TPoint(min.x + (max.x - min.x) / 3, min.y + (max.y - min.y) / 4, min.z);
  }
  for (int i = 0; i < 10; ++i) ExpectEqualLines(AnyLevel(), true);
}

TEST_P(IsolineReference, LinesAmongHiddenTrianglesAreEqual) {
  Build(FEW);
  MarkSome(TRI_FILTERED, 8);
  MarkSome(TRI_OUTSIDE, 20);
  MarkSome(TRI_VISITED, 2);
  for (int i = 0; i < 10; ++i) ExpectEqualLines(AnyLevel(), true);
}

TEST_P(IsolineReference, LinesAmongHeightsThatAreNoNumbersAreEqual) {
  Build(FEW);
  double const infinity = std::numeric_limits<double>::infinity();
  double const bad[] = {
      std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, 1e300, -1e300, 1e16};
  for (int i = 0; i < 40; ++i) {
    SetHeight(m_Dice.Below(m_pTraced->GetNumberOfPoints()), bad[m_Dice.Below(6)]);
  }
  for (int i = 0; i < 6; ++i) ExpectEqualLines(AnyLevel(), true);
  for (double level : bad) ExpectEqualLines(level, true);
}

TEST_P(IsolineReference, LinesOfALargeSurfaceAreEqual) {
  Build(MANY);
  for (int i = 0; i < 3; ++i) ExpectEqualLines(AnyLevel(), false);
}

// Levels in any order, twice, at vertices, and one that is no number.
TEST_P(IsolineReference, LinesOfManyLevelsAreThoseOfOneLevelAfterTheOther) {
  Build(FEW);
  RoundHeights((m_dHigh - m_dLow) / 40);
  MarkSome(TRI_FILTERED, 30);
  MarkSome(TRI_VISITED, 2);
  for (int count : {0, 1, 2, 3, 25, 1500}) {
    SCOPED_TRACE(count);
    std::vector<double> levels;
    for (int i = 0; i < count; ++i) levels.push_back(i % 2 == 0 ? AnyLevel() : HeightOfAPoint());
    if (count > 2) levels[2] = levels[0];
    if (count > 3) levels[3] = std::numeric_limits<double>::quiet_NaN();
    ExpectEqualTogether(levels);
  }
}

// Of a triangle that a removal took out of the live order although it is still joined to others, a
// mark stays from level to level.
TEST_P(IsolineReference, LinesOfManyLevelsAmongTrianglesThatAreNotLiveAreEqual) {
  Build(FEW);
  m_pTraced->BuildPointMap();
  m_pStated->BuildPointMap();
  for (int i = 0; i < FEW; i += 3) {
    if (m_pTraced->PointIsOnHull(m_pTraced->GetPoint(i))) continue;
    bool const removed = m_pTraced->RemovePoint(m_pTraced->GetPoint(i));
    ASSERT_EQ(m_pStated->RemovePoint(m_pStated->GetPoint(i)), removed);
  }
  ExpectEqualTogether({AnyLevel(), HeightOfAPoint(), AnyLevel(), AnyLevel()});
}

// A copy of a surface has the corners and the neighbours of its triangles in the pools of the
// other.
TEST_P(IsolineReference, LinesOfACopyAreEqual) {
  Build(FEW);
  std::unique_ptr<TIN> const traced = std::move(m_pTraced);
  std::unique_ptr<TIN> const stated = std::move(m_pStated);
  m_pTraced = std::make_unique<TIN>(*traced);
  m_pStated = std::make_unique<TIN>(*stated);
  for (int i = 0; i < 3; ++i) ExpectEqualLines(AnyLevel(), true);
}

INSTANTIATE_TEST_SUITE_P(All, IsolineReference,
                         ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS),
                                            ::testing::ValuesIn(PLACES)),
                         [](auto const& survey) {
                           return std::string(NameOf(std::get<0>(survey.param))) +
                                  std::get<1>(survey.param).name;
                         });

}  // namespace
