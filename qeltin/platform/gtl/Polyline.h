#pragma once

#include <cstdint>
#include <deque>
#include <utility>

#include "qeltin/platform/Export.h"
#include "qeltin/platform/gtl/GeoPrimitiveBase.h"
#include "qeltin/platform/gtl/Line.h"
#include "qeltin/platform/gtl/Point2D.h"

namespace GTL {

// An open or closed line of points with a bounding box.
//
// Copies share one list of points and detach before they write, so that handing a line on by value
// costs a counter and a box. A move is a copy: its source keeps the points.
//
// The box is kept by each line for itself, in plan: its z range is 0. Adding widens it. Removing a
// point that touches it makes it invalid, and GetExtents then builds it anew. Two operations leave
// it stale: SetPoint does not take in the new point, and Clear keeps it.
//
// Threads: lines that share points share a counter without a lock. Keep them to one thread.
template <typename P>
class QELTIN_API Polyline : public GeoPrimitiveBase<P> {
 public:
  Polyline() : m_pPoints(new std::deque<P>), m_pRefCount(new std::uint32_t(1)) {}
  Polyline(Polyline const& other)
      : GeoPrimitiveBase<P>(other),
        m_pPoints(other.m_pPoints),
        m_pRefCount(other.m_pRefCount),
        m_Extents(other.m_Extents) {
    ++*m_pRefCount;
  }
  Polyline& operator=(Polyline const& other) {
    if (m_pPoints != other.m_pPoints) {
      Release();
      m_pPoints = other.m_pPoints;
      m_pRefCount = other.m_pRefCount;
      ++*m_pRefCount;
    }
    m_Extents = other.m_Extents;
    return *this;
  }

  // --- Virtual operations, in binary order ------------------------------------------------------

  ~Polyline() override { Release(); }

  P const& operator[](int index) const override { return (*m_pPoints)[Position(index)]; }

  // Replaces a point. The box becomes invalid where the old point touched it, and otherwise stays
  // as it is, even where the new point lies outside.
  void SetPoint(int index, P const& point) override {
    P const copy = point;
    Detach();
    P& old = (*m_pPoints)[Position(index)];
    ResetIfTouchedBy(old);
    old = copy;
  }

  int NumPoints() const override { return static_cast<int>(m_pPoints->size()); }

  // Always 0.
  int Dimension() const override { return 0; }

  void Transform(TransformFunctor<P>& functor) override {
    m_Extents.Reset();
    Detach();
    for (P& point : *m_pPoints) {
      functor(point);
      TakeIn(point);
    }
  }

  // Takes the line's box into `extents`; an invalid one is built from the points first. A line
  // without points changes nothing.
  void GetExtents(Extents3D<double>& extents) const override {
    if (!m_Extents.IsValid()) {
      for (P const& point : *m_pPoints) TakeIn(point);
    }
    if (!m_Extents.IsValid()) return;
    Point3D<double> const min = m_Extents.GetMin();
    Point3D<double> const max = m_Extents.GetMax();
    extents.Update(min);
    extents.Update(max);
  }

  // Returns the part from point `index` to the next. REQUIRES: there is a next point.
  virtual Line<P> GetSegment(int index) const { return {(*this)[index], (*this)[index + 1]}; }

  // Returns true iff the first point equals the last. REQUIRES: there is a point.
  virtual bool IsClosed() const { return m_pPoints->front() == m_pPoints->back(); }

  // Returns the sum of the lengths of the parts, or of their squares; 0 with fewer than two points.
  virtual double Length(bool squared) const {
    double length = 0.0;
    for (std::size_t i = 1; i < m_pPoints->size(); ++i) {
      length += ((*m_pPoints)[i] - (*m_pPoints)[i - 1]).Length(squared);
    }
    return length;
  }

  // --- Building ---------------------------------------------------------------------------------

  void AddBack(P const& point) {
    P const copy = point;
    TakeIn(copy);
    Detach();
    m_pPoints->push_back(copy);
  }

  void AddFront(P const& point) {
    P const copy = point;
    TakeIn(copy);
    Detach();
    m_pPoints->push_front(copy);
  }

  // REQUIRES: there is a point.
  void RemoveFront() {
    Detach();
    ResetIfTouchedBy(m_pPoints->front());
    m_pPoints->pop_front();
  }
  void RemoveBack() {
    Detach();
    ResetIfTouchedBy(m_pPoints->back());
    m_pPoints->pop_back();
  }

  // Inserts all points of `other` before point `index` and takes in its box.
  void Insert(int index, Polyline const& other) {
    Polyline const keep(other);  // `other` may be this line
    Detach();
    m_pPoints->insert(m_pPoints->begin() + index, keep.m_pPoints->begin(), keep.m_pPoints->end());
    other.GetExtents(m_Extents);
  }

  // Removes all points. The box stays.
  void Clear() {
    Detach();
    m_pPoints->clear();
  }

  void Reverse() {
    Detach();
    for (std::size_t i = 0, n = m_pPoints->size(); i < n / 2; ++i) {
      std::swap((*m_pPoints)[i], (*m_pPoints)[n - 1 - i]);
    }
  }

 private:
  static std::size_t Position(int index) { return static_cast<std::size_t>(index); }

  void TakeIn(P const& point) const { m_Extents.Update({point.x, point.y, 0.0}); }

  void ResetIfTouchedBy(P const& point) {
    Point3D<double> const& min = m_Extents.GetMin();
    Point3D<double> const& max = m_Extents.GetMax();
    if (point.x == min.x || point.x == max.x || point.y == min.y || point.y == max.y) {
      m_Extents.Reset();
    }
  }

  void Detach() {
    if (*m_pRefCount < 2) return;
    auto* const points = new std::deque<P>(*m_pPoints);
    Release();
    m_pPoints = points;
    m_pRefCount = new std::uint32_t(1);
  }

  void Release() {
    if (--*m_pRefCount > 0) return;
    delete m_pPoints;
    delete m_pRefCount;
  }

  std::deque<P>* m_pPoints;    // shared between copies
  std::uint32_t* m_pRefCount;  // how many share it
  mutable Extents3D<double> m_Extents;
};

}  // namespace GTL
