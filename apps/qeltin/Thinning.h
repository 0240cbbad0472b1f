#pragma once

#include <functional>
#include <optional>

#include "apps/qeltin/RoundThinning.h"
#include "qeltin/decimate/CStatist.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

struct ThinningOptions {
  int passes = 1;
  float min_error = 0.0f;
  float max_error = 0.0f;  // of the last pass
  float min_angle = 0.0f;  // degrees
  float max_angle = 0.0f;
  bool keep_edges = true;
  bool boundary = false;
};

// Thins a surface in place, run after run or round after round, and mends its structure then.
// Throws std::runtime_error where that cannot be mended.
class Thinning {
 public:
  // Neither is kept longer than this object. `quiet` is about the progress bar.
  Thinning(TIN& tin, bool quiet) : m_Tin(tin), m_bQuiet(quiet) {}

  // Makes the surface fit for a run: a model may run counter-clockwise, and then does no more.
  void Prepare() { m_Tin.Compact(); }

  // Makes one run, whose first pass has the least and whose last pass the largest error and angle.
  // With a `surplus`, ends as soon as so many points have gone. Returns how many vertices went.
  // Ctrl-C stops the run.
  int Run(ThinningOptions const& options, std::optional<int> surplus);

  // Makes rounds until `surplus` points have gone, or no more may.
  void MakeRounds(int surplus, RoundThinning::Limits limits);

  // How many runs or rounds there were.
  int Runs() const { return m_iRuns; }

  // The distances of the points that were chosen, of all runs.
  CStatist const& Distances() const { return m_Distances; }

 private:
  void Mend();

  TIN& m_Tin;
  bool m_bQuiet;
  int m_iRuns = 0;
  CStatist m_Distances;
};

// Returns the step that leads from `from` to `to` in `steps` additions, or a little less far, never
// beyond; 0 where there is no way to go.
float StepBetween(float from, float to, int steps);

// Adds the samples of `other`.
void Merge(CStatist const& other, CStatist& sum);

}  // namespace qeltin::cli
