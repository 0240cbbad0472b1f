#pragma once

#include <cstddef>

#include "qeltin/models/CModelManager.h"

namespace qeltin::testing {

// What tests reach of a model manager that hosts do not: its registry, entries of any kind and
// count included, and the composition and reading of names.
struct ModelManagerPeer {
  // Appends an entry. The registry owns `model` from then on; it must be an IProfile* where the
  // name begins with PR, an ITin* where it begins with TI_PL.
  static void Insert(CModelManager& manager, wchar_t const* name, void* model, int count) {
    manager.m_Registry.emplace_back(name, model).m_iRefCount = count;
  }

  static int CountOf(CModelManager const& manager, void const* model) {
    return manager.Find(model)->m_iRefCount;
  }
  static void const* ModelAt(CModelManager const& manager, std::size_t index) {
    return manager.m_Registry[index].m_pModel;
  }

  // Drops the entries without deleting their models.
  static void DropEntries(CModelManager& manager) { manager.m_Registry.clear(); }

  static CQelUnitCnv* UnitConverter(CModelManager const& manager) {
    return manager.m_pUnitConverter;
  }

  static wchar_t const* ModelName(wchar_t const* type, wchar_t const* name) {
    return CModelManager::CreateModelName(type, name);
  }
  static wchar_t const* ModelName(CModelManager const& manager, wchar_t const* type, void* model) {
    return manager.CreateModelName(type, model);
  }
  static wchar_t const* NameOf(CModelManager const& manager, void const* model) {
    return manager.GetNameFromPtr(model);
  }
  static void* Model(CModelManager const& manager, wchar_t const* name) {
    return manager.GetModel(name);
  }
  static void Increment(CModelManager& manager, void const* model) { manager.Increment(model); }
  static bool Decrement(CModelManager& manager, void const* model) {
    return manager.Decrement(model);
  }
};

}  // namespace qeltin::testing
