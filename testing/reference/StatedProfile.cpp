#include "testing/reference/StatedProfile.h"

#include <cmath>

#include "testing/TINPeer.h"
#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing {

namespace {

bool Agree(double x1, double y1, double x2, double y2) {
  return std::fabs(x1 - x2) < 1e-9 && std::fabs(y1 - y2) < 1e-9;
}

bool Agree(TPoint const& a, TPoint const& b) { return Agree(a.x, a.y, b.x, b.y); }

double PlanDistance(double x1, double y1, double x2, double y2) {
  return std::sqrt((x1 - x2) * (x1 - x2) + (y1 - y2) * (y1 - y2));
}

double PlaneHeight(TTriangle const& t, double x, double y) {
  TPoint const& A = *t.m_pVertex[0];
  TPoint const& B = *t.m_pVertex[1];
  TPoint const& C = *t.m_pVertex[2];
  double const d = (C.y - A.y) * (B.x - A.x) - (C.x - A.x) * (B.y - A.y);
  if (d == 0.0) return 0.0;
  double const p = ((C.y - A.y) * (B.z - A.z) - (C.z - A.z) * (B.y - A.y)) / d;
  double const q = -((C.x - A.x) * (B.z - A.z) - (C.z - A.z) * (B.x - A.x)) / d;
  return A.z - A.x * p - A.y * q + (p * x + q * y);
}

// Forward ray from (x, y) along (ux, uy) against the segment from corner i to corner j.
bool Intersect(double x, double y, double ux, double uy, TTriangle const& t, int i, int j,
               TPoint& out) {
  TPoint const& a = *t.m_pVertex[i % 3];
  TPoint const& b = *t.m_pVertex[j % 3];
  double const along_a = (a.x - x) * ux + (a.y - y) * uy;
  double const along_b = (b.x - x) * ux + (b.y - y) * uy;
  double const across_a = (a.y - y) * ux - (a.x - x) * uy;
  double const across_b = (b.y - y) * ux - (b.x - x) * uy;
  bool const ordinary = (across_a > 0 && across_b <= 0) || (across_a <= 0 && across_b > 0);
  if (ordinary) {
    double const f = across_a / (across_a - across_b);
    double const s = along_a + (along_b - along_a) * f;
    if (!(s > 0)) return false;
    out = TPoint(x + s * ux, y + s * uy, a.z + (b.z - a.z) * f);
    return true;
  }
  if (across_a == 0 && across_b == 0 && along_a != along_b) {
    out = TPoint(x, y, a.z + (b.z - a.z) * along_a / (along_a - along_b));
    return true;
  }
  return false;
}

// One edge of the rectangle: p is the rate at which the line leaves it, q the room before it.
bool ClipTest(double p, double q, double& u1, double& u2) {
  if (p < 0) {
    double const r = q / p;
    if (r > u2) return false;
    if (r > u1) u1 = r;
  } else if (p > 0) {
    double const r = q / p;
    if (r < u1) return false;
    if (r < u2) u2 = r;
  } else if (q < 0) {
    return false;
  }
  return true;
}

bool Clip(TPoint const& min, TPoint const& max, TPoint const& from, TPoint const& to, TPoint& s,
          TPoint& e) {
  double const dx = to.x - from.x;
  double const dy = to.y - from.y;
  if (!(std::fabs(dx) < INFINITY) || !(std::fabs(dy) < INFINITY)) return false;
  double u1 = 0;
  double u2 = 1;
  if (!ClipTest(-dx, from.x - min.x, u1, u2)) return false;
  if (!ClipTest(dx, max.x - from.x, u1, u2)) return false;
  if (!ClipTest(-dy, from.y - min.y, u1, u2)) return false;
  if (!ClipTest(dy, max.y - from.y, u1, u2)) return false;
  s = from;
  e = to;
  if (u1 > 0) s = TPoint(from.x + u1 * dx, from.y + u1 * dy);
  if (u2 < 1) e = TPoint(from.x + u2 * dx, from.y + u2 * dy);
  return true;
}

double Within(double value, double min, double max) {
  if (value < min) return min;
  return value > max ? max : value;
}

bool BothOutside(TTriangle const& a, TTriangle const& b) {
  return (a.m_Flags & TRI_OUTSIDE) != 0 && (b.m_Flags & TRI_OUTSIDE) != 0;
}

// A triangle of the fan about a corner: where the corner is in it, and the vertex that neither the
// corner nor the side of entry has.
struct FanTriangle {
  TTriangle* triangle;
  int corner;
  int far;
};

std::vector<FanTriangle> FanAbout(TTriangle* start, int corner, int most) {
  TPoint const* const apex = start->m_pVertex[corner];
  int side = corner;
  if (start->m_pAdjacent[side] == nullptr) side = (corner + 2) % 3;
  std::vector<FanTriangle> fan;
  TTriangle* t = start;
  while (static_cast<int>(fan.size()) < most) {
    int const entry = stated::TriSide(*t, side);
    if (entry == 3) break;
    t = t->m_pAdjacent[side];
    int const ends[2] = {entry, (entry + 1) % 3};
    if (t->m_pVertex[ends[0]] == apex) {
      fan.push_back({t, ends[0], (entry + 2) % 3});
      side = (entry + 2) % 3;
    } else if (t->m_pVertex[ends[1]] == apex) {
      fan.push_back({t, ends[1], (entry + 2) % 3});
      side = (entry + 1) % 3;
    } else {
      break;
    }
    if (t == start) break;
  }
  return fan;
}

}  // namespace

StatedProfile::Ways& StatedProfile::Ways::operator+=(Ways const& other) {
  scans += other.scans;
  gaps += other.gaps;
  vertexStarts += other.vertexStarts;
  alongSides += other.alongSides;
  endVertices += other.endVertices;
  lostWays += other.lostWays;
  hiddenCrossings += other.hiddenCrossings;
  endsNotHeld += other.endsNotHeld;
  oneTriangle += other.oneTriangle;
  givenUp += other.givenUp;
  return *this;
}

StatedProfile::StatedProfile(TIN& tin)
    : m_Tin(tin), m_iBorder(TINPeer::Border(tin) == nullptr ? 0 : TINPeer::Border(tin)->m_iCount) {}

bool StatedProfile::Height(TPoint const& p, TTriangle const* t, double& z) const {
  TPoint const& min = TINPeer::Min(m_Tin);
  TPoint const& max = TINPeer::Max(m_Tin);
  if (!(p.x >= min.x && p.x <= max.x && p.y >= min.y && p.y <= max.y)) return false;
  if ((t->m_Flags & TRI_FILTERED) != 0 || (t->m_Flags & TRI_OUTSIDE) != 0) return false;
  TPoint const& A = *t->m_pVertex[0];
  TPoint const& B = *t->m_pVertex[1];
  TPoint const& C = *t->m_pVertex[2];
  if ((C.y - A.y) * (B.x - A.x) - (C.x - A.x) * (B.y - A.y) == 0.0) return false;
  z = PlaneHeight(*t, p.x, p.y);
  return true;
}

// A line that takes more steps and passes than this runs in circles. A pass that begins on the
// surface repeats as often as the border list has entries, plus two.
void StatedProfile::GiveSteps() {
  m_iSteps = 4LL * (m_Tin.GetNumberOfTriangles() + 1);
  m_iRestarts = 1 + m_iBorder + 2;
}

int StatedProfile::Generate(TPoint const& from, TPoint const& to) {
  if (from.x == to.x && from.y == to.y) return 0;
  int const size = static_cast<int>(m_Pieces.size());
  TPoint const& min = TINPeer::WorldMin(m_Tin);
  TPoint const& max = TINPeer::WorldMax(m_Tin);
  if (!Clip(min, max, from, to, m_S, m_E)) return 0;

  m_pStart = TINPeer::Location(m_Tin).Find(m_S);
  if (m_pStart == nullptr && m_iBorder == 0) {
    TPoint const within(Within(m_S.x, min.x, max.x), Within(m_S.y, min.y, max.y));
    if (within.x != m_S.x || within.y != m_S.y) {
      m_S = within;
      m_pStart = TINPeer::Location(m_Tin).Find(m_S);
    }
  }
  m_pEnd = TINPeer::Location(m_Tin).Find(m_E);

  GiveSteps();
  Piece working;
  bool continued = false;
  for (int pass = 0;; ++pass) {
    if (m_iSteps-- <= 0) {
      ++m_Ways.givenUp;
      break;
    }
    if (pass > 0) ++m_Ways.gaps;
    m_D = PlanDistance(m_S.x, m_S.y, m_E.x, m_E.y);
    if (m_D == 0.0) break;
    m_Ux = (m_E.x - m_S.x) / m_D;
    m_Uy = (m_E.y - m_S.y) / m_D;
    m_S0 = m_S;
    if ((m_pStart == nullptr || m_pEnd == nullptr) && m_iBorder > 0) {
      if (ScanForSurface() == Scan::Nothing) break;
    }
    if (m_pStart == nullptr) break;
    if (m_S.x == m_S0.x && m_S.y == m_S0.y && m_iRestarts-- <= 0) {
      ++m_Ways.givenUp;
      break;
    }
    if (!working.empty()) {
      m_Pieces.push_back(working);
      working.clear();
    }
    double z;
    if (Height(m_S, m_pStart, z)) working.push_back(TPoint(m_S.x, m_S.y, z));
    if (m_pStart == m_pEnd) {
      ++m_Ways.oneTriangle;
      if (Height(m_S, m_pStart, z)) working.push_back(TPoint(m_E.x, m_E.y, z));
      continued = false;
    } else if (SettleStart()) {
      continued = !SegProfile(working, m_pStart, m_pEnd, m_S.x, m_S.y, m_E.x, m_E.y);
    }
    if (!working.empty()) m_Pieces.push_back(working);
    if (!continued) break;
    if (working.empty() || m_iBorder == 0) break;
    TPoint const last = working.back();
    double const t = ((last.x - m_S0.x) * m_Ux + (last.y - m_S0.y) * m_Uy) + 0.001;
    m_S = TPoint(m_S0.x + t * m_Ux, m_S0.y + t * m_Uy);
    m_pStart = nullptr;
  }
  return static_cast<int>(m_Pieces.size()) - size;
}

StatedProfile::Scan StatedProfile::ScanForSurface() {
  ++m_Ways.scans;
  double nearest = m_D;
  double farthest = 0.0;
  int nearest_position = -1;
  int farthest_position = -1;
  for (int i = 0; i < m_Tin.GetNumberOfTriangles(); ++i) {
    if (m_pStart != nullptr && m_pEnd != nullptr) break;
    TTriangle* const t = m_Tin.GetTriangle(i, true);
    if (stated::XY_HasPoint(*t, m_S)) m_pStart = t;
    if (stated::XY_HasPoint(*t, m_E)) m_pEnd = t;
    if (m_pStart != nullptr && m_pEnd != nullptr) continue;
    for (int const a : {2, 0, 1}) {
      TPoint const& A = *t->m_pVertex[a];
      TPoint const& B = *t->m_pVertex[(a + 1) % 3];
      double const la = (A.x - m_S.x) * m_Ux + (A.y - m_S.y) * m_Uy;
      double const lb = (B.x - m_S.x) * m_Ux + (B.y - m_S.y) * m_Uy;
      double const ca = (A.y - m_S.y) * m_Ux - (A.x - m_S.x) * m_Uy;
      double const cb = (B.y - m_S.y) * m_Ux - (B.x - m_S.x) * m_Uy;
      if (!(ca * cb <= 0.0)) continue;
      double const at = la + (lb - la) * ca / (ca - cb);
      if (m_pStart == nullptr && 0.0 < at && at < nearest) {
        nearest = at;
        nearest_position = i;
      }
      if (m_pEnd == nullptr && farthest < at && at < m_D) {
        farthest = at;
        farthest_position = i;
      }
    }
  }
  if (m_pStart == nullptr) {
    if (nearest_position < 0) return Scan::Nothing;
    m_S = TPoint(m_S0.x + nearest * m_Ux, m_S0.y + nearest * m_Uy);
    m_pStart = InOrBeside(m_Tin.GetTriangle(nearest_position, true));
  }
  if (m_pEnd == nullptr) {
    if (farthest_position < 0) return Scan::Nothing;
    m_E = TPoint(m_S0.x + farthest * m_Ux, m_S0.y + farthest * m_Uy);
    m_pEnd = InOrBeside(m_Tin.GetTriangle(farthest_position, true));
  }
  return Scan::Found;
}

TTriangle* StatedProfile::InOrBeside(TTriangle* t) const {
  if (stated::XY_HasPoint(*t, m_S)) return t;
  for (int k = 0; k < 3; ++k) {
    TTriangle* const n = t->m_pAdjacent[k];
    if (n != nullptr && stated::XY_HasPoint(*n, m_S)) return n;
  }
  return t;
}

bool StatedProfile::SettleStart() {
  int corner = -1;
  for (int k = 0; k < 3; ++k) {
    if (Agree(*m_pStart->m_pVertex[k], m_S)) corner = k;
  }
  if (corner < 0) return true;
  ++m_Ways.vertexStarts;
  std::vector<FanTriangle> const fan = FanAbout(m_pStart, corner, m_Tin.GetNumberOfTriangles());
  for (FanTriangle const& f : fan) {
    if (Agree(*f.triangle->m_pVertex[f.far], m_E)) {
      ++m_Ways.alongSides;
      return false;
    }
  }
  for (FanTriangle const& f : fan) {
    TPoint at;
    if (Intersect(m_S.x, m_S.y, m_Ux, m_Uy, *f.triangle, f.corner + 1, f.corner + 2, at)) {
      m_pStart = f.triangle;
      break;
    }
  }
  return true;
}

bool StatedProfile::SegProfile(Piece& profile, TTriangle const* first, TTriangle const* last,
                               double x1, double y1, double x2, double y2) {
  double const d = PlanDistance(x1, y1, x2, y2);
  if (d == 0.0) return true;
  double const ux = (x2 - x1) / d;
  double const uy = (y2 - y1) / d;
  TPoint at;
  auto const crossed = [&](TTriangle const& t, int i, int j) {
    return Intersect(x1, y1, ux, uy, t, i, j, at);
  };

  int exit = 0;
  for (; exit < 3; ++exit) {
    if (m_iBorder == 0 && first->m_pAdjacent[exit] == nullptr) continue;
    if (crossed(*first, exit, exit + 1)) break;
  }
  if (exit == 3) return true;
  if (first->m_pAdjacent[exit] == nullptr) {
    profile.push_back(at);
    return false;
  }

  bool found = true;
  int k = stated::TriSide(*first, exit);
  TTriangle const* t = first->m_pAdjacent[exit];
  for (;;) {
    if (k >= 3) {
      ++m_Ways.lostWays;
      return false;
    }
    if (m_iSteps-- <= 0) return false;
    for (int corner = 0; corner < 3; ++corner) {
      if (Agree(x2, y2, t->m_pVertex[corner]->x, t->m_pVertex[corner]->y)) {
        ++m_Ways.endVertices;
        return true;
      }
    }
    if (!found) crossed(*t, k, k + 1);
    if (BothOutside(*t, *t->m_pAdjacent[k])) {
      ++m_Ways.hiddenCrossings;
    } else {
      profile.push_back(at);
    }
    if (t == last) {
      if (stated::XY_HasPoint(*t, TPoint(x2, y2))) {
        profile.push_back(TPoint(x2, y2, PlaneHeight(*t, x2, y2)));
        return true;
      }
      ++m_Ways.endsNotHeld;
      if (crossed(*t, k + 1, k + 2)) profile.push_back(at);
      if (crossed(*t, k + 2, k)) profile.push_back(at);
      return true;
    }
    found = crossed(*t, k + 1, k + 2);
    exit = (found ? k + 1 : k + 2) % 3;
    int const back = stated::TriSide(*t, exit);
    if (back == 3) {
      found = crossed(*t, k + 1, k + 2);
      if (found) profile.push_back(at);
      found = crossed(*t, k + 2, k);
      if (found) profile.push_back(at);
    }
    t = t->m_pAdjacent[exit];
    k = back;
  }
}

}  // namespace qeltin::testing
