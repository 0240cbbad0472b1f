#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "qeltin/products/TGrid.h"
#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"

// A grid against one query a node, in order, on another copy of the surface: the same heights to
// the bit, and the location object in the same place afterwards.

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::SameBits;
using qeltin::testing::Survey;
using qeltin::testing::TemporaryFolder;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;

constexpr int POINTS = 3000;
constexpr unsigned SAME_DRAWS = 1;  // a walk that is about to go straight back jumps at random
constexpr int CURRENT_IS_NULL = -1;

int CurrentSlot(TIN const& tin) {
  TTriangle const* const current = TINPeer::Location(tin).m_pCurrent;
  if (current == nullptr) return CURRENT_IS_NULL;
  return static_cast<int>(current - TINPeer::Triangles(tin)->m_pData);
}

void SetCurrent(TIN& tin, int position) {
  TINPeer::Location(tin).m_pCurrent = tin.GetTriangle(position, true);
}

// Creates a grid of `sampled` and asks `asked` for each of its nodes.
void ExpectPlainHeights(TIN const& sampled, TIN const& asked, double dx, double dy) {
  std::srand(SAME_DRAWS);
  TGrid const grid(sampled, dx, dy);
  std::srand(SAME_DRAWS);
  TPoint min;
  TPoint max;
  asked.GetBounds(min, max);
  double const spacing_x =
      std::max(std::min(dx, max.x - min.x), (max.x - min.x) * 0.0010000000474974513);
  double const spacing_y =
      std::max(std::min(dy, max.y - min.y), (max.y - min.y) * 0.0010000000474974513);
  double y = min.y;
  for (int j = 0; j < grid.GetNumberOfNodesY(); ++j, y += spacing_y) {
    double x = min.x;
    for (int i = 0; i < grid.GetNumberOfNodesX(); ++i, x += spacing_x) {
      double z = 0.0;
      bool const found = asked.GetZ(x, y, z);
      TPoint const* const node = grid.GetNode(i, j);
      ASSERT_EQ(node != nullptr, found) << "node " << i << ", " << j;
      if (!found) continue;
      ASSERT_TRUE(SameBits(*node, TPoint(x, y, z))) << "node " << i << ", " << j;
    }
  }
  ASSERT_EQ(CurrentSlot(sampled), CurrentSlot(asked));
}

// Two surfaces out of one file: pool by pool the same.
class Copies {
 public:
  explicit Copies(TIN const& tin) {
    tin.SaveTin(m_Folder.Wide("surface.tin").c_str());
    Renew();
  }

  void Renew() {
    for (auto& copy : m_Copies) {
      copy = std::make_unique<TIN>(m_Folder.Wide("surface.tin").c_str());
    }
  }

  TIN& Sampled() { return *m_Copies[0]; }
  TIN& Asked() { return *m_Copies[1]; }

 private:
  TemporaryFolder m_Folder;
  std::unique_ptr<TIN> m_Copies[2];
};

class GridReference : public ::testing::TestWithParam<std::tuple<Survey, Place>> {
 protected:
  GridReference()
      : m_Points(MakeSurvey(std::get<0>(GetParam()), POINTS, m_Dice.Bits(),
                            std::get<1>(GetParam()).frame)),
        m_Extent(ExtentOf(m_Points)) {
    m_Tin.Init(POINTS, m_Extent.min, m_Extent.max);
    for (TPoint const& p : m_Points) m_Tin.LoadPoint(p.x, p.y, p.z);
    m_Tin.Triangulate();
  }

  // The spacing of the points if they stood evenly; 1 exactly for an exact grid.
  double Spacing() const {
    if (std::get<0>(GetParam()) == Survey::ExactGrid) return 1.0;
    double const width = m_Extent.max.x - m_Extent.min.x;
    double const height = m_Extent.max.y - m_Extent.min.y;
    return std::sqrt(std::max(width, 1e-3 * height) * std::max(height, 1e-3 * width) / POINTS);
  }

  Dice m_Dice{TestSeed()};
  std::vector<TPoint> m_Points;
  Extent m_Extent;
  TIN m_Tin;
};

TEST_P(GridReference, HeightsAreThoseOfPlainQueries) {
  Copies copies(m_Tin);
  for (double share : {1.0, 2.0, 0.5, 1.0 / 3.0, 0.7, 5.0}) {
    SCOPED_TRACE(share);
    copies.Renew();
    ExpectPlainHeights(copies.Sampled(), copies.Asked(), share * Spacing(), share * Spacing());
    if (HasFatalFailure()) return;
  }
}

// Locations that are asked for before leave an index, and a place to start from.
TEST_P(GridReference, HeightsAreThoseOfPlainQueriesOnASurfaceInUse) {
  Copies copies(m_Tin);
  for (int i = 0; i < 2000; ++i) {
    TPoint const p(m_Dice.Between(m_Extent.min.x, m_Extent.max.x),
                   m_Dice.Between(m_Extent.min.y, m_Extent.max.y));
    double z;
    copies.Sampled().GetZ(p, z, nullptr);
    copies.Asked().GetZ(p, z, nullptr);
  }
  for (double share : {1.0, 0.5, 3.0, 4.0, 9.0}) {
    SCOPED_TRACE(share);
    int const position = m_Dice.Below(m_Tin.GetNumberOfTriangles());
    SetCurrent(copies.Sampled(), position);
    SetCurrent(copies.Asked(), position);
    ExpectPlainHeights(copies.Sampled(), copies.Asked(), share * Spacing(), 0.8 * Spacing());
    if (HasFatalFailure()) return;
  }
}

TEST_P(GridReference, HeightsAreThoseOfPlainQueriesAmongFilteredTriangles) {
  for (int i = 0; i < m_Tin.GetNumberOfTriangles(); ++i) {
    if (m_Dice.OneIn(3)) m_Tin.GetTriangle(i, true)->m_Flags |= TRI_FILTERED;
  }
  Copies copies(m_Tin);
  ExpectPlainHeights(copies.Sampled(), copies.Asked(), 0.6 * Spacing(), 0.6 * Spacing());
}

// Nodes far from each other, on vertices among others, in rows that begin off the data.
TEST_P(GridReference, HeightsOfFarNodesAreThoseOfPlainQueries) {
  TIN tin;
  double const off = 0.5 * Spacing();
  tin.Init(POINTS, TPoint(m_Extent.min.x - off, m_Extent.min.y - off, m_Extent.min.z),
           TPoint(m_Extent.max.x + off, m_Extent.max.y + off, m_Extent.max.z));
  for (TPoint const& p : m_Points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
  Copies copies(tin);
  for (double share : {12.5, 8.5, 4.5}) {
    SCOPED_TRACE(share);
    copies.Renew();
    ExpectPlainHeights(copies.Sampled(), copies.Asked(), share * Spacing(), 0.25 * Spacing());
    if (HasFatalFailure()) return;
    ExpectPlainHeights(copies.Sampled(), copies.Asked(), share * Spacing(), 0.5 * Spacing());
    if (HasFatalFailure()) return;
  }
}

// The finest grid: a thousandth of the extent, many nodes a triangle.
TEST_P(GridReference, HeightsOfTheFinestRowsAreThoseOfPlainQueries) {
  Copies copies(m_Tin);
  ExpectPlainHeights(copies.Sampled(), copies.Asked(), 0.0, 20.0 * Spacing());
}

INSTANTIATE_TEST_SUITE_P(All, GridReference,
                         ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS),
                                            ::testing::ValuesIn(PLACES)),
                         [](auto const& survey) {
                           return std::string(NameOf(std::get<0>(survey.param))) +
                                  std::get<1>(survey.param).name;
                         });

// Two points close together and one a kilometre away make a needle, whose bands reach half a
// millimetre behind its sharp corner. A row ends at its base, and the next begins behind that
// corner, well inside a hidden triangle: the plain query stays in the needle.
TEST(GridReferenceNeedle, RowThatBeginsBehindANeedleIsThatOfThePlainQueries) {
  Dice dice(TestSeed());
  TIN tin;
  tin.Init(POINTS, TPoint(0, 0, 0), TPoint(1000, 1000, 9));
  for (int i = 0; i < POINTS - 3; ++i) {
    double const x = dice.Between(0.0, 1000.0);
    tin.LoadPoint(x, dice.Between(930.0, 1000.0), dice.Unit());
  }
  tin.LoadPoint(4e-4, 500.0 - 1e-4, 3.0);
  tin.LoadPoint(1000.0, 250.0 + 5.5e-4, 4.0);
  tin.LoadPoint(1000.0, 250.0 - 5.5e-4, 5.0);
  tin.Triangulate();
  Copies copies(tin);
  ExpectPlainHeights(copies.Sampled(), copies.Asked(), 2.0, 250.0);
  TGrid const grid(copies.Sampled(), 2.0, 250.0);
  EXPECT_NE(grid.GetNode(0, 2), nullptr);
}

}  // namespace
