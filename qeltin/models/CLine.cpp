#include "qeltin/models/CLine.h"

#include "qeltin/models/FillSegment.h"
#include "qeltin/models/TextOf.h"

using qeltin::detail::TextOf;

wchar_t const* CLine::GetName() const { return m_Name.c_str(); }

wchar_t const* CLine::GetDataFileName() const { return m_DataFileName.c_str(); }

int CLine::GetNumPoints() const { return m_CenterLine.GetNumPoints(); }

bool CLine::GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const {
  if (index < 0 || index >= GetNumPoints() - 1) return false;
  qeltin::detail::FillSegment(m_CenterLine, index, from, to);
  return true;
}

void CLine::SetName(wchar_t const* name) { m_Name = TextOf(name); }

bool CLine::IsMarked() const { return m_iMarked == 1; }

void CLine::Mark() { m_iMarked = 1; }

std::int32_t CLine::GetAttribute(int index) const {
  return IsAttribute(index) ? m_Attributes[index] : 0;
}

void CLine::SetAttribute(int index, std::int32_t value) {
  if (IsAttribute(index)) m_Attributes[index] = value;
}

CurvedCenterLine* CLine::GetCenterLine() { return &m_CenterLine; }

CurvedCenterLine const* CLine::GetCenterLine() const { return &m_CenterLine; }

void CLine::SetDataFileName(wchar_t const* name) { m_DataFileName = TextOf(name); }

bool CLine::IsAttribute(int index) const {
  return index >= 0 && index < static_cast<int>(m_Attributes.size());
}
