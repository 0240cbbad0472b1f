#pragma once

#include <vector>

#include "qeltin/models/CLine.h"
#include "qeltin/models/ILineList.h"
#include "qeltin/platform/Export.h"

// The line list that the model manager makes. A value: a copy has lines of its own.
//
// Threads: as ILineList.
class QELTIN_API CLineList : public ILineList {
 public:
  bool AddLine(wchar_t const* name, double x1, double y1, double x2, double y2) override;
  bool AddLine(CLine const& line) override;
  bool RemoveLine(CLine* line) override;
  int GetNumLines() const override;
  CLine* GetLine(int index) override;
  CLine const* GetLine(int index) const override;
  bool GetExtents(double* minX, double* maxX, double* minY, double* maxY) const override;

 private:
  std::vector<CLine> m_Lines;
};
