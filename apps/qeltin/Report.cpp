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

void Report::Add(SurfaceFacts const& facts) {
  Add("points", facts.points);
  Add("data points", facts.data_points);
  Add("triangles", facts.triangles);
  Add("visible triangles", facts.visible_triangles);
  Add("bounds", facts.bounds);
  Add("world bounds", facts.world_bounds);
  bool const visible = facts.visible_triangles > 0;
  Add("heights", visible ? m_Style.Text(facts.lowest) + " to " + m_Style.Text(facts.highest)
                         : std::string("none"));
  Add("area", m_Style.Text(facts.area));
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

void AddTo(nlohmann::ordered_json& json, SurfaceFacts const& facts, NumberStyle style) {
  json["points"] = facts.points;
  json["data_points"] = facts.data_points;
  json["triangles"] = facts.triangles;
  json["visible_triangles"] = facts.visible_triangles;
  json["bounds"] = ToJson(facts.bounds, style);
  json["world_bounds"] = ToJson(facts.world_bounds, style);
  json["height_range"] = nullptr;
  if (facts.visible_triangles > 0) {
    json["height_range"] = {style.Rounded(facts.lowest), style.Rounded(facts.highest)};
  }
  json["area"] = style.Rounded(facts.area);
}

std::string Dump(nlohmann::ordered_json const& json) {
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace qeltin::cli
