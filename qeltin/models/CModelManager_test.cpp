#include "qeltin/models/CModelManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "qeltin/models/CLineList.h"
#include "qeltin/models/CProfileList.h"
#include "qeltin/models/ITin.h"
#include "qeltin/platform/CQelUnitCnv.h"
#include "testing/ModelManagerPeer.h"
#include "testing/models/WatchedModels.h"

namespace {

using qeltin::testing::Ends;
using qeltin::testing::ModelManagerPeer;
using qeltin::testing::NewProfile;
using qeltin::testing::NewTin;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::wstring> Names(CModelManager const& manager) {
  std::vector<std::wstring> names;
  for (long i = 0; i < manager.GetNumberOfModels(); ++i) names.push_back(manager.GetModelName(i));
  return names;
}

ITin* NewFixedTin(CModelManager& manager) {
  IPoint min = {0, 0, 0};
  IPoint max = {10, 10, 10};
  return manager.CreateTin(min, max, 10);
}

// --- The manager itself -------------------------------------------------------------------------

TEST(CModelManager, IsOneForTheProcess) {
  EXPECT_EQ(&CModelManager::GetTinModelManager(), &CModelManager::GetTinModelManager());
  EXPECT_EQ(CModelManager::GetTinModelManager().GetNumberOfModels(), 0);
}

TEST(CModelManager, CreateDoesNothingAndAnswersTrue) {
  CModelManager manager;
  EXPECT_TRUE(manager.Create());
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
}

TEST(CModelManager, SetShowPointsHasNoEffect) {
  CModelManager manager;
  ITin* const tin = NewFixedTin(manager);
  manager.SetShowPoints(1, -7);
  EXPECT_THAT(Names(manager), ElementsAre(L"TI_PL>Fixed Tin<"));
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, tin), 1);
}

TEST(CModelManager, EndDeletesProfilesFirstThenSurfacesWhateverTheirCount) {
  Ends ends;
  {
    CModelManager manager;
    ModelManagerPeer::Insert(manager, L"ti_pl>a<", NewTin("tin a", ends), 2);
    ModelManagerPeer::Insert(manager, L"PR_PL>b<", NewProfile("profile b", ends), 0);
    ModelManagerPeer::Insert(manager, L"TI_PL>c<", NewTin("tin c", ends), 0);
    ModelManagerPeer::Insert(manager, L"prd", NewProfile("profile d", ends), 1);
    ModelManagerPeer::Insert(manager, L"TI_PL", nullptr, 1);
    ModelManagerPeer::Insert(manager, L"PR", nullptr, 1);
  }
  EXPECT_THAT(ends, ElementsAre("profile b", "profile d", "tin a", "tin c"));
}

TEST(CModelManager, EndLeavesModelsOfOtherNames) {
  Ends ends;
  std::unique_ptr<ITin> const tin(static_cast<ITin*>(NewTin("tin", ends)));
  {
    CModelManager manager;
    for (wchar_t const* name : {L"TI_P", L"P", L"XTI_PL", L"T\u0131_PL", L""}) {
      ModelManagerPeer::Insert(manager, name, tin.get(), 1);
    }
  }
  EXPECT_THAT(ends, IsEmpty());
}

TEST(CModelManager, CopySharesTheModelsAndHasNamesOfItsOwn) {
  CQelUnitCnv converter;
  CModelManager manager;
  manager.SetUnitConverter(&converter);
  ITin* const tin = NewFixedTin(manager);
  CModelManager copy(manager);
  CModelManager assigned;
  assigned = manager;
  for (CModelManager* other : {&copy, &assigned}) {
    EXPECT_EQ(Names(*other), Names(manager));
    EXPECT_NE(other->GetModelName(0), manager.GetModelName(0));
    EXPECT_EQ(ModelManagerPeer::ModelAt(*other, 0), tin);
    EXPECT_EQ(ModelManagerPeer::CountOf(*other, tin), 1);
    EXPECT_EQ(ModelManagerPeer::UnitConverter(*other), &converter);
    ModelManagerPeer::DropEntries(*other);
  }
  EXPECT_EQ(manager.GetNumberOfModels(), 1);
}

// --- Path ---------------------------------------------------------------------------------------

// Sets both texts to the empty ones that a process starts with.
void ForgetPaths(CModelManager& manager) {
  manager.SetPath(L"");
  manager.SetPath(L"");
}

TEST(CModelManager, SetPathAnswersThePathBefore) {
  CModelManager manager;
  ForgetPaths(manager);
  EXPECT_STREQ(manager.GetPath(), L"");
  EXPECT_STREQ(manager.SetPath(L"a/b"), L"");
  EXPECT_STREQ(manager.GetPath(), L"a/b");
  EXPECT_STREQ(manager.SetPath(L"c"), L"a/b");
  EXPECT_STREQ(manager.SetPath(nullptr), L"c");
  EXPECT_STREQ(manager.GetPath(), L"");
}

TEST(CModelManager, PathBelongsToTheProcess) {
  CModelManager manager;
  manager.SetPath(L"here");
  EXPECT_STREQ(CModelManager().GetPath(), L"here");
  EXPECT_STREQ(CModelManager::GetTinModelManager().GetPath(), L"here");
}

TEST(CModelManager, PathTextsStayAtTheirAddressesAndAreOverwritten) {
  CModelManager manager;
  ForgetPaths(manager);
  wchar_t const* const current = manager.GetPath();
  wchar_t const* const previous = manager.SetPath(L"first");
  for (std::wstring const& path : {std::wstring(255, L'x'), std::wstring(L"y")}) {
    EXPECT_EQ(manager.SetPath(path.c_str()), previous);
    EXPECT_EQ(manager.GetPath(), current);
  }
  EXPECT_EQ(previous, std::wstring(255, L'x'));
}

TEST(CModelManager, PathOfAnyLengthIsKept) {
  CModelManager manager;
  std::wstring const longest(100000, L'p');
  manager.SetPath(longest.c_str());
  EXPECT_EQ(manager.GetPath(), longest);
  EXPECT_EQ(manager.SetPath(L""), longest);
}

TEST(CModelManager, HandingThePreviousPathBackLeavesThePath) {
  CModelManager manager;
  for (std::size_t const length : {3u, 1000u}) {
    manager.SetPath(L"old");
    wchar_t const* const previous = manager.SetPath(std::wstring(length, L'n').c_str());
    EXPECT_STREQ(previous, L"old");
    EXPECT_EQ(manager.SetPath(previous), std::wstring(length, L'n'));
    EXPECT_EQ(manager.GetPath(), std::wstring(length, L'n'));
  }
}

TEST(CModelManager, PathCanBeSetToItself) {
  CModelManager manager;
  manager.SetPath(L"same");
  EXPECT_STREQ(manager.SetPath(manager.GetPath()), L"same");
  EXPECT_STREQ(manager.GetPath(), L"same");
}

// --- Names --------------------------------------------------------------------------------------

TEST(CModelManager, NameIsComposedWithoutSpaces) {
  EXPECT_STREQ(ModelManagerPeer::ModelName(L"TI_PL", L"a b.tin"), L"TI_PL>a b.tin<");
  EXPECT_STREQ(ModelManagerPeer::ModelName(L"", L""), L"><");
  EXPECT_STREQ(ModelManagerPeer::ModelName(L"PR_PL", nullptr), L"PR_PL><");
  std::wstring const text(70000, L't');
  EXPECT_EQ(ModelManagerPeer::ModelName(L"A", text.c_str()), L"A>" + text + L"<");
}

TEST(CModelManager, NameOfARegisteredModelIsComposedFromItsFirst2304Characters) {
  CModelManager manager;
  int models[3] = {};
  std::wstring const text(2304, L's');
  ModelManagerPeer::Insert(manager, L"short", models, 1);
  ModelManagerPeer::Insert(manager, (text + L"more").c_str(), models + 1, 1);
  EXPECT_STREQ(ModelManagerPeer::ModelName(manager, L"X", models), L"X>short<");
  EXPECT_EQ(ModelManagerPeer::ModelName(manager, L"X", models + 1), L"X>" + text + L"<");
  EXPECT_EQ(ModelManagerPeer::ModelName(manager, L"X", models + 2), nullptr);
}

TEST(CModelManager, TwoKindsOfComposedNamesStandBesideEachOther) {
  CModelManager manager;
  int model = 0;
  ModelManagerPeer::Insert(manager, L"m", &model, 1);
  wchar_t const* const by_text = ModelManagerPeer::ModelName(L"A", L"text");
  wchar_t const* const by_model = ModelManagerPeer::ModelName(manager, L"B", &model);
  EXPECT_STREQ(by_text, L"A>text<");
  EXPECT_STREQ(by_model, L"B>m<");
}

TEST(CModelManager, EmptyNameIsStoredAsNoName) {
  EXPECT_EQ(ModelEntry(nullptr, nullptr).m_Name, L"No Name");
  EXPECT_EQ(ModelEntry(L"", nullptr).m_Name, L"No Name");
  EXPECT_EQ(ModelEntry(L" ", nullptr).m_Name, L" ");
  EXPECT_EQ(ModelEntry(L"x", nullptr).m_iRefCount, 0);
}

// --- Registry -----------------------------------------------------------------------------------

TEST(CModelManager, FirstEntryOfAModelOrNameIsTheOneThatCounts) {
  CModelManager manager;
  int a = 0;
  int b = 0;
  ModelManagerPeer::Insert(manager, L"one", &a, 5);
  ModelManagerPeer::Insert(manager, L"two", &a, 7);
  ModelManagerPeer::Insert(manager, L"one", &b, 9);
  EXPECT_STREQ(ModelManagerPeer::NameOf(manager, &a), L"one");
  EXPECT_STREQ(ModelManagerPeer::NameOf(manager, &b), L"one");
  EXPECT_EQ(ModelManagerPeer::NameOf(manager, &manager), nullptr);
  EXPECT_EQ(ModelManagerPeer::Model(manager, L"one"), &a);
  EXPECT_EQ(ModelManagerPeer::Model(manager, L"two"), &a);
  EXPECT_EQ(ModelManagerPeer::Model(manager, L"One"), nullptr);
  EXPECT_EQ(ModelManagerPeer::Model(manager, L"on"), nullptr);
  EXPECT_EQ(ModelManagerPeer::Model(manager, nullptr), nullptr);
  ModelManagerPeer::Increment(manager, &a);
  ModelManagerPeer::Increment(manager, &manager);
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, &a), 6);
}

TEST(CModelManager, DecrementAnswersWhetherTheModelIsStillInUse) {
  CModelManager manager;
  int model = 0;
  ModelManagerPeer::Insert(manager, L"m", &model, 2);
  EXPECT_TRUE(ModelManagerPeer::Decrement(manager, &model));
  EXPECT_FALSE(ModelManagerPeer::Decrement(manager, &model));
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, &model), 0);
  EXPECT_FALSE(ModelManagerPeer::Decrement(manager, &model));
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, &model), 0);
  EXPECT_FALSE(ModelManagerPeer::Decrement(manager, &manager));
}

TEST(CModelManager, DecrementLeavesANegativeCount) {
  CModelManager manager;
  int model = 0;
  ModelManagerPeer::Insert(manager, L"m", &model, -3);
  EXPECT_FALSE(ModelManagerPeer::Decrement(manager, &model));
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, &model), -3);
}

TEST(CModelManager, PurgeOfModelsInUseRemovesNothing) {
  CModelManager manager;
  NewFixedTin(manager);
  NewFixedTin(manager);
  auto const names = Names(manager);
  EXPECT_EQ(manager.PurgeProfiles(), 0);
  EXPECT_EQ(Names(manager), names);
}

TEST(CModelManager, PurgeEndsUnusedProfilesAndSurfacesUpToTheLiveEnd) {
  Ends ends;
  CModelManager manager;
  ModelManagerPeer::Insert(manager, L"pR1", NewProfile("1", ends), 0);
  ModelManagerPeer::Insert(manager, L"Ti_pL2", NewTin("2", ends), -1);
  ModelManagerPeer::Insert(manager, L"PR3", NewProfile("3", ends), 1);
  ModelManagerPeer::Insert(manager, L"XX4", &ends, 0);
  ModelManagerPeer::Insert(manager, L"PR5", nullptr, 0);
  ModelManagerPeer::Insert(manager, L"TI_PL6", NewTin("6", ends), 0);
  ModelManagerPeer::Insert(manager, L"PR7", NewProfile("7", ends), 0);
  EXPECT_EQ(manager.PurgeProfiles(), 4);
  EXPECT_THAT(ends, ElementsAre("1", "2", "6", "7"));
  EXPECT_THAT(Names(manager), ElementsAre(L"PR3", L"XX4", L"PR5"));
  EXPECT_EQ(manager.PurgeProfiles(), 0);
}

// --- Giving back --------------------------------------------------------------------------------

TEST(CModelManager, GivingBackNullAnswersTrue) {
  CModelManager manager;
  EXPECT_TRUE(manager.ReleaseTin(nullptr));
  EXPECT_TRUE(manager.DestroyTin(nullptr));
  EXPECT_TRUE(manager.ReleaseContour(nullptr));
  EXPECT_TRUE(manager.DestroyContour(nullptr));
  EXPECT_TRUE(manager.ReleaseProfile(nullptr));
  EXPECT_TRUE(manager.DestroyProfile(nullptr));
  EXPECT_TRUE(manager.ReleaseProfileList(nullptr));
  EXPECT_TRUE(manager.DestroyProfileList(nullptr));
  EXPECT_TRUE(manager.DestroyLineList(nullptr));
}

TEST(CModelManager, DestroyTinOfASharedSurfaceOnlyTakesItsCountDown) {
  Ends ends;
  CModelManager manager;
  auto* const tin = static_cast<ITin*>(NewTin("tin", ends));
  ModelManagerPeer::Insert(manager, L"TI_PL>x<", tin, 2);
  EXPECT_TRUE(manager.DestroyTin(tin));
  EXPECT_THAT(ends, IsEmpty());
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, tin), 1);
  EXPECT_TRUE(manager.DestroyTin(tin));
  EXPECT_THAT(ends, ElementsAre("tin"));
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
}

TEST(CModelManager, UnregisteredSurfaceEndsWithItsFirstRelease) {
  Ends ends;
  CModelManager manager;
  EXPECT_TRUE(manager.ReleaseTin(static_cast<ITin*>(NewTin("a", ends))));
  EXPECT_TRUE(manager.DestroyTin(static_cast<ITin*>(NewTin("b", ends))));
  EXPECT_THAT(ends, ElementsAre("a", "b"));
}

TEST(CModelManager, LaterEntriesMoveDownWhenOneEnds) {
  Ends ends;
  CModelManager manager;
  std::vector<void*> tins;
  for (wchar_t const* name : {L"TI_PL>a<", L"TI_PL>b<", L"TI_PL>c<", L"TI_PL>d<"}) {
    tins.push_back(NewTin("tin", ends));
    ModelManagerPeer::Insert(manager, name, tins.back(), 1);
  }
  manager.ReleaseTin(static_cast<ITin*>(tins[1]));
  EXPECT_THAT(Names(manager), ElementsAre(L"TI_PL>a<", L"TI_PL>c<", L"TI_PL>d<"));
  manager.ReleaseTin(static_cast<ITin*>(tins[0]));
  EXPECT_THAT(Names(manager), ElementsAre(L"TI_PL>c<", L"TI_PL>d<"));
}

TEST(CModelManager, ReleasedProfileIsNeverDeleted) {
  Ends ends;
  CModelManager manager;
  auto* const profile = static_cast<IProfile*>(NewProfile("p", ends));
  ModelManagerPeer::Insert(manager, L"PR_PL>p<", profile, 2);
  EXPECT_TRUE(manager.ReleaseProfile(profile));
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, profile), 1);
  EXPECT_TRUE(manager.DestroyProfile(profile));
  EXPECT_TRUE(manager.DestroyProfile(profile));
  EXPECT_EQ(ModelManagerPeer::CountOf(manager, profile), 0);
  EXPECT_THAT(ends, IsEmpty());
}

// What a manager calls through its interface.
class RecordingManager : public CModelManager {
 public:
  bool DestroyProfile(IProfile* profile) override {
    destroyed.push_back(profile);
    return CModelManager::DestroyProfile(profile);
  }
  bool DestroyTin(ITin* tin) override {
    ++tins;
    return CModelManager::DestroyTin(tin);
  }
  bool DestroyContour(IContour* contour) override {
    ++contours;
    return CModelManager::DestroyContour(contour);
  }

  std::vector<IProfile*> destroyed;
  int tins = 0;
  int contours = 0;
};

TEST(CModelManager, ProfilesOfAListAreGivenBackThroughTheInterfaceAndStay) {
  CProfile a;
  CProfile b;
  for (auto const give_back :
       {&CModelManager::ReleaseProfileList, &CModelManager::DestroyProfileList}) {
    RecordingManager manager;
    auto* const list = static_cast<CProfileList*>(manager.CreateProfileList());
    for (CProfile* profile : {&b, &a, &b}) list->AddProfile(profile);
    EXPECT_TRUE((manager.*give_back)(list));
    EXPECT_THAT(manager.destroyed, ElementsAre(&b, &a, &b));
  }
}

TEST(CModelManager, FailuresGoThroughTheInterface) {
  RecordingManager manager;
  IPoint corner;
  CProfileList no_profiles;
  EXPECT_EQ(manager.CreateTin(corner, corner, 0), nullptr);
  EXPECT_EQ(manager.CreateTin(L"/no/such/file.tin"), nullptr);
  EXPECT_EQ(manager.CreateTin(&no_profiles), nullptr);
  EXPECT_EQ(manager.tins, 3);
  EXPECT_EQ(manager.CreateContour(nullptr, 1.0), nullptr);
  EXPECT_EQ(manager.contours, 1);
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
}

TEST(CModelManager, ListsAreNotRegistered) {
  CModelManager manager;
  IProfileList* const profiles = manager.CreateProfileList();
  ILineList* const lines = manager.CreateLineList();
  EXPECT_EQ(profiles->GetNumProfiles(), 0);
  EXPECT_EQ(lines->GetNumLines(), 0);
  EXPECT_EQ(manager.GetNumberOfModels(), 0);
  EXPECT_TRUE(manager.DestroyProfileList(profiles));
  EXPECT_TRUE(manager.DestroyLineList(lines));
}

}  // namespace
