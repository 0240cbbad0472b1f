#pragma once

#include <cstdint>
#include <vector>

#include "qeltin/kernel/TEdge.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "testing/reference/ReferenceTin.h"

namespace qeltin::testing {

// Decimation in its plain form: every step as the method tells it, with matrices for the plane, on
// one thread and without a gate. Decimator must agree with it to the bit.
//
// Threads: one.
class ReferenceDecimator {
 public:
  struct Message {
    std::int64_t wParam = 0;
    std::int64_t lParam = 0;

    bool operator==(Message const&) const = default;
  };

  // The surface is not owned.
  explicit ReferenceDecimator(ReferenceTin& tin) : m_Tin(tin) {}

  // Settings, angles in radians.
  int numberOfPasses = 1;
  float minFeatureAngle = 0.0f;
  float maxFeatureAngle = 0.0f;
  float minError = 0.0f;
  float maxError = 0.0f;
  float featureAngleIncrement = 0.0f;
  float errorIncrement = 0.0f;
  bool removeBoundaryPoints = false;
  bool preserveEdges = true;

  // State.
  bool running = false;
  float currentError = 0.0f;
  float currentFeatureAngle = 0.0f;
  std::uint32_t samples = 0;
  double minimum = 0.0;
  double maximum = 0.0;
  double mean = 0.0;
  double sumSquares = 0.0;
  int pass = 0;
  int index = 0;
  int count = 0;
  bool evaluating = false;
  std::vector<TPoint*> candidates;

  // What was posted, as if every message passed.
  std::vector<Message> messages;

  // How often each class of point and each test came up, for tests that must not pass unmet.
  int classes[5] = {};
  int linesInside = 0;
  int linesOnHull = 0;

  int Decimate();  // the start of a run
  int Step();      // 0 where no run is under way
  void Stop() { running = false; }

 private:
  bool Decide(TPoint* point);
  void EndPhase();
  void Schedule();
  bool IncrementFeatureAngle();
  bool IncrementError();
  Message Progress() const;

  bool IsOnHull(TPoint const* point) const;
  std::vector<TPoint*> NeighboursOf(TPoint const* point) const;
  TTriangle* FirstTriangleOf(TPoint const* point) const;
  int Classify(TPoint const* point) const;
  bool PassPlane(TPoint const* point);
  bool PassLine(TPoint const* point, int type);
  void FindOnHull(TPoint const* point, TPoint*& first, TPoint*& second) const;
  void FindInside(TPoint const* point, TPoint*& first, TPoint*& second) const;

  ReferenceTin& m_Tin;
};

}  // namespace qeltin::testing
