#pragma once

#include <string>
#include <utility>
#include <vector>

#include "apps/qeltin/Numbers.h"
#include "apps/qeltin/Surface.h"

namespace qeltin::cli {

// Facts for people: a label and a value a line, values in one column.
class Report {
 public:
  explicit Report(NumberStyle style) : m_Style(style) {}

  void Add(std::string label, std::string value);
  void Add(std::string label, long long count) { Add(std::move(label), std::to_string(count)); }

  // Two lines: the lower and the upper corner.
  void Add(std::string const& label, Box const& box);

  // What there is to tell about a surface.
  void Add(SurfaceFacts const& facts);

  // Returns the lines, without an end after the last.
  std::string Text() const;

 private:
  NumberStyle m_Style;
  std::vector<std::pair<std::string, std::string>> m_Lines;
};

// Returns {"min": [x, y, z], "max": [x, y, z]}.
nlohmann::ordered_json ToJson(Box const& box, NumberStyle style);

// Adds the same facts, each under its name.
void AddTo(nlohmann::ordered_json& json, SurfaceFacts const& facts, NumberStyle style);

// Returns `json` as text, whatever bytes the file names in it are made of.
std::string Dump(nlohmann::ordered_json const& json);

}  // namespace qeltin::cli
