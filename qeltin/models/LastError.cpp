#include "qeltin/models/LastError.h"

namespace {

int last_error = 0;

}  // namespace

int GetLastErrorCode() { return last_error; }

void qeltin::detail::SetLastErrorCode(int code) { last_error = code; }
