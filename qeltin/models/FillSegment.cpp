#include "qeltin/models/FillSegment.h"

namespace {

void FillEnd(CenterLinePoint const& point, LineSegmentEnd& end) {
  end.x = point.GetPosition().x;
  end.y = point.GetPosition().y;
  end.kp = point.GetKP();
  end.zero = 0.0;
  end.radius = point.GetRadius();
}

}  // namespace

void qeltin::detail::FillSegment(CenterLine const& line, int index, LineSegmentEnd& from,
                                 LineSegmentEnd& to) {
  FillEnd(line.GetPoint(index), from);
  FillEnd(line.GetPoint(index + 1), to);
}
