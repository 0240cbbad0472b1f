#include <gdal_priv.h>

#include <array>

#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Raster.h"
#include "apps/qeltin/gdal/GdalSession.h"

namespace qeltin::cli {

namespace {

class GeoTiff : public Raster {
 public:
  explicit GeoTiff(RasterOptions const& options)
      : m_Options(options), m_Draft(options.output, options.overwrite) {
    if (!options.crs.empty()) m_Crs = FindCrs(options.crs);
  }

  void Begin(RasterFrame const& frame) override {
    CPLStringList settings;
    settings.SetNameValue("BIGTIFF", "IF_SAFER");
    if (m_Options.deflate) {
      settings.SetNameValue("COMPRESS", "DEFLATE");
      settings.SetNameValue("PREDICTOR", "3");
    }
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    if (driver == nullptr) throw Failure(m_Options.output, "GDAL has no driver for GeoTIFF");
    m_pData.reset(driver->Create(m_Draft.WorkingName().c_str(), frame.columns, frame.rows, 1,
                                 GDT_Float64, settings.List()));
    if (m_pData == nullptr) Refuse();
    std::array<double, 6> corner = {frame.Left(), frame.dx, 0.0, frame.Top(), 0.0, -frame.dy};
    m_pData->SetGeoTransform(corner.data());
    if (!m_Crs.IsEmpty()) m_pData->SetSpatialRef(&m_Crs);
    m_pData->GetRasterBand(1)->SetNoDataValue(frame.no_data);
    if (m_Session.HasFailed()) Refuse();
  }

  void Add(std::vector<double> const& row) override {
    int const columns = m_pData->GetRasterXSize();
    auto* const values = const_cast<double*>(row.data());  // GDAL only reads them
    CPLErr const error = m_pData->GetRasterBand(1)->RasterIO(
        GF_Write, 0, m_iRow++, columns, 1, values, columns, 1, GDT_Float64, 0, 0, nullptr);
    if (error != CE_None || m_Session.HasFailed()) Refuse();
  }

  void End() override {
    m_pData.reset();  // writes the rest; what goes wrong is told to the session alone
    if (m_Session.HasFailed()) Refuse();
    m_Draft.Sync();
    m_Draft.Commit();
  }

 private:
  [[noreturn]] void Refuse() const {
    throw Failure(m_Options.output, m_Session.WriteReason(m_Draft.WorkingName()));
  }

  RasterOptions m_Options;
  GdalSession m_Session;
  DraftFile m_Draft;
  OGRSpatialReference m_Crs;
  GDALDatasetUniquePtr m_pData;
  int m_iRow = 0;
};

}  // namespace

std::unique_ptr<Raster> NewGeoTiff(RasterOptions const& options) {
  return std::make_unique<GeoTiff>(options);
}

}  // namespace qeltin::cli
