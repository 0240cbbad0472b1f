#pragma once

#include <memory>
#include <vector>

#include "qeltin/kernel/IPoint.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/PointMap.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::testing {

// A surface whose insertion and location are the plain version of those of TIN: every step as the
// method tells it, none of it fast. TIN must agree with it to the bit.
//
// The pools are of the same type as those of TIN, so that slot n there answers to slot n here.
// Where chance decides, this class says so and leaves the outcome to the caller.
//
// Threads: one.
class ReferenceTin {
 public:
  // The triangle, or null; with `chance`, a random place decides and the triangle means nothing.
  struct Location {
    TTriangle* triangle = nullptr;
    bool chance = false;
  };

  ReferenceTin() = default;
  ReferenceTin(ReferenceTin const& other);  // its own pools, pointers moved over; no map
  ReferenceTin& operator=(ReferenceTin const&) = delete;

  bool Init(int points, TPoint const& min, TPoint const& max);

  // Create up to its last step: the boxes and pools for these points, none of them added yet.
  void PrepareCreate(std::vector<IPoint> const& points);

  void RemoveAllPoints();
  void BuildPointMap();
  void Seed();

  bool InBounds(TPoint const& p) const;
  bool InWorldBounds(TPoint const& p) const;

  // The walk of 20 steps from m_pCurrent, and what makes of it the answer of a search. What follows
  // when it fails is chance.
  Location Find(TPoint const& p);
  Location Walk(TPoint const& p, int budget) { return WalkFrom(m_pCurrent, p, budget); }

  // The same walk on m_pLastTriangle.
  Location TraverseFind(TPoint const& p, int budget) {
    return WalkFrom(m_pLastTriangle, p, budget);
  }

  // The number of walks so far that were about to go straight back and ended there.
  int Bounces() const { return m_iBounces; }

  // The whole search with its random samples, drawn with rand: one of the answers that chance may
  // give. REQUIRES: a live triangle.
  TTriangle* FindBySample(TPoint const& p);

  // The public insertion, in two halves around the search: first whether the point is refused, with
  // the seeding, then the rest. `start` is what the search found.
  bool Accepts(TPoint const& p);
  TPoint* AddPoint(TPoint const& p, TTriangle* start);

  // The core. REQUIRES: `p` in the pool, `start` not null.
  TPoint* AddPooled(TPoint* p, TTriangle* start);

  // Returns true iff AddPooled ran out of triangle slots, which is a fault of the caller. Nothing
  // was changed but the flags, and the surface is of no further use.
  bool IsExhausted() const { return m_bExhausted; }

  void RemoveTriangle(TTriangle* triangle);  // without release

  // Takes a vertex out and fills the hole. REQUIRES: a map.
  bool RemovePoint(TPoint const* point);

  int Slot(TPoint const* p) const { return p == nullptr ? -1 : static_cast<int>(p - Points()); }
  int Slot(TTriangle const* t) const {
    return t == nullptr ? -1 : static_cast<int>(t - m_pTriangles->m_pData);
  }

  TPoint m_WorldMin;
  TPoint m_WorldMax;
  TPoint m_Min;
  TPoint m_Max;
  std::unique_ptr<TArray<TPoint>> m_pPoints;
  std::unique_ptr<TArray<TTriangle>> m_pTriangles;
  TTriangle* m_pCurrent = nullptr;
  TTriangle* m_pLastTriangle = nullptr;
  int m_iBest = 0;  // of the sample search: survives from one search to the next
  std::unique_ptr<PointMap> m_pPointMap;

 private:
  TPoint const* Points() const { return m_pPoints->m_pData; }
  TTriangle* AddTriangle(TTriangle const& triangle);
  bool ReachesOut(TTriangle const& triangle) const;
  void Widen(TPoint const& p);

  Location WalkFrom(TTriangle*& kept, TPoint const& p, int budget);

  bool m_bExhausted = false;
  int m_iBounces = 0;
};

}  // namespace qeltin::testing
