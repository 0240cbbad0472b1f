#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "qeltin/models/CurvedCenterLine.h"
#include "qeltin/models/ILine.h"
#include "qeltin/platform/Export.h"

// The line of a CLineList. A value: a copy has a center line and texts of its own.
//
// Threads: as ILine.
class QELTIN_API CLine : public ILine {
 public:
  wchar_t const* GetName() const override;
  wchar_t const* GetDataFileName() const override;
  int GetNumPoints() const override;
  bool GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const override;
  void SetName(wchar_t const* name) override;
  bool IsMarked() const override;
  void Mark() override;
  std::int32_t GetAttribute(int index) const override;
  void SetAttribute(int index, std::int32_t value) override;
  CurvedCenterLine* GetCenterLine() override;
  CurvedCenterLine const* GetCenterLine() const override;

  // A null text counts as an empty one.
  void SetDataFileName(wchar_t const* name);

 private:
  bool IsAttribute(int index) const;

  CurvedCenterLine m_CenterLine;
  std::wstring m_Name;
  std::wstring m_DataFileName;
  std::int32_t m_iMarked = 0;
  std::array<std::int32_t, 5> m_Attributes{};
};
