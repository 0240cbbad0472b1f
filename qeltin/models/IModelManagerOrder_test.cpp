#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qeltin/models/CProfile.h"
#include "qeltin/models/CProfileList.h"
#include "qeltin/models/IContour.h"
#include "qeltin/models/ILineList.h"
#include "qeltin/models/ITin.h"
#include "testing/TemporaryFolder.h"
#include "testing/models/frozen/CModelManager.h"

// This file is a host of long ago: it was compiled against an interface that is never changed, and
// calls the library of today through it.
namespace {

using qeltin::testing::TemporaryFolder;

IModelManager& Manager() { return CModelManager::GetTinModelManager(); }

TEST(IModelManagerOrder, Paths) {
  Manager().SetPath(L"first");
  EXPECT_STREQ(Manager().SetPath(L"second"), L"first");
  EXPECT_STREQ(Manager().GetPath(), L"second");
  EXPECT_STREQ(Manager().SetPath(L""), L"second");
}

TEST(IModelManagerOrder, ProfileLists) {
  IProfileList* const released = Manager().CreateProfileList();
  ASSERT_NE(dynamic_cast<CProfileList*>(released), nullptr);
  CProfile profile;
  EXPECT_TRUE(static_cast<CProfileList*>(released)->AddProfile(&profile));
  EXPECT_EQ(Manager().CreateTin(released), nullptr);
  EXPECT_TRUE(Manager().ReleaseProfileList(released));
  EXPECT_TRUE(Manager().DestroyProfileList(Manager().CreateProfileList()));
  EXPECT_TRUE(Manager().ReleaseProfile(&profile));
  EXPECT_TRUE(Manager().DestroyProfile(&profile));
}

TEST(IModelManagerOrder, LineLists) {
  ILineList* const lines = Manager().CreateLineList();
  EXPECT_TRUE(lines->AddLine(L"Harbour", 0, 0, 1, 1));
  EXPECT_EQ(lines->GetNumLines(), 1);
  EXPECT_TRUE(Manager().DestroyLineList(lines));
}

TEST(IModelManagerOrder, Surfaces) {
  std::vector<IPoint> points = {{0, 0, 1}, {9, 0, 2}, {0, 9, 3}};
  ITin* const of_points = Manager().CreateTin(&points);
  EXPECT_EQ(of_points->GetNumPoints(), 7);
  EXPECT_EQ(Manager().GetNumberOfModels(), 0);
  EXPECT_TRUE(Manager().ReleaseTin(of_points));

  CProfile profile;
  profile.SetInfo(0, 0, L"", L"Line 7", 0, 1);
  profile.AddSounding(4, 5, 6, 0, 0);
  profile.SetExtents(0, 9, 0, 9, 0, 9);
  CProfileList list;
  list.AddProfile(&profile);
  ITin* const of_profiles = Manager().CreateTin(static_cast<IProfileList*>(&list));
  EXPECT_EQ(of_profiles->GetNumPoints(), 5);
  EXPECT_STREQ(Manager().GetModelName(0), L"TI_PL>Line 7<");

  TemporaryFolder folder;
  folder.Put("a.xyz", "0,0,1\n9,0,2\n0,9,3\n4,4,4\n");
  ITin* const of_file = Manager().CreateTin(folder.Wide("a.xyz").c_str());
  EXPECT_EQ(of_file->GetNumPoints(), 8);

  IPoint min = {0, 0, 0};
  IPoint max = {9, 9, 9};
  ITin* const empty = Manager().CreateTin(min, max, 10);
  EXPECT_EQ(empty->GetNumPoints(), 0);
  EXPECT_EQ(Manager().GetNumberOfModels(), 3);
  EXPECT_STREQ(Manager().GetModelName(2), L"TI_PL>Fixed Tin<");

  EXPECT_EQ(Manager().PurgeProfiles(), 0);
  Manager().SetShowPoints(3, 4);
  EXPECT_TRUE(Manager().ReleaseTin(of_profiles));
  EXPECT_TRUE(Manager().DestroyTin(of_file));
  EXPECT_TRUE(Manager().DestroyTin(empty));
  EXPECT_EQ(Manager().GetNumberOfModels(), 0);
}

TEST(IModelManagerOrder, Contours) {
  std::vector<IPoint> points = {{0, 0, 1}, {9, 0, 2}, {0, 9, 3}, {2, 2, 4}};
  ITin* const tin = Manager().CreateTin(&points);
  EXPECT_EQ(Manager().CreateContour(nullptr, 2.5), nullptr);
  IContour* const released = Manager().CreateContour(tin, 3.5);
  EXPECT_EQ(released->GetNumLines(), 1);
  EXPECT_TRUE(Manager().ReleaseContour(released));
  EXPECT_TRUE(Manager().DestroyContour(Manager().CreateContour(tin, 3.5)));
  EXPECT_TRUE(Manager().ReleaseTin(tin));
}

}  // namespace
