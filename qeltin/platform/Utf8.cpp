#include "qeltin/platform/Utf8.h"

#include <cstdint>

static_assert(sizeof(wchar_t) == 4, "wide characters hold whole code points");

namespace qeltin {

namespace {

constexpr std::uint32_t REPLACEMENT = 0xFFFD;
constexpr std::uint32_t ESCAPE = 0xDC00;

bool IsHighSurrogate(std::uint32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(std::uint32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
bool IsEscapedByte(std::uint32_t c) { return c >= ESCAPE + 0x80 && c <= ESCAPE + 0xFF; }

void AppendByte(std::string& out, std::uint32_t byte) {
  out.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
}

void AppendCharacter(std::string& out, std::uint32_t c) {
  if (c < 0x80) {
    AppendByte(out, c);
    return;
  }
  if (c < 0x800) {
    AppendByte(out, 0xC0 | c >> 6);
  } else {
    if (c < 0x10000) {
      AppendByte(out, 0xE0 | c >> 12);
    } else {
      AppendByte(out, 0xF0 | c >> 18);
      AppendByte(out, 0x80 | (c >> 12 & 0x3F));
    }
    AppendByte(out, 0x80 | (c >> 6 & 0x3F));
  }
  AppendByte(out, 0x80 | (c & 0x3F));
}

// Returns the length of the well-formed sequence that `bytes` starts with, and the character in
// `c`; 0 where there is none.
std::size_t DecodeCharacter(std::string_view bytes, std::uint32_t& c) {
  auto const lead = static_cast<unsigned char>(bytes[0]);
  if (lead < 0x80) {
    c = lead;
    return 1;
  }
  std::size_t const length = lead < 0xC2   ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
  if (length == 0 || bytes.size() < length) return 0;
  c = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    auto const next = static_cast<unsigned char>(bytes[i]);
    if ((next & 0xC0) != 0x80) return 0;
    c = c << 6 | (next & 0x3F);
  }
  bool const overlong = (length == 3 && c < 0x800) || (length == 4 && c < 0x10000);
  bool const surrogate = IsHighSurrogate(c) || IsLowSurrogate(c);
  return overlong || surrogate || c > 0x10FFFF ? 0 : length;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto const c = static_cast<std::uint32_t>(text[i]);
    std::uint32_t const next = i + 1 < text.size() ? static_cast<std::uint32_t>(text[i + 1]) : 0;
    if (IsHighSurrogate(c) && IsLowSurrogate(next)) {
      AppendCharacter(out, 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00));
      ++i;
    } else if (IsEscapedByte(c)) {
      AppendByte(out, c - ESCAPE);
    } else {
      bool const valid = c <= 0x10FFFF && !IsHighSurrogate(c) && !IsLowSurrogate(c);
      AppendCharacter(out, valid ? c : REPLACEMENT);
    }
  }
  return out;
}

std::wstring FromUtf8(std::string_view bytes) {
  std::wstring out;
  out.reserve(bytes.size());
  while (!bytes.empty()) {
    std::uint32_t c = 0;
    std::size_t length = DecodeCharacter(bytes, c);
    if (length == 0) {
      c = ESCAPE + static_cast<unsigned char>(bytes[0]);
      length = 1;
    }
    out.push_back(static_cast<wchar_t>(c));
    bytes.remove_prefix(length);
  }
  return out;
}

}  // namespace qeltin
