#include "apps/qeltin/Report.h"

#include <algorithm>

namespace qeltin::cli {

namespace {

std::string Corner(TPoint const& p, NumberStyle style) {
  return style.Text(p.x) + ' ' + style.Text(p.y) + ' ' + style.Text(p.z);
}

}  // namespace

void Report::Add(std::string label, std::string value) {
  m_Lines.emplace_back(std::move(label), std::move(value));
}

void Report::Add(std::string const& label, Box const& box) {
  Add(label + " from", Corner(box.min, m_Style));
  Add(label + " to", Corner(box.max, m_Style));
}

std::string Report::Text() const {
  std::size_t widest = 0;
  for (auto const& [label, value] : m_Lines) widest = std::max(widest, label.size());
  std::string text;
  for (auto const& [label, value] : m_Lines) {
    if (!text.empty()) text += '\n';
    text += label + std::string(widest + 2 - label.size(), ' ') + value;
  }
  return text;
}

nlohmann::ordered_json ToJson(Box const& box, NumberStyle style) {
  return {{"min", style.Array(box.min)}, {"max", style.Array(box.max)}};
}

std::string Dump(nlohmann::ordered_json const& json) {
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace qeltin::cli
