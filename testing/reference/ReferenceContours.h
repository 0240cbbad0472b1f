#pragma once

#include <atomic>
#include <deque>
#include <vector>

#include "qeltin/contour/ContourCreator.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::testing {

// Joins the lines of `contours` by comparing every pair and starting over after every join.
void ReferenceConnect(std::deque<Contour>& contours);

// Contours with one pass over all triangles to ready them and one to find starts, for every level.
// TINContourCreator must leave the same list and the same surface, to the bit.
class ReferenceContourCreator : public ContourCreator {
 public:
  explicit ReferenceContourCreator(TIN& tin) : m_Tin(tin) {}

  int AddLevel(double level, ContourList& list, std::atomic<bool> const& running) override;
  int AddLevels(std::vector<double> const& levels, ContourList& list,
                std::atomic<bool> const& running) override;

 private:
  using Point = GTL::Point2D<double>;

  void ClearFlags(double level, std::atomic<bool> const& running);
  int MaskOf(TTriangle const& t, double level) const;
  void Generate(TTriangle* start, int start_mask, double level);
  void Direct(double level, std::atomic<bool> const& running);

  TIN& m_Tin;
};

}  // namespace qeltin::testing
