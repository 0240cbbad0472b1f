#pragma once

#include <vector>

#include "qeltin/kernel/IPoint.h"

class IContour;
class ILineList;
class IProfile;
class IProfileList;
class ITin;

// IModelManager as the hosts in the field were compiled against it. Never changed. A file that
// includes it includes the header of the library by that name in no way.
class IModelManager {
 public:
  virtual ~IModelManager() = default;

  virtual wchar_t const* SetPath(wchar_t const* path) = 0;
  virtual wchar_t const* GetPath() const = 0;
  virtual IProfileList* CreateProfileList() = 0;
  virtual bool ReleaseProfileList(IProfileList* profiles) = 0;
  virtual bool DestroyProfileList(IProfileList* profiles) = 0;
  virtual bool ReleaseProfile(IProfile* profile) = 0;
  virtual bool DestroyProfile(IProfile* profile) = 0;
  virtual ILineList* CreateLineList() = 0;
  virtual bool DestroyLineList(ILineList* lines) = 0;
  virtual ITin* CreateTin(std::vector<IPoint>* points) = 0;
  virtual ITin* CreateTin(IProfileList* profiles) = 0;
  virtual ITin* CreateTin(wchar_t const* path) = 0;
  virtual ITin* CreateTin(IPoint& min, IPoint& max, int numPoints) = 0;
  virtual bool ReleaseTin(ITin* tin) = 0;
  virtual bool DestroyTin(ITin* tin) = 0;
  virtual IContour* CreateContour(ITin const* tin, double level) = 0;
  virtual bool ReleaseContour(IContour* contour) = 0;
  virtual bool DestroyContour(IContour* contour) = 0;
  virtual long GetNumberOfModels() const = 0;
  virtual wchar_t const* GetModelName(long index) const = 0;
  virtual long PurgeProfiles() = 0;
  virtual void SetShowPoints(int, int) = 0;
};
