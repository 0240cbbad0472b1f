#pragma once

#include <cstdio>
#include <map>
#include <string>

#include "qeltin/contour/ContourList.h"
#include "qeltin/platform/Export.h"

// A process-wide store of contour lists outside memory: each key has a temporary file of its own,
// which goes when the key is cleared and when the process ends.
//
// What comes back is not quite what was stored. Get adds one contour more: it has the level and the
// number of points of the last one stored, all of them at (0, 0), and stands first among those of
// its level. Contours of equal level come back in reverse order. Storing a shorter list under a
// known key leaves the rest of the longer one behind, and Get returns what these bytes make up;
// Clear(key) before Add avoids that. Boxes are built anew.
//
// Errors of the disk are not reported. Threads: no lock; only the making of the instance is
// guarded.
class QELTIN_API ContourCache {
 public:
  // Returns the one instance.
  static ContourCache& Get();

  // A copy holds the same files: whichever of the two is cleared first takes them from the other.
  // Assignment drops the entries that were there without closing their files.
  ContourCache(ContourCache const& other) = default;
  ContourCache& operator=(ContourCache const& other) = default;
  ~ContourCache();

  // Stores `list` under `key`. An empty list writes nothing. True, or false where no temporary file
  // could be made.
  bool Add(std::wstring const& key, ContourList const& list);

  // Empties `list` and fills it with what is stored under `key`. False for an unknown key.
  bool Get(std::wstring const& key, ContourList& list);

  void Clear(std::wstring const& key);
  void Clear();

 private:
  ContourCache() = default;

  std::map<std::wstring, std::FILE*> m_Files;
};
