#include "qeltin/models/IProfile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testing/models/CallLog.h"
#include "testing/models/frozen/CallProfiles.h"

namespace {

using ::testing::ElementsAre;

class LoggingProfile : public IProfile {
 public:
  explicit LoggingProfile(qeltin::testing::CallLog& log) : m_Log(log) {}
  ~LoggingProfile() override { m_Log.Add("destructor"); }

  int GetNumSegments() const override { return Log(0, "GetNumSegments"); }
  bool GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const override {
    return Log(true, "GetSegment", index, from.x, to.x);
  }
  wchar_t const* GetLineName() const override { return Log(L"", "GetLineName"); }
  bool GetArea(double* area) const override { return Log(true, "GetArea", *area); }
  int GetNumPoints() const override { return Log(0, "GetNumPoints"); }
  ProfilePoint const* GetPointRecord(int index) const override {
    return Log(nullptr, "GetPointRecord", index);
  }
  bool GetPoint(int index, double* x, double* y, double* z) const override {
    return Log(true, "GetPoint", index, *x, *y, *z);
  }
  bool GetPointAndTravel(int index, double* x, double* y, double* z,
                         double* travel) const override {
    return Log(true, "GetPointAndTravel", index, *x, *y, *z, *travel);
  }
  bool GetPointAndTime(int index, double* x, double* y, double* z, double* time) const override {
    return Log(true, "GetPointAndTime", index, *x, *y, *z, *time);
  }
  double GetOffset(int index) const override { return Log(0.0, "GetOffset", index); }
  double GetTravelAt(double x, double y) const override { return Log(0.0, "GetTravelAt", x, y); }
  double GetDistance(int index) const override { return Log(0.0, "GetDistance", index); }
  CurvedCenterLine* GetCenterLine() override { return Log(nullptr, "GetCenterLine"); }
  float GetMinZ() const override { return Log(0.0f, "GetMinZ"); }
  float GetMaxZ() const override { return Log(0.0f, "GetMaxZ"); }
  float GetStatZ() const override { return Log(0.0f, "GetStatZ"); }
  float GetMinX() const override { return Log(0.0f, "GetMinX"); }
  float GetMaxX() const override { return Log(0.0f, "GetMaxX"); }
  float GetStatX() const override { return Log(0.0f, "GetStatX"); }
  float GetMinY() const override { return Log(0.0f, "GetMinY"); }
  float GetMaxY() const override { return Log(0.0f, "GetMaxY"); }
  float GetStatY() const override { return Log(0.0f, "GetStatY"); }
  float GetStatMin() const override { return Log(0.0f, "GetStatMin"); }
  float GetStatMax() const override { return Log(0.0f, "GetStatMax"); }
  int GetNumLabels() const override { return Log(0, "GetNumLabels"); }
  bool GetLabel(int index, double* x, double* y, double* z, wchar_t* text,
                int textSize) const override {
    return Log(true, "GetLabel", index, *x, *y, *z, text[0] == L't', textSize);
  }

 private:
  template <typename Result, typename... Arguments>
  Result Log(Result result, char const* name, Arguments const&... arguments) const {
    m_Log.Add(name, arguments...);
    return result;
  }

  qeltin::testing::CallLog& m_Log;
};

TEST(IProfile, OperationsStandInTheOrderThatHostsAreCompiledAgainst) {
  qeltin::testing::CallLog log;
  qeltin::testing::frozen::CallEveryOperation(new LoggingProfile(log));
  EXPECT_THAT(
      log.Calls(),
      ElementsAre("GetNumSegments()", "GetSegment(5, 1, 2)", "GetLineName()", "GetArea(1)",
                  "GetNumPoints()", "GetPointRecord(6)", "GetPoint(7, 1, 2, 3)",
                  "GetPointAndTravel(8, 1, 2, 3, 4)", "GetPointAndTime(9, 1, 2, 3, 4)",
                  "GetOffset(10)", "GetTravelAt(11, 12)", "GetDistance(13)", "GetCenterLine()",
                  "GetMinZ()", "GetMaxZ()", "GetStatZ()", "GetMinX()", "GetMaxX()", "GetStatX()",
                  "GetMinY()", "GetMaxY()", "GetStatY()", "GetStatMin()", "GetStatMax()",
                  "GetNumLabels()", "GetLabel(14, 1, 2, 3, 1, 8)", "destructor()"));
}

}  // namespace
