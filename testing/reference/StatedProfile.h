#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::testing {

// The profile of a surface in its plain form, step by step. Points and triangles serve as records
// only; of the surface it takes boxes, pools, the border list and the location object.
//
// Threads: one.
class StatedProfile {
 public:
  using Piece = std::vector<TPoint>;

  explicit StatedProfile(TIN& tin);

  // Appends the profile of one line to Pieces() and returns the number of pieces.
  int Generate(TPoint const& from, TPoint const& to);

  // The walk of one piece, from GiveSteps on.
  void GiveSteps();
  bool SegProfile(Piece& profile, TTriangle const* first, TTriangle const* last, double x1,
                  double y1, double x2, double y2);

  std::vector<Piece> const& Pieces() const { return m_Pieces; }

  // How often each of the rarer ways was taken, so that a test can tell that it went there.
  struct Ways {
    int scans = 0;
    int gaps = 0;  // passes after the first
    int vertexStarts = 0;
    int alongSides = 0;
    int endVertices = 0;
    int lostWays = 0;  // walks that came to a triangle which does not point back
    int hiddenCrossings = 0;
    int endsNotHeld = 0;  // last triangles that do not hold the end
    int oneTriangle = 0;
    int givenUp = 0;  // lines that ran in circles

    Ways& operator+=(Ways const& other);
  };
  Ways const& Taken() const { return m_Ways; }

 private:
  enum class Scan { Found, Nothing };

  Scan ScanForSurface();
  bool SettleStart();  // false where the line runs along one side
  bool Height(TPoint const& p, TTriangle const* t, double& z) const;
  TTriangle* InOrBeside(TTriangle* t) const;

  TIN& m_Tin;
  int m_iBorder;
  long long m_iSteps = 0;
  int m_iRestarts = 0;
  std::vector<Piece> m_Pieces;
  Ways m_Ways;

  TPoint m_S;
  TPoint m_E;
  TPoint m_S0;
  double m_D = 0.0;
  double m_Ux = 0.0;
  double m_Uy = 0.0;
  TTriangle* m_pStart = nullptr;
  TTriangle* m_pEnd = nullptr;
};

}  // namespace qeltin::testing
