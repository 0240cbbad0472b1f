// bench_survey_text INPUT SIZE: writes a survey to standard output as XYZ text, to the millimetre:
// an input for `qeltin build` as large as one likes.

#include <cstdio>
#include <cstdlib>

#include "bench/SurveyInput.h"

int main(int argc, char** argv) {
  int const size = argc == 3 ? std::atoi(argv[2]) : 0;
  if (size <= 0) {
    std::fputs("usage: bench_survey_text INPUT SIZE\n", stderr);
    return 2;
  }
  for (IPoint const& p : qeltin::bench::MakeSurveyInput(argv[1], size)) {
    std::printf("%.3f %.3f %.3f\n", p.x, p.y, p.z);
  }
  return std::ferror(stdout) != 0 || std::fflush(stdout) != 0;
}
