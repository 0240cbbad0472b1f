#include "apps/qeltin/TextOutput.h"
#include "apps/qeltin/VectorWriters.h"

namespace qeltin::cli {

namespace {

void AppendText(std::string& row, std::string const& text) {
  bool const quoted = text.find_first_of(",\"\r\n") != std::string::npos;
  if (quoted) row += '"';
  for (char const c : text) {
    row += c;
    if (c == '"') row += c;
  }
  if (quoted) row += '"';
}

class CsvOutput : public VectorOutput {
 public:
  CsvOutput(VectorOptions const& options, Layer const& layer)
      : m_Text(options.output, options.overwrite),
        m_Style(options.style),
        m_bMeasured(layer.measured) {
    std::string& row = m_Text.Buffer();
    AppendText(row, layer.counter);
    row += m_bMeasured ? ",distance,x,y,z" : ",x,y,z";
    for (Field const& field : layer.fields) {
      row += ',';
      AppendText(row, field.name);
    }
    row += '\n';
  }

  void Add(Feature const& feature) override {
    std::string const head = std::to_string(++m_iCount) + ',';
    std::string tail;
    for (FieldValue const& value : feature.values) AppendValue(tail, value);
    tail += '\n';
    for (std::size_t i = 0; i < feature.points.size(); ++i) {
      std::string& row = m_Text.Buffer();
      row += head;
      if (m_bMeasured) {
        m_Style.Append(row, feature.distances[i]);
        row += ',';
      }
      AppendPoint(row, feature.points[i]);
      row += tail;
      m_Text.Spill();
    }
  }

  void Close() override { m_Text.Close(); }

 private:
  void AppendPoint(std::string& row, TPoint const& p) const {
    m_Style.Append(row, p.x);
    row += ',';
    m_Style.Append(row, p.y);
    row += ',';
    m_Style.Append(row, p.z);
  }

  void AppendValue(std::string& row, FieldValue const& value) const {
    row += ',';
    if (auto const* number = std::get_if<double>(&value)) {
      m_Style.Append(row, *number);
    } else if (auto const* whole = std::get_if<long long>(&value)) {
      row += std::to_string(*whole);
    } else {
      AppendText(row, std::get<std::string>(value));
    }
  }

  TextOutput m_Text;
  NumberStyle m_Style;
  bool m_bMeasured;
  long long m_iCount = 0;
};

}  // namespace

std::unique_ptr<VectorOutput> CreateCsv(VectorOptions const& options, Layer const& layer) {
  return std::make_unique<CsvOutput>(options, layer);
}

}  // namespace qeltin::cli
