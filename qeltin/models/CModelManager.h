#pragma once

#include <memory>
#include <vector>

#include "qeltin/models/IModelManager.h"
#include "qeltin/models/ModelEntry.h"
#include "qeltin/platform/Export.h"

class CQelUnitCnv;

namespace qeltin::testing {
struct ModelManagerPeer;
}

// The model manager. Hosts share the one of the process:
//
//   CModelManager& manager = CModelManager::GetTinModelManager();
//   ITin* const tin = manager.CreateTin(L"harbour.tin");
//   double z = 0;
//   if (tin != nullptr && tin->GetZ(x, y, &z)) use(z);
//   manager.ReleaseTin(tin);
//
// Its end, at process exit or when the library is unloaded, deletes the models that are still
// registered: profiles first, then surfaces. Objects that are not registered stay the host's to
// give back.
//
// Threads: as IModelManager; only the first GetTinModelManager is safe from any thread.
class QELTIN_API CModelManager : public IModelManager {
 public:
  static CModelManager& GetTinModelManager();

  CModelManager();

  // A copy has the same entries and shares the models. Note that each manager deletes the models of
  // its own registry when it ends.
  CModelManager(CModelManager const& other);
  CModelManager& operator=(CModelManager const& other);
  ~CModelManager() override;

  // Does nothing and returns true.
  bool Create() { return true; }

  // Stores the converter that surfaces loaded from files get. Not owned, null for none; must
  // outlive them.
  void SetUnitConverter(CQelUnitCnv* converter) { m_pUnitConverter = converter; }

  wchar_t const* SetPath(wchar_t const* path) override;
  wchar_t const* GetPath() const override;
  IProfileList* CreateProfileList() override;
  bool ReleaseProfileList(IProfileList* profiles) override;
  bool DestroyProfileList(IProfileList* profiles) override;
  bool ReleaseProfile(IProfile* profile) override;
  bool DestroyProfile(IProfile* profile) override;
  ILineList* CreateLineList() override;
  bool DestroyLineList(ILineList* lines) override;
  ITin* CreateTin(std::vector<IPoint>* points) override;
  ITin* CreateTin(IProfileList* profiles) override;
  ITin* CreateTin(wchar_t const* path) override;
  ITin* CreateTin(IPoint& min, IPoint& max, int numPoints) override;
  bool ReleaseTin(ITin* tin) override;
  bool DestroyTin(ITin* tin) override;
  IContour* CreateContour(ITin const* tin, double level) override;
  bool ReleaseContour(IContour* contour) override;
  bool DestroyContour(IContour* contour) override;
  long GetNumberOfModels() const override;
  wchar_t const* GetModelName(long index) const override;
  long PurgeProfiles() override;
  void SetShowPoints(int, int) override {}

 private:
  friend struct qeltin::testing::ModelManagerPeer;

  // Composes a name for `name`, or for the name of a registered model, of which no more than the
  // first 2304 characters are taken; null for a model that is not registered. The two results stand
  // in a buffer each and stay valid until the next call.
  static wchar_t const* CreateModelName(wchar_t const* type, wchar_t const* name);
  wchar_t const* CreateModelName(wchar_t const* type, void* model) const;

  // Returns the name of the first entry that holds `model`, or null.
  wchar_t const* GetNameFromPtr(void const* model) const;

  // Returns the model of the first entry with exactly this name, or null.
  void* GetModel(wchar_t const* name) const;

  void Increment(void const* model);

  // Takes a count down and returns true iff the model is still in use: false where the count came
  // to 0 or was there, and where the model is not registered.
  bool Decrement(void const* model);

  ModelEntry* Find(void const* model);
  ModelEntry const* Find(void const* model) const;
  void Forget(void const* model);

  // Returns the surface registered as `name` with its count raised, or null.
  ITin* Share(wchar_t const* name);
  ITin* Register(std::unique_ptr<ITin> tin, wchar_t const* name);

  template <typename Object>
  bool GiveBack(Object* object);
  template <typename Object>
  bool End(Object* object);

  template <typename Object>
  void DeleteModels(wchar_t const* type);

  std::vector<ModelEntry> m_Registry;       // in order of creation; owns the models
  CQelUnitCnv* m_pUnitConverter = nullptr;  // not owned
};
