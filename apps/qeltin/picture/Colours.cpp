#include "apps/qeltin/picture/Colours.h"

#include <cmath>
#include <filesystem>
#include <string_view>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/LineReader.h"
#include "apps/qeltin/Numbers.h"

namespace qeltin::cli {

namespace {

constexpr std::string_view BLANK = " \t\r,";

void SkipBlanks(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(BLANK), text.size()));
}

// Reads the height and the three channels.
bool ParseStop(std::string_view text, double (&numbers)[4]) {
  for (double& number : numbers) {
    SkipBlanks(text);
    if (!TakeNumber(text, number)) return false;
    if (!text.empty() && BLANK.find(text.front()) == std::string_view::npos) return false;
  }
  SkipBlanks(text);
  for (int i = 1; i < 4; ++i) {
    bool const good = numbers[i] >= 0.0 && numbers[i] <= 255.0;
    if (!good || numbers[i] != std::floor(numbers[i])) return false;
  }
  return text.empty();
}

ColorTable ReadColours(std::string const& file) {
  ColorTable table;
  LineReader lines(file);
  std::string_view line;
  while (lines.Next(line)) {
    if (lines.Line() == 1 && line.starts_with(BYTE_ORDER_MARK)) {
      line.remove_prefix(BYTE_ORDER_MARK.size());
    }
    SkipBlanks(line);
    if (line.empty() || line.starts_with('#')) continue;
    double numbers[4];
    if (!ParseStop(line, numbers)) {
      throw Failure(file, lines.Line(),
                    Quoted(line) + " is not a height with red, green and blue from 0 to 255");
    }
    auto const channel = [&numbers](int i) { return static_cast<unsigned char>(numbers[i]); };
    table.AddStop(numbers[0], ColorTable::MakeColor(channel(1), channel(2), channel(3)));
  }
  if (table.GetStops().empty()) throw Failure(file, "holds no colours");
  return table;
}

}  // namespace

Colours ColoursFor(std::string const& wanted, double low, double high) {
  std::string name = wanted;
  if (name.empty()) name = high < 0.0 ? "bathymetry" : "terrain";
  if (name == "bathymetry") return {name, ColorTable::Bathymetry(low, high)};
  if (name == "terrain") return {name, ColorTable::Terrain(low, high)};
  if (name == "grey") return {name, ColorTable::Grey(low, high)};
  std::error_code error;
  if (!std::filesystem::exists(name, error)) {
    throw UsageFailure("--colours " + Quoted(name) +
                       ": neither bathymetry, terrain nor grey, nor a file");
  }
  return {name, ReadColours(name)};
}

}  // namespace qeltin::cli
