#pragma once

#include <algorithm>
#include <limits>

#include "qeltin/platform/gtl/Point3D.h"

namespace GTL {

// The box around the points that it was updated with. Starts without any, and is then invalid.
template <typename T>
class Extents3D {
 public:
  Extents3D() { Reset(); }

  // Makes the box invalid.
  void Reset() {
    T const most = std::numeric_limits<T>::max();
    m_Min = {most, most, most};
    m_Max = {-most, -most, -most};
  }

  bool IsValid() const { return m_Min.x <= m_Max.x && m_Min.y <= m_Max.y && m_Min.z <= m_Max.z; }

  // Takes in a point. An invalid box becomes that point.
  void Update(Point3D<T> const& p) {
    if (!IsValid()) {
      m_Min = m_Max = p;
      return;
    }
    m_Min = {std::min(m_Min.x, p.x), std::min(m_Min.y, p.y), std::min(m_Min.z, p.z)};
    m_Max = {std::max(m_Max.x, p.x), std::max(m_Max.y, p.y), std::max(m_Max.z, p.z)};
  }

  Point3D<T> const& GetMin() const { return m_Min; }
  Point3D<T> const& GetMax() const { return m_Max; }

 private:
  Point3D<T> m_Min;
  Point3D<T> m_Max;
};

}  // namespace GTL
