#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::detail {

// Makes the profiles of a surface, pass by pass: a pass finds where the line is on the surface,
// walks to its end or to the edge of the surface, and appends a piece. A surface with a border list
// may have gaps, and there the next pass starts 0.001 beyond the edge.
//
// Threads: that of TIN::GenerateProfile.
class ProfileTracer {
 public:
  // The surface must outlive the object.
  explicit ProfileTracer(TIN const& tin);

  // Appends the profile of one straight line and returns the number of pieces.
  int Trace(std::vector<TPolygon>& profiles, TPoint const& from, TPoint const& to);

  // The walk of one piece alone, as TIN::SegProfile. REQUIRES: `first` is not null.
  bool Walk(std::vector<TPoint>& points, TTriangle const* first, TTriangle const* last,
            TPoint const& from, TPoint const& to);

 private:
  // The crossings that a scan keeps: a triangle, null for none, and the distance ahead of the
  // start.
  struct Crossed {
    TTriangle* triangle;
    double along;
  };
  struct Crossings {
    Crossed nearest;
    Crossed farthest;
  };

  bool Clip(TPoint const& from, TPoint const& to);
  void Locate();
  void GiveSteps();

  bool TracePass(std::vector<TPolygon>& profiles);
  bool Aim();
  bool SettleFirst();
  void AppendPiece(std::vector<TPolygon>& profiles) const;
  void StartBeyondLast();
  TPoint PlaceAt(double along) const;

  bool FindSurface();
  Crossings Scan();
  void ScanSides(TTriangle* t, Crossings& found) const;
  TTriangle* HolderOfStart(TTriangle* t) const;

  TIN const& m_Tin;
  bool m_bGaps;

  // What is left before the line is given up: steps and passes, and passes that may begin on the
  // surface, where nothing has to be crossed. A line that needs more goes in circles, or creeps
  // along a row of sides.
  long long m_iSteps = 0;
  int m_iRestarts = 0;

  // What is left of the line, and the triangles at its ends.
  TPoint m_From;
  TPoint m_To;
  TTriangle* m_pFirst = nullptr;
  TTriangle* m_pLast = nullptr;

  // Of the pass: where it began, the length of the line from there, and its unit vector.
  TPoint m_Origin;
  double m_dLength = 0.0;
  double m_dUx = 0.0;
  double m_dUy = 0.0;

  std::vector<TPoint> m_Piece;
  bool m_bGoOn = false;  // whether the latest walk came to the edge of the surface
};

}  // namespace qeltin::detail
