#pragma once

#include <string>
#include <vector>

#include "apps/qeltin/Mesh.h"
#include "apps/qeltin/StoredFile.h"

namespace qeltin::cli {

// What can be found in the tables of a surface, in the order in which it is told. See KindOfFinding
// for the words.
enum class Flaw {
  CUT_SHORT,
  EXCESS,
  UNREADABLE,
  BAD_POINT,
  BAD_TRIANGLE,
  NOT_FINITE,
  CORNER,
  REPEATED_CORNER,
  COUNTER_CLOCKWISE,
  NEIGHBOUR,
  NOT_MUTUAL,
  OTHER_SIDE,
  UNLINKED,
  STORED_CIRCLE,
  NOT_DELAUNAY,
  FLAGS,
  START_POINT,
  BORDER_ENTRY,
  FLAT,
  DUPLICATE,
  UNCONNECTED,
};

// How often something was found, and where first: the lowest position in its table.
struct Finding {
  enum class Element { NONE, POINT, TRIANGLE, ENTRY };

  Flaw flaw = Flaw::CUT_SHORT;
  long long count = 0;
  Element element = Element::NONE;
  std::int32_t position = 0;
  bool placed = false;  // `place` is known
  TPoint place;         // of the point, or of a corner of the triangle
  std::string detail;   // for people; may be empty
};

// Returns the word for a flaw in results, and what it means, for people.
char const* WordFor(Flaw flaw);
char const* MeaningOf(Flaw flaw);

// Returns true iff a surface of this kind with such a flaw is unsound. Flat triangles, duplicate
// points and points without a triangle never make it so, as building leaves them; nor do sides that
// are not Delaunay, as thinning and breaklines leave them. A Trimble model keeps its own turning,
// so that there a triangle may run counter-clockwise.
bool IsFault(Flaw flaw, FileKind kind);

// Looks at a whole surface and returns what was found, nothing twice. Time goes with n log n.
//
// Corners and circles are compared as far as rounding allows a decision. A triangle whose corners
// lie in line to the rounding of its coordinates is flat: neither is it counter-clockwise, nor are
// it and its neighbours tested against each other's circles. A point is inside the circle across a
// side only where it lies deeper than the rounding of that circle.
std::vector<Finding> CheckMesh(Mesh const& mesh);

}  // namespace qeltin::cli
