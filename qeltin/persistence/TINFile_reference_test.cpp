#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/VerifySurface.h"
#include "testing/reference/NativeImage.h"
#include "testing/reference/TwinScript.h"

// The native writer against its plain version, which looks ordinals up in ordered maps: the same
// bytes. Twin::SaveAndLoad compares them, and what is loaded from them.

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::AT_UTM;
using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::ModelOf;
using qeltin::testing::NativeImage;
using qeltin::testing::NativeVersion3;
using qeltin::testing::ReferenceTin;
using qeltin::testing::Survey;
using qeltin::testing::TemporaryFolder;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::Twin;
using qeltin::testing::TwinScript;

class NativeWriterReference : public ::testing::TestWithParam<Survey> {};

TEST_P(NativeWriterReference, WritesTheSameBytesAndLoadsTheSameSurface) {
  std::vector<TPoint> const points = MakeSurvey(GetParam(), 1500, TestSeed(), AT_UTM);
  Extent const extent = ExtentOf(points);
  Twin twin(1 << 30);
  twin.Init(1500, extent.min, extent.max);
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i % 500 == 100) twin.SaveAndLoad();
    twin.AddPoint(points[i]);
  }
  twin.SaveAndLoad();
  twin.Compare();
  EXPECT_EQ(twin.Fault(), "");
}

INSTANTIATE_TEST_SUITE_P(All, NativeWriterReference, ::testing::ValuesIn(ALL_SURVEYS),
                         [](auto const& survey) { return std::string(NameOf(survey.param)); });

TEST(NativeWriterReferenceEdge, SlotsThatAreNotLiveAreWrittenAsMinusOne) {
  Dice dice(TestSeed());
  for (int run = 0; run < 200; ++run) {
    TwinScript script =
        TwinScript::Draw(dice, {.addFrom = 20, .release = 5, .removeAll = 2, .saveAndLoad = 10});
    script.calls.push_back(
        {.kind = qeltin::testing::TwinCall::SaveAndLoad, .p = {}, .position = 1});
    ASSERT_EQ(script.Play(), "") << script.Shrunk();
  }
}

// The writer hands on some thousands of records at once, and need not look for a triangle whose
// position is its slot.
TEST(NativeWriterReferenceEdge, AFileOfAnyLengthIsWhole) {
  constexpr int BLOCK = 16'384;
  constexpr int SEED_CORNERS = 4;
  TemporaryFolder const folder;
  for (int count : {BLOCK / 2 - 1, BLOCK - SEED_CORNERS, BLOCK - SEED_CORNERS + 1}) {
    std::vector<TPoint> const points = MakeSurvey(Survey::Uniform, count, TestSeed(), AT_UTM);
    Extent const extent = ExtentOf(points);
    TIN tin;
    tin.Init(count, extent.min, extent.max);
    for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
    tin.Triangulate();
    ASSERT_EQ(tin.GetNumberOfPoints(), count + SEED_CORNERS);
    ASSERT_EQ(tin.GetNumberOfTriangles(), 2 * count + 2);
    for (bool shuffled : {false, true}) {
      if (shuffled) TINPeer::Triangles(tin)->Shuffle();
      ASSERT_TRUE(tin.SaveTin(folder.Wide("any.tin").c_str()));
      ASSERT_TRUE(folder.Get("any.tin") == NativeVersion3(ModelOf(tin))) << count;
    }
  }
}

TEST(NativeWriterReferenceEdge, ASurfaceWithoutPoolsIsAHeaderOf120Bytes) {
  TemporaryFolder const folder;
  EXPECT_TRUE(TIN().SaveTin(folder.Wide("empty.tin").c_str()));
  std::string const bytes = folder.Get("empty.tin");
  EXPECT_EQ(bytes.size(), 120u);
  EXPECT_EQ(bytes, NativeImage(ReferenceTin()));
}

}  // namespace
