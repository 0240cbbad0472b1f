#include "qeltin/models/CQelTin.h"

CQelTin& CQelTin::operator=(CQelTin const&) = default;
CQelTin& CQelTin::operator=(CQelTin&&) noexcept = default;
