#include <nlohmann/json.hpp>

#include "apps/qeltin/TextOutput.h"
#include "apps/qeltin/VectorWriters.h"

namespace qeltin::cli {

namespace {

std::string InQuotes(std::string const& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// Longitude stands before latitude in such a file, other than in EPSG:4326 itself.
std::string CrsName(std::string const& crs) {
  if (crs == "EPSG:4326") return "urn:ogc:def:crs:OGC:1.3:CRS84";
  return "urn:ogc:def:crs:EPSG::" + crs.substr(crs.find(':') + 1);
}

class GeoJsonOutput : public VectorOutput {
 public:
  GeoJsonOutput(VectorOptions const& options, Layer const& layer)
      : m_Text(options.output, options.overwrite), m_Style(options.style), m_Layer(layer) {
    std::string& text = m_Text.Buffer();
    text += "{\n\"type\": \"FeatureCollection\",\n\"name\": " + InQuotes(layer.name) + ",\n";
    if (!options.crs.empty()) {
      text += "\"crs\": {\"type\": \"name\", \"properties\": {\"name\": \"" + CrsName(options.crs) +
              "\"}},\n";
    }
    text += "\"features\": [";
  }

  void Add(Feature const& feature) override {
    std::string& text = m_Text.Buffer();
    text += ++m_iCount > 1 ? ",\n" : "\n";
    text += "{\"type\": \"Feature\", \"properties\": {";
    AppendProperties(text, feature);
    bool const line = m_Layer.shape == Layer::Shape::LINES;
    text += "}, \"geometry\": {\"type\": ";
    text += line ? "\"LineString\", \"coordinates\": [" : "\"Point\", \"coordinates\": ";
    for (std::size_t i = 0; i < feature.points.size(); ++i) {
      if (i > 0) text += ", ";
      AppendPoint(text, feature.points[i]);
    }
    text += line ? "]}}" : "}}";
    m_Text.Spill();
  }

  void Close() override {
    m_Text.Buffer() += "\n]\n}\n";
    m_Text.Close();
  }

 private:
  void AppendProperties(std::string& text, Feature const& feature) const {
    text += InQuotes(m_Layer.counter) + ": " + std::to_string(m_iCount);
    if (m_Layer.measured) {
      AppendProperty(text, StartField().name, feature.distances.front());
    }
    for (std::size_t i = 0; i < feature.values.size(); ++i) {
      AppendProperty(text, m_Layer.fields[i].name, feature.values[i]);
    }
  }

  void AppendProperty(std::string& text, std::string const& name, FieldValue const& value) const {
    text += ", " + InQuotes(name) + ": ";
    if (auto const* number = std::get_if<double>(&value)) {
      AppendReal(text, *number);
    } else if (auto const* whole = std::get_if<long long>(&value)) {
      text += std::to_string(*whole);
    } else {
      text += InQuotes(std::get<std::string>(value));
    }
  }

  // Readers take the type of a field from how its numbers look.
  void AppendReal(std::string& text, double number) const {
    std::string const written = m_Style.Text(number);
    bool const whole = written.find_first_of(".e") == std::string::npos;
    text += whole ? written + ".0" : written;
  }

  void AppendPoint(std::string& text, TPoint const& p) const {
    text += '[';
    m_Style.Append(text, p.x);
    text += ", ";
    m_Style.Append(text, p.y);
    text += ", ";
    m_Style.Append(text, p.z);
    text += ']';
  }

  TextOutput m_Text;
  NumberStyle m_Style;
  Layer m_Layer;
  long long m_iCount = 0;
};

}  // namespace

std::unique_ptr<VectorOutput> CreateGeoJson(VectorOptions const& options, Layer const& layer) {
  return std::make_unique<GeoJsonOutput>(options, layer);
}

}  // namespace qeltin::cli
