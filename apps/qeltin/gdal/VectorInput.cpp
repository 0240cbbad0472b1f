#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <memory>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Outline.h"
#include "apps/qeltin/gdal/GdalSession.h"

namespace qeltin::cli {

namespace {

using Places = std::vector<TPoint>;

Places PlacesOf(OGRSimpleCurve const& curve) {
  Places places;
  places.reserve(static_cast<std::size_t>(curve.getNumPoints()));
  for (int i = 0; i < curve.getNumPoints(); ++i) {
    places.push_back({curve.getX(i), curve.getY(i), curve.getZ(i)});
  }
  return places;
}

// Appends what is a line or a polygon in `shape`, which has no curves.
void Append(OGRGeometry const& shape, std::string const& where, std::vector<Outline>& outlines) {
  if (shape.IsEmpty()) return;
  OGRwkbGeometryType const type = wkbFlatten(shape.getGeometryType());
  if (type == wkbLineString) {
    outlines.push_back({where, {PlacesOf(*shape.toLineString())}});
  } else if (OGR_GT_IsSubClassOf(type, wkbPolygon)) {
    Outline outline{where, {}};
    for (auto const* ring : *shape.toPolygon()) outline.parts.push_back(PlacesOf(*ring));
    outlines.push_back(std::move(outline));
  } else if (OGR_GT_IsSubClassOf(type, wkbGeometryCollection)) {
    for (auto const* part : *shape.toGeometryCollection()) Append(*part, where, outlines);
  } else if (OGR_GT_IsSubClassOf(type, wkbPolyhedralSurface)) {
    for (auto const* patch : *shape.toPolyhedralSurface()) Append(*patch, where, outlines);
  }
}

void AppendLayer(OGRLayer& layer, std::vector<Outline>& outlines) {
  std::string const of_layer = " of layer " + Quoted(layer.GetName());
  for (OGRFeatureUniquePtr const& feature : layer) {
    OGRGeometry const* const shape = feature->GetGeometryRef();
    if (shape == nullptr) continue;
    OGRGeometryUniquePtr const straight(shape->getLinearGeometry());
    if (straight == nullptr) continue;
    Append(*straight, "feature " + std::to_string(feature->GetFID()) + of_layer, outlines);
  }
}

}  // namespace

std::vector<Outline> ReadVectorFile(std::string const& file) {
  GdalSession const session;
  GDALDatasetUniquePtr const data(
      GDALDataset::Open(file.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
  if (data == nullptr) {
    throw Failure(
        file, "is neither a plain text of x y lines nor a vector file: " + session.Reason(file));
  }
  std::vector<Outline> outlines;
  for (OGRLayer* layer : data->GetLayers()) AppendLayer(*layer, outlines);
  if (session.HasFailed()) throw Failure(file, session.Reason(file));
  return outlines;
}

}  // namespace qeltin::cli
