#pragma once

#include <string>
#include <string_view>

namespace qeltin::detail {

// Sets `buffer` to the model name TYPE>text< and returns its characters. Hosts read such names: the
// form is never changed.
inline wchar_t const* ComposeModelName(std::wstring& buffer, std::wstring_view type,
                                       std::wstring_view text) {
  buffer.assign(type).append(1, L'>').append(text).append(1, L'<');
  return buffer.c_str();
}

// Returns true iff `name` begins with `prefix`, an upper-case one, whatever the case of its letters
// from A to Z.
inline bool BeginsWith(std::wstring_view name, std::wstring_view prefix) {
  if (name.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    wchar_t const c = name[i];
    wchar_t const upper = c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
    if (upper != prefix[i]) return false;
  }
  return true;
}

}  // namespace qeltin::detail
