#include "testing/reference/ReferenceDecimator.h"

namespace qeltin::testing {

int ReferenceDecimator::Decimate() {
  m_Tin.BuildPointMap();
  if (featureAngleIncrement == 0.0f) {
    featureAngleIncrement =
        (maxFeatureAngle - minFeatureAngle) / static_cast<float>(numberOfPasses);
  }
  if (errorIncrement == 0.0f) {
    errorIncrement = (maxError - minError) / static_cast<float>(numberOfPasses);
  }
  currentError = minError;
  currentFeatureAngle = minFeatureAngle;
  index = 4;
  pass = 0;
  count = m_Tin.m_pPointMap->GetNumberOfPoints();
  evaluating = true;
  samples = 0;
  minimum = maximum = mean = sumSquares = 0.0;
  running = true;
  return count;
}

int ReferenceDecimator::Step() {
  if (!running) {
    candidates.clear();
    messages.push_back({-1, -1});
    return 0;
  }
  if (evaluating) {
    if (index < m_Tin.m_pPoints->m_iCount) {
      TPoint* const point = m_Tin.m_pPoints->At(index);
      if (m_Tin.m_pPointMap->FindPoint(point).NumberOfTriangles() > 0 && Decide(point)) {
        candidates.push_back(point);
      }
    }
  } else if (index < static_cast<int>(candidates.size())) {
    m_Tin.RemovePoint(candidates[static_cast<std::size_t>(index)]);
  }
  index += 1;
  if (index >= count) EndPhase();
  messages.push_back(Progress());
  return 1;
}

bool ReferenceDecimator::Decide(TPoint* point) {
  int const type = Classify(point);
  ++classes[type];
  switch (type) {
    case 1:
      return preserveEdges ? PassPlane(point) : PassLine(point, 1);
    case 2:
      return removeBoundaryPoints ? PassLine(point, 2) : false;
    case 3:
      return preserveEdges ? PassPlane(point) : false;
    case 4:
      return PassPlane(point);
    default:
      return false;
  }
}

void ReferenceDecimator::EndPhase() {
  bool const removed = !evaluating;
  if (evaluating) {
    count = static_cast<int>(candidates.size());
  } else {
    pass += 1;
    count = m_Tin.m_pPointMap->GetNumberOfPoints();
    candidates.clear();
  }
  index = 4;
  evaluating = !evaluating;
  if (removed) Schedule();
}

void ReferenceDecimator::Schedule() {
  if (pass >= numberOfPasses) {
    messages.push_back({-1, -1});
    running = false;
  } else if (IncrementFeatureAngle()) {
    IncrementError();
  } else if (!IncrementError()) {
    messages.push_back({-1, -1});
    running = false;
  }
}

bool ReferenceDecimator::IncrementFeatureAngle() {
  currentFeatureAngle = currentFeatureAngle + featureAngleIncrement;
  if (currentFeatureAngle > maxFeatureAngle) {
    currentFeatureAngle = maxFeatureAngle;
    return false;
  }
  return true;
}

bool ReferenceDecimator::IncrementError() {
  currentError = currentError + errorIncrement;
  if (currentError > maxError) {
    currentError = maxError;
    return false;
  }
  return true;
}

ReferenceDecimator::Message ReferenceDecimator::Progress() const {
  if (evaluating) return {count == 0 ? 0 : (index / count) * 100, 0};
  if (index == count) return {-1, -1};
  if (count == 0) return {100, 100};
  float const share = static_cast<float>(index * 100) / static_cast<float>(count);
  return {100, static_cast<int>(share)};
}

}  // namespace qeltin::testing
