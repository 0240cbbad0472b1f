#pragma once

#include <string>

// A registered model. The entry does not say what it is; the first letters of its name do.
struct ModelEntry {
  // A null or an empty name is stored as "No Name".
  ModelEntry(wchar_t const* name, void* model)
      : m_Name(name == nullptr || *name == L'\0' ? L"No Name" : name), m_pModel(model) {}

  int m_iRefCount = 0;  // users
  std::wstring m_Name;
  void* m_pModel;  // the ITin, or the IProfile where the name says so; owned by the registry
};
