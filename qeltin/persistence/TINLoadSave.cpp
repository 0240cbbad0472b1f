#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <string_view>
#include <vector>

#include "qeltin/persistence/TINFile.h"
#include "qeltin/persistence/WidenBox.h"
#include "qeltin/persistence/XyzReader.h"
#include "qeltin/persistence/XyzWriter.h"
#include "qeltin/platform/Clock.h"
#include "qeltin/tin/TIN.h"

using qeltin::detail::WidenBox;

namespace {

constexpr std::size_t EXTENSION = 3;
constexpr std::size_t MOST_POINTS = (std::numeric_limits<int>::max() - 2000) / 2;

// Returns the last three characters of the name, or nothing of a shorter one.
std::wstring_view Extension(wchar_t const* file) {
  std::wstring_view const name = file == nullptr ? L"" : file;
  return name.size() < EXTENSION ? L"" : name.substr(name.size() - EXTENSION);
}

bool EqualsIgnoringCase(std::wstring_view text, std::wstring_view lower) {
  auto const same = [](wchar_t a, wchar_t b) { return a == b || (b - a == L'a' - L'A'); };
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), same);
}

// Returns false where there is no memory for them.
bool ReadTriples(wchar_t const* file, std::vector<TPoint>& points) {
  XyzReader reader(file);
  try {
    for (TPoint p; reader.Next(p);) points.push_back(p);
  } catch (std::bad_alloc const&) {
    return false;
  }
  return true;
}

}  // namespace

TIN::TIN(wchar_t const* path) : TIN() {
  ResetToEmptyBoxes();
  MakePools(7, 16);
  SeatTriangulator();
  std::srand(timeGetTime());
  Load(path);
}

bool TIN::Create(wchar_t const* path) {
  ResetToEmptyBoxes();
  MakePools(7, 16);
  SeatTriangulator();
  Load(path);
  return true;
}

bool TIN::Load(wchar_t const* file) {
  std::wstring_view const extension = Extension(file);
  bool const native = EqualsIgnoringCase(extension, L"tin");
  if (!native && !EqualsIgnoringCase(extension, L"ttm")) return LoadXYZ(file);
  bool const loaded = (native ? LoadTin(file) : LoadTrimbleTinModel(file)) != 0;
  SeatTriangulator();
  return loaded;
}

// In lower case only, other than Load: a name in TIN is saved as text.
bool TIN::Save(wchar_t const* file) const {
  return Extension(file) == L"tin" ? SaveTin(file) : SaveXYZ(file);
}

int TIN::LoadTin(wchar_t const* file) {
  TINFile source;
  if (source.LoadTIN(file, *this) == 0) return 0;
  if (GetNumberOfTriangles() > 0) m_pLastTriangle = m_pTriangles->At(0);
  return GetNumberOfPoints();
}

int TIN::LoadTrimbleTinModel(wchar_t const* file) {
  TINFile source;
  source.SetUnitConverter(m_pUnitConverter);
  if (source.LoadTrimbleTINModel(file, *this) == 0) return 0;
  if (GetNumberOfTriangles() > 0) m_pLastTriangle = m_pTriangles->At(0);
  return GetNumberOfPoints();
}

bool TIN::SaveTin(wchar_t const* file) const { return TINFile().SaveTIN(file, *this); }

bool TIN::LoadXYZ(wchar_t const* file) {
  std::vector<TPoint> points;
  if (!ReadTriples(file, points) || points.empty()) return false;

  m_WorldMin = m_WorldMax = points.front();
  for (TPoint const& p : points) WidenBox(p, m_WorldMin, m_WorldMax);
  if (points.size() < 3 || points.size() > MOST_POINTS) return false;

  m_Min = m_WorldMin;
  m_Max = m_WorldMax;
  m_WorldMin = m_Min - (m_Max - m_Min) * 0.1;
  m_WorldMax = m_Max + (m_Max - m_Min) * 0.1;

  auto const count = static_cast<long long>(points.size());
  MakePools(count + 1004, 2 * count + 2000);
  if (!m_pPoints->IsAllocated() || !m_pTriangles->IsAllocated()) {
    DropPools();
    return false;
  }
  SeatTriangulator();
  delete m_pPointMap;
  m_pPointMap = nullptr;
  InsertInRandomOrder(points);
  return true;
}

bool TIN::SaveXYZ(wchar_t const* file) const {
  XyzWriter writer(file);
  if (!writer.IsOpen()) return false;
  for (int i = 0; i < GetNumberOfPoints(); ++i) {
    TPoint const& p = *GetPoint(i);
    // The corners of the seed rectangle; a point of the data on one of them goes with it.
    bool const corner = p.z == 0.0 && (p.x == m_WorldMin.x || p.x == m_WorldMax.x) &&
                        (p.y == m_WorldMin.y || p.y == m_WorldMax.y);
    if (!corner) writer.Write(p);
  }
  writer.Close();
  return true;
}
