#include "testing/models/frozen/CallLines.h"

#include <cstdint>

// Copies of the interfaces as hosts were compiled against them. They change only where hosts are
// to be compiled anew.

class CLine;
class CurvedCenterLine;
struct LineSegmentEnd {
  double word[7];
};

class ILine {
 public:
  virtual ~ILine();
  virtual wchar_t const* GetName() const = 0;
  virtual wchar_t const* GetDataFileName() const = 0;
  virtual int GetNumPoints() const = 0;
  virtual bool GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const = 0;
  virtual void SetName(wchar_t const* name) = 0;
  virtual bool IsMarked() const = 0;
  virtual void Mark() = 0;
  virtual std::int32_t GetAttribute(int index) const = 0;
  virtual void SetAttribute(int index, std::int32_t value) = 0;
  virtual CurvedCenterLine* GetCenterLine() = 0;
  virtual CurvedCenterLine const* GetCenterLine() const = 0;
};

class ILineList {
 public:
  virtual ~ILineList();
  virtual bool AddLine(wchar_t const* name, double x1, double y1, double x2, double y2) = 0;
  virtual bool AddLine(CLine const& line) = 0;
  virtual bool RemoveLine(CLine* line) = 0;
  virtual int GetNumLines() const = 0;
  virtual CLine* GetLine(int index) = 0;
  virtual CLine const* GetLine(int index) const = 0;
  virtual bool GetExtents(double* minX, double* maxX, double* minY, double* maxY) const = 0;
};

namespace qeltin::testing::frozen {

void CallEveryOperation(ILine* line) {
  ILine const* const_line = line;
  LineSegmentEnd from{{0, 0, 1}};
  LineSegmentEnd to{{0, 0, 2}};
  line->GetName();
  line->GetDataFileName();
  line->GetNumPoints();
  line->GetSegment(5, from, to);
  line->SetName(L"text");
  line->IsMarked();
  line->Mark();
  line->GetAttribute(3);
  line->SetAttribute(4, 77);
  line->GetCenterLine();
  const_line->GetCenterLine();
  delete line;
}

void CallEveryOperation(ILineList* list) {
  ILineList const* const_list = list;
  double v[] = {1, 2, 3, 4};
  list->AddLine(L"text", 1, 2, 3, 4);
  CLine* const line = list->GetLine(7);
  list->AddLine(*line);
  list->RemoveLine(line);
  list->GetNumLines();
  const_list->GetLine(8);
  list->GetExtents(&v[0], &v[1], &v[2], &v[3]);
  delete list;
}

}  // namespace qeltin::testing::frozen
