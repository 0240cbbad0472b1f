#include "apps/qeltin/Numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace qeltin::cli {

namespace {

bool IsOrdinary(double value) {
  double const size = std::fabs(value);
  return size == 0.0 || (size >= 1e-6 && size < 1e16);
}

}  // namespace

void NumberStyle::Append(std::string& text, double value) const {
  std::array<char, 400> digits;  // the longest: 309 digits, a point and 17 decimals
  char* const first = digits.data();
  char* const last = first + digits.size();
  std::to_chars_result end{};
  if (decimals >= 0) {
    end = std::to_chars(first, last, value, std::chars_format::fixed, decimals);
  } else if (IsOrdinary(value)) {
    end = std::to_chars(first, last, value, std::chars_format::fixed);
  } else {
    end = std::to_chars(first, last, value);
  }
  std::string_view written(first, static_cast<std::size_t>(end.ptr - first));
  if (written.starts_with('-') && written.find_first_not_of("-0.") == std::string_view::npos) {
    written.remove_prefix(1);
  }
  text += written;
}

std::string NumberStyle::Text(double value) const {
  std::string text;
  Append(text, value);
  return text;
}

double NumberStyle::Rounded(double value) const {
  if (decimals < 0 || !std::isfinite(value)) return value;
  std::string const text = Text(value);
  double rounded = value;
  std::from_chars(text.data(), text.data() + text.size(), rounded);
  return rounded;
}

nlohmann::json NumberStyle::Array(TPoint const& p) const {
  return {Rounded(p.x), Rounded(p.y), Rounded(p.z)};
}

bool TakeNumber(std::string_view& text, double& value) {
  std::string_view rest = text;
  if (rest.size() > 1 && rest[0] == '+' && rest[1] != '-') rest.remove_prefix(1);
  double read = 0.0;
  auto const [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), read);
  if (error != std::errc{} || !std::isfinite(read)) return false;
  rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  text = rest;
  value = read;
  return true;
}

bool ParseNumbers(std::string_view text, double* values, int count) {
  for (int i = 0; i < count; ++i) {
    if (i > 0) {
      if (!text.starts_with(',')) return false;
      text.remove_prefix(1);
    }
    if (!TakeNumber(text, values[i])) return false;
  }
  return text.empty();
}

}  // namespace qeltin::cli
