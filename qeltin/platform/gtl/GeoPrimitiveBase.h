#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/platform/gtl/Extents3D.h"

namespace GTL {

// What Transform applies to every point. Its first virtual operation is the transformation.
template <typename P>
class TransformFunctor {
 public:
  virtual void operator()(P& point) = 0;

 protected:
  ~TransformFunctor() = default;
};

// A shape made of points. The order of the virtual operations is binary contract.
template <typename P>
class QELTIN_API GeoPrimitiveBase {
 public:
  virtual ~GeoPrimitiveBase() = default;

  // REQUIRES: 0 <= index < NumPoints().
  virtual P const& operator[](int index) const = 0;
  virtual void SetPoint(int index, P const& point) = 0;

  virtual int NumPoints() const = 0;
  virtual int Dimension() const = 0;
  virtual void Transform(TransformFunctor<P>& functor) = 0;

  // Takes the box of the shape into `extents`.
  virtual void GetExtents(Extents3D<double>& extents) const = 0;

 protected:
  GeoPrimitiveBase() = default;
  GeoPrimitiveBase(GeoPrimitiveBase const&) = default;
  GeoPrimitiveBase& operator=(GeoPrimitiveBase const&) = default;
};

}  // namespace GTL
