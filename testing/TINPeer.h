#pragma once

#include <deque>

#include "qeltin/tin/TIN.h"

namespace qeltin::testing {

// What tests reach of a surface that hosts do not: its pools, boxes and location object, and the
// private operations.
struct TINPeer {
  static TArray<TPoint>* Points(TIN const& tin) { return tin.m_pPoints; }
  static TArray<TTriangle>* Triangles(TIN const& tin) { return tin.m_pTriangles; }
  static TTriangle* LastTriangle(TIN const& tin) { return tin.m_pLastTriangle; }
  static void SetLastTriangle(TIN& tin, TTriangle* t) { tin.m_pLastTriangle = t; }
  static TArray<int>*& Border(TIN& tin) { return tin.m_pBorder; }
  static TArray<TArrayStartPoint>*& StartPoints(TIN& tin) { return tin.m_pStartPoints; }
  static PointMap* Map(TIN const& tin) { return tin.m_pPointMap; }
  static CQelUnitCnv* UnitConverter(TIN const& tin) { return tin.m_pUnitConverter; }
  static Triangulator& Location(TIN const& tin) { return tin.m_Triangulator; }

  static TPoint& Min(TIN& tin) { return tin.m_Min; }
  static TPoint& Max(TIN& tin) { return tin.m_Max; }
  static TPoint& WorldMin(TIN& tin) { return tin.m_WorldMin; }
  static TPoint& WorldMax(TIN& tin) { return tin.m_WorldMax; }

  static TPoint* AddPoint(TIN& tin, TPoint* p, TTriangle* start) { return tin.AddPoint(p, start); }
  static bool Seed(TIN& tin) { return tin.Seed(); }
  static TTriangle* AddTriangle(TIN& tin, TTriangle const& t) { return tin.AddTriangle(t); }
  static void RemoveTriangle(TIN& tin, TTriangle* t, bool release) {
    tin.RemoveTriangle(t, release);
  }

  static TTriangle* TraverseFind(TIN const& tin, TPoint const& p, int budget) {
    return tin.TraverseFind(p, budget);
  }
  static void GetTrianglesWithPoint(TIN& tin, TPoint const* p, std::deque<TTriangle*>& result) {
    tin.GetTrianglesWithPoint(p, result);
  }
  static bool Intersect(double x, double y, double ux, double uy, TPoint* a, TPoint* b,
                        TPoint& out) {
    return TIN::Intersect(x, y, ux, uy, a, b, out);
  }
  static bool SegProfile(TIN const& tin, TPolygon& profile, TTriangle* first, TTriangle* last,
                         TPoint const& from, TPoint const& to) {
    return tin.SegProfile(profile, first, last, from.x, from.y, to.x, to.y);
  }
};

}  // namespace qeltin::testing
