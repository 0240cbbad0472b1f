#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qeltin/models/CModelManager.h"
#include "qeltin/models/CProfileList.h"
#include "qeltin/models/CTin.h"
#include "qeltin/platform/CQelUnitCnv.h"
#include "qeltin/tin/TIN.h"
#include "testing/ModelManagerPeer.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::ModelManagerPeer;
using qeltin::testing::TemporaryFolder;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

void ExpectSound(ITin const* tin) {
  auto const report = VerifySurface(*tin->GetTIN());
  EXPECT_TRUE(report.Ok()) << report;
}

// A manager and a folder with a survey of five points, the last in the middle.
class CModelManagerTins : public ::testing::Test {
 protected:
  CModelManagerTins() {
    folder.Put("a.xyz", "0,0,1\n100,0,2\n100,100,3\n0,100,4\n50,50,9\n");
    path = folder.Wide("a.xyz");
  }

  TemporaryFolder folder;
  std::wstring path;
  CModelManager manager;
  IPoint min = {0, 0, -5};
  IPoint max = {10, 20, 5};
};

// --- From a file --------------------------------------------------------------------------------

TEST_F(CModelManagerTins, SamePathGivesOneSurfaceUntilItsLastRelease) {
  ITin* const tin = manager.CreateTin(path.c_str());
  ASSERT_NE(tin, nullptr);
  EXPECT_EQ(manager.CreateTin(std::wstring(path).c_str()), tin);
  EXPECT_EQ(manager.GetNumberOfModels(), 1);
  EXPECT_EQ(manager.GetModelName(0), L"TI_PL>" + path + L"<");
  EXPECT_TRUE(manager.ReleaseTin(tin));
  EXPECT_EQ(manager.GetNumberOfModels(), 1);
  double z = 0;
  EXPECT_TRUE(tin->GetZ(50, 50, &z));
  EXPECT_EQ(z, 9.0);
  ExpectSound(tin);
  EXPECT_TRUE(manager.ReleaseTin(tin));
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
}

TEST_F(CModelManagerTins, PathInAnotherSpellingIsAnotherSurface) {
  folder.Put("A.XYZ", folder.Get("a.xyz"));
  ITin* const tin = manager.CreateTin(path.c_str());
  ITin* const upper = manager.CreateTin(folder.Wide("A.XYZ").c_str());
  ITin* const detour = manager.CreateTin(folder.Wide("./a.xyz").c_str());
  ASSERT_NE(upper, nullptr);
  ASSERT_NE(detour, nullptr);
  EXPECT_NE(upper, tin);
  EXPECT_NE(detour, tin);
  EXPECT_EQ(manager.GetNumberOfModels(), 3);
}

TEST_F(CModelManagerTins, FileOfASharedSurfaceIsNotReadAgain) {
  ITin* const tin = manager.CreateTin(path.c_str());
  folder.Put("a.xyz", "no survey");
  EXPECT_EQ(manager.CreateTin(path.c_str()), tin);
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, tin), 2);
}

TEST_F(CModelManagerTins, FileThatDoesNotLoadGivesNullAndNoEntry) {
  ITin* const tin = manager.CreateTin(path.c_str());
  ASSERT_NE(tin, nullptr);
  folder.Put("bad.tin", "QEL2000");
  for (char const* name : {"absent.xyz", "bad.tin", "absent.ttm"}) {
    EXPECT_EQ(manager.CreateTin(folder.Wide(name).c_str()), nullptr);
    EXPECT_EQ(manager.GetNumberOfModels(), 1);
  }
  EXPECT_EQ(manager.CreateTin(static_cast<wchar_t const*>(nullptr)), nullptr);
  EXPECT_EQ(manager.CreateTin(L""), nullptr);
  EXPECT_EQ(manager.GetNumberOfModels(), 1);
}

TEST_F(CModelManagerTins, ExtensionChoosesTheRoute) {
  ITin* const tin = manager.CreateTin(path.c_str());
  ASSERT_TRUE(tin->SaveTin(folder.Wide("a.TIN").c_str()));
  ITin* const stored = manager.CreateTin(folder.Wide("a.TIN").c_str());
  ASSERT_NE(stored, nullptr);
  double z = 0;
  EXPECT_TRUE(stored->GetZ(50, 50, &z));
  EXPECT_EQ(z, 9.0);
}

TEST_F(CModelManagerTins, NameStaysWhereTheSurfaceIsSavedOrLoadedElsewhere) {
  ITin* const tin = manager.CreateTin(path.c_str());
  std::wstring const other = folder.Wide("b.xyz");
  EXPECT_TRUE(tin->SaveXYZ(other.c_str()));
  EXPECT_TRUE(tin->LoadXYZ(other.c_str()));
  EXPECT_EQ(manager.GetModelName(0), L"TI_PL>" + path + L"<");
  EXPECT_NE(manager.CreateTin(other.c_str()), tin);
}

TEST_F(CModelManagerTins, MatchingNameWithoutAModelIsPassedOver) {
  ModelManagerPeer::Insert(manager, (L"TI_PL>" + path + L"<").c_str(), nullptr, 3);
  ITin* const tin = manager.CreateTin(path.c_str());
  ASSERT_NE(tin, nullptr);
  EXPECT_EQ(manager.GetNumberOfModels(), 2);
}

TEST_F(CModelManagerTins, PathOfAnyLengthIsAName) {
  std::wstring const missing(70000, L'x');
  EXPECT_EQ(manager.CreateTin(missing.c_str()), nullptr);
  std::wstring longest = folder.Wide("");
  while (longest.size() < 3000) longest += L"./";
  longest += L"a.xyz";
  ITin* const tin = manager.CreateTin(longest.c_str());
  ASSERT_NE(tin, nullptr);
  EXPECT_EQ(manager.CreateTin(longest.c_str()), tin);
  EXPECT_EQ(manager.GetModelName(0), L"TI_PL>" + longest + L"<");
}

TEST_F(CModelManagerTins, OnlySurfacesFromFilesGetTheUnitConverter) {
  CQelUnitCnv converter;
  manager.SetUnitConverter(&converter);
  std::vector<IPoint> points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  CProfile profile;
  profile.AddSounding(1, 1, 1, 0, 0);
  CProfileList profiles;
  profiles.AddProfile(&profile);
  ITin* const unregistered = manager.CreateTin(&points);
  ITin* const tins[] = {manager.CreateTin(path.c_str()), unregistered, manager.CreateTin(&profiles),
                        manager.CreateTin(min, max, 1)};
  for (ITin* tin : tins) {
    CQelUnitCnv* const expected = tin == tins[0] ? &converter : nullptr;
    EXPECT_EQ(dynamic_cast<CTin*>(tin)->GetUnitConverter(), expected);
    EXPECT_EQ(TINPeer::UnitConverter(*tin->GetTIN()), expected);
  }
  manager.ReleaseTin(unregistered);
}

// --- From bounds --------------------------------------------------------------------------------

TEST_F(CModelManagerTins, BoundsWithoutPointsGiveNull) {
  EXPECT_EQ(manager.CreateTin(min, max, 0), nullptr);
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
}

TEST_F(CModelManagerTins, EveryCallWithBoundsMakesASurfaceOfTheSameName) {
  ITin* const first = manager.CreateTin(min, max, 7);
  ITin* const second = manager.CreateTin(min, max, 7);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(manager.GetNumberOfModels(), 2);
  EXPECT_STREQ(manager.GetModelName(0), L"TI_PL>Fixed Tin<");
  EXPECT_STREQ(manager.GetModelName(1), L"TI_PL>Fixed Tin<");
  EXPECT_EQ(first->GetNumPoints(), 0);
  EXPECT_EQ(TINPeer::Points(*first->GetTIN())->m_iCapacity, 7 + 1004);
}

TEST_F(CModelManagerTins, PathFixedTinNamesTheFirstSurfaceFromBounds) {
  ITin* const first = manager.CreateTin(min, max, 7);
  ITin* const second = manager.CreateTin(min, max, 7);
  EXPECT_EQ(manager.CreateTin(L"Fixed Tin"), first);
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, first), 2);
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, second), 1);
}

TEST_F(CModelManagerTins, SurfaceFromBoundsTakesPointsAndAnswersHeights) {
  ITin* const tin = manager.CreateTin(min, max, 3);
  EXPECT_TRUE(tin->AddPoint(1, 1, 4));
  EXPECT_TRUE(tin->AddPoint(9, 1, 4));
  EXPECT_TRUE(tin->AddPoint(5, 9, 4));
  EXPECT_FALSE(tin->AddPoint(500, 9, 4));
  double z = 0;
  EXPECT_TRUE(tin->GetZ(5, 5, &z));
  EXPECT_EQ(z, 4.0);
  ExpectSound(tin);
}

// --- From points --------------------------------------------------------------------------------

TEST_F(CModelManagerTins, SurfaceOfPointsIsNotRegistered) {
  std::vector<IPoint> points = {{0, 0, 1}, {100, 0, 2}, {30, 80, 3}, {40, 30, 4}};
  ITin* const tin = manager.CreateTin(&points);
  ASSERT_NE(tin, nullptr);
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
  EXPECT_EQ(tin->GetNumPoints(), 8);
  double z = 0;
  EXPECT_TRUE(tin->GetZ(40, 30, &z));
  EXPECT_EQ(z, 4.0);
  ExpectSound(tin);
  EXPECT_TRUE(manager.ReleaseTin(tin));
}

TEST_F(CModelManagerTins, NoPointsGiveAnEmptySurface) {
  std::vector<IPoint> points;
  ITin* const tin = manager.CreateTin(&points);
  ASSERT_NE(tin, nullptr);
  EXPECT_EQ(tin->GetNumPoints(), 0);
  EXPECT_EQ(tin->GetNumTriangles(), 0);
  EXPECT_TRUE(manager.DestroyTin(tin));
}

// --- From profiles ------------------------------------------------------------------------------

class NamedProfile : public CProfile {
 public:
  NamedProfile(wchar_t const* line, wchar_t const* second) {
    SetInfo(0, 0, L"", line, 0, 1);
    SetSecondName(second);
    AddSounding(1, 2, 3, 0, 0);
    SetExtentsFromPoints();
  }
};

TEST_F(CModelManagerTins, EmptyProfileListGivesNull) {
  CProfileList none;
  EXPECT_EQ(manager.CreateTin(&none), nullptr);
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
}

TEST_F(CModelManagerTins, ProfilesWithoutPointsGiveNull) {
  CProfile a;
  CProfile b;
  CProfileList list;
  list.AddProfile(&a);
  list.AddProfile(&b);
  EXPECT_EQ(manager.CreateTin(&list), nullptr);
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
}

TEST_F(CModelManagerTins, SameProfilesInTheSameOrderGiveOneSurface) {
  NamedProfile a(L"A", L"x");
  NamedProfile b(L"B", L"y");
  CProfileList ab;
  CProfileList again;
  CProfileList ba;
  for (CProfile* profile : {&a, &b}) ab.AddProfile(profile);
  for (CProfile* profile : {&a, &b}) again.AddProfile(profile);
  for (CProfile* profile : {&b, &a}) ba.AddProfile(profile);
  ITin* const tin = manager.CreateTin(&ab);
  ASSERT_NE(tin, nullptr);
  EXPECT_EQ(manager.CreateTin(&again), tin);
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, tin), 2);
  EXPECT_NE(manager.CreateTin(&ba), tin);
  ASSERT_EQ(manager.GetNumberOfModels(), 2);
  EXPECT_STREQ(manager.GetModelName(0), L"TI_PL>AxBy<");
  EXPECT_STREQ(manager.GetModelName(1), L"TI_PL>ByAx<");
}

TEST_F(CModelManagerTins, NamesOfProfilesAreJoinedWithoutASeparator) {
  NamedProfile first(L"Harb", L"our");
  NamedProfile second(L"Harbour", L"");
  CProfileList a;
  CProfileList b;
  a.AddProfile(&first);
  b.AddProfile(&second);
  ITin* const tin = manager.CreateTin(&a);
  EXPECT_EQ(manager.CreateTin(&b), tin);
  EXPECT_EQ(manager.CreateTin(L"Harbour"), tin);
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, tin), 3);
}

TEST_F(CModelManagerTins, EmptyListFindsASurfaceOfNamelessProfiles) {
  CProfile nameless;
  nameless.AddSounding(1, 2, 3, 0, 0);
  CProfileList list;
  list.AddProfile(&nameless);
  CProfileList none;
  ITin* const tin = manager.CreateTin(&list);
  ASSERT_NE(tin, nullptr);
  EXPECT_STREQ(manager.GetModelName(0), L"TI_PL><");
  EXPECT_EQ(manager.CreateTin(&none), tin);
}

}  // namespace
