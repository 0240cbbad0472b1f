#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <fcntl.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>

#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/FileName.h"
#include "apps/qeltin/VectorWriters.h"
#include "apps/qeltin/gdal/GdalSession.h"

namespace qeltin::cli {

namespace {

namespace fs = std::filesystem;

// GDAL writes into memory, and the bytes go to the disk from here: not all of its drivers notice
// where a disk runs full.
constexpr char MEMORY[] = "/vsimem/qeltin/";

// Dates that stand in files are those of no particular day, so that equal input gives equal bytes.
constexpr char NO_DAY[] = "1970-01-01";
constexpr char NO_TIME[] = "1970-01-01T00:00:00.000Z";

// Without it a GeoPackage would say that x and y are degrees.
constexpr char PLANE[] =
    "ENGCRS[\"Undefined Cartesian SRS\",EDATUM[\"unknown\"],CS[Cartesian,2],AXIS[\"(E)\",east],"
    "AXIS[\"(N)\",north],LENGTHUNIT[\"metre\",1]]";

struct Format {
  char const* driver;
  std::vector<std::string> sides;  // written, or of no use once the file is another
  bool fields = true;
};

Format FormatOf(std::string const& name) {
  std::string const ending = EndingOf(name);
  if (ending == ".gpkg") return {"GPKG", {}};
  if (ending == ".dxf") return {"DXF", {}, false};
  return {"ESRI Shapefile", {".shx", ".dbf", ".prj", ".cpg", ".qix", ".sbn", ".sbx"}};
}

OGRFieldType TypeOf(FieldType type) {
  switch (type) {
    case FieldType::INTEGER:
      return OFTInteger64;
    case FieldType::REAL:
      return OFTReal;
    case FieldType::TEXT:
      break;
  }
  return OFTString;
}

void SetValue(OGRFeature& record, int index, FieldValue const& value) {
  if (auto const* number = std::get_if<double>(&value)) {
    record.SetField(index, *number);
  } else if (auto const* whole = std::get_if<long long>(&value)) {
    record.SetField(index, GIntBig{*whole});
  } else {
    record.SetField(index, std::get<std::string>(value).c_str());
  }
}

std::unique_ptr<OGRGeometry> ShapeOf(Feature const& feature, Layer::Shape shape) {
  if (shape == Layer::Shape::POINTS) {
    TPoint const& p = feature.points.front();
    return std::make_unique<OGRPoint>(p.x, p.y, p.z);
  }
  auto line = std::make_unique<OGRLineString>();
  line->setNumPoints(static_cast<int>(feature.points.size()), FALSE);
  for (std::size_t i = 0; i < feature.points.size(); ++i) {
    TPoint const& p = feature.points[i];
    line->setPoint(static_cast<int>(i), p.x, p.y, p.z);
  }
  return line;
}

// Copies a file of GDAL's memory, and does not return before the bytes are on the disk.
void SaveFromMemory(std::string const& from, std::string const& to, std::string const& told) {
  vsi_l_offset size = 0;
  GByte const* bytes = VSIGetMemFileBuffer(from.c_str(), &size, FALSE);
  if (bytes == nullptr) return;
  int const descriptor = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  bool good = descriptor >= 0;
  while (good && size > 0) {
    ssize_t const written = write(descriptor, bytes, size);
    if (written < 0 && errno == EINTR) continue;
    good = written >= 0;
    if (!good) break;
    bytes += written;
    size -= static_cast<vsi_l_offset>(written);
  }
  good = good && fsync(descriptor) == 0;
  int const reason = errno;
  if (descriptor >= 0) close(descriptor);
  if (!good) throw Failure(told, SystemReason(reason));
}

class VectorFile : public VectorOutput {
 public:
  VectorFile(VectorOptions const& options, Layer const& layer)
      : m_Name(options.output),
        m_Crs(options.crs),
        m_Layer(layer),
        m_Format(FormatOf(options.output)),
        m_Draft(options.output, options.overwrite, m_Format.sides),
        m_Memory(MEMORY + layer.name + EndingOf(options.output)) {}

  ~VectorFile() override {
    m_pData.reset();
    if (m_Session) VSIRmdirRecursive(MEMORY);
  }

  void Add(Feature const& feature) override {
    Open();
    OGRFeature record(m_pLayer->GetLayerDefn());
    ++m_iCount;
    if (m_Format.fields) {
      int index = 0;
      SetValue(record, index++, m_iCount);
      if (m_Layer.measured) SetValue(record, index++, feature.distances.front());
      for (FieldValue const& value : feature.values) SetValue(record, index++, value);
    } else {
      record.SetField("Layer", m_Layer.name.c_str());
    }
    record.SetGeometryDirectly(ShapeOf(feature, m_Layer.shape).release());
    if (m_pLayer->CreateFeature(&record) != OGRERR_NONE) Fail();
    if (m_Session->HasFailed()) Fail();
  }

  void Close() override {
    Open();
    if (m_bTransaction && m_pData->CommitTransaction() != OGRERR_NONE) Fail();
    m_pData.reset();
    if (m_Session->HasFailed()) Fail();
    SaveFromMemory(m_Memory, m_Draft.WorkingName(), m_Name);
    for (std::string const& ending : m_Format.sides) {
      SaveFromMemory(fs::path(m_Memory).replace_extension(ending).string(),
                     m_Draft.WorkingSide(ending), m_Name);
    }
    m_Draft.Commit();
  }

 private:
  [[noreturn]] void Fail() const { throw Failure(m_Name, m_Session->Reason(m_Memory)); }

  // GDAL is not touched before the first feature comes: by then all input has been read.
  void Open() {
    if (m_Session) return;
    CPLSetConfigOption("OGR_CURRENT_DATE", NO_TIME);
    m_Session.emplace();
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName(m_Format.driver);
    if (driver == nullptr) throw Failure(m_Name, "this GDAL has no driver for such files");
    m_pData.reset(driver->Create(m_Memory.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (m_pData == nullptr) Fail();
    MakeLayer();
    m_bTransaction = m_pData->TestCapability(ODsCTransactions) != FALSE &&
                     m_pData->StartTransaction() == OGRERR_NONE;
  }

  void MakeLayer() {
    std::optional<OGRSpatialReference> crs;
    if (!m_Crs.empty()) {
      crs.emplace(FindCrs(m_Crs));
    } else if (EQUAL(m_Format.driver, "GPKG")) {
      crs.emplace().SetFromUserInput(PLANE);
    }
    CPLStringList options;
    if (EQUAL(m_Format.driver, "ESRI Shapefile")) {
      options.SetNameValue("ENCODING", "UTF-8");
      options.SetNameValue("DBF_DATE_LAST_UPDATE", NO_DAY);
    }
    bool const line = m_Layer.shape == Layer::Shape::LINES;
    m_pLayer = m_pData->CreateLayer(m_Layer.name.c_str(), crs ? &*crs : nullptr,
                                    line ? wkbLineString25D : wkbPoint25D, options.List());
    if (m_pLayer == nullptr) Fail();
    if (!m_Format.fields) return;
    AddField({m_Layer.counter, FieldType::INTEGER});
    if (m_Layer.measured) AddField(StartField());
    for (Field const& field : m_Layer.fields) AddField(field);
  }

  void AddField(Field const& field) {
    OGRFieldDefn definition(field.name.c_str(), TypeOf(field.type));
    if (m_pLayer->CreateField(&definition) != OGRERR_NONE) Fail();
  }

  std::string m_Name;
  std::string m_Crs;
  Layer m_Layer;
  Format m_Format;
  DraftFile m_Draft;
  std::string m_Memory;
  std::optional<GdalSession> m_Session;
  GDALDatasetUniquePtr m_pData;
  OGRLayer* m_pLayer = nullptr;  // owned by the data set
  bool m_bTransaction = false;
  long long m_iCount = 0;
};

}  // namespace

std::unique_ptr<VectorOutput> CreateVectorFile(VectorOptions const& options, Layer const& layer) {
  return std::make_unique<VectorFile>(options, layer);
}

void CheckCrs(std::string const& crs) {
  GdalSession const session;
  FindCrs(crs);
}

}  // namespace qeltin::cli
