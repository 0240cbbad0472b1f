#include "apps/qeltin/LasInput.h"

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Progress.h"

namespace qeltin::cli {

namespace {

// Tells what was left out, in words that follow "FILE: ", or nothing.
std::string LeftOut(LasSummary const& summary) {
  std::string text;
  if (summary.withheld > 0) text = std::to_string(summary.withheld) + " withheld points";
  if (summary.other_classes > 0) {
    if (!text.empty()) text += " and ";
    text += std::to_string(summary.other_classes) + " points of other classes";
  }
  return text;
}

void Tell(std::string const& name, InputOptions const& options, LasSummary const& summary) {
  std::string const left_out = LeftOut(summary);
  if (summary.points == 0) {
    throw Failure(name, left_out.empty() ? "holds no points" : "holds nothing but " + left_out);
  }
  if (!left_out.empty()) options.Note(name + ": " + left_out + " are left out");
  if (summary.header.counts_differ) {
    options.Note(name + ": its header has two counts of points that differ: the one for readers " +
                 "of older versions, " + std::to_string(summary.header.points) + ", is taken");
  }
}

}  // namespace

LasSummary ReadLas(std::string const& name, InputOptions const& options, TakePoint const& take,
                   ExpectPoints const& expect) {
  LasReader reader(name);
  LasSummary summary;
  summary.header = reader.Header();
  if (expect && !options.classes) expect(static_cast<double>(summary.header.points));
  {
    Progress progress("read", reader.Size(), options.quiet);
    LasPoint point;
    while (reader.Next(point)) {
      if (point.withheld) {
        ++summary.withheld;
      } else if (options.classes && !options.classes->test(point.classification)) {
        ++summary.other_classes;
      } else {
        ++summary.points;
        ++summary.classes[point.classification];
        take(point.place);
      }
      progress.Done(reader.Position());
    }
  }
  Tell(name, options, summary);
  return summary;
}

}  // namespace qeltin::cli
