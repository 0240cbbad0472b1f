#include "qeltin/kernel/SideTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/reference/StatedGeometry.h"

namespace {

using qeltin::detail::CertainSide;
using qeltin::detail::PassesSide;
using qeltin::detail::Side;
using qeltin::detail::SideErrorWithin;
using qeltin::detail::SideFan;
using qeltin::testing::Dice;
using qeltin::testing::SameBits;
using qeltin::testing::TestSeed;
namespace stated = qeltin::testing::stated;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double TINIEST = std::numeric_limits<double>::denorm_min();

// An edge from a to b, and a point.
struct Triple {
  TPoint a;
  TPoint b;
  TPoint p;
};

std::ostream& operator<<(std::ostream& out, Triple const& t) {
  out.precision(17);
  return out << "a (" << t.a.x << ", " << t.a.y << ") b (" << t.b.x << ", " << t.b.y << ") p ("
             << t.p.x << ", " << t.p.y << ")";
}

double Nudged(double value, Dice& dice) {
  int const steps = dice.Below(9) - 4;
  for (int i = 0; i < std::abs(steps); ++i) {
    value = std::nextafter(value, steps > 0 ? INF : -INF);
  }
  return value;
}

template <typename Coordinate>
Triple Draw(Coordinate const& coordinate) {
  Triple t;
  for (TPoint* p : {&t.a, &t.b, &t.p}) {
    p->x = coordinate();
    p->y = coordinate();
  }
  return t;
}

Triple Uniform(Dice& dice) {
  return Draw([&] { return dice.Between(0.0, 1000.0); });
}

Triple Moved(Triple t, double east, double north) {
  for (TPoint* p : {&t.a, &t.b, &t.p}) *p = TPoint(p->x + east, p->y + north);
  return t;
}

Triple AtUtm(Dice& dice) { return Moved(Uniform(dice), 4.0e5, 4.9e6); }

Triple Lattice(Dice& dice) {
  return Draw([&] { return static_cast<double>(dice.Below(9) - 4); });
}

Triple Mixed(Dice& dice) {
  return Draw([&] { return dice.Between(-1.0, 1.0) * std::pow(10.0, dice.Below(25) - 12); });
}

Triple NearLine(Triple t, Dice& dice) {
  double const share = dice.Between(-2.0, 3.0);
  t.p.x = Nudged(t.a.x + share * (t.b.x - t.a.x), dice);
  t.p.y = Nudged(t.a.y + share * (t.b.y - t.a.y), dice);
  return t;
}

Triple NearLineAtOrigin(Dice& dice) { return NearLine(Uniform(dice), dice); }
Triple NearLineAtUtm(Dice& dice) { return NearLine(AtUtm(dice), dice); }

// The point lies to the left by about the band of 1e-9, along the axis of WhatSide.
Triple NearBand(Triple t, Dice& dice) {
  t = NearLine(t, dice);
  double const dx = t.b.x - t.a.x;
  double const dy = t.b.y - t.a.y;
  double const offset = 1e-9 * (1.0 + 1e-7 * dice.Normal());
  if (std::fabs(dx) >= std::fabs(dy)) {
    t.p.y += dx > 0.0 ? offset : -offset;
  } else {
    t.p.x += dy > 0.0 ? -offset : offset;
  }
  return t;
}

Triple NearBandAtOrigin(Dice& dice) { return NearBand(Uniform(dice), dice); }
Triple NearBandAtUtm(Dice& dice) { return NearBand(AtUtm(dice), dice); }
Triple NearBandInUnitSquare(Dice& dice) {
  return NearBand(Draw([&] { return dice.Unit(); }), dice);
}

Triple Tiny(Dice& dice) {
  return Draw([&] { return dice.Between(-1.0, 1.0) * std::pow(10.0, -295.0 - dice.Below(29)); });
}

Triple TinyOffsetsFromLongEdges(Dice& dice) {
  Triple t = Draw([&] { return dice.Below(12) * TINIEST; });
  double const length = std::pow(10.0, dice.Below(250));
  t.b = TPoint(dice.Between(-length, length), dice.Between(-length, length));
  return t;
}

Triple Huge(Dice& dice) {
  return Draw([&] { return dice.Between(-1.0, 1.0) * std::pow(10.0, 140.0 + dice.Below(168)); });
}

Triple AnySize(Dice& dice) {
  return Draw([&] { return dice.Between(-1.0, 1.0) * std::pow(10.0, dice.Below(630) - 322); });
}

Triple Special(Dice& dice) {
  static constexpr std::array<double, 16> VALUES = {
      0.0,     -0.0,     1.0,          -1.0,
      1e-9,    -1e-9,    INF,          -INF,
      TINIEST, -TINIEST, NOT_A_NUMBER, 1e308,
      -1e308,  1e-300,   4.9e6,        std::numeric_limits<double>::max()};
  return Draw([&] { return VALUES[static_cast<std::size_t>(dice.Below(VALUES.size()))]; });
}

struct Kind {
  char const* name;
  Triple (*draw)(Dice&);
};

void PrintTo(Kind const& kind, std::ostream* out) { *out << kind.name; }

constexpr Kind KINDS[] = {
    {"Uniform", Uniform},
    {"AtUtm", AtUtm},
    {"Lattice", Lattice},
    {"Mixed", Mixed},
    {"NearLineAtOrigin", NearLineAtOrigin},
    {"NearLineAtUtm", NearLineAtUtm},
    {"NearBandAtOrigin", NearBandAtOrigin},
    {"NearBandAtUtm", NearBandAtUtm},
    {"NearBandInUnitSquare", NearBandInUnitSquare},
    {"Tiny", Tiny},
    {"TinyOffsetsFromLongEdges", TinyOffsetsFromLongEdges},
    {"Huge", Huge},
    {"AnySize", AnySize},
    {"Special", Special},
};

constexpr int DRAWS = 300000;

class SideTestSweep : public ::testing::TestWithParam<Kind> {
 protected:
  // Draws, and returns how many of the triples fail the check; the first is reported.
  template <typename Check>
  void ExpectForAll(Check const& check) {
    Dice dice(TestSeed());
    int failures = 0;
    for (int i = 0; i < DRAWS; ++i) {
      Triple t = GetParam().draw(dice);
      if (check(t)) continue;
      if (failures++ == 0) ADD_FAILURE() << t << ", WhatSide " << stated::WhatSide(t.a, t.b, t.p);
    }
    EXPECT_EQ(failures, 0) << "of " << DRAWS;
  }
};

TEST_P(SideTestSweep, ACertainSideHasTheSignOfWhatSide) {
  ExpectForAll([](Triple const& t) {
    double const side = stated::WhatSide(t.a, t.b, t.p);
    switch (CertainSide(t.a, t.b, t.p)) {
      case Side::Right:
        return side > 0.0;
      case Side::Left:
        return side < 0.0;
      case Side::Uncertain:
        break;
    }
    return true;
  });
}

TEST_P(SideTestSweep, PassesWhereWhatSideIsAtLeastTheBand) {
  ExpectForAll([](Triple& t) {
    return PassesSide(&t.a, &t.b, t.p) == (stated::WhatSide(t.a, t.b, t.p) >= -1e-09);
  });
}

TEST_P(SideTestSweep, ACertainlyClockwiseFanHasTheSignsOfWhatSide) {
  ExpectForAll([](Triple const& t) {
    double reach = 0.0;
    for (TPoint const* p : {&t.a, &t.b, &t.p}) {
      reach = std::max(reach, std::fabs(p->x) + std::fabs(p->y));
    }
    SideFan const fan(t.a, SideErrorWithin(reach));
    if (!fan.IsCertainlyClockwise(t.b, t.p)) return true;
    return stated::WhatSide(t.a, t.b, t.p) > 0.0 && stated::WhatSide(t.a, t.p, t.b) < 0.0;
  });
}

TEST_P(SideTestSweep, WhatSideIsTheFormula) {
  ExpectForAll([](Triple& t) {
    double const side = TEdge(&t.a, &t.b).WhatSide(t.p);
    return static_cast<bool>(SameBits(side, stated::WhatSide(t.a, t.b, t.p)));
  });
}

INSTANTIATE_TEST_SUITE_P(Kinds, SideTestSweep, ::testing::ValuesIn(KINDS),
                         [](auto const& kind) { return std::string(kind.param.name); });

TEST(SideTest, IsUncertainForNotANumberAnywhere) {
  for (int i = 0; i < 6; ++i) {
    Triple t{TPoint(0, 0), TPoint(10, 3), TPoint(5, -7)};
    ASSERT_EQ(CertainSide(t.a, t.b, t.p), Side::Right);
    TPoint* const points[3] = {&t.a, &t.b, &t.p};
    (i % 2 == 0 ? points[i / 2]->x : points[i / 2]->y) = NOT_A_NUMBER;
    EXPECT_EQ(CertainSide(t.a, t.b, t.p), Side::Uncertain) << t;
    EXPECT_FALSE(PassesSide(&t.a, &t.b, t.p)) << t;
  }
}

TEST(SideTest, AnEdgeOfNoLengthIsUncertainAndNeverPasses) {
  TPoint a(3, 4);
  TPoint b(3, 4);
  EXPECT_EQ(CertainSide(a, b, TPoint(100, 100)), Side::Uncertain);
  EXPECT_FALSE(PassesSide(&a, &b, TPoint(100, 100)));
  EXPECT_FALSE(PassesSide(&a, &b, a));
}

TEST(SideTest, ThePointOnTheLineIsUncertainAndPasses) {
  TPoint a(400000, 4900000);
  TPoint b(400010, 4900010);
  TPoint const p(400005, 4900005);
  EXPECT_EQ(CertainSide(a, b, p), Side::Uncertain);
  EXPECT_TRUE(PassesSide(&a, &b, p));
}

TEST(SideTest, TheBandReachesToTheLeft) {
  TPoint a(0, 0);
  TPoint b(1, 0);
  EXPECT_TRUE(PassesSide(&a, &b, TPoint(0.5, 1e-9)));
  EXPECT_FALSE(PassesSide(&a, &b, TPoint(0.5, std::nextafter(1e-9, 1.0))));
  EXPECT_FALSE(PassesSide(&b, &a, TPoint(0.5, -1.1e-9)));
  EXPECT_TRUE(PassesSide(&b, &a, TPoint(0.5, -0.9e-9)));
}

TEST(SideTest, IsCertainAlmostEverywhereInASurvey) {
  Dice dice(TestSeed());
  int uncertain = 0;
  for (int i = 0; i < DRAWS; ++i) {
    Triple const t = AtUtm(dice);
    if (CertainSide(t.a, t.b, t.p) == Side::Uncertain) ++uncertain;
  }
  EXPECT_LT(uncertain, DRAWS / 10000);
}

}  // namespace
