#include "testing/reference/Twin.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/reference/CompareSurfaces.h"
#include "testing/reference/NativeImage.h"
#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing {

namespace {

std::string Text(char const* call, TPoint const& p) {
  std::ostringstream out;
  out.precision(17);
  out << call << "(" << p.x << ", " << p.y << ", " << p.z << ")";
  return out.str();
}

}  // namespace

void Twin::Differ(std::string const& what, std::string const& how) {
  if (m_Fault.empty()) m_Fault = "call " + std::to_string(m_iCalls) + ", " + what + ": " + how;
}

int Twin::SlotHere(TTriangle const* t) const {
  return t == nullptr ? -1 : static_cast<int>(t - TINPeer::Triangles(m_Tin)->m_pData);
}

int Twin::SlotHere(TPoint const* p) const {
  return p == nullptr ? -1 : static_cast<int>(p - TINPeer::Points(m_Tin)->m_pData);
}

TTriangle* Twin::Counterpart(TTriangle const* t) {
  return t == nullptr ? nullptr : m_Reference.m_pTriangles->m_pData + SlotHere(t);
}

void Twin::Compare() {
  if (IsOver()) return;
  std::string const difference = Difference(m_Tin, m_Reference);
  if (!difference.empty()) Differ("comparison", difference);
}

void Twin::CompareAllSlots() {
  if (IsOver()) return;
  std::string const difference = DifferenceOfAllSlots(m_Tin, m_Reference);
  if (!difference.empty()) Differ("comparison", difference);
}

// Ends a call.
void Twin::Step(std::string const& what) {
  if (IsOver()) return;
  int const here = SlotHere(TINPeer::Location(m_Tin).m_pCurrent);
  int const there = m_Reference.Slot(m_Reference.m_pCurrent);
  if (here != there) {
    Differ(what,
           "current triangle " + std::to_string(here) + ", reference " + std::to_string(there));
    return;
  }
  if (++m_iCalls % m_iStride != 0) return;
  std::string const difference = Difference(m_Tin, m_Reference);
  if (!difference.empty()) Differ(what, difference);
}

void Twin::Init(int points, TPoint const& min, TPoint const& max) {
  if (IsOver()) return;
  bool const here = m_Tin.Init(points, min, max);
  bool const there = m_Reference.Init(points, min, max);
  if (here != there) Differ("Init", "another result");
  std::srand(1);  // Init takes the clock, and a failing test must fail again
  if (there) Step("Init");
}

void Twin::Build(std::vector<TPoint> const& points) {
  Extent const extent = ExtentOf(points);
  Init(static_cast<int>(points.size()), extent.min, extent.max);
  AddPoints(points);
}

void Twin::Create(std::vector<IPoint> points) {
  if (IsOver()) return;
  m_Reference.PrepareCreate(points);
  for (IPoint const& p : points) {
    if (!m_Reference.Accepts(p)) continue;
    ReferenceTin::Location const found = m_Reference.Find(p);
    if (found.chance) {
      m_bStopped = true;
      return;
    }
    ++m_iSure;
    m_Reference.AddPoint(p, found.triangle);
    if (m_Reference.IsExhausted()) {
      m_bStopped = true;
      return;
    }
  }
  if (!m_Tin.Create(&points)) Differ("Create", "not true");
  std::srand(1);
  Compare();
  Step("Create");
}

void Twin::AddPoints(std::vector<TPoint> const& points) {
  for (TPoint const& p : points) AddPoint(p);
}

void Twin::CompareReturned(TPoint const* here, TPoint const* there, TPoint const& p) {
  int const slot = m_Reference.Slot(there);
  if (SlotHere(here) != slot) {
    Differ(Text("AddPoint", p), "returns point " + std::to_string(SlotHere(here)) + ", reference " +
                                    std::to_string(slot));
  }
}

void Twin::AddPoint(TPoint const& p) {
  if (IsOver()) return;
  if (!m_Reference.Accepts(p)) {
    if (m_Tin.AddPoint(p) != nullptr) Differ(Text("AddPoint", p), "accepted");
    Step(Text("AddPoint", p));
    return;
  }
  ReferenceTin::Location found = m_Reference.Find(p);
  if (found.chance) {
    ++m_iChance;
    if (m_Tin.GetNumberOfPoints() == 0) TINPeer::Seed(m_Tin);
    TTriangle* const settled = SettleChance(p);
    if (settled == nullptr || IsOver()) return;
    found = m_Reference.Find(p);
    if (found.chance) {
      AddFound(p, settled);
      return;
    }
  } else {
    ++m_iSure;
  }
  TPoint* const there = m_Reference.AddPoint(p, found.triangle);
  m_bStopped = m_Reference.IsExhausted();
  if (m_bStopped) return;
  CompareReturned(m_Tin.AddPoint(p), there, p);
  Step(Text("AddPoint", p));
}

// Asks the TIN, until its answer is one that both find again without chance. Returns its last
// answer.
TTriangle* Twin::SettleChance(TPoint const& p) {
  TTriangle* answer = nullptr;
  for (int attempt = 0; attempt < 4; ++attempt) {
    TTriangle* before = TINPeer::Location(m_Tin).m_pCurrent;
    if (before == nullptr) before = TINPeer::Triangles(m_Tin)->At(0);
    answer = m_Tin.GetTriangleWithPoint(p);
    m_Reference.m_pCurrent = Counterpart(TINPeer::Location(m_Tin).m_pCurrent);
    if (answer == nullptr) {
      if (AlwaysFails(p) && !ChanceMayFail(p)) {
        Differ(Text("Find", p), "null, though every sample finds it");
      }
      m_Reference.m_pCurrent = Counterpart(TINPeer::Location(m_Tin).m_pCurrent);
      return nullptr;
    }
    TTriangle const& t = *Counterpart(answer);
    if (stated::WhereTri(t, p) != 3 && !stated::XY_HasPoint(t, p) && answer != before) {
      Differ(Text("Find", p), "a triangle that does not hold the point");
      return nullptr;
    }
    TTriangle* const current = m_Reference.m_pCurrent;
    bool const chance = m_Reference.Find(p).chance;
    m_Reference.m_pCurrent = current;
    if (!chance) break;
  }
  return answer;
}

// Returns true iff the TIN finds nothing, however often it is asked.
bool Twin::AlwaysFails(TPoint const& p) {
  for (int i = 0; i < 20; ++i) {
    if (m_Tin.GetTriangleWithPoint(p) != nullptr) return false;
  }
  return true;
}

// Returns true iff the search with samples fails at least once in many. A point too far off for any
// sample to count starts where an earlier search found its best, which may have been anywhere.
bool Twin::ChanceMayFail(TPoint const& p) {
  TTriangle* const current = m_Reference.m_pCurrent;
  int const count = m_Reference.m_pTriangles->m_iCount;
  int const early = std::max(1, count < 50 ? count : count / 5);
  bool failed = false;
  for (int i = 0; i < 3000 && !failed; ++i) {
    m_Reference.m_iBest = std::rand() % early;
    failed = m_Reference.FindBySample(p) == nullptr;
  }
  m_Reference.m_pCurrent = current;
  return failed;
}

// Where every way to the triangle goes through chance: hands it to both.
void Twin::AddFound(TPoint const& p, TTriangle* found) {
  TArray<TPoint>& pool = *TINPeer::Points(m_Tin);
  if (pool.IsFull()) return;
  TPoint* const there = m_Reference.AddPoint(p, Counterpart(found));
  m_bStopped = m_Reference.IsExhausted();
  if (m_bStopped) return;
  m_Tin.LoadPoint(p.x, p.y, p.z);
  TPoint* const here = pool.At(pool.m_iCount - 1);
  CompareReturned(TINPeer::AddPoint(m_Tin, here, found), there, p);
  Step(Text("AddPoint", p));
}

void Twin::AddFrom(TPoint const& p, int position) {
  if (IsOver()) return;
  AddFound(p, TINPeer::Triangles(m_Tin)->At(position));
}

void Twin::Query(TPoint const& p) {
  if (IsOver()) return;
  ReferenceTin::Location const found = m_Reference.Find(p);
  if (found.chance) {
    ++m_iChance;
    SettleChance(p);
  } else {
    ++m_iSure;
    int const here = SlotHere(m_Tin.GetTriangleWithPoint(p));
    int const there = m_Reference.Slot(found.triangle);
    if (here != there) {
      Differ(Text("Find", p),
             "triangle " + std::to_string(here) + ", reference " + std::to_string(there));
    }
  }
  Step(Text("Find", p));
}

void Twin::CompareWalk(char const* name, TPoint const& p, ReferenceTin::Location const& there,
                       TTriangle const* here) {
  ++m_iSure;
  int const slot = m_Reference.Slot(there.triangle);
  if (SlotHere(here) != slot) {
    Differ(Text(name, p),
           "triangle " + std::to_string(SlotHere(here)) + ", reference " + std::to_string(slot));
  }
  Step(Text(name, p));
}

void Twin::Walk(TPoint const& p, int budget) {
  if (IsOver()) return;
  ReferenceTin::Location const there = m_Reference.Walk(p, budget);
  if (there.chance) {
    ++m_iChance;
    return;
  }
  CompareWalk("Walk", p, there, TINPeer::Location(m_Tin).Walk(p, budget));
}

void Twin::TraverseFind(TPoint const& p, int budget) {
  if (IsOver()) return;
  ReferenceTin::Location const there = m_Reference.TraverseFind(p, budget);
  if (there.chance) {
    ++m_iChance;
    return;
  }
  CompareWalk("TraverseFind", p, there, TINPeer::TraverseFind(m_Tin, p, budget));
  int const here = SlotHere(TINPeer::LastTriangle(m_Tin));
  if (here != m_Reference.Slot(m_Reference.m_pLastTriangle)) {
    Differ(Text("TraverseFind", p), "keeps another triangle");
  }
}

void Twin::RemoveTriangle(int position, bool release) {
  if (IsOver()) return;
  TTriangle* const t = TINPeer::Triangles(m_Tin)->At(position);
  TTriangle* const r = Counterpart(t);
  m_Reference.RemoveTriangle(r);
  if (release) m_Reference.m_pTriangles->Remove(r);
  TINPeer::RemoveTriangle(m_Tin, t, release);
  Step("RemoveTriangle");
}

void Twin::RemoveAllPoints() {
  if (IsOver()) return;
  m_Tin.RemoveAllPoints();
  m_Reference.RemoveAllPoints();
  Step("RemoveAllPoints");
}

bool Twin::RemovePoint(int position) {
  if (IsOver()) return false;
  TPoint const* const point = m_Tin.GetPoint(position);
  bool const there = m_Reference.RemovePoint(m_Reference.m_pPoints->m_pData + SlotHere(point));
  if (m_Tin.RemovePoint(point) != there) Differ("RemovePoint", there ? "false" : "true");
  Step("RemovePoint");
  return there;
}

void Twin::BuildPointMap() {
  if (IsOver()) return;
  m_Tin.BuildPointMap();
  m_Reference.BuildPointMap();
  Step("BuildPointMap");
}

void Twin::SaveAndLoad(int marked) {
  if (IsOver()) return;
  TemporaryFolder const folder;
  std::wstring const file = folder.Wide("surface.tin");
  if (!m_Tin.SaveTin(file.c_str())) return Differ("SaveTin", "false");
  std::string image = folder.Get("surface.tin");
  ClearUnusedBytes(image);
  if (image != NativeImage(m_Reference)) return Differ("SaveTin", "other bytes");
  if (marked >= 0) {
    SetFlagsInImage(image, marked, TRI_CAVITY);
    folder.Put("surface.tin", image);
  }
  if (m_Tin.Load(file.c_str()) != LoadNativeImage(image, m_Reference)) {
    return Differ("Load", "another result");
  }
  std::srand(1);
  Step("Load");
}

void Twin::SetHeight(int position, double z) {
  if (IsOver()) return;
  m_Tin.GetPoint(position)->z = z;
  m_Reference.m_pPoints->At(position)->z = z;
  Step("SetHeight");
}

}  // namespace qeltin::testing
