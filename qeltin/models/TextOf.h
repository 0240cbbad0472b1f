#pragma once

namespace qeltin::detail {

// Returns `text`, or the empty text for null.
inline wchar_t const* TextOf(wchar_t const* text) { return text == nullptr ? L"" : text; }

}  // namespace qeltin::detail
