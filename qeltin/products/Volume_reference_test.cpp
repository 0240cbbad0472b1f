#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "qeltin/platform/Utf8.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/TemporaryFolder.h"
#include "testing/reference/NativeImage.h"
#include "testing/reference/StatedVolume.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SameBits;
using qeltin::testing::TemporaryFolder;
using qeltin::testing::TestSeed;

double AnyHeight(Dice& dice, double z) {
  switch (dice.Below(4)) {
    case 0:
      return 0.0;
    case 1:
      return dice.Below(5) - 2;
    case 2:
      return dice.Between(-3.0, 3.0);
    default:
      return z;
  }
}

void MakeAnySurface(Dice& dice, TIN& tin) {
  auto points = MakeSurvey(qeltin::testing::ALL_SURVEYS[dice.Below(13)], 3 + dice.Below(300),
                           dice.Bits(), qeltin::testing::PLACES[dice.Below(2)].frame);
  for (TPoint& p : points) p.z = AnyHeight(dice, p.z);
  auto const box = ExtentOf(points);
  tin.Init(static_cast<int>(points.size()), box.min, box.max);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
  if (dice.OneIn(3)) tin.FilterTriangles((box.max.x - box.min.x) * dice.Unit());
}

// Two surfaces that are the same, slot by slot.
class Pair {
 public:
  explicit Pair(TIN const& both) {
    both.SaveTin(m_Folder.Wide("both.tin").c_str());
    for (TIN* twin : {&ours, &stated}) EXPECT_TRUE(twin->Load(m_Folder.Wide("both.tin").c_str()));
  }

  void LoseHeights(Dice& dice) {
    for (int i = 0; i < ours.GetNumberOfPoints(); ++i) {
      if (!dice.OneIn(5)) continue;
      ours.GetPoint(i)->z = std::numeric_limits<double>::quiet_NaN();
      stated.GetPoint(i)->z = std::numeric_limits<double>::quiet_NaN();
    }
  }

  // Measures both. Returns whether the results are the same; what ours is stands in `above`.
  ::testing::AssertionResult Measure(TPolygon const& boundary, double& above) {
    double volumes[2] = {-7, -7};
    double expected[2] = {-7, -7};
    std::srand(1);
    bool const result = ours.CalculateVolume(&boundary, &volumes[0], &volumes[1]);
    std::srand(1);
    if (result !=
        qeltin::testing::stated::CalculateVolume(stated, boundary, expected[0], expected[1])) {
      return ::testing::AssertionFailure() << "result " << result;
    }
    above = result ? volumes[1] : 0.0;
    if (auto below = SameBits(volumes[0], expected[0]); !below) return below << " below";
    return SameBits(volumes[1], expected[1]);
  }

  bool AreSame() const { return Image(ours) == Image(stated); }

  TIN ours;
  TIN stated;

 private:
  std::string Image(TIN const& tin) const {
    tin.SaveTin(m_Folder.Wide("one.tin").c_str());
    std::string image = m_Folder.Get("one.tin");
    qeltin::testing::ClearUnusedBytes(image);
    return image;
  }

  TemporaryFolder m_Folder;
};

// A place in and around a surface: anywhere, far off, at a vertex, near one, on a side.
TPoint AnyPlace(Dice& dice, TIN const& tin) {
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  double const reach = dice.OneIn(15) ? 20.0 : 0.2;
  TPoint const& vertex = *tin.GetPoint(dice.Below(tin.GetNumberOfPoints() - 4));
  switch (dice.Below(4)) {
    case 0:
      return vertex;
    case 1:
      return {vertex.x + dice.Between(-0.002, 0.002), vertex.y + dice.Between(-0.002, 0.002)};
    case 2: {
      TTriangle const& t = *tin.GetTriangle(dice.Below(tin.GetNumberOfTriangles()), true);
      return (*t.m_pVertex[0] + *t.m_pVertex[1]) / 2;
    }
    default:
      return {min.x + (max.x - min.x) * dice.Between(-reach, 1 + reach),
              min.y + (max.y - min.y) * dice.Between(-reach, 1 + reach)};
  }
}

TPolygon AnyBoundary(Dice& dice, TIN const& tin) {
  std::vector<TPoint> places;
  for (int i = dice.OneIn(20) ? dice.Below(3) : 3 + dice.Below(12); i > 0; --i) {
    places.push_back(AnyPlace(dice, tin));
    if (dice.OneIn(8)) places.push_back(places.back());
  }
  if (dice.OneIn(3) && !places.empty()) {  // around a place, so that it does not cross itself
    TPoint const middle = places.front();
    std::sort(places.begin(), places.end(), [&middle](TPoint const& a, TPoint const& b) {
      return (a - middle).XY_Angle() < (b - middle).XY_Angle();
    });
  }
  if (!dice.OneIn(3) && !places.empty()) places.push_back(places.front());
  return {places};
}

TEST(Volume, AgreesWithThePlainWayOnRandomFigures) {
  Dice dice(TestSeed());
  int inserted = 0;
  int inside = 0;
  for (int round = 0; round < 600; ++round) {
    TIN tin;
    MakeAnySurface(dice, tin);
    Pair pair(tin);
    if (dice.OneIn(10)) pair.LoseHeights(dice);
    TPolygon const first = AnyBoundary(dice, pair.ours);
    for (int call = 0; call < 3; ++call) {
      int const points = pair.ours.GetNumberOfPoints();
      double above = 0.0;
      ASSERT_TRUE(pair.Measure(dice.OneIn(2) ? first : AnyBoundary(dice, pair.ours), above))
          << "round " << round;
      if (pair.ours.GetNumberOfPoints() > points) ++inserted;
      if (above != 0.0) ++inside;
    }
    ASSERT_TRUE(pair.AreSame()) << "round " << round;
  }
  EXPECT_GT(inserted, 500);
  EXPECT_GT(inside, 600);
}

TEST(Volume, AgreesWithThePlainWayOnRealSurveys) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  Dice dice(TestSeed());
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".xyz") continue;
    SCOPED_TRACE(entry.path());
    TIN tin;
    ASSERT_TRUE(tin.Load(qeltin::FromUtf8(entry.path().native()).c_str()));
    Pair pair(tin);
    for (int call = 0; call < 6; ++call) {
      double above = 0.0;
      ASSERT_TRUE(pair.Measure(AnyBoundary(dice, pair.ours), above));
    }
    EXPECT_TRUE(pair.AreSame());
  }
}

}  // namespace
