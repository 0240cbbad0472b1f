#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "qeltin/decimate/CStatist.h"
#include "qeltin/decimate/MessageGate.h"
#include "qeltin/decimate/TPlane.h"
#include "qeltin/platform/BaseWorkerThread.h"
#include "qeltin/platform/Event.h"
#include "qeltin/platform/Export.h"
#include "qeltin/platform/MessageTarget.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::testing {
struct DecimatorPeer;
}

// What the triangles around a point say about it. A side between two of them is smooth where their
// normals differ by less than the feature angle.
enum VERTEX_TYPE : int {
  VERTEX_UNRESOLVED = 0,  // the triangles do not join up around the point
  VERTEX_TWO_SMOOTH = 1,  // exactly two sides are smooth
  VERTEX_ON_HULL = 2,     // on the edge of the visible surface; see TIN::PointIsOnHull
  VERTEX_IRREGULAR = 3,   // one side is smooth, or three or more
  VERTEX_NO_SMOOTH = 4,   // none is, or no triangle has the point
};

// Where a run stands.
struct DecimationInfo {
  int count = 0;  // steps end there in this phase
  int index = 0;  // position in this phase
  int pass = 0;   // passes completed
  int numberOfPasses = 0;
  bool evaluating = false;  // collecting points; otherwise removing them
};

// Thins a surface in place, on a thread of its own. A run makes passes of two phases: the first
// walks over the points and collects those that a test allows to go, the second removes them by
// TIN::RemovePoint. Two thresholds, an error and a feature angle, start at their minimum and grow
// by an increment a pass, up to their maximum; the run ends after the last pass, or after the one
// in which both would have passed their maximum.
//
// A point goes where it is near to the plane fitted through its neighbours, or, on a line between
// smooth sides or on the edge of the surface, to the line through two of them. All candidates of a
// pass are chosen before the first of them goes. Each phase starts at position 4: in a surface that
// grew point by point these first four are the seed corners, and the first four candidates of every
// pass stay in the surface.
//
// Distances keep their digits near to the origin only: see LocalFrame for projected coordinates.
//
// Afterwards the surface holds points and triangles that are no longer part of its structure;
// TIN::Compact drops them.
//
// Angles are degrees here and radians in single precision within, so that a value read back may
// differ in its last digits. Errors have the unit of the surface's heights.
//
// Progress comes as messages, at most one in 250 ms: (wParam, lParam) is (0, 0) while collecting,
// (100, percent) while removing, and (-1, -1) at the end. A run that came to its end by itself
// posts that pair twice, a stopped one once. Note that one more may come before the end: where a
// pass has exactly four candidates.
//
// Threads: Decimate, Stop and GetDecimationInfo from the host's thread and from a callback of the
// message target, which runs on the worker with the lock held; Decimate from one thread at a time.
// While a run is under way everything else here, and the surface itself, must be left alone.
class QELTIN_API Decimator : public BaseWorkerThread {
 public:
  Decimator();

  // Waits for a run to come to its end: Stop it first.
  ~Decimator() override;

  // One step of a run, for the worker. Returns 0 where no run is under way.
  int ThreadFunction() override;

  // --- Settings: a value outside the range is refused without a word --------------------------

  void NumberOfPasses(int passes);            // above 0
  void MinimumFeatureAngle(float degrees);    // above 0, below 360
  void MaximumFeatureAngle(float degrees);    // above 0, below 360
  void FeatureAngleIncrement(float degrees);  // above 0
  void MinimumError(float error);             // above 0
  void MaximumError(float error);             // above 0
  void ErrorIncrement(float error);           // above 0

  // Whether points on the edge of the surface may go.
  void RemoveBoundaryPoints(bool remove) { m_bRemoveBoundaryPoints = remove; }

  // Chooses the test: with true, that against the plane for all points inside the surface; with
  // false, that against the line for a point on a line between two smooth sides, and points with
  // one or with more than two stay.
  void PreserveEdges(bool preserve) { m_bPreserveEdges = preserve; }

  int NumberOfPasses() const { return m_iNumberOfPasses; }
  float MinimumFeatureAngle() const;
  float MaximumFeatureAngle() const;
  float FeatureAngleIncrement() const;
  float MinimumError() const { return m_fMinError; }
  float MaximumError() const { return m_fMaxError; }
  float ErrorIncrement() const { return m_fErrorIncrement; }
  bool RemoveBoundaryPoints() const { return m_bRemoveBoundaryPoints; }
  bool PreserveEdges() const { return m_bPreserveEdges; }

  // The surface to thin. Not owned, and must outlive the run.
  void SetSource(TIN* source) { m_pSource = source; }

  // Where progress messages go; a null window or message for none of them. The pair (-1, -1) is
  // posted with whatever is set. The window must outlive this object or the setting.
  void SetProgressHandler(HWND window, unsigned int message);

  // --- A run ----------------------------------------------------------------------------------

  // Starts a run and returns the number of points in the point map, which it builds. -1 without a
  // source. Where a run is under way, leaves it alone and returns the number as it stands.
  //
  // An increment that is 0 is set to the range of its threshold over the number of passes, and
  // stays so for later runs.
  int Decimate();

  // Ends a run after the step that is under way. What is removed stays removed.
  void Stop();

  // Returns true and fills `info` while a run is under way; otherwise false, after 100 ms, with
  // `info` as it was.
  bool GetDecimationInfo(DecimationInfo& info) const;

  // Returns the source: it is thinned in place.
  TIN const* GetDecimatedTIN() const { return m_pSource; }

  // Returns the distances of all points that were chosen by the test against the plane, those that
  // stayed nevertheless included.
  CStatist const& GetErrorStat() const { return m_ErrorStat; }

 private:
  friend struct qeltin::testing::DecimatorPeer;

  // What a host is told about a step.
  struct ProgressPair {
    std::int64_t wParam;
    std::int64_t lParam;
  };

  int BeginRun();
  void Evaluate();
  bool MayGo(TPoint const* point);
  void RemoveCandidate();
  void FinishStep();
  void FinishPhase();
  void ScheduleNextPass();
  bool IncrementFeatureAngle();
  bool IncrementError();
  ProgressPair Progress() const;
  void PostEnd();

  VERTEX_TYPE GetPointOrientation(TPoint const* point) const;

  // Returns true iff the triangles join up around the point: then it is not VERTEX_UNRESOLVED.
  bool FanCloses(TPoint const* point) const;

  // Return whether the point at `index` of the live order may go. The test against the plane enters
  // an accepted distance into the statistics; that against the line does not.
  bool PassDistanceToPlane(int index);
  bool PassDistanceToLine(int index, VERTEX_TYPE type) const;

  // Find the ends of the line for a point on the edge of the surface, and for one inside: both, or
  // two nulls.
  void GetBoundaryNeighbours(int index, TPoint*& first, TPoint*& second) const;
  void GetInteriorNeighbours(int index, TPoint*& first, TPoint*& second) const;

  // Returns the two vertices that the triangles share, in the order of the first one. Of three, the
  // first and the last; an end without a match is null.
  TEdge GetSharedEdge(TTriangle const* a, TTriangle const* b) const;

  Event m_Running;                      // signalled while a run is under way
  mutable std::recursive_mutex m_Lock;  // guards the state of a run

  int m_iNumberOfPasses = 1;
  float m_fMinFeatureAngle = 0.0f;  // angles in radians
  float m_fMaxFeatureAngle = 0.0f;
  float m_fMinError = 0.0f;
  float m_fMaxError = 0.0f;
  float m_fFeatureAngleIncrement = 0.0f;  // 0: to be computed at the start
  float m_fErrorIncrement = 0.0f;
  bool m_bRemoveBoundaryPoints = false;
  bool m_bPreserveEdges = true;
  HWND m_hWnd = nullptr;  // not owned
  unsigned int m_iMessage = 0;
  MessageGate m_Gate{250};

  float m_fCurrentError = 0.0f;  // of this pass; written at the end of a phase, read by the worker
  float m_fCurrentFeatureAngle = 0.0f;
  CStatist m_ErrorStat;  // written by the worker alone

  int m_iPass = 0;  // guarded by the lock, as are the next three
  int m_iIndex = 0;
  int m_iCount = 0;
  bool m_bEvaluating = false;

  std::vector<TPoint*> m_Candidates;  // used by the worker alone
  TIN* m_pSource = nullptr;           // not owned

  int m_iMapSize = 0;                         // of the point map; guarded by the lock
  mutable std::vector<TPoint*> m_Neighbours;  // scratch of a test
};
