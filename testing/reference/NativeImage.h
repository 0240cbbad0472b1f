#pragma once

#include <string>

#include "testing/reference/ReferenceTin.h"

namespace qeltin::testing {

// Returns the bytes of a native file of version 3 for the surface, composed in the plain way: one
// ordered map from addresses to ordinals for the points and one for the triangles. The byte after
// the flags of each triangle, which carries no information, is 0.
std::string NativeImage(ReferenceTin const& tin);

// Loads such bytes in the plain way, as TIN::Load does: fresh pools, circles computed anew, no
// current triangle. A vertex without an ordinal becomes point slot 0 and hides its triangle. A map
// stays, without entries. Returns true iff there are points. REQUIRES: an image of version 3,
// whole.
bool LoadNativeImage(std::string const& image, ReferenceTin& tin);

// Sets bits in the flags of the triangle at `position` of an image of version 3.
void SetFlagsInImage(std::string& image, int position, unsigned char bits);

// Sets the byte after the flags of each triangle in an image of version 3 to 0.
void ClearUnusedBytes(std::string& image);

}  // namespace qeltin::testing
