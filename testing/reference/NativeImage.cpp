#include "testing/reference/NativeImage.h"

#include <cstdint>
#include <cstring>
#include <map>

#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing {

namespace {

constexpr std::size_t HEADER = 112;  // magic, version, four boxes
constexpr std::size_t POINT_RECORD = 24;
constexpr std::size_t TRIANGLE_RECORD = 26;

template <typename T>
void Put(std::string& image, T const& value) {
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));
  image.append(bytes, sizeof(T));
}

void PutPoint(std::string& image, TPoint const& p) {
  Put(image, p.x);
  Put(image, p.y);
  Put(image, p.z);
}

template <typename T>
std::int32_t OrdinalOf(std::map<T const*, std::int32_t> const& ordinals, T const* element) {
  auto const at = ordinals.find(element);
  return at == ordinals.end() ? -1 : at->second;
}

}  // namespace

std::string NativeImage(ReferenceTin const& tin) {
  std::string image("QEL2000 TIN", 12);
  Put(image, std::int32_t{3});
  PutPoint(image, tin.m_Min);
  PutPoint(image, tin.m_Max);
  PutPoint(image, tin.m_WorldMin);
  PutPoint(image, tin.m_WorldMax);

  std::int32_t const points = tin.m_pPoints == nullptr ? 0 : tin.m_pPoints->m_iCount;
  Put(image, points);
  std::map<TPoint const*, std::int32_t> pointOrdinals;
  for (std::int32_t i = 0; i < points; ++i) {
    TPoint const* const p = tin.m_pPoints->At(i);
    pointOrdinals[p] = i;
    PutPoint(image, *p);
  }

  std::int32_t const triangles = tin.m_pTriangles == nullptr ? 0 : tin.m_pTriangles->m_iCount;
  Put(image, triangles);
  std::map<TTriangle const*, std::int32_t> triangleOrdinals;
  for (std::int32_t i = 0; i < triangles; ++i) triangleOrdinals[tin.m_pTriangles->At(i)] = i;
  for (std::int32_t i = 0; i < triangles; ++i) {
    TTriangle const& t = *tin.m_pTriangles->At(i);
    for (TPoint const* corner : t.m_pVertex) Put(image, OrdinalOf(pointOrdinals, corner));
    for (TTriangle const* n : t.m_pAdjacent) Put(image, OrdinalOf(triangleOrdinals, n));
    Put(image, t.m_Flags);
    Put(image, '\0');
  }
  return image;
}

namespace {

// Reads an image from its front.
class ImageReader {
 public:
  ImageReader(std::string const& image, std::size_t at) : m_Image(image), m_iAt(at) {}

  template <typename T>
  T Get() {
    T value;
    std::memcpy(&value, m_Image.data() + m_iAt, sizeof(T));
    m_iAt += sizeof(T);
    return value;
  }

  TPoint GetPoint() {
    double const x = Get<double>();
    double const y = Get<double>();
    return {x, y, Get<double>()};
  }

 private:
  std::string const& m_Image;
  std::size_t m_iAt;
};

std::size_t TrianglesIn(std::string const& image) {
  std::int32_t points = 0;
  std::memcpy(&points, image.data() + HEADER, sizeof(points));
  return HEADER + 8 + POINT_RECORD * static_cast<std::size_t>(points);
}

}  // namespace

bool LoadNativeImage(std::string const& image, ReferenceTin& tin) {
  ImageReader in(image, 16);
  tin.m_Min = in.GetPoint();
  tin.m_Max = in.GetPoint();
  tin.m_WorldMin = in.GetPoint();
  tin.m_WorldMax = in.GetPoint();
  auto const points = in.Get<std::int32_t>();
  tin.m_pPoints = std::make_unique<TArray<TPoint>>(points + 1000);
  for (std::int32_t i = 0; i < points; ++i) tin.m_pPoints->Add(in.GetPoint());
  auto const triangles = in.Get<std::int32_t>();
  tin.m_pTriangles = std::make_unique<TArray<TTriangle>>(triangles + 2000);
  for (std::int32_t i = 0; i < triangles; ++i) {
    TTriangle t;
    unsigned char hidden = 0;
    for (TPoint*& corner : t.m_pVertex) {
      auto const ordinal = in.Get<std::int32_t>();
      corner = tin.m_pPoints->m_pData + (ordinal < 0 ? 0 : tin.m_pPoints->m_pIndex[ordinal]);
      if (ordinal < 0) hidden = TRI_OUTSIDE;
    }
    for (TTriangle*& n : t.m_pAdjacent) {
      auto const ordinal = in.Get<std::int32_t>();
      n = ordinal < 0 ? nullptr : tin.m_pTriangles->m_pData + tin.m_pTriangles->m_pIndex[ordinal];
    }
    t.m_Flags = static_cast<unsigned char>(in.Get<unsigned char>() | hidden);
    in.Get<char>();
    stated::CalcTri(t);
    tin.m_pTriangles->Add(t);
  }
  tin.m_pCurrent = nullptr;
  tin.m_pLastTriangle = triangles > 0 && points > 0 ? tin.m_pTriangles->At(0) : nullptr;
  if (tin.m_pPointMap != nullptr) tin.m_pPointMap->Clear();
  return points > 0;
}

void SetFlagsInImage(std::string& image, int position, unsigned char bits) {
  std::size_t const at =
      TrianglesIn(image) + TRIANGLE_RECORD * static_cast<std::size_t>(position) + 24;
  image[at] = static_cast<char>(image[at] | bits);
}

void ClearUnusedBytes(std::string& image) {
  std::size_t const first = TrianglesIn(image) + TRIANGLE_RECORD - 1;
  for (std::size_t at = first; at < image.size(); at += TRIANGLE_RECORD) image[at] = '\0';
}

}  // namespace qeltin::testing
