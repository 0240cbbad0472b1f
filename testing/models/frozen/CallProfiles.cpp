#include "testing/models/frozen/CallProfiles.h"

// Copies of the interfaces as hosts were compiled against them. They change only where hosts are
// to be compiled anew.

class CProfile;
class CurvedCenterLine;
struct LineSegmentEnd {
  double word[7];
};
struct ProfilePoint {
  float word[5];
};

class IProfile {
 public:
  virtual ~IProfile();
  virtual int GetNumSegments() const = 0;
  virtual bool GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const = 0;
  virtual wchar_t const* GetLineName() const = 0;
  virtual bool GetArea(double* area) const = 0;
  virtual int GetNumPoints() const = 0;
  virtual ProfilePoint const* GetPointRecord(int index) const = 0;
  virtual bool GetPoint(int index, double* x, double* y, double* z) const = 0;
  virtual bool GetPointAndTravel(int index, double* x, double* y, double* z,
                                 double* travel) const = 0;
  virtual bool GetPointAndTime(int index, double* x, double* y, double* z, double* time) const = 0;
  virtual double GetOffset(int index) const = 0;
  virtual double GetTravelAt(double x, double y) const = 0;
  virtual double GetDistance(int index) const = 0;
  virtual CurvedCenterLine* GetCenterLine() = 0;
  virtual float GetMinZ() const = 0;
  virtual float GetMaxZ() const = 0;
  virtual float GetStatZ() const = 0;
  virtual float GetMinX() const = 0;
  virtual float GetMaxX() const = 0;
  virtual float GetStatX() const = 0;
  virtual float GetMinY() const = 0;
  virtual float GetMaxY() const = 0;
  virtual float GetStatY() const = 0;
  virtual float GetStatMin() const = 0;
  virtual float GetStatMax() const = 0;
  virtual int GetNumLabels() const = 0;
  virtual bool GetLabel(int index, double* x, double* y, double* z, wchar_t* text,
                        int textSize) const = 0;
};

class IProfileList {
 public:
  virtual ~IProfileList();
  virtual int GetNumProfiles() const = 0;
  virtual bool ResetCursor() = 0;
  virtual CProfile* GetNextProfile() = 0;
  virtual CProfile* GetProfile(int index) const = 0;
  virtual int GetTotalPoints() const = 0;
  virtual bool GetExtents(double* minX, double* maxX, double* minY, double* maxY, double* minZ,
                          double* maxZ, double* statMin, double* statMax) const = 0;
};

namespace qeltin::testing::frozen {

void CallEveryOperation(IProfile* profile) {
  LineSegmentEnd from{{0, 0, 1}};
  LineSegmentEnd to{{0, 0, 2}};
  double v[] = {1, 2, 3, 4};
  wchar_t text[8] = L"text";
  profile->GetNumSegments();
  profile->GetSegment(5, from, to);
  profile->GetLineName();
  profile->GetArea(&v[0]);
  profile->GetNumPoints();
  profile->GetPointRecord(6);
  profile->GetPoint(7, &v[0], &v[1], &v[2]);
  profile->GetPointAndTravel(8, &v[0], &v[1], &v[2], &v[3]);
  profile->GetPointAndTime(9, &v[0], &v[1], &v[2], &v[3]);
  profile->GetOffset(10);
  profile->GetTravelAt(11, 12);
  profile->GetDistance(13);
  profile->GetCenterLine();
  profile->GetMinZ();
  profile->GetMaxZ();
  profile->GetStatZ();
  profile->GetMinX();
  profile->GetMaxX();
  profile->GetStatX();
  profile->GetMinY();
  profile->GetMaxY();
  profile->GetStatY();
  profile->GetStatMin();
  profile->GetStatMax();
  profile->GetNumLabels();
  profile->GetLabel(14, &v[0], &v[1], &v[2], text, 8);
  delete profile;
}

void CallEveryOperation(IProfileList* list) {
  double v[] = {1, 2, 3, 4, 5, 6, 7, 8};
  list->GetNumProfiles();
  list->ResetCursor();
  list->GetNextProfile();
  list->GetProfile(5);
  list->GetTotalPoints();
  list->GetExtents(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7]);
  delete list;
}

}  // namespace qeltin::testing::frozen
