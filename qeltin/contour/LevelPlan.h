#pragma once

#include <cstddef>
#include <vector>

#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

// Which triangles each of several levels has to look at, noted while all of them are readied for
// the first level.
//
// After that, to ready and search all triangles for every level would touch the whole surface to
// change a few marks. What a level leaves behind is known: marks on the triangles that it crosses,
// and heights lifted at some of their vertices. So for each later level it is enough to look at the
// triangles that this level or the one before comes near, in live order.
class LevelPlan {
 public:
  explicit LevelPlan(std::vector<double> const& levels);

  // Makes `level` the one under work. REQUIRES: one of the levels of the plan; any order.
  void GoTo(double level);

  // Returns true iff all triangles are to be readied, and noted: for the first level, and after a
  // level that was stopped before Readied.
  bool NeedsAll() const { return m_bNeedsAll; }

  // Notes a triangle for the levels that it comes near. To be called in live order.
  void Note(int position, TTriangle const& triangle);

  // To be called when the triangles are ready for the present level.
  void Readied() { m_bReadied = true; }

  // Positions of the live order, rising, that contain every triangle that the present level crosses
  // or has a vertex near.
  std::vector<int> const& Near() const { return *m_pNear; }

  // The same for those to be readied: what is near this level or the one before.
  std::vector<int> const& ToReady() const { return m_ToReady; }

  // To be called for a triangle that a walk marks although the level does not cross it.
  void MarkedBeside(TTriangle* triangle) { m_Beside.push_back(triangle); }

  // All that were ever marked so.
  std::vector<TTriangle*> const& Beside() const { return m_Beside; }

 private:
  // Returns how many levels lie below `height`.
  std::ptrdiff_t CountBelow(double height) const;

  std::vector<double> m_Levels;           // rising, each once
  std::vector<std::vector<int>> m_Lists;  // positions, a list a level
  std::vector<int> m_None;
  double m_dSlack;
  std::vector<int>* m_pNear = &m_None;
  std::vector<int> m_ToReady;
  std::vector<TTriangle*> m_Beside;
  bool m_bNeedsAll = true;
  bool m_bReadied = false;
};

}  // namespace qeltin::detail
