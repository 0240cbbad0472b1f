#pragma once

#include <memory>
#include <vector>

#include "qeltin/models/ITin.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// Gives a model back to the model manager.
struct GiveBack {
  ITin* model = nullptr;
  void operator()(TIN*) const;
};

// The surface of a model that the model manager made, given back when it goes.
using HeldSurface = std::unique_ptr<TIN, GiveBack>;

// Opens a stored surface. Null where the library does not load it.
HeldSurface OpenStored(wchar_t const* path);

// Makes an empty surface for `points` points within the data bounds. REQUIRES: points above 0.
HeldSurface MakeEmpty(int points, TPoint const& min, TPoint const& max);

// Makes the surface of `points`, inserted in their order.
HeldSurface MakeInOrder(std::vector<IPoint>& points);

}  // namespace qeltin::cli
