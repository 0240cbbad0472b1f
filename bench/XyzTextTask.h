#pragma once

#include <vector>

#include "bench/ScratchFile.h"
#include "qeltin/kernel/IPoint.h"

// The work of the xyz_text programs, ours and the peers':
//   read   every triple of a file that the system still holds in memory, into an array
//   write  the points of an array, as "x,y,z" with six decimals; the file is on the disk when the
//          clock stops
// The text to be read looks as the library writes it, or, for single_beam, as survey software
// exports soundings rounded to centimetres: "x y z" with two decimals.
namespace qeltin::bench {

enum class TextForm { Commas, Blanks };

using ReadText = void (*)(ScratchFile const& file, TextForm form, std::vector<IPoint>& points);
using WriteText = void (*)(ScratchFile const& file, std::vector<IPoint> const& points);

// A whole program: call it from main. A null function stands for work that it cannot do.
int RunXyzText(int argc, char** argv, ReadText read, WriteText write);

// Writes one line a point with the C runtime's formatted output.
void PrintPoints(ScratchFile const& file, TextForm form, std::vector<IPoint> const& points);

}  // namespace qeltin::bench
