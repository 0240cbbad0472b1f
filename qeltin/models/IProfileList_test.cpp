#include "qeltin/models/IProfileList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testing/models/CallLog.h"
#include "testing/models/frozen/CallProfiles.h"

namespace {

using ::testing::ElementsAre;

class LoggingProfileList : public IProfileList {
 public:
  explicit LoggingProfileList(qeltin::testing::CallLog& log) : m_Log(log) {}
  ~LoggingProfileList() override { m_Log.Add("destructor"); }

  int GetNumProfiles() const override {
    m_Log.Add("GetNumProfiles");
    return 0;
  }
  bool ResetCursor() override {
    m_Log.Add("ResetCursor");
    return true;
  }
  CProfile* GetNextProfile() override {
    m_Log.Add("GetNextProfile");
    return nullptr;
  }
  CProfile* GetProfile(int index) const override {
    m_Log.Add("GetProfile", index);
    return nullptr;
  }
  int GetTotalPoints() const override {
    m_Log.Add("GetTotalPoints");
    return 0;
  }
  bool GetExtents(double* minX, double* maxX, double* minY, double* maxY, double* minZ,
                  double* maxZ, double* statMin, double* statMax) const override {
    m_Log.Add("GetExtents", *minX, *maxX, *minY, *maxY, *minZ, *maxZ, *statMin, *statMax);
    return true;
  }

 private:
  qeltin::testing::CallLog& m_Log;
};

TEST(IProfileList, OperationsStandInTheOrderThatHostsAreCompiledAgainst) {
  qeltin::testing::CallLog log;
  qeltin::testing::frozen::CallEveryOperation(new LoggingProfileList(log));
  EXPECT_THAT(log.Calls(), ElementsAre("GetNumProfiles()", "ResetCursor()", "GetNextProfile()",
                                       "GetProfile(5)", "GetTotalPoints()",
                                       "GetExtents(1, 2, 3, 4, 5, 6, 7, 8)", "destructor()"));
}

}  // namespace
