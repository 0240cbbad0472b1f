#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/platform/Export.h"
#include "qeltin/tin/LastFan.h"
#include "qeltin/tin/TArray.h"

class TIN;

namespace qeltin::detail {
class Cavity;
class GridSampler;
class LocationIndex;
}  // namespace qeltin::detail

// The location object that a surface holds by value: it remembers the last triangle found, so that
// queries near each other cost a few steps, and it knows where to look when the next one is far.
//
// Threads: every query writes, even one through a const surface. One thread at a time.
class QELTIN_API Triangulator {
 public:
  static constexpr int CHEAP_WALK = 20;  // steps that a query may cost before it counts as far

  Triangulator();
  ~Triangulator();
  Triangulator(Triangulator const&) = delete;
  Triangulator& operator=(Triangulator const&) = delete;

  // Takes the surface and its triangle pool, neither owned, and forgets every earlier place. Both
  // must outlive the next Seat. A null pool leaves an object whose queries answer null.
  void Seat(TIN* tin, TArray<TTriangle>* triangles);

  // Drops all hints where a walk might begin. To be called when a triangle is cut off: they might
  // go on leading to it.
  void ForgetIndex();

  // Returns the triangle that holds `p`, hidden ones included, or null where there is none.
  //
  // A walk of at most 20 steps from the last result comes first. Note that after a walk that was
  // about to go straight back and ended in a triangle of that pair, the answer is where the walk
  // BEGAN. Where that walk fails, an index over the pool, built once the cost of walking has come
  // to that of building it, or a sample of the pool places a walk of any length. The index knows
  // a few triangles; one of all of them follows for queries far from each other once that pays too.
  TTriangle* Find(TPoint const& p);
  TTriangle* Find(double x, double y);

  // Walks from m_pCurrent towards `p`, in at most `budget` steps. Returns the triangle that holds
  // `p`, and keeps it in m_pCurrent; or, where the walk was about to go straight back, the one of
  // that pair that has `p`, with m_pCurrent as it was. Null where the budget runs out or the walk
  // leaves the mesh, with m_pCurrent as it was.
  // REQUIRES: m_pCurrent is not null.
  TTriangle* Walk(TPoint const& p, int budget);

  // As Find for a point that is to be inserted: begins long walks where the last one was inserted.
  TTriangle* FindToInsert(TPoint const& p);

  // As Find for bulk building, where chance decides which way a walk goes: walks from m_pCurrent
  // and returns the triangle that certainly holds `p`, kept in m_pCurrent; or null, with m_pCurrent
  // somewhere near, where only Find can tell.
  // REQUIRES: a surface that tiles.
  TTriangle* FindNext(TPoint const& p);

  // Returns true iff Near knows triangles.
  bool HasIndex() const { return m_pIndex != nullptr; }

  // Returns a triangle that the index has near the place. REQUIRES: HasIndex().
  TTriangle* Near(double x, double y) const;

  // Fills `result` with triangles that make up the figure whose corners are `ring`, clockwise,
  // their circles calculated, without neighbours and flags: by clipping ears, the one with the
  // smallest circumcircle first, the earliest of equal ones. `ring` is used up.
  //
  // An ear is a corner whose diagonal has its middle inside what is left of the ring, by
  // TPolygon::PointInPolygon. Note that corners within the triangle do not stand in the way, unless
  // they are as near to the origin of the coordinates as the root of the circumradius. Where no ear
  // is left, the triangle made last is appended once more, or, where it would be the first, that of
  // the first three corners, and the second corner is clipped. Below three corners there is no
  // result. Note that the return value tells nothing of the outcome: true for 5, 6 or 7 corners.
  static bool FillHole(std::vector<TTriangle>& result, std::deque<TPoint*>& ring);

  TIN* m_pTin = nullptr;                      // not owned
  TArray<TTriangle>* m_pTriangles = nullptr;  // not owned
  TTriangle* m_pCurrent = nullptr;            // where the next query starts
  int m_iBest = 0;                            // sample search: the round of the best sample
  double m_dBest = 0.0;                       // sample search: smallest squared distance so far
  double m_dDistSq = 0.0;                     // sample search: that of the latest sample
  int m_iSamples = 0;                         // sample search: rounds allowed
  double m_dDeltaX = 0.0;                     // sample search: latest centroid less the point
  double m_dDeltaY = 0.0;

 private:
  friend class qeltin::detail::Cavity;
  friend class qeltin::detail::GridSampler;

  TTriangle* Walk(TPoint const& p, int budget, int& steps);
  bool IsSureGround(double x, double y) const;
  static bool IsFar(TTriangle const& t, double x, double y);
  TTriangle* FindWithCare(TPoint const& p);
  TTriangle* FindFar(double x, double y);
  TTriangle* LongWalk(TPoint const& p);
  TTriangle* FindInside(TPoint const& p);
  TTriangle* WalkInside(TPoint const& p, int budget, int& steps);
  TTriangle* FindByIndex(TPoint const& p);
  TTriangle* NearestStart(TPoint const& p) const;
  bool IndexPays() const;
  void RenewIndexIfItPays();
  bool CheckPays() const;
  std::unique_ptr<qeltin::detail::LocationIndex> MakeIndex(int stride) const;
  TTriangle* FindBySample(TPoint const& p);
  TTriangle* FindByStartPoints(TPoint const& p);
  int RandomPosition() const;

  std::unique_ptr<qeltin::detail::LocationIndex> m_pIndex;      // null until it pays
  std::unique_ptr<qeltin::detail::LocationIndex> m_pFineIndex;  // over all triangles
  qeltin::detail::LastFan m_Fan;
  int m_iIndexed = 0;          // triangles when the first one was built
  long long m_iLongSteps = 0;  // steps of long walks since then
  int m_iFarQueries = 0;       // that the first one has led
  int m_iVainChecks = 0;       // of whether the surface tiles
};
