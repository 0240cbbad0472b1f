#pragma once

#include <string>
#include <vector>

#include "qeltin/kernel/IPoint.h"

// The surveys that the benchmarks work on: at their real spacing, at projected coordinates of
// hundreds of kilometres east and thousands north, at any number of soundings. The same name and
// size make the same points in every program, ours or a peer's.
//
//   uniform        random over a square, one a square metre
//   clusters       gaussian heaps of many sizes in a wide square
//   swaths         multibeam pings in track order, lines back and forth
//   jittered_grid  rows of a grid of 1 m, each point up to 0.3 m off
//   exact_grid     row by row at whole metres
//   single_beam    soundings along parallel tracks, rounded to centimetres
//   two_clusters   two dense heaps a thousand kilometres apart, in turn at random
//   NAME.xyz       a real survey, see ReadSurveyFile
namespace qeltin::bench {

// Ends the program as Reject does where `name` is none of these.
std::vector<IPoint> MakeSurveyInput(std::string const& name, int count);

// Returns a million places within the box of `points`: at random, or row by row where `raster`.
std::vector<IPoint> MakePlaces(std::vector<IPoint> const& points, bool raster);

struct Box {
  IPoint min;
  IPoint max;
};
Box BoxOf(std::vector<IPoint> const& points);

}  // namespace qeltin::bench
