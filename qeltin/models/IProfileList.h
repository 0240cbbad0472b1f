#pragma once

#include "qeltin/platform/Export.h"

class CProfile;

// A list of profiles, which it does not own. Hosts are compiled against the order of the virtual
// operations: it stays.
//
// Threads: no lock. One thread at a time.
class QELTIN_API IProfileList {
 public:
  // The profiles stay.
  virtual ~IProfileList() = default;

  virtual int GetNumProfiles() const = 0;

  // Lets GetNextProfile start from the first profile again. Always true.
  virtual bool ResetCursor() = 0;

  // Returns the profile at the cursor and moves on. Null behind the last one, with
  // GetLastErrorCode() 3.
  virtual CProfile* GetNextProfile() = 0;

  // Returns null where the list is empty. The index is not tested otherwise.
  virtual CProfile* GetProfile(int index) const = 0;

  // Returns the number of soundings in all profiles.
  virtual int GetTotalPoints() const = 0;

  // Sets the box of the stored extents of all profiles, as their operations return them in single
  // precision, and the range of their stored pair of statistics. Note that maxZ is never below
  // -10000.0 and statMax never below 0.0.
  //
  // Returns false for an empty list: minima are the largest finite double then, maxX and maxY its
  // negative. Leaves GetLastErrorCode() 3 where a profile's position in the list is no index of its
  // soundings.
  virtual bool GetExtents(double* minX, double* maxX, double* minY, double* maxY, double* minZ,
                          double* maxZ, double* statMin, double* statMax) const = 0;

 protected:
  IProfileList() = default;
  IProfileList(IProfileList const&) = default;
  IProfileList& operator=(IProfileList const&) = default;
};
