#include "apps/qeltin/HeldSurface.h"

#include "qeltin/models/CModelManager.h"

namespace qeltin::cli {

namespace {

CModelManager& Manager() { return CModelManager::GetTinModelManager(); }

HeldSurface Hold(ITin* model) {
  return HeldSurface(model == nullptr ? nullptr : model->GetTIN(), GiveBack{model});
}

}  // namespace

void GiveBack::operator()(TIN*) const { Manager().ReleaseTin(model); }

HeldSurface OpenStored(wchar_t const* path) { return Hold(Manager().CreateTin(path)); }

HeldSurface MakeEmpty(int points, TPoint const& min, TPoint const& max) {
  IPoint low{min.x, min.y, min.z};
  IPoint high{max.x, max.y, max.z};
  return Hold(Manager().CreateTin(low, high, points));
}

HeldSurface MakeInOrder(std::vector<IPoint>& points) { return Hold(Manager().CreateTin(&points)); }

}  // namespace qeltin::cli
