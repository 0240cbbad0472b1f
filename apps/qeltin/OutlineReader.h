#pragma once

#include <string>
#include <vector>

#include "qeltin/products/TPolygon.h"

// Lines and polygons of a file: a plain text, or any vector file that GDAL reads, of which all
// layers are taken.
//
// What a file is: standard input ("-"), a pipe, and a file whose name ends in .txt, .xy or .xyz in
// any case are plain text. So is any other file whose first line that is not blank starts with two
// numbers or with '>'. Everything else, a folder too, is a vector file.
//
// A plain text has a place a line: x and y, separated by a comma, blanks or tabs, further columns
// ignored. A blank line, or one that starts with '>', parts two outlines. Any other line is an
// error.
//
// From a vector file both lines and polygons are taken wherever either is asked for, since many
// programs store polygons as closed lines. Collections are taken apart and curves replaced by
// chords; points, and features without a shape, are passed over. Heights are kept; where there are
// none, as in a plain text, they are 0.
//
// All throw Failure, with the file, the reason and where it went wrong: where the file cannot be
// read or holds no outline, and on a coordinate that is not a number, or beyond 1e100.
namespace qeltin::cli {

// Returns the lines as they run; of a polygon each ring is a line that ends where it began. A line
// without two distinct places is a Failure.
std::vector<TPolygon> ReadLines(std::string const& file);

// Returns one polygon a shape. The first vertex is repeated at the end, whether or not the file
// does so, since a profile along the boundary walks an open line. Holes are joined to the outer
// ring by bridges that run there and back, first along x and then along y, in which both passes of
// a ray cancel exactly: TPolygon::XY_Contains is false in a hole. A shape whose outer ring has
// fewer than three distinct places is a Failure; a hole like that is left out.
std::vector<TPolygon> ReadPolygons(std::string const& file);

}  // namespace qeltin::cli
