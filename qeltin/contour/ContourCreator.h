#pragma once

#include <atomic>
#include <deque>
#include <vector>

#include "qeltin/contour/Contour.h"
#include "qeltin/contour/ContourList.h"
#include "qeltin/platform/Export.h"

// What makes contours. Holds the lines under work and knows how to join them.
//
// The order of the virtual operations is binary contract.
class QELTIN_API ContourCreator {
 public:
  ContourCreator() = default;
  ContourCreator(ContourCreator const& other) = default;
  ContourCreator& operator=(ContourCreator const& other) = default;
  virtual ~ContourCreator() = default;

  // Adds the contours of one level to `list` and returns how many were added. Clearing `running`,
  // which another thread may do, ends the work early with what is there.
  virtual int AddLevel(double level, ContourList& list, std::atomic<bool> const& running) = 0;

  // The same for several levels, in the order given.
  virtual int AddLevels(std::vector<double> const& levels, ContourList& list,
                        std::atomic<bool> const& running) = 0;

 protected:
  // Joins the lines of a level that meet end to end, closer than MATH::TOLERANCE, and removes those
  // without points. Lines of one level that stand next to each other make up a group.
  //
  // A line takes in, again and again, the first of the lines behind it that meets one of its ends:
  // last to first, last to last, first to first, first to last, in this order of preference. It
  // keeps its direction and its end point; the other is turned where need be and loses its own. A
  // line is not closed: its two ends stay apart even where they meet.
  //
  // Costs about n log n for n lines.
  void ConnectContours();

  std::deque<Contour> m_Contours;  // in order of tracing
};
