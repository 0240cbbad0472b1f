#include "qeltin/models/CContour.h"

#include <cassert>

#include "qeltin/models/ITin.h"
#include "qeltin/products/TPolygon.h"

CContour::CContour() = default;

CContour::~CContour() {
  for (TPolygon* line : m_Lines) delete line;
}

int CContour::GetNumLines() const { return static_cast<int>(m_Lines.size()); }

int CContour::GetNumPoints(int line) const { return GetLine(line)->GetSize(); }

bool CContour::GetSegment(int line, int index, double* x1, double* y1, double* z1, double* x2,
                          double* y2, double* z2) const {
  TPolygon const& points = *GetLine(line);
  if (index >= points.GetSize() - 1) return false;
  assert(index >= 0);
  TPoint const& from = *points.Get(index);
  TPoint const& to = *points.Get(index + 1);
  *x1 = from.x;
  *y1 = from.y;
  *z1 = from.z;
  *x2 = to.x;
  *y2 = to.y;
  *z2 = to.z;
  return true;
}

int CContour::Regenerate(double level) { return m_pTin->GenerateIsoline(m_Lines, level); }

TPolygon* CContour::GetLine(int index) const {
  assert(index >= 0 && index < GetNumLines());
  return m_Lines[static_cast<std::size_t>(index)];
}
