#pragma once

#include <string>
#include <vector>

#include "qeltin/kernel/IPoint.h"

namespace qeltin::bench {

// Returns at most `count` points of the text `name`, which stands in the folder of the environment
// variable QELTIN_SURVEYS: "x,y,z" or "x y z", a point a line. Ends the program as Reject does
// where there are none.
std::vector<IPoint> ReadSurveyFile(std::string const& name, int count);

}  // namespace qeltin::bench
