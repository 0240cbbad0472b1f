#include <filesystem>
#include <optional>

#include "apps/qeltin/Crs.h"
#include "apps/qeltin/Numbers.h"
#include "apps/qeltin/Raster.h"
#include "apps/qeltin/TextOutput.h"

namespace qeltin::cli {

namespace {

class AsciiRaster : public Raster {
 public:
  explicit AsciiRaster(RasterOptions const& options) {
    if (!options.crs.empty()) {
      std::string const definition = ProjectionText(options.crs) + '\n';
      m_Projection.emplace(std::filesystem::path(options.output).replace_extension(".prj").string(),
                           options.overwrite);
      m_Projection->Buffer() = definition;
    }
    m_Output.emplace(options.output, options.overwrite);
  }

  void Begin(RasterFrame const& frame) override {
    AddLine("ncols", frame.columns);
    AddLine("nrows", frame.rows);
    AddLine("xllcorner", frame.Left());
    AddLine("yllcorner", frame.Bottom());
    if (frame.dx == frame.dy) {
      AddLine("cellsize", frame.dx);
    } else {
      AddLine("dx", frame.dx);
      AddLine("dy", frame.dy);
    }
    AddLine("NODATA_value", frame.no_data);
  }

  void Add(std::vector<double> const& row) override {
    std::string& text = m_Output->Buffer();
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) text += ' ';
      m_Exact.Append(text, row[i]);
      m_Output->Spill();
    }
    text += '\n';
  }

  void End() override {
    if (m_Projection) m_Projection->Close();
    m_Output->Close();
  }

 private:
  void AddLine(char const* key, double value) {
    std::string& text = m_Output->Buffer();
    text += key;
    text += ' ';
    m_Exact.Append(text, value);
    text += '\n';
  }

  std::optional<TextOutput> m_Projection;
  std::optional<TextOutput> m_Output;
  NumberStyle m_Exact;
};

}  // namespace

std::unique_ptr<Raster> NewAsciiRaster(RasterOptions const& options) {
  return std::make_unique<AsciiRaster>(options);
}

}  // namespace qeltin::cli
