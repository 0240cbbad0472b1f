#include "apps/qeltin/LineTally.h"

#include "apps/qeltin/Report.h"

namespace qeltin::cli {

void LineTally::Add(std::vector<TPoint> const& points_of_line, bool is_closed,
                    double length_of_line) {
  ++lines;
  closed += is_closed ? 1 : 0;
  points += static_cast<long long>(points_of_line.size());
  length += length_of_line;
}

double PlanLength(std::vector<TPoint> const& points) {
  double length = 0.0;
  for (std::size_t i = 1; i < points.size(); ++i) length += points[i - 1].XY_Distance(points[i]);
  return length;
}

void Tell(LevelLineOptions const& options, LineTally const& tally, std::string const& one,
          std::string const& several) {
  NumberStyle const style = options.vector.style;
  if (tally.left_out > 0) {
    options.Note(std::to_string(tally.left_out) + ' ' + (tally.left_out == 1 ? one : several) +
                 " left out");
  }
  if (tally.lines == 0) options.Note(options.surface + ": no line at the levels asked for");
  if (options.json) {
    PrintResult(Dump({{"file", options.vector.output},
                      {"levels", tally.levels},
                      {"lines", tally.lines},
                      {"closed", tally.closed},
                      {"points", tally.points},
                      {"left_out", tally.left_out},
                      {"length", style.Rounded(tally.length)}}));
    return;
  }
  if (options.quiet) return;
  Report report(style);
  report.Add("levels", tally.levels);
  report.Add("lines", tally.lines);
  report.Add("closed lines", tally.closed);
  report.Add("points", tally.points);
  report.Add("length", style.Text(tally.length));
  PrintResult(report.Text());
}

}  // namespace qeltin::cli
