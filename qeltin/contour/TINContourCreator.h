#pragma once

#include <atomic>
#include <vector>

#include "qeltin/contour/ContourCreator.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/platform/Export.h"

class TIN;

class TIN;

namespace qeltin::detail {
class LevelPlan;
}

// Derives the contours of a surface.
//
// For each level it prepares the triangles, traces lines from triangle to triangle, joins what
// meets (ContourCreator::ConnectContours), and gives every line its direction: higher ground lies
// to the right of the way from the first point to the last.
//
// The surface is taken as const and is WRITTEN to all the same: the height of a vertex within 1e-8
// of a level rises by 1e-8 at each triangle that has it, until it is out of that band, and stays
// so; and the TRI_VISITED mark of every triangle is set anew. So no other contour or isoline run,
// and no reader of heights, may work on the surface at the same time.
//
// What the lines look like, by where they were started:
//   - an open line started between its ends runs from the start to one end, and from there goes
//     straight to the start again and on to the other end;
//   - a closed line ends at its start triangle with a doubled last point and is not closed: the
//     stretch across the start triangle is missing;
//   - a line that starts at the edge of the structure has its first point again as its last;
//   - a line that starts beside a hidden triangle is two points, the second of them (0, 0) where
//     there is no neighbour across that side.
//
// Threads: works on the caller's thread. Only `running` may be touched from another one. It is read
// for every triangle prepared, every triangle looked at for a start, every line directed and every
// level, and not within the tracing of a line.
class QELTIN_API TINContourCreator : public ContourCreator {
 public:
  // `tin` is not owned and may be null: there is then nothing to contour.
  explicit TINContourCreator(TIN const* tin = nullptr) : m_pTin(tin) {}
  TINContourCreator(TINContourCreator const& other) = default;
  TINContourCreator& operator=(TINContourCreator const& other) = default;

  void SetTIN(TIN const* tin) { m_pTin = tin; }
  TIN const* GetTIN() const { return m_pTin; }

  // A run that is stopped while it prepares adds nothing; one that is stopped later adds the lines
  // found so far, joined, some of them without direction.
  int AddLevel(double level, ContourList& list, std::atomic<bool> const& running) override;

  // Calls AddLevel for each level as given, neither sorted nor made unique.
  int AddLevels(std::vector<double> const& levels, ContourList& list,
                std::atomic<bool> const& running) override;

 private:
  using Point = GTL::Point2D<double>;

  void AddEach(std::vector<double> const& levels, ContourList& list,
               std::atomic<bool> const& running);

  // Readies the triangles for the level: unmarks all but the flat ones and lifts vertices.
  void ClearFlags();
  void ClearPlannedFlags();

  // Returns the next triangle to start from, with the sides that the level crosses in `mask` (1, 2
  // and 4 for side 0, 1 and 2), or null.
  TTriangle* FindStartTriangle(int& mask);

  int ClassifyTriangle(TTriangle const* triangle) const;

  // Traces one line and puts it behind the others.
  void GenerateContour(TTriangle* start, int start_mask);

  // Follows the line across `triangle` and on, as far as it goes.
  void Walk(Contour& contour, TTriangle* triangle, TTriangle* previous, int mask);

  // Returns how far along a side from height `z0` to `z1` the level lies.
  double CompCutDist(double z0, double z1) const { return (m_dLevel - z0) / (z1 - z0); }

  Point CrossingOn(TTriangle const* triangle, int side) const;

  // Returns the crossing by which a line that came from `previous` leaves `triangle`; (0, 0) where
  // there is none.
  Point GetNextPoint(TTriangle const* previous, TTriangle const* triangle, int mask) const;

  // Gives each line its direction.
  void DirectContours();

  bool IsRunning() const { return m_pRunning->load(std::memory_order_relaxed); }

  TIN const* m_pTin;        // not owned; may be null
  int m_iNextTriangle = 0;  // where FindStartTriangle goes on: in the live order, or in the plan
  double m_dLevel = 0.0;
  std::atomic<bool> const* m_pRunning = nullptr;
  qeltin::detail::LevelPlan* m_pPlan = nullptr;  // while AddLevels runs; not owned
};
