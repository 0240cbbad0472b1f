#include "qeltin/models/CTin.h"

#include <algorithm>
#include <utility>

#include "qeltin/products/TGrid.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

namespace {

struct Box {
  TPoint min;
  TPoint max;

  // Tests for being outside, so that what is not a number is inside.
  bool Holds(IPoint const& p) const {
    if (min.x > p.x || p.x > max.x) return false;
    return !(min.y > p.y || p.y > max.y);
  }

  bool Holds(TriangleCorners const& triangle) const {
    return std::all_of(std::begin(triangle.vertex), std::end(triangle.vertex),
                       [this](IPoint const& p) { return Holds(p); });
  }
};

Box WorldBox(TIN const& tin) {
  Box box;
  tin.GetWorldBounds(box.min, box.max);
  return box;
}

Box DataBounds(TIN const& tin) {
  Box box;
  tin.GetBounds(box.min, box.max);
  return box;
}

IPoint ToIPoint(TPoint const& p) { return {p.x, p.y, p.z}; }

void CopyCorners(TTriangle const& triangle, TriangleCorners& corners) {
  for (int i = 0; i < 3; ++i) corners.vertex[i] = ToIPoint(*triangle.GetPoint(i));
}

}  // namespace

CTin::CTin() = default;

CTin::CTin(std::unique_ptr<TIN> tin, CQelUnitCnv* converter)
    : m_pTin(std::move(tin)), m_pUnitConverter(converter) {}

CTin::~CTin() = default;

void CTin::GetWorldBounds(IPoint& max, IPoint& min) const {
  Box const box = WorldBox(*m_pTin);
  max = ToIPoint(box.max);
  min = ToIPoint(box.min);
}

void CTin::GetBounds(IPoint& min, IPoint& max) const {
  Box const box = DataBounds(*m_pTin);
  min = ToIPoint(box.min);
  max = ToIPoint(box.max);
}

bool CTin::InWorldBounds(TriangleCorners const& triangle) const {
  return WorldBox(*m_pTin).Holds(triangle);
}

bool CTin::InWorldBounds(IPoint const& point) const { return WorldBox(*m_pTin).Holds(point); }

bool CTin::InBounds(TriangleCorners const& triangle) const {
  return DataBounds(*m_pTin).Holds(triangle);
}

bool CTin::InBounds(IPoint const& point) const { return DataBounds(*m_pTin).Holds(point); }

int CTin::GetNumPoints() const { return m_pTin == nullptr ? 0 : m_pTin->GetNumberOfPoints(); }

bool CTin::GetPoint(int index, IPoint& point) const {
  point = ToIPoint(*m_pTin->GetPoint(index));
  return true;
}

bool CTin::AddPoint(double x, double y, double z) {
  return m_pTin->AddPoint(TPoint(x, y, z)) != nullptr;
}

void CTin::ResetPoints() { m_pTin->RemoveAllPoints(); }

int CTin::GetNumTriangles() const { return m_pTin == nullptr ? 0 : m_pTin->GetNumberOfTriangles(); }

bool CTin::GetTriangle(int index, TriangleCorners& corners) const {
  TTriangle const* const triangle = m_pTin->GetTriangle(index, false);
  if (triangle == nullptr) return false;
  CopyCorners(*triangle, corners);
  return true;
}

bool CTin::FindTriangle(IPoint const& point, TriangleCorners& corners) const {
  TTriangle const* const triangle = m_pTin->GetTriangleWithPoint(point);
  if (triangle == nullptr) return false;
  CopyCorners(*triangle, corners);
  return true;
}

bool CTin::GetZ(double x, double y, double* z) const {
  return m_pTin->GetZ(TPoint(x, y, 0.0), *z, nullptr);
}

bool CTin::LoadXYZ(wchar_t const* path) { return m_pTin->LoadXYZ(path); }
bool CTin::SaveXYZ(wchar_t const* path) const { return m_pTin->SaveXYZ(path); }
bool CTin::LoadTin(wchar_t const* path) { return m_pTin->LoadTin(path) != 0; }
bool CTin::SaveTin(wchar_t const* path) const { return m_pTin->SaveTin(path); }

void CTin::DestroyGrid() { m_pGrid.reset(); }

void CTin::CreateGrid(double dx, double dy) {
  if (m_pGrid != nullptr) return;
  m_pGrid = std::make_unique<TGrid>();
  m_pGrid->Create(*m_pTin, dx, dy);
}

void CTin::FilterTriangles(double limit) { m_pTin->FilterTriangles(limit); }

int CTin::GenerateIsoline(std::vector<TPolygon*>& lines, double level) const {
  return m_pTin->GenerateIsoline(lines, level);
}

int CTin::GenerateProfile(std::vector<TPolygon>& sections, TPolygon const& path) const {
  return m_pTin->GenerateProfile(sections, path);
}

int CTin::GenerateProfile(std::vector<TPolygon>& sections, IPoint const& from,
                          IPoint const& to) const {
  return m_pTin->GenerateProfile(sections, TPoint(from), TPoint(to));
}
