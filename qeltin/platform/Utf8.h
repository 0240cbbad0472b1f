#pragma once

#include <string>
#include <string_view>

#include "qeltin/platform/Export.h"

namespace qeltin {

// Names are wide at the boundary and UTF-8 on disk. ToUtf8 gives back whatever bytes FromUtf8 was
// given, so that a file can be reached whatever its name is made of: a byte that is no UTF-8
// travels as the code unit 0xDC00 + byte.
//
// Both throw std::bad_alloc and nothing else. Safe from any thread.

// Returns `text` as UTF-8. A pair of surrogates counts as the one character that it stands for. A
// unit that is no character becomes U+FFFD, except 0xDC80 to 0xDCFF, which become a single byte.
QELTIN_API std::string ToUtf8(std::wstring_view text);

// Returns `bytes` as wide characters. A byte that belongs to no well-formed sequence becomes
// 0xDC00 + byte.
QELTIN_API std::wstring FromUtf8(std::string_view bytes);

}  // namespace qeltin
