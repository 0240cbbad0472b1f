#include "qeltin/models/ILineList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qeltin/models/CLine.h"
#include "testing/models/CallLog.h"
#include "testing/models/frozen/CallLines.h"

namespace {

using ::testing::ElementsAre;

class LoggingLineList : public ILineList {
 public:
  explicit LoggingLineList(qeltin::testing::CallLog& log) : m_Log(log) {}
  ~LoggingLineList() override { m_Log.Add("destructor"); }

  bool AddLine(wchar_t const* name, double x1, double y1, double x2, double y2) override {
    m_Log.Add("AddLine", name[0] == L't', x1, y1, x2, y2);
    return true;
  }
  bool AddLine(CLine const& line) override {
    m_Log.Add("AddLine", &line == &m_Line);
    return true;
  }
  bool RemoveLine(CLine* line) override {
    m_Log.Add("RemoveLine", line == &m_Line);
    return true;
  }
  int GetNumLines() const override {
    m_Log.Add("GetNumLines");
    return 0;
  }
  CLine* GetLine(int index) override {
    m_Log.Add("GetLine", index);
    return &m_Line;
  }
  CLine const* GetLine(int index) const override {
    m_Log.Add("GetLine const", index);
    return &m_Line;
  }
  bool GetExtents(double* minX, double* maxX, double* minY, double* maxY) const override {
    m_Log.Add("GetExtents", *minX, *maxX, *minY, *maxY);
    return true;
  }

 private:
  CLine m_Line;
  qeltin::testing::CallLog& m_Log;
};

TEST(ILineList, OperationsStandInTheOrderThatHostsAreCompiledAgainst) {
  qeltin::testing::CallLog log;
  qeltin::testing::frozen::CallEveryOperation(new LoggingLineList(log));
  EXPECT_THAT(log.Calls(), ElementsAre("AddLine(1, 1, 2, 3, 4)", "GetLine(7)", "AddLine(1)",
                                       "RemoveLine(1)", "GetNumLines()", "GetLine const(8)",
                                       "GetExtents(1, 2, 3, 4)", "destructor()"));
}

}  // namespace
