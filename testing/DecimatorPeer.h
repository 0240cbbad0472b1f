#pragma once

#include <memory>
#include <vector>

#include "qeltin/decimate/Decimator.h"

namespace qeltin::testing {

// What tests reach of a decimator that hosts do not: a run without its thread, step by step through
// ThreadFunction, its thresholds and candidates, and the criteria.
struct DecimatorPeer {
  // The start of a run that nobody but the caller drives.
  static int Begin(Decimator& d) {
    d.m_pSource->BuildPointMap();
    return d.BeginRun();
  }

  static void WaitForEnd(Decimator& d) { d.WaitForEnd(); }

  // Lets the next progress message pass.
  static void OpenGate(Decimator& d) {
    unsigned int const interval = d.m_Gate.GetInterval();
    std::destroy_at(&d.m_Gate);
    std::construct_at(&d.m_Gate, interval);
  }

  static unsigned int Interval(Decimator const& d) { return d.m_Gate.GetInterval(); }
  static bool IsRunning(Decimator const& d) { return d.m_Running.Wait({}); }

  static float& CurrentError(Decimator& d) { return d.m_fCurrentError; }
  static float& CurrentFeatureAngle(Decimator& d) { return d.m_fCurrentFeatureAngle; }
  static float ErrorIncrement(Decimator const& d) { return d.m_fErrorIncrement; }
  static std::vector<TPoint*>& Candidates(Decimator& d) { return d.m_Candidates; }
  static DecimationInfo Info(Decimator const& d) {
    return {d.m_iCount, d.m_iIndex, d.m_iPass, d.m_iNumberOfPasses, d.m_bEvaluating};
  }

  static VERTEX_TYPE Classify(Decimator const& d, TPoint const* point) {
    return d.GetPointOrientation(point);
  }
  static bool PassPlane(Decimator& d, int index) { return d.PassDistanceToPlane(index); }
  static bool PassLine(Decimator const& d, int index, VERTEX_TYPE type) {
    return d.PassDistanceToLine(index, type);
  }
  static void BoundaryNeighbours(Decimator const& d, int index, TPoint*& first, TPoint*& second) {
    d.GetBoundaryNeighbours(index, first, second);
  }
  static void InteriorNeighbours(Decimator const& d, int index, TPoint*& first, TPoint*& second) {
    d.GetInteriorNeighbours(index, first, second);
  }
  static TEdge SharedEdge(Decimator const& d, TTriangle const& a, TTriangle const& b) {
    return d.GetSharedEdge(&a, &b);
  }
};

}  // namespace qeltin::testing
