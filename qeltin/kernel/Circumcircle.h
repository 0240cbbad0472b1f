#pragma once

namespace qeltin::detail {

// The circumcircle of the corners A, B, C as TTriangle::CalcTri keeps it. Corners in line leave
// infinities or not-a-number in it.
//
// `Number` is double, or a register of several for as many triangles.
template <typename Number>
struct Circumcircle {
  Number a;
  Number b;
  Number c;
  Number d;
  Number g;  // twice the area, negative for clockwise corners
  Number centre_x;
  Number centre_y;
  Number radius_sq;

  Circumcircle(Number ax, Number ay, Number bx, Number by, Number cx, Number cy)
      : a(by - ay), b(cx - ax), c(cy - ay), d(bx - ax), g((cy - by) * d - (cx - bx) * a) {
    Number const e = (ay + by) * a + (ax + bx) * d;
    Number const f = (cy + ay) * c + (cx + ax) * b;
    centre_x = (e * c - f * a) / (2 * g);
    centre_y = (f * d - e * b) / (2 * g);
    Number const rx = centre_x - ax;
    Number const ry = centre_y - ay;
    radius_sq = rx * rx + ry * ry;
  }
};

}  // namespace qeltin::detail
