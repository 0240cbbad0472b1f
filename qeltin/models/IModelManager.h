#pragma once

#include <vector>

#include "qeltin/kernel/IPoint.h"
#include "qeltin/platform/Export.h"

class IContour;
class ILineList;
class IProfile;
class IProfileList;
class ITin;

// Makes every object that the library hands out, and takes it back. A host never deletes such an
// object: its Release or Destroy operation ends it.
//
// Surfaces made from a file, from profiles or from bounds are REGISTERED: they have a name and a
// count of users, and who asks for a name that is there gets the same object. All other objects
// are not, and their first release is their end.
//
// Every operation that gives back an object returns true, for null and for an unknown pointer too.
// A pointer that is not registered is deleted, so that a second release of it is the caller's
// fault. Strings are wide and null-terminated; a null one counts as empty.
//
// Hosts are compiled against the order of the operations: it is never changed.
//
// Threads: no lock, also where two managers are used, since paths and composed names are kept for
// the whole process. One thread at a time.
class QELTIN_API IModelManager {
 public:
  virtual ~IModelManager() = default;

  // Stores a path, which no operation of the library reads, and returns the one before, at first an
  // empty one. The result stays valid until the next SetPath, whose result overwrites its text.
  // Note that the text is overwritten before `path` is read: handing the result of an earlier call
  // back leaves the path as it is.
  virtual wchar_t const* SetPath(wchar_t const* path) = 0;

  // Returns the path last set. Stays valid until the next SetPath.
  virtual wchar_t const* GetPath() const = 0;

  // Returns a new empty list, to be given back by ReleaseProfileList or DestroyProfileList, which
  // are one and the same: each calls DestroyProfile on every profile of the list and deletes the
  // list. Profiles belong to whoever made them and stay.
  virtual IProfileList* CreateProfileList() = 0;
  virtual bool ReleaseProfileList(IProfileList* profiles) = 0;
  virtual bool DestroyProfileList(IProfileList* profiles) = 0;

  // Take a registered profile's count down. Nothing is ever deleted.
  virtual bool ReleaseProfile(IProfile* profile) = 0;
  virtual bool DestroyProfile(IProfile* profile) = 0;

  // Returns a new empty list, which owns its lines. DestroyLineList ends both.
  virtual ILineList* CreateLineList() = 0;
  virtual bool DestroyLineList(ILineList* lines) = 0;

  // Returns a surface of these points, see TIN::Create; not registered. Never null: where the
  // points give no surface, it is an empty one.
  virtual ITin* CreateTin(std::vector<IPoint>* points) = 0;

  // Returns the surface of the soundings of all profiles, inserted in random order, so that the
  // order of points and, among points on one circle, the triangles differ from build to build.
  //
  // It is registered under the line names and second names of all profiles, one behind the other:
  // the same profiles in the same order give the same object with its count raised. The data bounds
  // are the stored extents of the profiles, and soundings are not looked at for that: one outside
  // makes hidden triangles, one far outside is dropped. Null, with nothing registered, where there
  // are no soundings. REQUIRES: a list of CProfile objects.
  virtual ITin* CreateTin(IProfileList* profiles) = 0;

  // Returns the surface of a file, see TIN::Load, registered under the path as it is spelled: where
  // a surface has exactly that name, that one is returned with its count raised and no file is
  // read. Two spellings of one file give two surfaces. Null, with nothing registered, where the
  // file does not load.
  virtual ITin* CreateTin(wchar_t const* path) = 0;

  // Returns an empty surface with room for `numPoints` points within the data bounds (min, max),
  // see TIN::Init; a new one on each call, all registered under the path "Fixed Tin". Null, with
  // nothing registered, where `numPoints` is 0.
  virtual ITin* CreateTin(IPoint& min, IPoint& max, int numPoints) = 0;

  // Are one and the same: take the count of a registered surface down and end it at 0, or end one
  // that is not registered. Note that DestroyTin does not end a surface that others still use.
  virtual bool ReleaseTin(ITin* tin) = 0;
  virtual bool DestroyTin(ITin* tin) = 0;

  // Returns the isolines of `tin` at `level`, maybe none of them; not registered. No count is taken
  // on `tin`, which must outlive the contour. Null where `tin` is null. Writes a line to the debug
  // output.
  virtual IContour* CreateContour(ITin const* tin, double level) = 0;
  virtual bool ReleaseContour(IContour* contour) = 0;
  virtual bool DestroyContour(IContour* contour) = 0;

  virtual long GetNumberOfModels() const = 0;

  // Returns the name of a registered model, in order of creation, as TI_PL>text<. Stays valid until
  // a model is registered or ends; that also moves the indices of later ones. REQUIRES: an index
  // from 0 to GetNumberOfModels() - 1.
  virtual wchar_t const* GetModelName(long index) const = 0;

  // Ends the registered models that nobody uses any more and returns their number. In ordinary use
  // there are none: a model ends with its last release.
  virtual long PurgeProfiles() = 0;

  // Does nothing.
  virtual void SetShowPoints(int, int) = 0;

 protected:
  IModelManager() = default;
  IModelManager(IModelManager const&) = default;
  IModelManager& operator=(IModelManager const&) = default;
};
