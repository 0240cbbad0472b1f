#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/platform/gtl/Point2D.h"
#include "qeltin/platform/gtl/Polyline.h"

// One line of constant height: a level and the points of the line in walking order, in plan and in
// the unit of the survey.
//
// Copies share their points until one of them is changed; a move is a copy, and its source keeps
// its points. See GTL::Polyline, also for the rule on threads: copies stay on one thread.
class QELTIN_API Contour {
 public:
  explicit Contour(double level) : m_dLevel(level) {}
  Contour(Contour const& other) = default;
  Contour& operator=(Contour const& other) = default;

  double Level() const { return m_dLevel; }

  GTL::Polyline<GTL::Point2D<double>>& Line() { return m_Line; }
  GTL::Polyline<GTL::Point2D<double>> const& Line() const { return m_Line; }

  bool IsEmpty() const { return m_Line.NumPoints() == 0; }
  int NumPoints() const { return m_Line.NumPoints(); }

  // REQUIRES: 0 <= index < NumPoints().
  GTL::Point2D<double> const& operator[](int index) const { return m_Line[index]; }

  double Length() const { return m_Line.Length(false); }

  // REQUIRES: not empty.
  bool IsClosed() const { return m_Line.IsClosed(); }

  // Removes the points. Level and box stay.
  void Clear() { m_Line.Clear(); }

  void Reverse() { m_Line.Reverse(); }

  // Compares levels and nothing else.
  bool operator<(Contour const& other) const { return m_dLevel < other.m_dLevel; }

 private:
  double m_dLevel;
  GTL::Polyline<GTL::Point2D<double>> m_Line;
};
