#pragma once

#include <vector>

#include "qeltin/models/CProfile.h"
#include "qeltin/models/IProfileList.h"
#include "qeltin/platform/Export.h"

// The profile list that the model manager makes. Profiles must outlive it; a copy holds the same
// ones and has a cursor of its own.
//
// Threads: as IProfileList.
class QELTIN_API CProfileList : public IProfileList {
 public:
  int GetNumProfiles() const override;
  bool ResetCursor() override;
  CProfile* GetNextProfile() override;
  CProfile* GetProfile(int index) const override;
  int GetTotalPoints() const override;
  bool GetExtents(double* minX, double* maxX, double* minY, double* maxY, double* minZ,
                  double* maxZ, double* statMin, double* statMax) const override;

  // Appends a profile, which stays the caller's. False for null.
  bool AddProfile(CProfile* profile);

 private:
  std::vector<CProfile*> m_Profiles;  // not owned
  int m_iCursor = 0;
};
