#include "qeltin/render/GlLight.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <type_traits>
#include <vector>

#include "testing/GlPeer.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using namespace qeltin::testing;
using Light = GlPeer::Light;

constexpr unsigned int FIRST = 0x4000;  // GL_LIGHT0
constexpr unsigned int NONE = 16383;

TEST(GlLight, IsMadeByAContextOnly) {
  EXPECT_FALSE(std::is_default_constructible_v<GlLight>);
  EXPECT_TRUE(std::has_virtual_destructor_v<GlLight>);
}

TEST(GlLight, HasItsDefaults) {
  Light const light;
  EXPECT_TRUE(light.IsEnabled());
  EXPECT_EQ(light.GetAmbientLight(), GlColor(0.5f, 0.5f, 0.5f, 1));
  EXPECT_EQ(light.GetDiffuseLight(), GlColor(0.5f, 0.5f, 0.5f, 1));
  EXPECT_EQ(light.GetSpecularLight(), GlColor(1, 1, 1, 1));
  EXPECT_EQ(light.GetCS().GetOrigin(), TPoint(0, 0, 0));
  EXPECT_EQ(GlLight::DEFAULT_AMBIENT, GlColor(0.5f, 0.5f, 0.5f, 1));
  EXPECT_EQ(GlLight::DEFAULT_DIFFUSE, GlColor(0.5f, 0.5f, 0.5f, 1));
  EXPECT_EQ(GlLight::DEFAULT_SPECULAR, GlColor(1, 1, 1, 1));
}

TEST(GlLight, TakesTheFirstFreeNumber) {
  auto first = std::make_unique<Light>();
  Light const second;
  EXPECT_EQ(GlPeer::NumberOf(*first), FIRST);
  EXPECT_EQ(GlPeer::NumberOf(second), FIRST + 1);
  first.reset();
  Light const third;
  EXPECT_EQ(GlPeer::NumberOf(third), FIRST);
}

TEST(GlLight, NinthHasNoNumber) {
  Light const eight[8];
  for (unsigned int i = 0; i < 8; ++i) EXPECT_EQ(GlPeer::NumberOf(eight[i]), FIRST + i);
  Light ninth;
  EXPECT_EQ(GlPeer::NumberOf(ninth), NONE);
  EXPECT_FALSE(ninth.ReserveLightNumber());
  EXPECT_EQ(GlPeer::NumberOf(ninth), NONE);
}

TEST(GlLight, LightWithoutANumberFreesNoneAtItsEnd) {
  Light const eight[8];
  { Light const ninth; }
  Light const tenth;
  EXPECT_EQ(GlPeer::NumberOf(tenth), NONE);
}

TEST(GlLight, ReservesOnceAnotherIsGone) {
  auto first = std::make_unique<Light>();
  Light const seven[7];
  Light ninth;
  first.reset();
  EXPECT_EQ(GlPeer::NumberOf(ninth), NONE);
  EXPECT_TRUE(ninth.ReserveLightNumber());
  EXPECT_EQ(GlPeer::NumberOf(ninth), FIRST);
}

Light Coloured() {
  Light light;
  light.Enable(false);
  light.SetAmbientLight(GlColor(0.1f, 0, 0, 1));
  light.SetDiffuseLight(GlColor(0.2f, 0, 0, 1));
  light.SetSpecularLight(GlColor(0.3f, 0, 0, 1));
  GlCoord cs;
  cs.SetOrigin(TPoint(1, 2, 3));
  light.SetCS(cs);
  return light;
}

void ExpectColoured(GlLight const& light) {
  EXPECT_FALSE(light.IsEnabled());
  EXPECT_EQ(light.GetAmbientLight(), GlColor(0.1f, 0, 0, 1));
  EXPECT_EQ(light.GetDiffuseLight(), GlColor(0.2f, 0, 0, 1));
  EXPECT_EQ(light.GetSpecularLight(), GlColor(0.3f, 0, 0, 1));
  EXPECT_EQ(light.GetCS().GetOrigin(), TPoint(1, 2, 3));
}

TEST(GlLight, CopyHasNoNumber) {
  Light const light = Coloured();
  Light const copy(light);
  ExpectColoured(copy);
  EXPECT_EQ(GlPeer::NumberOf(copy), NONE);
}

TEST(GlLight, AssignedLightKeepsItsNumber) {
  Light const first;
  Light light;
  GlLight const& coloured = Coloured();
  static_cast<GlLight&>(light) = coloured;
  ExpectColoured(light);
  EXPECT_EQ(GlPeer::NumberOf(light), FIRST + 1);
}

// --- What is seen -------------------------------------------------------------------------------

class GlLightPicture : public OffscreenDrawing {
 protected:
  void SetUp() override {
    OffscreenDrawing::SetUp();
    m_Context.EnableLighting(true);
    m_Context.EnableAmbientLight(false);
  }

  // A light of a given strength that has nothing but its direction.
  GlLight* AddLight(float strength) {
    GlLight* const light = m_Context.CreateLight();
    light->SetAmbientLight(GlColor(0, 0, 0, 1));
    light->SetDiffuseLight(GlColor(strength, strength, strength, 1));
    return light;
  }

  // Returns how bright a white square is that looks at `normal`.
  int Brightness(TPoint const& normal = TPoint(0, 0, 1)) {
    Picture const picture = Draw([&] {
      m_Context.SetVertexColor(GlColor::GLC_WHITE);
      m_Context.SetVertexNormal(normal);
      EmitSquare(WIDTH);
    });
    Rgb const middle = picture.At(WIDTH / 2, HEIGHT / 2);
    EXPECT_EQ(middle.red, middle.green);
    EXPECT_EQ(middle.red, middle.blue);
    return middle.red;
  }
};

TEST_F(GlLightPicture, WithoutLightsOnlyTheAmbientLightIsSeen) {
  EXPECT_EQ(Brightness(), 0);
  m_Context.EnableAmbientLight(true);
  m_Context.SetAmbientLight(GlColor(0.4f, 0.4f, 0.4f, 1));
  EXPECT_EQ(Brightness(), 102);
}

TEST_F(GlLightPicture, NinthLightIsDarkUntilAnotherIsGone) {
  std::vector<GlLight*> lights;
  for (int i = 1; i <= 8; ++i) {
    lights.push_back(AddLight(0.1f));
    EXPECT_NEAR(Brightness(), 25.5 * i, 1) << i;
  }
  AddLight(0.2f);
  EXPECT_NEAR(Brightness(), 204, 1);
  m_Context.DestroyLight(lights[0]);
  EXPECT_NEAR(Brightness(), 229.5, 1);
}

TEST_F(GlLightPicture, DisabledLightIsDark) {
  AddLight(0.2f);
  AddLight(0.4f)->Enable(false);
  EXPECT_EQ(Brightness(), 51);
}

TEST_F(GlLightPicture, LightFallsAlongTheAxisOfItsFrame) {
  GlLight* const light = AddLight(1.0f);
  for (double const angle : {0.0, 0.5, 1.0, 1.5, 2.0}) {
    GlCoord cs;
    cs.RotateAboutY(angle);
    light->SetCS(cs);
    EXPECT_NEAR(Brightness(), 255 * std::fmax(0, std::cos(angle)), 1.01) << angle;
    EXPECT_NEAR(Brightness(TPoint(std::sin(angle), 0, std::cos(angle))), 255, 1.01) << angle;
  }
}

TEST_F(GlLightPicture, LightGoesWithTheEye) {
  AddLight(1.0f);
  GlCoord eye;
  eye.RotateAboutX(1.0);
  eye.MoveForward(-EYE);
  m_pViewer->SetCS(eye);
  EXPECT_NEAR(Brightness(), 255 * std::cos(1.0), 1.01);
  EXPECT_NEAR(Brightness(TPoint(0, -std::sin(1.0), std::cos(1.0))), 255, 1.01);
}

TEST_F(GlLightPicture, OriginOfALightHasNoEffect) {
  GlLight* const light = AddLight(0.6f);
  GlCoord cs;
  cs.SetOrigin(TPoint(5000, -3000, -7000));
  light->SetCS(cs);
  EXPECT_EQ(Brightness(), 153);
}

}  // namespace
