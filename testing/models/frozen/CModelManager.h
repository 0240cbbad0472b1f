#pragma once

#include "testing/models/frozen/IModelManager.h"

// What a host sees of the manager that goes through its interface. Never changed.
class CModelManager : public IModelManager {
 public:
  static CModelManager& GetTinModelManager();
};
