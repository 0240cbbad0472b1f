#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qeltin/render/GlCoord.h"
#include "testing/gl/RecordingGl.h"

namespace {

using qeltin::testing::GlCall;
using qeltin::testing::TakeGlCalls;
using testing::ElementsAre;

constexpr double DEGREES = 57.295780181884766;

class GlCoordCalls : public testing::Test {
 protected:
  GlCoordCalls() {
    m_Frame.SetOrigin(TPoint(1.5, -2.25, 1e7 + 0.1));
    m_Frame.RotateAboutX(0.5);
    m_Frame.RotateAboutY(-0.25);
    m_Frame.RotateAboutZ(1.0);
    m_Frame.GetRotation(m_dX, m_dY, m_dZ);
    TakeGlCalls();
  }

  GlCoord m_Frame;
  double m_dX = 0.0;
  double m_dY = 0.0;
  double m_dZ = 0.0;
};

TEST_F(GlCoordCalls, FrameIsAppliedOriginFirst) {
  m_Frame.SetRC(nullptr);
  EXPECT_THAT(TakeGlCalls(), ElementsAre("glTranslated(1.5, -2.25, 10000000.1)",
                                         GlCall("glRotated", m_dX * DEGREES, 1, 0, 0),
                                         GlCall("glRotated", m_dY * DEGREES, 0, 1, 0),
                                         GlCall("glRotated", m_dZ * DEGREES, 0, 0, 1)));
}

TEST_F(GlCoordCalls, InverseIsAppliedOriginLast) {
  m_Frame.ResetRC(nullptr);
  EXPECT_THAT(TakeGlCalls(), ElementsAre(GlCall("glRotated", -m_dZ * DEGREES, 0, 0, 1),
                                         GlCall("glRotated", -m_dY * DEGREES, 0, 1, 0),
                                         GlCall("glRotated", -m_dX * DEGREES, 1, 0, 0),
                                         "glTranslated(-1.5, 2.25, -10000000.1)"));
}

TEST_F(GlCoordCalls, DegreesAreThoseOfTheSinglePrecisionFactor) {
  GlCoord frame;
  frame.RotateAboutZ(1.0);
  frame.SetRC(nullptr);
  EXPECT_EQ(TakeGlCalls().back(), "glRotated(57.295780181884766, 0, 0, 1)");
}

}  // namespace
