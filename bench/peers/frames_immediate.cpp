// What frames does, without a compiled list: each frame walks the surface and hands GL its
// vertices.
#include "bench/FrameTask.h"

int main(int argc, char** argv) { return qeltin::bench::MeasureFrames(argc, argv, false); }
