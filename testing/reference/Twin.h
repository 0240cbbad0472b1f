#pragma once

#include <string>
#include <vector>

#include "qeltin/kernel/IPoint.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/tin/TIN.h"
#include "testing/reference/ReferenceTin.h"

namespace qeltin::testing {

// A TIN and a ReferenceTin that live through the same calls and are compared on the way.
//
// Where chance decides a location, the answer of the TIN is checked to be one that the search may
// give, and the reference goes on from there. The first difference ends everything: later calls do
// nothing, so that a test asks Fault() once, at its end. Comparing whole surfaces costs their size;
// what a call returns and where it leaves the location object is compared at every call.
//
// Threads: one.
class Twin {
 public:
  // Whole surfaces are compared at every `stride`-th call, and by Compare().
  explicit Twin(int stride = 1) : m_iStride(stride < 1 ? 1 : stride) {}

  void Init(int points, TPoint const& min, TPoint const& max);

  // Init for these points and their box, and AddPoints.
  void Build(std::vector<TPoint> const& points);

  // Create, all at once on the TIN. Nothing can be handed over in the middle of it, so where chance
  // decides, the comparison stops.
  void Create(std::vector<IPoint> points);

  void AddPoint(TPoint const& p);
  void AddPoints(std::vector<TPoint> const& points);
  void Query(TPoint const& p);

  // The walk alone from where the last query ended, and its copy that starts at the last triangle.
  // Where a walk comes to a jump, nothing is compared.
  // REQUIRES: a query before, and a point.
  void Walk(TPoint const& p, int budget);
  void TraverseFind(TPoint const& p, int budget);

  // The core insertion with a start triangle of our choice, right or wrong, by live position.
  void AddFrom(TPoint const& p, int position);

  void RemoveTriangle(int position, bool release);
  void RemoveAllPoints();

  bool HasMap() const { return m_Reference.m_pPointMap != nullptr; }

  // Removes the point at this live position. REQUIRES: a map. Returns what both answer.
  bool RemovePoint(int position);
  void BuildPointMap();
  void SetHeight(int position, double z);

  // Saves the TIN, compares the file with the image of the reference and loads both back. With
  // `marked` at or above 0, the triangle at this live position carries TRI_CAVITY in the file, as a
  // file from elsewhere may.
  void SaveAndLoad(int marked = -1);

  void Compare();

  // Compares the slots that are not live, too.
  void CompareAllSlots();

  // The first difference as a readable line; empty while there is none.
  std::string const& Fault() const { return m_Fault; }

  // True where the surface ran out of triangle slots or chance had a say in Create. Not a fault.
  bool IsStopped() const { return m_bStopped; }

  int SureLocations() const { return m_iSure; }
  int ChanceLocations() const { return m_iChance; }

  TIN& Tin() { return m_Tin; }
  ReferenceTin& Reference() { return m_Reference; }

 private:
  bool IsOver() const { return m_bStopped || !m_Fault.empty(); }
  void Step(std::string const& what);
  void Differ(std::string const& what, std::string const& how);
  int SlotHere(TTriangle const* t) const;
  int SlotHere(TPoint const* p) const;
  TTriangle* Counterpart(TTriangle const* t);
  TTriangle* SettleChance(TPoint const& p);
  bool AlwaysFails(TPoint const& p);
  bool ChanceMayFail(TPoint const& p);
  void AddFound(TPoint const& p, TTriangle* found);
  void CompareWalk(char const* name, TPoint const& p, ReferenceTin::Location const& there,
                   TTriangle const* here);
  void CompareReturned(TPoint const* here, TPoint const* there, TPoint const& p);

  TIN m_Tin;
  ReferenceTin m_Reference;
  std::string m_Fault;
  bool m_bStopped = false;
  int m_iStride;
  int m_iCalls = 0;
  int m_iSure = 0;
  int m_iChance = 0;
};

}  // namespace qeltin::testing
