#include "qeltin/models/CProfile.h"

#include <cassert>
#include <cmath>
#include <cwchar>

#include "qeltin/models/FillSegment.h"
#include "qeltin/models/LastError.h"

int CProfile::GetNumSegments() const { return m_CenterLine.GetNumPoints() - 1; }

bool CProfile::GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const {
  qeltin::detail::FillSegment(m_CenterLine, index, from, to);
  return true;
}

wchar_t const* CProfile::GetLineName() const { return m_LineName.c_str(); }

bool CProfile::GetArea(double* area) const {
  assert(!m_Points.empty());
  LineSegmentEnd from{};
  LineSegmentEnd to{};
  GetSegment(0, from, to);
  double const dx = to.x - from.x;
  double const dy = to.y - from.y;
  double const length = std::sqrt(dx * dx + dy * dy);

  ProfilePoint const& first = m_Points.front();
  ProfilePoint const& last = m_Points.back();
  double const start_cap = std::fabs(first.distance * first.z) / 2;
  double body = 0.0;
  for (std::size_t i = 0; i + 1 < m_Points.size(); i += 2) {  // every other interval
    ProfilePoint const& p = m_Points[i];
    ProfilePoint const& q = m_Points[i + 1];
    float const step = q.distance - p.distance;
    body += std::fabs(step * p.z) / 2 + std::fabs(step * q.z) / 2;
  }
  double const end_cap = std::fabs((length - last.distance) * last.z) / 2;
  *area = end_cap + start_cap + body;
  return true;
}

int CProfile::GetNumPoints() const { return static_cast<int>(m_Points.size()); }

ProfilePoint const* CProfile::GetPointRecord(int index) const {
  assert(index >= 0 && index < GetNumPoints());
  return m_Points.data() + index;
}

bool CProfile::HasPoint(int index) const {
  if (index >= 0 && index < GetNumPoints()) return true;
  qeltin::detail::SetLastErrorCode(qeltin::detail::INDEX_OUT_OF_RANGE);
  return false;
}

bool CProfile::GetPoint(int index, double* x, double* y, double* z) const {
  if (!HasPoint(index)) return false;
  ProfilePoint const& p = m_Points[index];
  *x = p.x + m_dBaseX;
  *y = p.y + m_dBaseY;
  *z = p.z;
  return true;
}

bool CProfile::GetPointAndTravel(int index, double* x, double* y, double* z, double* travel) const {
  if (!GetPoint(index, x, y, z)) return false;
  double offset = 0.0;
  return m_CenterLine.GetOffsetAndTravel(Point(*x, *y, 0.0), offset, *travel);
}

bool CProfile::GetPointAndTime(int index, double* x, double* y, double* z, double* time) const {
  if (!GetPoint(index, x, y, z)) return false;
  *time = m_Points[index].time + m_dBaseTime;
  return true;
}

double CProfile::GetOffset(int index) const {
  ProfilePoint const& p = *GetPointRecord(index);
  double offset = 0.0;
  double travel = 0.0;
  Point const stored(p.x, p.y, 0.0);  // the bases are not added
  return m_CenterLine.GetOffsetAndTravel(stored, offset, travel) ? offset : 0.0;
}

double CProfile::GetTravelAt(double x, double y) const {
  double offset = 0.0;
  double travel = 0.0;
  m_CenterLine.GetOffsetAndTravel(Point(x, y, 0.0), offset, travel);
  return travel;
}

double CProfile::GetDistance(int index) const { return GetPointRecord(index)->distance; }

CurvedCenterLine* CProfile::GetCenterLine() { return &m_CenterLine; }

float CProfile::GetMinZ() const { return static_cast<float>(m_dMinZ); }

float CProfile::GetMaxZ() const { return static_cast<float>(m_dMaxZ); }

float CProfile::GetStatZ() const { return static_cast<float>(m_dStatZ); }

float CProfile::GetMinX() const { return static_cast<float>(m_dMinX); }

float CProfile::GetMaxX() const { return static_cast<float>(m_dMaxX); }

float CProfile::GetStatX() const { return static_cast<float>(m_dStatX); }

float CProfile::GetMinY() const { return static_cast<float>(m_dMinY); }

float CProfile::GetMaxY() const { return static_cast<float>(m_dMaxY); }

float CProfile::GetStatY() const { return static_cast<float>(m_dStatY); }

float CProfile::GetStatMin() const { return static_cast<float>(m_dStatMin); }

float CProfile::GetStatMax() const { return static_cast<float>(m_dStatMax); }

int CProfile::GetNumLabels() const { return static_cast<int>(m_Labels.size()); }

bool CProfile::GetLabel(int index, double* x, double* y, double* z, wchar_t* text,
                        int textSize) const {
  if (index < 0 || index >= GetNumLabels()) return false;
  ProfileLabel const& label = m_Labels[index];
  *x = label.x;
  *y = label.y;
  *z = label.z;
  if (textSize > 0) {
    std::wcsncpy(text, label.text, textSize);
    text[textSize - 1] = L'\0';
  }
  return true;
}

double CProfile::GetTravel(int index) const {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  double travel = 0.0;
  return GetPointAndTravel(index, &x, &y, &z, &travel) ? travel : 0.0;
}
