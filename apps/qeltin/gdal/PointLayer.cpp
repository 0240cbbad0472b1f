#include "apps/qeltin/PointLayer.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <cmath>
#include <vector>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/gdal/GdalSession.h"

namespace qeltin::cli {

namespace {

bool HoldsPoints(OGRwkbGeometryType type) {
  OGRwkbGeometryType const flat = wkbFlatten(type);
  return flat == wkbPoint || flat == wkbMultiPoint;
}

// Returns true iff the layer says that it holds points, or, where it says nothing, its first
// feature with a shape is one.
bool IsPointLayer(OGRLayer& layer) {
  if (wkbFlatten(layer.GetGeomType()) != wkbUnknown) return HoldsPoints(layer.GetGeomType());
  for (OGRFeatureUniquePtr const& feature : layer) {
    OGRGeometry const* const shape = feature->GetGeometryRef();
    if (shape != nullptr && !shape->IsEmpty()) return HoldsPoints(shape->getGeometryType());
  }
  return false;
}

OGRLayer& ChooseLayer(GDALDataset& data, std::string const& file, std::string const& wanted) {
  if (!wanted.empty()) {
    OGRLayer* const layer = data.GetLayerByName(wanted.c_str());
    if (layer == nullptr) throw Failure(file, "has no layer " + Quoted(wanted));
    if (!IsPointLayer(*layer)) throw Failure(file, "layer " + Quoted(wanted) + " holds no points");
    return *layer;
  }
  std::vector<OGRLayer*> layers;
  std::string names;
  for (OGRLayer* layer : data.GetLayers()) {
    if (!IsPointLayer(*layer)) continue;
    names += (layers.empty() ? "" : ", ") + Quoted(layer->GetName());
    layers.push_back(layer);
  }
  if (layers.empty()) throw Failure(file, "has no layer of points");
  if (layers.size() > 1) {
    throw Failure(file, "has several layers of points, of which --layer chooses one: " + names);
  }
  return *layers.front();
}

// Hands on the points of one layer.
class LayerReader {
 public:
  LayerReader(std::string const& file, OGRLayer& layer, std::string const& z_field,
              std::function<void(IPoint const&)> const& take)
      : m_File(file), m_Layer(layer), m_Take(take) {
    if (z_field.empty()) return;
    m_iField = layer.GetLayerDefn()->GetFieldIndex(z_field.c_str());
    if (m_iField < 0) throw Failure(file, "has no field " + Quoted(z_field));
  }

  long long Read(Progress& progress) {
    double features = 0.0;
    for (OGRFeatureUniquePtr const& feature : m_Layer) {
      progress.Done(features += 1.0);
      OGRGeometry const* const shape = feature->GetGeometryRef();
      if (shape == nullptr || shape->IsEmpty()) continue;
      if (!HoldsPoints(shape->getGeometryType())) {
        Refuse(*feature, std::string("is a ") + OGRGeometryTypeToName(shape->getGeometryType()) +
                             " and no point");
      }
      if (wkbFlatten(shape->getGeometryType()) == wkbPoint) {
        Take(*feature, *shape->toPoint());
      } else {
        for (OGRPoint const* point : *shape->toMultiPoint()) Take(*feature, *point);
      }
    }
    return m_iCount;
  }

 private:
  [[noreturn]] void Refuse(OGRFeature& feature, std::string const& what) const {
    throw Failure(m_File, "feature " + std::to_string(feature.GetFID()) + " of layer " +
                              Quoted(m_Layer.GetName()) + ' ' + what);
  }

  double HeightOf(OGRFeature& feature, OGRPoint const& point) const {
    if (m_iField < 0) {
      if (point.Is3D()) return point.getZ();
      Refuse(feature, "has no height: its points have no z, and no --z-field is given");
    }
    if (!feature.IsFieldSetAndNotNull(m_iField)) Refuse(feature, "has no height");
    OGRFieldType const type = feature.GetFieldDefnRef(m_iField)->GetType();
    if (type == OFTReal || type == OFTInteger || type == OFTInteger64) {
      return feature.GetFieldAsDouble(m_iField);
    }
    double height = 0.0;
    char const* const text = feature.GetFieldAsString(m_iField);
    if (!ParseNumbers(text, &height, 1)) Refuse(feature, "has the height " + Quoted(text));
    return height;
  }

  void Take(OGRFeature& feature, OGRPoint const& point) {
    if (point.IsEmpty()) return;
    IPoint const p{point.getX(), point.getY(), HeightOf(feature, point)};
    if (!std::isfinite(p.x + p.y + p.z)) Refuse(feature, "holds what is no ordinary number");
    ++m_iCount;
    m_Take(p);
  }

  std::string const& m_File;
  OGRLayer& m_Layer;
  int m_iField = -1;  // below 0: z
  std::function<void(IPoint const&)> const& m_Take;
  long long m_iCount = 0;
};

[[noreturn]] void RefuseFile(std::string const& name, GdalSession const& session) {
  std::string const reason = session.Reason();
  bool const says_more = reason.find("not recognized") == std::string::npos;
  throw Failure(name, "is no vector file that GDAL reads, although its name ends like one" +
                          (says_more ? ": " + reason : std::string()));
}

}  // namespace

bool IsVectorExtension(std::string const& extension) {
  GdalSession const session;
  GDALDriverManager& drivers = *GetGDALDriverManager();
  for (int i = 0; i < drivers.GetDriverCount(); ++i) {
    GDALDriver& driver = *drivers.GetDriver(i);
    if (driver.GetMetadataItem(GDAL_DCAP_VECTOR) == nullptr) continue;
    char const* const extensions = driver.GetMetadataItem(GDAL_DMD_EXTENSIONS);
    if (extensions == nullptr) continue;
    if ((' ' + std::string(extensions) + ' ').find(' ' + extension + ' ') != std::string::npos) {
      return true;
    }
  }
  return false;
}

PointLayer ReadPointLayer(std::string const& name, InputOptions const& options,
                          std::function<void(IPoint const&)> const& take) {
  GdalSession const session;
  GDALDatasetUniquePtr const data(
      GDALDataset::Open(name.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
  if (data == nullptr) RefuseFile(name, session);
  OGRLayer& layer = ChooseLayer(*data, name, options.layer);
  PointLayer result;
  result.driver = data->GetDriverName();
  result.layer = layer.GetName();
  {
    Progress progress("read", static_cast<double>(layer.GetFeatureCount(FALSE)), options.quiet);
    result.points = LayerReader(name, layer, options.z_field, take).Read(progress);
  }
  if (session.HasFailed()) throw Failure(name, session.Reason(name));
  if (result.points == 0) throw Failure(name, "holds no points");
  return result;
}

}  // namespace qeltin::cli
