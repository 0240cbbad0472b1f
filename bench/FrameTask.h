#pragma once

namespace qeltin::bench {

// The main program of both sides of `frames`: draws ten frames of a surface, compiled or immediate.
int MeasureFrames(int argc, char** argv, bool isCompiled);

}  // namespace qeltin::bench
