#pragma once

#include "qeltin/platform/Export.h"

// The application class of the module. No state and no behaviour: hosts that name it go on linking.
class QELTIN_API CQelTin {
 public:
  CQelTin() = default;
  CQelTin(CQelTin const&) = default;
  CQelTin(CQelTin&&) = default;
  CQelTin& operator=(CQelTin const&);
  CQelTin& operator=(CQelTin&&) noexcept;
};
