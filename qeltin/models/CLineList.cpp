#include "qeltin/models/CLineList.h"

#include <limits>
#include <string>

#include "qeltin/models/TextOf.h"

namespace {

struct PlanExtents {
  double minX = std::numeric_limits<double>::max();
  double maxX = -std::numeric_limits<double>::max();
  double minY = std::numeric_limits<double>::max();
  double maxY = -std::numeric_limits<double>::max();

  void Fold(LineSegmentEnd const& end) {
    if (end.x < minX) minX = end.x;
    if (end.x > maxX) maxX = end.x;
    if (end.y < minY) minY = end.y;
    if (end.y > maxY) maxY = end.y;
  }
};

CenterLinePoint Vertex(double x, double y) {
  return {Point(x, y, 0.0), 0.0, 0.0, POINT_STRAIGHT, 0.0, 0, L""};
}

}  // namespace

bool CLineList::AddLine(wchar_t const* name, double x1, double y1, double x2, double y2) {
  std::wstring const text = qeltin::detail::TextOf(name);  // may be that of a line of this list
  CLine& line = m_Lines.emplace_back();
  line.SetName(text.c_str());
  line.SetDataFileName((text + L".MDB").c_str());
  line.Mark();
  CurvedCenterLine& center_line = *line.GetCenterLine();
  center_line.Clear();
  center_line.AddElem(Vertex(x1, y1));
  center_line.AddElem(Vertex(x2, y2));
  center_line.SetStartKp(0.0);
  center_line.SetHaveCenterLine(true);
  center_line.Init(0.0, false);
  return true;
}

bool CLineList::AddLine(CLine const& line) {
  m_Lines.push_back(line);
  return true;
}

bool CLineList::RemoveLine(CLine* line) {
  for (auto it = m_Lines.begin(); it != m_Lines.end(); ++it) {
    if (&*it != line) continue;
    m_Lines.erase(it);
    return true;
  }
  return false;
}

int CLineList::GetNumLines() const { return static_cast<int>(m_Lines.size()); }

CLine* CLineList::GetLine(int index) {
  return index >= 0 && index < GetNumLines() ? &m_Lines[index] : nullptr;
}

CLine const* CLineList::GetLine(int index) const {
  return index >= 0 && index < GetNumLines() ? &m_Lines[index] : nullptr;
}

bool CLineList::GetExtents(double* minX, double* maxX, double* minY, double* maxY) const {
  PlanExtents extents;
  for (CLine const& line : m_Lines) {
    for (int i = 0; i < line.GetNumPoints(); ++i) {
      LineSegmentEnd from{};
      LineSegmentEnd to{};
      line.GetSegment(i, from, to);  // false for the last point: the origin counts as well
      extents.Fold(from);
      extents.Fold(to);
    }
  }
  *minX = extents.minX;
  *maxX = extents.maxX;
  *minY = extents.minY;
  *maxY = extents.maxY;
  return true;
}
