#include "qeltin/models/ILine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testing/models/CallLog.h"
#include "testing/models/frozen/CallLines.h"

namespace {

using ::testing::ElementsAre;

class LoggingLine : public ILine {
 public:
  explicit LoggingLine(qeltin::testing::CallLog& log) : m_Log(log) {}
  ~LoggingLine() override { m_Log.Add("destructor"); }

  wchar_t const* GetName() const override {
    m_Log.Add("GetName");
    return L"";
  }
  wchar_t const* GetDataFileName() const override {
    m_Log.Add("GetDataFileName");
    return L"";
  }
  int GetNumPoints() const override {
    m_Log.Add("GetNumPoints");
    return 0;
  }
  bool GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const override {
    m_Log.Add("GetSegment", index, from.x, to.x);
    return false;
  }
  void SetName(wchar_t const* name) override { m_Log.Add("SetName", name[0] == L't'); }
  bool IsMarked() const override {
    m_Log.Add("IsMarked");
    return false;
  }
  void Mark() override { m_Log.Add("Mark"); }
  std::int32_t GetAttribute(int index) const override {
    m_Log.Add("GetAttribute", index);
    return 0;
  }
  void SetAttribute(int index, std::int32_t value) override {
    m_Log.Add("SetAttribute", index, value);
  }
  CurvedCenterLine* GetCenterLine() override {
    m_Log.Add("GetCenterLine");
    return nullptr;
  }
  CurvedCenterLine const* GetCenterLine() const override {
    m_Log.Add("GetCenterLine const");
    return nullptr;
  }

 private:
  qeltin::testing::CallLog& m_Log;
};

TEST(ILine, OperationsStandInTheOrderThatHostsAreCompiledAgainst) {
  qeltin::testing::CallLog log;
  qeltin::testing::frozen::CallEveryOperation(new LoggingLine(log));
  EXPECT_THAT(log.Calls(), ElementsAre("GetName()", "GetDataFileName()", "GetNumPoints()",
                                       "GetSegment(5, 1, 2)", "SetName(1)", "IsMarked()", "Mark()",
                                       "GetAttribute(3)", "SetAttribute(4, 77)", "GetCenterLine()",
                                       "GetCenterLine const()", "destructor()"));
}

}  // namespace
