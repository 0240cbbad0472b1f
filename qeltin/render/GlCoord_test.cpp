#include "qeltin/render/GlCoord.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "testing/Formula.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;

constexpr double HALF_PI = 1.5707963267948966;
constexpr double PI = 3.141592653589793;
constexpr double ROUNDING = 1e-14;

struct Turns {
  double x;
  double y;
  double z;
};

Turns TurnsOf(GlCoord const& frame) {
  Turns t{};
  frame.GetRotation(t.x, t.y, t.z);
  return t;
}

void ExpectNear(TPoint const& actual, TPoint const& expected, double tolerance = ROUNDING) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
  EXPECT_NEAR(actual.z, expected.z, tolerance);
}

// A frame whose axes can be laid as a test wants them.
struct OpenFrame : GlCoord {
  using GlCoord::CalcRotation;

  void LayAxes(TPoint x, TPoint y, TPoint z) { CalcRotation(x, y, z); }
};

GlCoord SomeFrame(FormulaInputs& in) {
  GlCoord frame;
  frame.SetOrigin(in.Whole(0, 2) == 0 ? in.Sounding() : TPoint(in.Between(-5, 5), 0, 3));
  frame.RotateAboutX(in.Between(-4, 4));
  frame.RotateAboutY(in.Between(-4, 4));
  frame.RotateAboutZ(in.Between(-4, 4));
  return frame;
}

// --- Points in and out --------------------------------------------------------------------------

TEST(GlCoord, StartsAtTheOriginWithoutRotation) {
  GlCoord const frame;
  EXPECT_EQ(frame.GetOrigin(), TPoint(0, 0, 0));
  EXPECT_EQ(TurnsOf(frame).x, 0.0);
  EXPECT_EQ(TurnsOf(frame).y, 0.0);
  EXPECT_EQ(TurnsOf(frame).z, 0.0);
  EXPECT_EQ(frame >> TPoint(1, 2, 3), TPoint(1, 2, 3));
  EXPECT_EQ(frame << TPoint(1, 2, 3), TPoint(1, 2, 3));
}

TEST(GlCoord, OriginAloneIsAdded) {
  GlCoord frame;
  frame.SetOrigin(TPoint(10, 20, 30));
  EXPECT_EQ(frame.GetOrigin(), TPoint(10, 20, 30));
  EXPECT_EQ(frame >> TPoint(1, 2, 3), TPoint(11, 22, 33));
  EXPECT_EQ(frame << TPoint(11, 22, 33), TPoint(1, 2, 3));
}

TEST(GlCoord, ThereAndBackIsWhereItBegan) {
  FormulaInputs in;
  for (int i = 0; i < 500; ++i) {
    GlCoord const frame = SomeFrame(in);
    double const tolerance = frame.GetOrigin().y > 1e6 ? 1e-8 : 1e-14;
    TPoint const p(in.Between(-5, 5), in.Between(-5, 5), in.Between(-5, 5));
    ExpectNear(frame << (frame >> p), p, tolerance);
    ExpectNear(frame >> (frame << p), p, tolerance);
  }
}

TEST(GlCoord, ArrowTurnsAroundWithThePointOnTheLeft) {
  FormulaInputs in;
  GlCoord const frame = SomeFrame(in);
  TPoint const p(1, 2, 3);
  EXPECT_TRUE(SameBits(p << frame, frame >> p));
  EXPECT_TRUE(SameBits(p >> frame, frame << p));
}

// --- Moves --------------------------------------------------------------------------------------

TEST(GlCoord, MovesAlongItsAxes) {
  GlCoord frame;
  frame.MoveForward(1);
  EXPECT_EQ(frame.GetOrigin(), TPoint(0, 0, -1));
  frame.MoveRight(2);
  EXPECT_EQ(frame.GetOrigin(), TPoint(2, 0, -1));
  frame.MoveUp(3);
  EXPECT_EQ(frame.GetOrigin(), TPoint(2, 3, -1));
}

TEST(GlCoord, MovesForwardAsItIsTurned) {
  GlCoord frame;
  frame.RotateAboutY(HALF_PI);
  frame.MoveForward(1);
  ExpectNear(frame.GetOrigin(), TPoint(-1, 0, 0));
  EXPECT_EQ(frame.GetOrigin().x, -1.0);
}

TEST(GlCoord, MovesByNothingLeaveTheOriginItsBits) {
  GlCoord frame;
  frame.SetOrigin(TPoint(-0.0, -0.0, -0.0));
  frame.MoveRight(0.0);
  frame.MoveUp(0.0);
  frame.MoveForward(-0.0);
  EXPECT_TRUE(SameBits(frame.GetOrigin(), TPoint(-0.0, -0.0, -0.0)));
}

// --- Turns --------------------------------------------------------------------------------------

TEST(GlCoord, TurnAboutOneAxisIsItsAngleUpToARightAngle) {
  for (int degrees = -90; degrees <= 90; degrees += 3) {
    double const a = degrees * PI / 180;
    GlCoord z;
    z.RotateAboutZ(a);
    EXPECT_NEAR(TurnsOf(z).z, a, 3e-8);  // the sine is flat near a right angle
    EXPECT_EQ(TurnsOf(z).x, 0.0);
    EXPECT_EQ(TurnsOf(z).y, 0.0);
    GlCoord x;
    x.RotateAboutX(a);
    EXPECT_NEAR(TurnsOf(x).x, a, 3e-8);
    EXPECT_EQ(TurnsOf(x).y, 0.0);
    EXPECT_NEAR(TurnsOf(x).z, 0.0, ROUNDING);
  }
}

TEST(GlCoord, TurnAboutZPastARightAngleKeepsOneAngle) {
  GlCoord frame;
  frame.RotateAboutZ(2.0);
  EXPECT_NEAR(TurnsOf(frame).z, 2.0, ROUNDING);
  EXPECT_EQ(TurnsOf(frame).x, 0.0);
  EXPECT_EQ(TurnsOf(frame).y, 0.0);
  frame.RotateAboutZ(2.0);
  EXPECT_NEAR(TurnsOf(frame).z, 4.0, ROUNDING);
  frame.RotateAboutZ(2.0);
  EXPECT_NEAR(TurnsOf(frame).z, 6.0 - 2 * PI, ROUNDING);
}

TEST(GlCoord, TurnAboutYPastARightAngleIsTakenAsTheOtherTwo) {
  GlCoord frame;
  frame.RotateAboutY(2.0);
  EXPECT_NEAR(TurnsOf(frame).x, -PI, ROUNDING);
  EXPECT_NEAR(TurnsOf(frame).y, PI - 2.0, ROUNDING);
  EXPECT_NEAR(TurnsOf(frame).z, PI, ROUNDING);
}

TEST(GlCoord, TurnByNothingLeavesTheAnglesTheirBits) {
  FormulaInputs in;
  GlCoord frame = SomeFrame(in);
  Turns const before = TurnsOf(frame);
  frame.RotateAboutX(0.0);
  frame.RotateAboutY(0.0);
  frame.RotateAboutZ(-0.0);
  Turns const after = TurnsOf(frame);
  EXPECT_TRUE(SameBits(after.x, before.x));
  EXPECT_TRUE(SameBits(after.y, before.y));
  EXPECT_TRUE(SameBits(after.z, before.z));
}

TEST(GlCoord, ResetKeepsTheOrigin) {
  FormulaInputs in;
  GlCoord frame = SomeFrame(in);
  TPoint const origin = frame.GetOrigin();
  frame.ResetRotation();
  EXPECT_EQ(frame.GetOrigin(), origin);
  EXPECT_EQ(TurnsOf(frame).x, 0.0);
  EXPECT_EQ(TurnsOf(frame).y, 0.0);
  EXPECT_EQ(TurnsOf(frame).z, 0.0);
}

TEST(GlCoord, TurnAboutItsOwnZThroughItsOriginIsRotateAboutZ) {
  for (double const a : {0.3, -1.2, 2.5, -3.0}) {
    GlCoord turned;
    turned.SetOrigin(TPoint(7, 8, 9));
    turned.RotateAboutX(0.4);
    GlCoord expected = turned;
    turned.Rotate(a, TPoint(0, 0, 1), TPoint(0, 0, 0));
    expected.RotateAboutZ(a);
    EXPECT_EQ(turned.GetOrigin(), TPoint(7, 8, 9));
    for (TPoint const& p : {TPoint(1, 0, 0), TPoint(0, 1, 0), TPoint(0, 0, 1)}) {
      ExpectNear(turned >> p, expected >> p);
    }
  }
}

TEST(GlCoord, TurnAboutAnAxisElsewhereMovesTheOrigin) {
  GlCoord frame;
  frame.SetOrigin(TPoint(10, 0, 0));
  frame.Rotate(HALF_PI, TPoint(0, 0, 1), TPoint(-10, 0, 0));
  ExpectNear(frame.GetOrigin(), TPoint(0, 10, 0));
  ExpectNear(frame >> TPoint(1, 0, 0), TPoint(0, 11, 0));
  EXPECT_NEAR(TurnsOf(frame).z, HALF_PI, ROUNDING);
}

TEST(GlCoord, TurnTakesAnOriginAlongTheAxisAsAMove) {
  GlCoord frame;
  frame.Rotate(PI, TPoint(0, 0, 1), TPoint(0, 0, 10));
  ExpectNear(frame.GetOrigin(), TPoint(0, 0, 20));
  ExpectNear(frame >> TPoint(1, 0, 0), TPoint(-1, 0, 20));
}

// A matrix of the turns made, kept beside the angles.
class Orientation {
 public:
  void Turn(int axis, double angle) {
    int const u = (axis + 1) % 3;
    int const v = (axis + 2) % 3;
    for (auto& row : m_Rows) {
      double const a = row[u];
      double const b = row[v];
      row[u] = a * std::cos(angle) + b * std::sin(angle);
      row[v] = b * std::cos(angle) - a * std::sin(angle);
    }
  }

  TPoint Axis(int i) const { return {m_Rows[0][i], m_Rows[1][i], m_Rows[2][i]}; }

 private:
  std::array<std::array<double, 3>, 3> m_Rows = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
};

void Turn(GlCoord& frame, int axis, double angle) {
  if (axis == 0) frame.RotateAboutX(angle);
  if (axis == 1) frame.RotateAboutY(angle);
  if (axis == 2) frame.RotateAboutZ(angle);
}

void ExpectOrientation(GlCoord const& frame, Orientation const& expected, double tolerance) {
  ExpectNear((frame >> TPoint(1, 0, 0)) - frame.GetOrigin(), expected.Axis(0), tolerance);
  ExpectNear((frame >> TPoint(0, 1, 0)) - frame.GetOrigin(), expected.Axis(1), tolerance);
  ExpectNear((frame >> TPoint(0, 0, 1)) - frame.GetOrigin(), expected.Axis(2), tolerance);
}

TEST(GlCoord, TurnsKeepTheOrientationInAllQuadrants) {
  for (int x = 0; x < 360; x += 30) {
    for (int y = 0; y < 360; y += 30) {
      for (int z = 0; z < 360; z += 30) {
        GlCoord frame;
        Orientation expected;
        int const degrees[3] = {x, y, z};
        for (int axis = 0; axis < 3; ++axis) {
          double const a = degrees[axis] * PI / 180;
          Turn(frame, axis, a);
          expected.Turn(axis, a);
        }
        SCOPED_TRACE(testing::Message() << x << ' ' << y << ' ' << z);
        ExpectOrientation(frame, expected, 1e-7);  // at right angles the sine tells half the digits
      }
    }
  }
}

TEST(GlCoord, ManySmallTurnsKeepTheOrientation) {
  FormulaInputs in;
  GlCoord frame;
  Orientation expected;
  for (int i = 0; i < 1000; ++i) {
    int const axis = in.Whole(0, 2);
    double const a = in.Between(-1, 1);
    Turn(frame, axis, a);
    expected.Turn(axis, a);
  }
  ExpectOrientation(frame, expected, 1e-6);
}

// --- From axes to angles ------------------------------------------------------------------------

TEST(GlCoord, AnglesAreTakenFromTheAxes) {
  OpenFrame frame;
  frame.LayAxes(TPoint(0, 1, 0), TPoint(-1, 0, 0), TPoint(0, 0, 1));
  EXPECT_EQ(TurnsOf(frame).x, 0.0);
  EXPECT_EQ(TurnsOf(frame).y, 0.0);
  EXPECT_EQ(TurnsOf(frame).z, HALF_PI);

  OpenFrame over;
  over.LayAxes(TPoint(1, 0, 0), TPoint(0, -1, 0), TPoint(0, 0, -1));
  EXPECT_EQ(TurnsOf(over).x, -PI);
  EXPECT_NEAR(TurnsOf(over).y, 0.0, ROUNDING);
  EXPECT_NEAR(TurnsOf(over).z, 0.0, ROUNDING);
}

TEST(GlCoord, AxisZAlongXIsATurnAboutYAlone) {
  OpenFrame frame;
  frame.LayAxes(TPoint(0, 0, -1), TPoint(0, 1, 0), TPoint(1, 0, 0));
  EXPECT_EQ(TurnsOf(frame).x, 0.0);
  EXPECT_EQ(TurnsOf(frame).y, HALF_PI);
  EXPECT_EQ(TurnsOf(frame).z, 0.0);

  OpenFrame back;
  back.LayAxes(TPoint(0, 0, 1), TPoint(0, 1, 0), TPoint(-1, 0, 0));
  EXPECT_EQ(TurnsOf(back).x, 0.0);
  EXPECT_EQ(TurnsOf(back).y, -HALF_PI);
}

TEST(GlCoord, AxisZOfNoLengthHasNoTurnAboutXAndY) {
  OpenFrame frame;
  frame.LayAxes(TPoint(0.6, 0.8, 0), TPoint(-0.8, 0.6, 0), TPoint(0, 0, 0));
  EXPECT_EQ(TurnsOf(frame).x, 0.0);
  EXPECT_EQ(TurnsOf(frame).y, 0.0);
  EXPECT_NEAR(TurnsOf(frame).z, std::asin(0.8), ROUNDING);
}

TEST(GlCoord, AxisXAlongZHasNoTurnAboutZ) {
  OpenFrame frame;
  frame.LayAxes(TPoint(0, 0, 1), TPoint(0, 1, 0), TPoint(0, 0, 1));
  EXPECT_EQ(TurnsOf(frame).x, 0.0);
  EXPECT_EQ(TurnsOf(frame).y, 0.0);
  EXPECT_EQ(TurnsOf(frame).z, 0.0);
}

TEST(GlCoord, AxesAreLeftTurnedBackAboutXAndY) {
  OpenFrame frame;
  TPoint x(1, 0, 0);
  TPoint y(0, 0.6, 0.8);
  TPoint z(0, -0.8, 0.6);
  frame.CalcRotation(x, y, z);
  ExpectNear(x, TPoint(1, 0, 0));
  ExpectNear(y, TPoint(0, 1, 0));
  ExpectNear(z, TPoint(0, 0, 1));
}

TEST(GlCoord, CosineThatRoundingTookPastOneIsNotPastARightAngle) {
  // The root of the square of these numbers, which are near the smallest ones, is smaller than
  // they.
  double const tiny = 2.6e-162;
  ASSERT_GT(tiny / std::sqrt(tiny * tiny), 1.0);
  OpenFrame frame;
  frame.LayAxes(TPoint(tiny, 0, 0), TPoint(0, tiny, 0), TPoint(0, 0, tiny));
  EXPECT_EQ(TurnsOf(frame).x, 0.0);
  EXPECT_EQ(TurnsOf(frame).y, 0.0);
  EXPECT_EQ(TurnsOf(frame).z, 0.0);
}

// --- By formula ---------------------------------------------------------------------------------

// The frame, written out.
struct Formula {
  double ox = 0, oy = 0, oz = 0;
  double a = 0, b = 0, c = 0;

  TPoint Out(TPoint const& p) const {
    double const x1 = p.x * std::cos(c) - p.y * std::sin(c);
    double const y1 = p.y * std::cos(c) + p.x * std::sin(c);
    double const z2 = p.z * std::cos(b) - x1 * std::sin(b);
    double const x2 = x1 * std::cos(b) + p.z * std::sin(b);
    double const y3 = y1 * std::cos(a) - z2 * std::sin(a);
    double const z3 = y1 * std::sin(a) + z2 * std::cos(a);
    return {x2 + ox, y3 + oy, z3 + oz};
  }

  TPoint In(TPoint const& p) const {
    double const dx = p.x - ox, dy = p.y - oy, dz = p.z - oz;
    double const y1 = dz * std::sin(a) + dy * std::cos(a);
    double const z1 = dz * std::cos(a) - dy * std::sin(a);
    double const z2 = z1 * std::cos(b) + dx * std::sin(b);
    double const x2 = dx * std::cos(b) - z1 * std::sin(b);
    return {x2 * std::cos(c) + y1 * std::sin(c), y1 * std::cos(c) - x2 * std::sin(c), z2};
  }

  void Move(TPoint const& step) {
    TPoint const o = Out(step);
    ox = o.x, oy = o.y, oz = o.z;
  }

  void Lay(TPoint x, TPoint y, TPoint z) {
    TPoint const o(ox, oy, oz);
    x = Out(x) - o, y = Out(y) - o, z = Out(z) - o;
    a = 0;
    if (z.y != 0 || z.z != 0) {
      double const r = std::sqrt(z.y * z.y + z.z * z.z);
      double t = std::asin(z.y / r);
      if (std::acos(z.z / r) > HALF_PI) t = PI - t;
      a = -t;
    }
    for (TPoint* v : {&x, &y, &z}) {
      *v = TPoint(v->x, v->y * std::cos(-a) - v->z * std::sin(-a),
                  v->y * std::sin(-a) + v->z * std::cos(-a));
    }
    b = 0;
    if (z.x != 0 || z.z != 0) {
      double const r = std::sqrt(z.x * z.x + z.z * z.z);
      double t = std::asin(-z.x / r);
      if (std::acos(z.z / r) > HALF_PI) t = PI - t;
      b = -t;
    }
    for (TPoint* v : {&x, &y, &z}) {
      *v = TPoint(v->z * std::sin(-b) + v->x * std::cos(-b), v->y,
                  v->z * std::cos(-b) - v->x * std::sin(-b));
    }
    c = 0;
    if (x.x != 0 || x.y != 0) {
      double const r = std::sqrt(x.x * x.x + x.y * x.y);
      double t = std::asin(x.y / r);
      if (std::acos(x.x / r) > HALF_PI) t = PI - t;
      c = t;
    }
  }

  void Turn(int axis, double t) {
    double const k = std::cos(t), s = std::sin(t);
    if (axis == 0) Lay(TPoint(1, 0, 0), TPoint(0, k, s), TPoint(0, -s, k));
    if (axis == 1) Lay(TPoint(k, 0, -s), TPoint(0, 1, 0), TPoint(s, 0, k));
    if (axis == 2) Lay(TPoint(k, s, 0), TPoint(-s, k, 0), TPoint(0, 0, 1));
  }

  void Turn(double t, TPoint const& axis, TPoint const& origin) {
    TPoint p[4] = {TPoint(1, 0, 0), TPoint(0, 1, 0), TPoint(0, 0, 1), TPoint(0, 0, 0)};
    for (TPoint& v : p) v.Rotate(t, axis, origin);
    TPoint const o = Out(p[3]);
    Lay(p[0] - p[3], p[1] - p[3], p[2] - p[3]);
    ox = o.x, oy = o.y, oz = o.z;
  }
};

void ExpectSame(GlCoord const& frame, Formula const& formula) {
  EXPECT_TRUE(SameBits(frame.GetOrigin(), TPoint(formula.ox, formula.oy, formula.oz)));
  EXPECT_TRUE(SameBits(TurnsOf(frame).x, formula.a));
  EXPECT_TRUE(SameBits(TurnsOf(frame).y, formula.b));
  EXPECT_TRUE(SameBits(TurnsOf(frame).z, formula.c));
}

double SomeAngle(FormulaInputs& in) {
  return in.Whole(0, 2) == 0 ? in.Whole(-8, 8) * HALF_PI : in.Between(-7, 7);
}

void MoveBoth(GlCoord& frame, Formula& formula, int axis, double d) {
  if (axis == 0) frame.MoveRight(d);
  if (axis == 1) frame.MoveUp(d);
  if (axis == 2) frame.MoveForward(d);
  if (d != 0) formula.Move(TPoint(axis == 0 ? d : 0, axis == 1 ? d : 0, axis == 2 ? -d : 0));
}

TEST(GlCoord, MovesAndTurnsFollowTheirFormulas) {
  FormulaInputs in;
  for (int run = 0; run < 100; ++run) {
    GlCoord frame;
    Formula formula;
    if (run % 2 == 0) {
      TPoint const origin = in.AnyPoint();
      frame.SetOrigin(origin);
      formula.ox = origin.x, formula.oy = origin.y, formula.oz = origin.z;
    }
    for (int step = 0; step < 30; ++step) {
      int const axis = in.Whole(0, 2);
      double const angle = SomeAngle(in);
      switch (in.Whole(0, 3)) {
        case 0:
          MoveBoth(frame, formula, axis, in.Whole(0, 1) == 0 ? in.Whole(-2, 2) : in.Number());
          break;
        case 1: {
          TPoint const about = in.AnyPoint();
          TPoint const through = in.AnyPoint();
          frame.Rotate(angle, about, through);
          formula.Turn(angle, about, through);
          break;
        }
        default:
          Turn(frame, axis, angle);
          if (angle != 0) formula.Turn(axis, angle);
      }
      ExpectSame(frame, formula);
      TPoint const p = in.AnyPoint();
      EXPECT_TRUE(SameBits(frame >> p, formula.Out(p)));
      EXPECT_TRUE(SameBits(frame << p, formula.In(p)));
      if (testing::Test::HasFailure()) return;
    }
  }
}

// --- In GL --------------------------------------------------------------------------------------

class GlCoordMatrix : public qeltin::testing::OffscreenDrawing {
 protected:
  using Matrix = std::array<double, 16>;  // column by column

  static Matrix Current() {
    Matrix matrix;
    glGetDoublev(GL_MODELVIEW_MATRIX, matrix.data());
    return matrix;
  }

  static GlCoord NearFrame(FormulaInputs& in) {
    GlCoord frame = SomeFrame(in);
    frame.SetOrigin(TPoint(1, -2, 3));
    return frame;
  }

  static TPoint Column(Matrix const& m, int i) { return {m[4 * i], m[4 * i + 1], m[4 * i + 2]}; }
};

TEST_F(GlCoordMatrix, MatrixTakesPointsFromTheFrameToItsParent) {
  FormulaInputs in;
  Draw([&] {
    for (int i = 0; i < 50; ++i) {
      GlCoord const frame = NearFrame(in);
      glLoadIdentity();
      frame.SetRC(&m_Context);
      Matrix const matrix = Current();
      ExpectNear(Column(matrix, 0), (frame >> TPoint(1, 0, 0)) - frame.GetOrigin(), 1e-5);
      ExpectNear(Column(matrix, 1), (frame >> TPoint(0, 1, 0)) - frame.GetOrigin(), 1e-5);
      ExpectNear(Column(matrix, 2), (frame >> TPoint(0, 0, 1)) - frame.GetOrigin(), 1e-5);
      ExpectNear(Column(matrix, 3), frame.GetOrigin(), 1e-5);
    }
  });
}

TEST_F(GlCoordMatrix, InverseRestoresTheMatrix) {
  FormulaInputs in;
  Draw([&] {
    for (int i = 0; i < 50; ++i) {
      GlCoord const frame = NearFrame(in);
      glLoadIdentity();
      NearFrame(in).SetRC(&m_Context);
      glTranslated(7, 8, 9);
      Matrix const before = Current();
      frame.SetRC(&m_Context);
      frame.ResetRC(&m_Context);
      Matrix const after = Current();
      for (int j = 0; j < 16; ++j) {
        EXPECT_NEAR(after[j], before[j], 1e-5) << j;
      }
    }
  });
}

}  // namespace
