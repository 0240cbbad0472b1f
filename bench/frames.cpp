// Draws a surface again and again from a compiled list.
#include "bench/FrameTask.h"

int main(int argc, char** argv) { return qeltin::bench::MeasureFrames(argc, argv, true); }
