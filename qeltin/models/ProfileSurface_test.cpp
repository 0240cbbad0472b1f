#include "qeltin/models/ProfileSurface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "qeltin/models/CProfileList.h"
#include "qeltin/tin/TIN.h"
#include "testing/ExpectSound.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"

namespace {

using qeltin::detail::MakeSurface;
using qeltin::testing::ExpectSound;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;

// Profiles and the list of them.
class Profiles {
 public:
  Profiles() = default;

  // Cuts a survey into profiles of 100 soundings.
  explicit Profiles(std::vector<TPoint> const& points) {
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (i % 100 == 0) Add();
      m_Profiles.back()->AddSounding(points[i].x, points[i].y, points[i].z, 0, 0);
    }
    for (auto const& profile : m_Profiles) profile->SetExtentsFromPoints();
  }

  CProfile& Add() {
    m_Profiles.push_back(std::make_unique<CProfile>());
    m_List.AddProfile(m_Profiles.back().get());
    return *m_Profiles.back();
  }

  // The soundings as the surface gets them, in their order.
  std::vector<TPoint> Points() const {
    std::vector<TPoint> points;
    for (auto const& profile : m_Profiles) {
      for (int i = 0; i < profile->GetNumPoints(); ++i) {
        TPoint p;
        profile->GetPoint(i, &p.x, &p.y, &p.z);
        points.push_back(p);
      }
    }
    return points;
  }

  CProfileList const& List() const { return m_List; }

 private:
  std::vector<std::unique_ptr<CProfile>> m_Profiles;
  CProfileList m_List;
};

std::vector<TPoint> LiveOrder(TIN const& tin) {
  std::vector<TPoint> points;
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) points.push_back(*tin.GetPoint(i));
  return points;
}

std::vector<TPoint> Sorted(std::vector<TPoint> points) {
  std::sort(points.begin(), points.end());
  return points;
}

// Adds the points one at a time to an empty surface. REQUIRES: points within the data bounds of
// `like`.
void AddOneByOne(TIN& tin, TIN const& like, std::vector<TPoint> const& points) {
  TPoint min;
  TPoint max;
  like.GetBounds(min, max);
  tin.Init(static_cast<int>(points.size()), min, max);
  for (TPoint const& p : points) tin.AddPoint(p);
}

void ExpectSameTriangles(TIN const& a, TIN const& b) {
  ASSERT_EQ(a.GetNumberOfTriangles(), b.GetNumberOfTriangles());
  for (int i = 0; i < a.GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *a.GetTriangle(i, true);
    TTriangle const& u = *b.GetTriangle(i, true);
    ASSERT_EQ(t.m_Flags, u.m_Flags) << i;
    for (int k = 0; k < 3; ++k) ASSERT_EQ(*t.GetPoint(k), *u.GetPoint(k)) << i;
  }
}

TEST(ProfileSurface, NoSoundingsGiveNoSurface) {
  Profiles profiles;
  EXPECT_EQ(MakeSurface(profiles.List()), nullptr);
  profiles.Add();
  profiles.Add();
  EXPECT_EQ(MakeSurface(profiles.List()), nullptr);
}

TEST(ProfileSurface, SoundingsOfAllProfilesStandBehindTheSeedCorners) {
  Profiles const profiles(MakeSurvey(Survey::Uniform, 950, TestSeed()));
  auto const tin = MakeSurface(profiles.List());
  ASSERT_EQ(tin->GetNumberOfPoints(), 4 + 950);
  EXPECT_EQ(tin->GetNumberOfTriangles(), 2 + 2 * 950);
  TPoint min;
  TPoint max;
  tin->GetWorldBounds(min, max);
  EXPECT_EQ(*tin->GetPoint(0), TPoint(min.x, min.y, 0));
  EXPECT_EQ(*tin->GetPoint(1), TPoint(max.x, min.y, 0));
  EXPECT_EQ(*tin->GetPoint(2), TPoint(max.x, max.y, 0));
  EXPECT_EQ(*tin->GetPoint(3), TPoint(min.x, max.y, 0));
  std::vector<TPoint> live = LiveOrder(*tin);
  live.erase(live.begin(), live.begin() + 4);
  EXPECT_EQ(Sorted(live), Sorted(profiles.Points()));
  TArray<TPoint> const& pool = *TINPeer::Points(*tin);
  EXPECT_EQ(pool.m_iCapacity, 950 + 1004);
  for (int i = 0; i < pool.m_iCapacity; ++i) ASSERT_EQ(pool.m_pIndex[i], i);
  ExpectSound(*tin);
}

TEST(ProfileSurface, OrderOfPointsDiffersFromBuildToBuildAndTheTrianglesAgree) {
  for (int const count : {200, 9000}) {
    Profiles const profiles(MakeSurvey(Survey::Uniform, count, TestSeed()));
    auto const first = MakeSurface(profiles.List());
    auto const second = MakeSurface(profiles.List());
    EXPECT_NE(LiveOrder(*first), LiveOrder(*second));
    auto const triangles = [](TIN const& tin) {
      std::set<std::vector<TPoint>> result;
      for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
        TTriangle const& t = *tin.GetTriangle(i, true);
        result.insert(Sorted({*t.GetPoint(0), *t.GetPoint(1), *t.GetPoint(2)}));
      }
      return result;
    };
    EXPECT_EQ(triangles(*first), triangles(*second));
    ExpectSound(*first);
    ExpectSound(*second);
  }
}

TEST(ProfileSurface, IsWhatInsertionOneByOneInItsLiveOrderGives) {
  for (int const count : {1000, 20000}) {
    std::vector<TPoint> points = MakeSurvey(Survey::Uniform, count, TestSeed());
    for (std::size_t i = 0; i < 300; ++i) points[i * 3 + 1] = points[i * 3];  // repeated soundings
    for (std::size_t i = 0; i < 300; ++i) points[i * 3 + 1].z += 1.0;
    Profiles const profiles(points);
    auto const tin = MakeSurface(profiles.List());
    std::vector<TPoint> live = LiveOrder(*tin);
    ASSERT_EQ(live.size(), points.size() + 4);
    live.erase(live.begin(), live.begin() + 4);

    TIN stated;
    AddOneByOne(stated, *tin, live);
    EXPECT_EQ(LiveOrder(stated), LiveOrder(*tin));
    ExpectSameTriangles(stated, *tin);
    ExpectSound(*tin);
  }
}

TEST(ProfileSurface, EverySurveyGivesASoundSurface) {
  std::uint64_t const seed = TestSeed();
  for (Survey const survey : qeltin::testing::ALL_SURVEYS) {
    SCOPED_TRACE(survey);
    Profiles const profiles(MakeSurvey(survey, 2000, seed));
    auto const tin = MakeSurface(profiles.List());
    TIN stated;
    AddOneByOne(stated, *tin, profiles.Points());
    EXPECT_EQ(tin->GetNumberOfPoints(), stated.GetNumberOfPoints());
    ExpectSound(*tin);
  }
}

TEST(ProfileSurface, DataBoundsAreTheStoredExtentsInSinglePrecision) {
  Profiles profiles;
  CProfile& a = profiles.Add();
  a.AddSounding(50, 50, 7, 0, 0);
  a.SetExtents(0.1, 90.3, -0.1, 80.7, -9.9, 9.9);
  profiles.Add().SetExtents(20, 100.1, 30, 40, -77.7,
                            3);  // no soundings, and yet its extents count
  auto const tin = MakeSurface(profiles.List());
  auto const widened = [](double value) -> double { return static_cast<float>(value); };
  TPoint const low(widened(0.1), widened(-0.1), widened(-77.7));
  TPoint const high(widened(100.1), widened(80.7), widened(9.9));
  TPoint min;
  TPoint max;
  tin->GetBounds(min, max);
  EXPECT_EQ(min, low);
  EXPECT_EQ(max, high);
  tin->GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(low.x - 10 * (high.x - low.x), low.y - 10 * (high.y - low.y),
                        low.z - 10 * (high.z - low.z)));
  EXPECT_EQ(max, TPoint(high.x + 10 * (high.x - low.x), high.y + 10 * (high.y - low.y),
                        high.z + 10 * (high.z - low.z)));
}

TEST(ProfileSurface, SoundingBeyondTheWorldBoxIsDropped) {
  Profiles profiles;
  CProfile& profile = profiles.Add();
  profile.SetExtents(0, 10, 0, 10, 0, 10);
  for (double const x : {5.0, 109.0, 110.5, -101.0}) profile.AddSounding(x, 5, 1, 0, 0);
  auto const tin = MakeSurface(profiles.List());
  EXPECT_EQ(tin->GetNumberOfPoints(), 4 + 2);
  TPoint min;
  TPoint max;
  tin->GetBounds(min, max);
  EXPECT_EQ(max.x, 109.0);
  ExpectSound(*tin);
}

TEST(ProfileSurface, SoundingsAreTakenWithTheBases) {
  Profiles profiles;
  CProfile& profile = profiles.Add();
  profile.SetBase(500000.25, 5900000.5, 0);
  profile.AddPoint({1.5F, 2.5F, 3.5F, 0.0F, 0.0F});
  profile.SetExtents(499990, 500010, 5899990, 5900010, 0, 9);
  auto const tin = MakeSurface(profiles.List());
  ASSERT_EQ(tin->GetNumberOfPoints(), 5);
  EXPECT_EQ(*tin->GetPoint(4), TPoint(500001.75, 5900003, 3.5));
  ExpectSound(*tin);
}

TEST(ProfileSurface, ExtentsThatAreNoNumbersWidenNothing) {
  double const n = std::numeric_limits<double>::quiet_NaN();
  Profiles profiles;
  CProfile& profile = profiles.Add();
  profile.SetExtents(n, n, n, n, n, n);
  profile.AddSounding(1, 2, 3, 0, 0);
  auto const tin = MakeSurface(profiles.List());
  ASSERT_NE(tin, nullptr);
  TPoint min;
  TPoint max;
  tin->GetBounds(min, max);
  EXPECT_EQ(min, TPoint(LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT));
  EXPECT_EQ(max, TPoint(-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT));
  EXPECT_EQ(tin->GetNumberOfPoints(), 0);
}

TEST(ProfileSurface, ExtentsThatWereNeverSetLeaveNoRoom) {
  Profiles profiles;
  CProfile& profile = profiles.Add();
  profile.AddSounding(1, 2, 3, 0, 0);
  auto const tin = MakeSurface(profiles.List());
  ASSERT_NE(tin, nullptr);
  EXPECT_EQ(tin->GetNumberOfPoints(), 0);
  EXPECT_EQ(tin->AddPoint(1, 2, 3), nullptr);
}

}  // namespace
