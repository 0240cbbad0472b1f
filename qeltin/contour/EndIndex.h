#pragma once

#include <vector>

#include "qeltin/platform/gtl/Point2D.h"

namespace qeltin::detail {

// The ends of numbered lines by position, to ask which line is the first behind a given one to have
// an end closer than MATH::TOLERANCE to a place. Meant for questions whose line number only grows,
// and for lines that are crossed out on the way: what has been passed is not looked at again.
//
// Ends are sorted by square cells a few tolerances wide. An end with a coordinate that is not
// finite is close to nothing and is left out.
class EndIndex {
 public:
  using Place = GTL::Point2D<double>;

  static constexpr int NONE = -1;

  explicit EndIndex(int lines) : m_bOut(static_cast<std::size_t>(lines), false) {}

  void Add(int line, Place const& end);

  // To be called once, after the last Add and before the first question.
  void Sort();

  // Takes a line out of all later answers.
  void CrossOut(int line) { m_bOut[static_cast<std::size_t>(line)] = true; }

  // Returns the lowest line above `line` that has an end close to `place`, or NONE.
  // REQUIRES: `line` is not lower than in any earlier question.
  int FirstAbove(int line, Place const& place);

 private:
  struct Entry {
    double column;
    double row;
    int line;
    int skip;  // where the live entries of the cell begin, kept at its first entry
    Place end;
  };

  int FirstInCell(int line, Place const& place, double column, double row);

  std::vector<Entry> m_Entries;  // by column, row, line
  std::vector<bool> m_bOut;
};

}  // namespace qeltin::detail
