#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "testing/MakeSurvey.h"
#include "testing/reference/Twin.h"

namespace qeltin::testing {

// One call on a Twin. Positions are taken modulo the number of elements at that moment, so that any
// part of a script is a script.
struct TwinCall {
  enum Kind {
    Add,        // a point
    AddFrom,    // a point, with a start triangle that has nothing to do with it
    Find,       // a point
    CutOff,     // a triangle, which stays live
    Release,    // a triangle, with its slot in the way of TArray::Remove
    SetHeight,  // of a point
    BuildMap,
    TakeOut,  // a point, where there is a map
    RemoveAll,
    SaveAndLoad,  // at times with a triangle marked TRI_CAVITY in the file
  };

  Kind kind;
  TPoint p;
  int position;
};

// A random life of a surface, for what no survey does.
struct TwinScript {
  // How often each kind of call comes up among a hundred others of Add; 0 for never.
  struct Shares {
    int addFrom = 0;
    int find = 0;
    int cutOff = 0;
    int release = 0;
    int setHeight = 0;
    int buildMap = 0;
    int takeOut = 0;
    int removeAll = 0;
    int saveAndLoad = 0;
    bool heightsWithoutNumbers = false;
  };

  int points = 0;
  TPoint min;
  TPoint max;
  std::vector<TwinCall> calls;

  static TwinScript Draw(Dice& dice, Shares const& shares);

  // Returns the first difference, or an empty string.
  std::string Play(Twin& twin) const;
  std::string Play() const;

  // Returns the script without the calls that its difference does not need.
  TwinScript Shrunk() const;
};

std::ostream& operator<<(std::ostream& out, TwinScript const& script);

}  // namespace qeltin::testing
