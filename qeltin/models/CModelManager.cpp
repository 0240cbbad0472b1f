#include "qeltin/models/CModelManager.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <string>
#include <utility>

#include "qeltin/models/CContour.h"
#include "qeltin/models/CLineList.h"
#include "qeltin/models/CProfileList.h"
#include "qeltin/models/CTin.h"
#include "qeltin/models/ModelNames.h"
#include "qeltin/models/ProfileSurface.h"
#include "qeltin/models/TextOf.h"
#include "qeltin/platform/DebugOutput.h"
#include "qeltin/tin/TIN.h"

using qeltin::detail::BeginsWith;
using qeltin::detail::ComposeModelName;
using qeltin::detail::TextOf;

namespace {

constexpr wchar_t const* TIN_TYPE = L"TI_PL";
constexpr wchar_t const* PROFILE_TYPE = L"PR";
constexpr std::size_t LONGEST_STORED_NAME = 2304;  // that a composed name takes over
constexpr std::size_t FIXED_PATH = 255;            // characters up to which a path text never moves

// The texts whose addresses the manager hands out.
struct Texts {
  Texts() {
    m_Path.reserve(FIXED_PATH);
    m_PreviousPath.reserve(FIXED_PATH);
  }

  std::wstring m_Path;
  std::wstring m_PreviousPath;
  std::wstring m_ModelName;
  std::wstring m_PointerName;
};

Texts& TextsOfTheProcess() {
  static Texts texts;
  return texts;
}

}  // namespace

// --- Life ---------------------------------------------------------------------------------------

CModelManager& CModelManager::GetTinModelManager() {
  TextsOfTheProcess();  // built first, and so there until after the manager
  static CModelManager manager;
  return manager;
}

CModelManager::CModelManager() = default;
CModelManager::CModelManager(CModelManager const& other) = default;
CModelManager& CModelManager::operator=(CModelManager const& other) = default;

CModelManager::~CModelManager() {
  DeleteModels<IProfile>(PROFILE_TYPE);
  DeleteModels<ITin>(TIN_TYPE);
}

template <typename Object>
void CModelManager::DeleteModels(wchar_t const* type) {
  for (ModelEntry& entry : m_Registry) {
    if (!BeginsWith(entry.m_Name, type)) continue;
    delete static_cast<Object*>(std::exchange(entry.m_pModel, nullptr));
  }
}

// --- Path and names -----------------------------------------------------------------------------

wchar_t const* CModelManager::SetPath(wchar_t const* path) {
  Texts& texts = TextsOfTheProcess();
  bool const is_previous = path == texts.m_PreviousPath.c_str();
  texts.m_PreviousPath = texts.m_Path;
  if (!is_previous) texts.m_Path = TextOf(path);  // or its text has just become the path's own
  return texts.m_PreviousPath.c_str();
}

wchar_t const* CModelManager::GetPath() const { return TextsOfTheProcess().m_Path.c_str(); }

wchar_t const* CModelManager::CreateModelName(wchar_t const* type, wchar_t const* name) {
  return ComposeModelName(TextsOfTheProcess().m_ModelName, type, TextOf(name));
}

wchar_t const* CModelManager::CreateModelName(wchar_t const* type, void* model) const {
  wchar_t const* const name = GetNameFromPtr(model);
  if (name == nullptr) return nullptr;
  std::wstring_view const stored = std::wstring_view(name).substr(0, LONGEST_STORED_NAME);
  return ComposeModelName(TextsOfTheProcess().m_PointerName, type, stored);
}

wchar_t const* CModelManager::GetNameFromPtr(void const* model) const {
  ModelEntry const* const entry = Find(model);
  return entry == nullptr ? nullptr : entry->m_Name.c_str();
}

long CModelManager::GetNumberOfModels() const { return static_cast<long>(m_Registry.size()); }

wchar_t const* CModelManager::GetModelName(long index) const {
  assert(index >= 0 && index < GetNumberOfModels());
  return m_Registry[static_cast<std::size_t>(index)].m_Name.c_str();
}

// --- Registry -----------------------------------------------------------------------------------

ModelEntry const* CModelManager::Find(void const* model) const {
  auto const at = std::find_if(m_Registry.begin(), m_Registry.end(),
                               [&](ModelEntry const& entry) { return entry.m_pModel == model; });
  return at == m_Registry.end() ? nullptr : &*at;
}

ModelEntry* CModelManager::Find(void const* model) {
  return const_cast<ModelEntry*>(std::as_const(*this).Find(model));
}

void* CModelManager::GetModel(wchar_t const* name) const {
  if (name == nullptr) return nullptr;
  auto const at = std::find_if(m_Registry.begin(), m_Registry.end(), [&](ModelEntry const& entry) {
    return !entry.m_Name.empty() && entry.m_Name == name;
  });
  return at == m_Registry.end() ? nullptr : at->m_pModel;
}

void CModelManager::Increment(void const* model) {
  if (ModelEntry* const entry = Find(model)) ++entry->m_iRefCount;
}

bool CModelManager::Decrement(void const* model) {
  ModelEntry* const entry = Find(model);
  if (entry == nullptr || entry->m_iRefCount < 1) return false;
  return --entry->m_iRefCount >= 1;
}

void CModelManager::Forget(void const* model) {
  if (ModelEntry const* const entry = Find(model)) {
    m_Registry.erase(m_Registry.begin() + (entry - m_Registry.data()));
  }
}

ITin* CModelManager::Share(wchar_t const* name) {
  void* const model = GetModel(name);
  if (model != nullptr) Increment(model);
  return static_cast<ITin*>(model);
}

ITin* CModelManager::Register(std::unique_ptr<ITin> tin, wchar_t const* name) {
  m_Registry.emplace_back(name, tin.get());
  Increment(tin.get());
  return tin.release();
}

long CModelManager::PurgeProfiles() {
  long removed = 0;
  for (std::size_t i = 0; i < m_Registry.size();) {
    ModelEntry const entry = m_Registry[i];
    bool const unused = entry.m_iRefCount <= 0 && entry.m_pModel != nullptr;
    bool const profile = unused && BeginsWith(entry.m_Name, PROFILE_TYPE);
    bool const tin = unused && BeginsWith(entry.m_Name, TIN_TYPE);
    if (!profile && !tin) {
      ++i;
      continue;
    }
    m_Registry.erase(m_Registry.begin() + static_cast<std::ptrdiff_t>(i));
    if (profile) delete static_cast<IProfile*>(entry.m_pModel);
    if (tin) delete static_cast<ITin*>(entry.m_pModel);
    ++removed;
  }
  return removed;
}

template <typename Object>
bool CModelManager::GiveBack(Object* object) {
  return Decrement(object) || End(object);
}

template <typename Object>
bool CModelManager::End(Object* object) {
  Forget(object);
  delete object;
  return true;
}

// --- Profiles and lines -------------------------------------------------------------------------

IProfileList* CModelManager::CreateProfileList() { return new CProfileList; }

bool CModelManager::ReleaseProfileList(IProfileList* profiles) {
  if (profiles == nullptr) return true;
  for (int i = 0; i < profiles->GetNumProfiles(); ++i) DestroyProfile(profiles->GetProfile(i));
  delete profiles;
  return true;
}

bool CModelManager::DestroyProfileList(IProfileList* profiles) {
  return CModelManager::ReleaseProfileList(profiles);
}

bool CModelManager::ReleaseProfile(IProfile* profile) {
  Decrement(profile);
  return true;
}

bool CModelManager::DestroyProfile(IProfile* profile) {
  return CModelManager::ReleaseProfile(profile);
}

ILineList* CModelManager::CreateLineList() { return new CLineList; }

bool CModelManager::DestroyLineList(ILineList* lines) { return End(lines); }

// --- Surfaces -----------------------------------------------------------------------------------

ITin* CModelManager::CreateTin(std::vector<IPoint>* points) {
  auto tin = std::make_unique<TIN>();
  tin->Create(points);
  return new CTin(std::move(tin));
}

ITin* CModelManager::CreateTin(IProfileList* profiles) {
  std::wstring const names = qeltin::detail::NamesOf(*profiles);
  if (ITin* const shared = Share(CreateModelName(TIN_TYPE, names.c_str()))) return shared;

  auto tin = std::make_unique<CTin>(qeltin::detail::MakeSurface(*profiles));
  if (tin->GetTIN() == nullptr) {
    DestroyTin(tin.release());
    return nullptr;
  }
  return Register(std::move(tin), CreateModelName(TIN_TYPE, names.c_str()));
}

ITin* CModelManager::CreateTin(wchar_t const* path) {
  if (ITin* const shared = Share(CreateModelName(TIN_TYPE, path))) return shared;

  auto tin = std::make_unique<CTin>(std::make_unique<TIN>(), m_pUnitConverter);
  tin->GetTIN()->SetUnitConverter(m_pUnitConverter);
  if (!tin->GetTIN()->Load(path)) {
    DestroyTin(tin.release());
    return nullptr;
  }
  return Register(std::move(tin), CreateModelName(TIN_TYPE, path));
}

ITin* CModelManager::CreateTin(IPoint& min, IPoint& max, int numPoints) {
  auto tin = std::make_unique<TIN>();
  if (!tin->Init(numPoints, TPoint(min), TPoint(max))) {
    DestroyTin(new CTin);
    return nullptr;
  }
  return Register(std::make_unique<CTin>(std::move(tin)), CreateModelName(TIN_TYPE, L"Fixed Tin"));
}

bool CModelManager::ReleaseTin(ITin* tin) { return GiveBack(tin); }
bool CModelManager::DestroyTin(ITin* tin) { return GiveBack(tin); }

// --- Contours -----------------------------------------------------------------------------------

IContour* CModelManager::CreateContour(ITin const* tin, double level) {
  auto contour = std::make_unique<CContour>();
  if (tin == nullptr) {
    DestroyContour(contour.release());
    return nullptr;
  }
  contour->SetTin(tin);
  contour->Regenerate(level);
  OutputDebugStringW(L"\n Returning New Contour object");
  return contour.release();
}

bool CModelManager::ReleaseContour(IContour* contour) { return GiveBack(contour); }
bool CModelManager::DestroyContour(IContour* contour) { return End(contour); }
