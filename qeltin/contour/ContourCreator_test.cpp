#include "qeltin/contour/ContourCreator.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <deque>
#include <limits>
#include <utility>
#include <vector>

#include "qeltin/platform/Math.h"
#include "testing/MakeSurvey.h"
#include "testing/reference/ReferenceContours.h"

// The joining of lines that meet.

namespace {

using qeltin::testing::Dice;
using qeltin::testing::ReferenceConnect;
using qeltin::testing::TestSeed;
using Point = GTL::Point2D<double>;

// Opens what generators have to themselves.
class Joiner : public ContourCreator {
 public:
  explicit Joiner(std::deque<Contour> contours) { m_Contours = std::move(contours); }
  std::deque<Contour> const& Joined() {
    ConnectContours();
    return m_Contours;
  }
  int AddLevel(double, ContourList&, std::atomic<bool> const&) override { return 0; }
  int AddLevels(std::vector<double> const&, ContourList&, std::atomic<bool> const&) override {
    return 0;
  }
};

Contour Line(double level, std::vector<Point> const& points) {
  Contour contour(level);
  for (Point const& p : points) contour.Line().AddBack(p);
  return contour;
}

std::vector<Point> PointsOf(Contour const& contour) {
  std::vector<Point> points;
  for (int i = 0; i < contour.NumPoints(); ++i) points.push_back(contour[i]);
  return points;
}

std::deque<Contour> Join(std::deque<Contour> const& contours) { return Joiner(contours).Joined(); }

TEST(ConnectContours, NoneStayNone) { EXPECT_TRUE(Join({}).empty()); }

TEST(ConnectContours, ASingleLineStaysUnlessItIsEmpty) {
  EXPECT_EQ(Join({Line(1, {{0, 0}, {1, 0}})}).size(), 1u);
  EXPECT_TRUE(Join({Line(1, {})}).empty());
}

TEST(ConnectContours, LastToFirstAppends) {
  auto const joined = Join({Line(1, {{0, 0}, {1, 0}}), Line(1, {{1, 0}, {2, 0}, {3, 0}})});
  ASSERT_EQ(joined.size(), 1u);
  EXPECT_EQ(PointsOf(joined[0]), (std::vector<Point>{{0, 0}, {1, 0}, {2, 0}, {3, 0}}));
}

TEST(ConnectContours, LastToLastAppendsReversed) {
  auto const joined = Join({Line(1, {{0, 0}, {1, 0}}), Line(1, {{3, 0}, {2, 0}, {1, 0}})});
  ASSERT_EQ(joined.size(), 1u);
  EXPECT_EQ(PointsOf(joined[0]), (std::vector<Point>{{0, 0}, {1, 0}, {2, 0}, {3, 0}}));
}

TEST(ConnectContours, FirstToFirstGoesBeforeReversed) {
  auto const joined = Join({Line(1, {{0, 0}, {1, 0}}), Line(1, {{0, 0}, {-1, 0}, {-2, 0}})});
  ASSERT_EQ(joined.size(), 1u);
  EXPECT_EQ(PointsOf(joined[0]), (std::vector<Point>{{-2, 0}, {-1, 0}, {0, 0}, {1, 0}}));
}

TEST(ConnectContours, FirstToLastGoesBefore) {
  auto const joined = Join({Line(1, {{0, 0}, {1, 0}}), Line(1, {{-2, 0}, {-1, 0}, {0, 0}})});
  ASSERT_EQ(joined.size(), 1u);
  EXPECT_EQ(PointsOf(joined[0]), (std::vector<Point>{{-2, 0}, {-1, 0}, {0, 0}, {1, 0}}));
}

TEST(ConnectContours, TheCommonPointIsThatOfTheFirstLine) {
  auto const joined = Join({Line(1, {{0, 0}, {1, 0}}), Line(1, {{1 + 4e-7, 0}, {2, 0}})});
  ASSERT_EQ(joined.size(), 1u);
  EXPECT_EQ(PointsOf(joined[0]), (std::vector<Point>{{0, 0}, {1, 0}, {2, 0}}));
}

TEST(ConnectContours, EndsExactlyTheToleranceApartDoNotJoin) {
  EXPECT_EQ(Join({Line(1, {{-1, 0}, {0, 0}}), Line(1, {{MATH::TOLERANCE, 0}, {2, 0}})}).size(), 2u);
  EXPECT_EQ(
      Join({Line(1, {{-1, 0}, {0, 0}}), Line(1, {{0.999 * MATH::TOLERANCE, 0}, {2, 0}})}).size(),
      1u);
}

TEST(ConnectContours, AChainInAnyOrderEndsAsOneLine) {
  std::vector<Contour> const parts = {Line(1, {{0, 0}, {1, 0}}), Line(1, {{1, 0}, {2, 0}}),
                                      Line(1, {{2, 0}, {3, 0}})};
  for (auto const& order : std::vector<std::vector<std::size_t>>{
           {0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}}) {
    auto const joined = Join({parts[order[0]], parts[order[1]], parts[order[2]]});
    ASSERT_EQ(joined.size(), 1u);
    EXPECT_EQ(PointsOf(joined[0]), (std::vector<Point>{{0, 0}, {1, 0}, {2, 0}, {3, 0}}));
  }
}

TEST(ConnectContours, LevelsStayApart) {
  EXPECT_EQ(Join({Line(1, {{0, 0}, {1, 0}}), Line(2, {{1, 0}, {2, 0}})}).size(), 2u);
}

TEST(ConnectContours, ALineThatMeetsAnotherAtBothEndsStaysOpen) {
  auto const joined = Join(
      {Line(1, {{0, 0}, {1, 0}}), Line(1, {{1, 0}, {1, 1}, {0, 0}}), Line(1, {{0, 0}, {5, 5}})});
  ASSERT_EQ(joined.size(), 1u);
  // The third line meets the end that came with the second.
  EXPECT_EQ(PointsOf(joined[0]), (std::vector<Point>{{0, 0}, {1, 0}, {1, 1}, {0, 0}, {5, 5}}));
  auto const ring = Join({Line(1, {{0, 0}, {1, 0}}), Line(1, {{1, 0}, {1, 1}, {0, 0}})});
  ASSERT_EQ(ring.size(), 1u);
  EXPECT_EQ(ring[0].NumPoints(), 4);
}

TEST(ConnectContours, ALaterLevelJoinsAmongItself) {
  auto const joined = Join({Line(1, {{0, 0}, {1, 0}}), Line(1, {{8, 0}, {9, 0}}),
                            Line(2, {{0, 5}, {1, 5}}), Line(2, {{1, 5}, {2, 5}})});
  ASSERT_EQ(joined.size(), 3u);
  EXPECT_EQ(joined[0].NumPoints(), 2);
  EXPECT_EQ(joined[1].NumPoints(), 2);
  EXPECT_EQ(joined[2].NumPoints(), 3);
}

TEST(ConnectContours, AJoinedLineTakesInTheOtherBox) {
  auto const joined = Join({Line(1, {{0, 0}, {1, 0}}), Line(1, {{1, 0}, {2, 7}})});
  GTL::Extents3D<double> box;
  joined[0].Line().GetExtents(box);
  EXPECT_EQ(box.GetMax().y, 7.0);
}

// --- Against the plain version ------------------------------------------------------------------

struct Soup {
  int lines;
  int levels;
  int places;     // ends are drawn from so many
  double spread;  // of an end about its place, in tolerances
};

std::deque<Contour> MakeSoup(Soup const& soup, Dice& dice) {
  std::vector<Point> places;
  bool const utm = dice.OneIn(2);
  for (int i = 0; i < soup.places; ++i) {
    Point p(dice.Below(7) * 3e-7, dice.Below(7) * 3e-7);  // some of them close to each other
    if (!dice.OneIn(3)) p = p + Point(dice.Between(-50, 50), dice.Between(-50, 50));
    if (utm) p = p + Point(4.0e5, 4.9e6);
    places.push_back(p);
  }
  double const nan = std::numeric_limits<double>::quiet_NaN();
  auto const end = [&] {
    if (dice.OneIn(60)) return Point(dice.OneIn(2) ? nan : 0.0, 0.0);
    Point const& place = places[static_cast<std::size_t>(dice.Below(soup.places))];
    if (soup.spread == 0.0 || dice.OneIn(2)) return place;
    double const reach = soup.spread * MATH::TOLERANCE;
    return place + Point(dice.Between(-reach, reach), dice.Between(-reach, reach));
  };
  std::deque<Contour> contours;
  double level = 1.0;
  for (int i = 0; i < soup.lines; ++i) {
    if (dice.OneIn(soup.lines / soup.levels + 1)) level = 1.0 + dice.Below(soup.levels);
    if (dice.OneIn(100)) level = nan;
    Contour contour(level);
    int const inner = dice.OneIn(8) ? -1 - dice.Below(2) : dice.Below(4);  // one point, or none
    if (inner > -2) contour.Line().AddBack(end());
    for (int k = 0; k < inner; ++k) contour.Line().AddBack({dice.Unit(), dice.Unit()});
    if (inner >= 0) contour.Line().AddBack(end());
    contours.push_back(contour);
  }
  return contours;
}

bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool SameLines(std::deque<Contour> const& a, std::deque<Contour> const& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!SameBits(a[i].Level(), b[i].Level()) || a[i].NumPoints() != b[i].NumPoints()) return false;
    for (int k = 0; k < a[i].NumPoints(); ++k) {
      if (!SameBits(a[i][k].x, b[i][k].x) || !SameBits(a[i][k].y, b[i][k].y)) return false;
    }
    GTL::Extents3D<double> box_a;
    GTL::Extents3D<double> box_b;
    a[i].Line().GetExtents(box_a);
    b[i].Line().GetExtents(box_b);
    if (!SameBits(box_a.GetMin().x, box_b.GetMin().x) ||
        !SameBits(box_a.GetMin().y, box_b.GetMin().y) ||
        !SameBits(box_a.GetMax().x, box_b.GetMax().x) ||
        !SameBits(box_a.GetMax().y, box_b.GetMax().y)) {
      return false;
    }
  }
  return true;
}

TEST(ConnectContoursReference, SoupsOfFragmentsJoinAlike) {
  Dice dice(TestSeed());
  int joins = 0;
  for (int round = 0; round < 4000; ++round) {
    Soup const soup{2 + dice.Below(40), 1 + dice.Below(3), 1 + dice.Below(30),
                    dice.OneIn(3) ? 0.0 : dice.Between(0.2, 2.0)};
    std::deque<Contour> const contours = MakeSoup(soup, dice);
    std::deque<Contour> expected = contours;
    ReferenceConnect(expected);
    std::deque<Contour> const joined = Join(contours);
    ASSERT_TRUE(SameLines(joined, expected)) << "round " << round;
    joins += static_cast<int>(contours.size() - joined.size());
  }
  EXPECT_GT(joins, 10000);
}

TEST(ConnectContoursReference, LongShuffledChainsJoinAlike) {
  Dice dice(TestSeed());
  for (int round = 0; round < 20; ++round) {
    std::deque<Contour> contours;
    for (int i = 0; i < 300; ++i) {
      Contour part = Line(1, {{i * 0.1, 0}, {(i + 1) * 0.1, round % 2 == 0 ? 0.0 : 0.25e-6}});
      if (dice.OneIn(2)) part.Reverse();
      contours.insert(contours.begin() + dice.Below(static_cast<int>(contours.size()) + 1), part);
    }
    std::deque<Contour> expected = contours;
    ReferenceConnect(expected);
    std::deque<Contour> const joined = Join(contours);
    ASSERT_TRUE(SameLines(joined, expected));
    EXPECT_EQ(joined.size(), 1u);
  }
}

TEST(ConnectContoursReference, EndsAllInOnePlaceJoinAlike) {
  Dice dice(TestSeed());
  std::deque<Contour> contours;
  for (int i = 0; i < 200; ++i) {
    contours.push_back(Line(1, {{0, 0}, {dice.Unit(), dice.Unit()}, {0, 0}}));
  }
  std::deque<Contour> expected = contours;
  ReferenceConnect(expected);
  EXPECT_TRUE(SameLines(Join(contours), expected));
}

}  // namespace
