#include "qeltin/platform/Page.h"

#include <cmath>

namespace {

// The part of a line that is left, as parameters of the whole.
struct Span {
  double first = 0.0;
  double last = 1.0;

  // Keeps what lies on the inner side of one edge: `room` is how far the start is inside it,
  // `approach` how much nearer to it the end is. Returns false where nothing is left.
  bool Cut(double approach, double room) {
    if (approach == 0.0) return room >= 0.0;
    double const t = room / approach;
    if (approach < 0.0) {
      if (t > first) first = t;
    } else {
      if (t < last) last = t;
    }
    return first <= last;
  }
};

}  // namespace

bool Page::ClipLine(Line const& in, Line* out) const {
  Point const start = in.start;
  double const dx = in.end.x - start.x;
  double const dy = in.end.y - start.y;
  double const dz = in.end.z - start.z;
  if (!std::isfinite(dx) || !std::isfinite(dy)) return false;

  Span span;
  if (!span.Cut(-dx, start.x - m_BottomLeft.x) || !span.Cut(dx, m_TopRight.x - start.x) ||
      !span.Cut(-dy, start.y - m_BottomLeft.y) || !span.Cut(dy, m_TopRight.y - start.y)) {
    return false;
  }
  auto const at = [&](double t) {
    return Point(start.x + t * dx, start.y + t * dy, start.z + t * dz);
  };
  Line clipped = in;
  if (span.first > 0.0) clipped.start = at(span.first);
  if (span.last < 1.0) clipped.end = at(span.last);
  *out = clipped;
  return true;
}
