#include "qeltin/decimate/LocalFrame.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "qeltin/tin/TIN.h"

namespace {

constexpr double TPoint::*AXES[] = {&TPoint::x, &TPoint::y, &TPoint::z};
constexpr double TArrayStartPoint::*START_AXES[] = {&TArrayStartPoint::x, &TArrayStartPoint::y,
                                                    &TArrayStartPoint::z};

bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace

LocalFrame::LocalFrame(TIN& tin) : m_Tin(tin), m_There(BoxesOf()), m_Here(m_There) {
  if (tin.m_pPoints == nullptr || tin.m_pTriangles == nullptr) return;
  for (int axis = 0; axis < 3; ++axis) {
    ChooseOrigin(axis);
    VisitCoordinates(axis, [&](double& value) { value = Inward(axis, value); });
  }
  Finish(m_Here);
}

LocalFrame::~LocalFrame() {
  if (m_Tin.m_pPoints == nullptr || m_Tin.m_pTriangles == nullptr) return;
  for (int axis = 0; axis < 3; ++axis) {
    VisitCoordinates(axis, [&](double& value) { value = Outward(axis, value); });
  }
  Finish(m_There);
}

void LocalFrame::ChooseOrigin(int axis) {
  double TPoint::*const of = AXES[axis];
  double const middle = std::floor((m_There.min.*of + m_There.max.*of) / 2);
  if (!std::isfinite(middle)) return;
  m_Origin.*of = middle;
  for (TPoint Boxes::*corner : {&Boxes::min, &Boxes::max, &Boxes::worldMin, &Boxes::worldMax}) {
    (m_Here.*corner).*of = (m_There.*corner).*of - middle;
  }
  bool comesBack = true;
  VisitCoordinates(axis, [&](double value) {
    comesBack = comesBack && SameBits(Outward(axis, Inward(axis, value)), value);
  });
  if (comesBack) return;
  m_Origin.*of = 0.0;
  for (TPoint Boxes::*corner : {&Boxes::min, &Boxes::max, &Boxes::worldMin, &Boxes::worldMax}) {
    (m_Here.*corner).*of = (m_There.*corner).*of;
  }
}

double LocalFrame::Inward(int axis, double value) const {
  return Moved(axis, value, -(m_Origin.*AXES[axis]), m_There, m_Here);
}

double LocalFrame::Outward(int axis, double value) const {
  return Moved(axis, value, m_Origin.*AXES[axis], m_Here, m_There);
}

// The seed corners, on the world box, are too far out to come back by themselves.
double LocalFrame::Moved(int axis, double value, double by, Boxes const& from, Boxes const& to) {
  constexpr int HEIGHT = 2;
  double TPoint::*const of = AXES[axis];
  if (by == 0.0) return value;
  if (axis != HEIGHT && value == from.worldMin.*of) return to.worldMin.*of;
  if (axis != HEIGHT && value == from.worldMax.*of) return to.worldMax.*of;
  return value + by;
}

template <typename See>
void LocalFrame::VisitCoordinates(int axis, See see) {
  TArray<TPoint>& points = *m_Tin.m_pPoints;
  for (int slot = 0; slot < points.m_iCapacity; ++slot) see(points.m_pData[slot].*AXES[axis]);
  if (m_Tin.m_pStartPoints == nullptr) return;
  TArray<TArrayStartPoint>& starts = *m_Tin.m_pStartPoints;
  for (int i = 0; i < starts.m_iCount; ++i) see((*starts.At(i)).*START_AXES[axis]);
}

LocalFrame::Boxes LocalFrame::BoxesOf() const {
  return {m_Tin.m_Min, m_Tin.m_Max, m_Tin.m_WorldMin, m_Tin.m_WorldMax};
}

void LocalFrame::Finish(Boxes const& boxes) {
  m_Tin.m_Min = boxes.min;
  m_Tin.m_Max = boxes.max;
  m_Tin.m_WorldMin = boxes.worldMin;
  m_Tin.m_WorldMax = boxes.worldMax;
  for (int i = 0; i < m_Tin.GetNumberOfTriangles(); ++i) m_Tin.GetTriangle(i, true)->CalcTri();
  delete m_Tin.m_pPointMap;
  m_Tin.m_pPointMap = nullptr;
  m_Tin.m_bTiling = false;
  m_Tin.m_Triangulator.ForgetIndex();
}
