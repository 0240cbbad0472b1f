#include "apps/qeltin/Failure.h"

#include <system_error>

namespace qeltin::cli {

namespace {

// Bytes above 127 stay: they are UTF-8.
std::string Printable(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    auto const code = static_cast<unsigned char>(c);
    if (code < 0x20 || code == 0x7f) c = '?';
  }
  return result;
}

}  // namespace

Failure::Failure(std::string const& file, std::string const& what)
    : std::runtime_error(Printable(file) + ": " + what) {}

Failure::Failure(std::string const& file, long long line, std::string const& what)
    : Failure(file, "line " + std::to_string(line) + ": " + what) {}

std::string Quoted(std::string_view text) {
  constexpr std::size_t LONGEST = 40;
  bool const cut = text.size() > LONGEST;
  return '"' + Printable(text.substr(0, LONGEST)) + (cut ? "...\"" : "\"");
}

std::string SystemReason(int code) { return std::generic_category().message(code); }

}  // namespace qeltin::cli
