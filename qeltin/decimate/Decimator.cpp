#include "qeltin/decimate/Decimator.h"

#include <chrono>

#include "qeltin/tin/FanPrefetch.h"

using namespace std::chrono_literals;
using qeltin::detail::FanPrefetch;

namespace {

// The event changes under the lock alone: a wait inside it decides nothing, but gives the step that
// is under way the time to end before a host is told that no run is.
constexpr auto HOST_WAIT = 100ms;
constexpr auto NO_WAIT = 0ms;
constexpr int FIRST_INDEX = 4;  // of both phases

// The single-precision values of pi / 180 and 180 / pi.
constexpr double RADIANS_PER_DEGREE = 0.01745329238474369;
constexpr double DEGREES_PER_RADIAN = 57.295780181884766;

float ToRadians(float degrees) {
  return static_cast<float>(static_cast<double>(degrees) * RADIANS_PER_DEGREE);
}

float ToDegrees(float radians) {
  return static_cast<float>(static_cast<double>(radians) * DEGREES_PER_RADIAN);
}

void SetAngle(float& angle, float degrees) {
  if (degrees > 0.0f && degrees < 360.0f) angle = ToRadians(degrees);
}

void SetAbove0(float& setting, float value) {
  if (value > 0.0f) setting = value;
}

}  // namespace

Decimator::Decimator() = default;

Decimator::~Decimator() { WaitForEnd(); }

void Decimator::NumberOfPasses(int passes) {
  if (passes > 0) m_iNumberOfPasses = passes;
}

void Decimator::MinimumFeatureAngle(float degrees) { SetAngle(m_fMinFeatureAngle, degrees); }

void Decimator::MaximumFeatureAngle(float degrees) { SetAngle(m_fMaxFeatureAngle, degrees); }

void Decimator::FeatureAngleIncrement(float degrees) {
  if (degrees > 0.0f) m_fFeatureAngleIncrement = ToRadians(degrees);
}

void Decimator::MinimumError(float error) { SetAbove0(m_fMinError, error); }

void Decimator::MaximumError(float error) { SetAbove0(m_fMaxError, error); }

void Decimator::ErrorIncrement(float error) { SetAbove0(m_fErrorIncrement, error); }

float Decimator::MinimumFeatureAngle() const { return ToDegrees(m_fMinFeatureAngle); }

float Decimator::MaximumFeatureAngle() const { return ToDegrees(m_fMaxFeatureAngle); }

float Decimator::FeatureAngleIncrement() const { return ToDegrees(m_fFeatureAngleIncrement); }

void Decimator::SetProgressHandler(HWND window, unsigned int message) {
  m_hWnd = window;
  m_iMessage = message;
}

int Decimator::Decimate() {
  if (m_pSource == nullptr || m_iNumberOfPasses == 0) return -1;
  {
    std::lock_guard const lock(m_Lock);
    if (m_Running.Wait(NO_WAIT)) return m_iMapSize;
  }
  WaitForEnd();  // of the thread of a run that is over
  m_pSource->BuildPointMap();
  std::lock_guard const lock(m_Lock);
  int const points = BeginRun();
  if (!StartBaseWorkerThread(0, nullptr)) m_Running.Reset();
  return points;
}

int Decimator::BeginRun() {
  auto const passes = static_cast<float>(m_iNumberOfPasses);
  if (m_fFeatureAngleIncrement == 0.0f) {
    m_fFeatureAngleIncrement = (m_fMaxFeatureAngle - m_fMinFeatureAngle) / passes;
  }
  if (m_fErrorIncrement == 0.0f) m_fErrorIncrement = (m_fMaxError - m_fMinError) / passes;
  m_fCurrentError = m_fMinError;
  m_fCurrentFeatureAngle = m_fMinFeatureAngle;
  m_iMapSize = m_pSource->GetMap().GetNumberOfPoints();
  m_iIndex = FIRST_INDEX;
  m_iPass = 0;
  m_iCount = m_iMapSize;
  m_bEvaluating = true;
  m_Candidates.clear();  // of a run stopped on the worker itself, which starts the next one there
  m_ErrorStat.Reset();
  m_Running.Set();
  return m_iMapSize;
}

void Decimator::Stop() {
  std::lock_guard const lock(m_Lock);
  if (m_Running.Wait(HOST_WAIT)) m_Running.Reset();
}

bool Decimator::GetDecimationInfo(DecimationInfo& info) const {
  std::lock_guard const lock(m_Lock);
  if (!m_Running.Wait(HOST_WAIT)) return false;
  info = {m_iCount, m_iIndex, m_iPass, m_iNumberOfPasses, m_bEvaluating};
  return true;
}

int Decimator::ThreadFunction() {
  {
    std::lock_guard const lock(m_Lock);
    if (!m_Running.Wait(NO_WAIT)) {
      m_Candidates.clear();
      PostEnd();
      return 0;
    }
  }
  if (m_bEvaluating) {
    Evaluate();
  } else {
    RemoveCandidate();
  }
  std::lock_guard const lock(m_Lock);
  FinishStep();
  return 1;
}

void Decimator::Evaluate() {
  if (m_iIndex >= m_pSource->GetNumberOfPoints()) return;
  FanPrefetch::Run(m_pSource->GetMap(), m_iIndex, m_pSource->GetNumberOfPoints(),
                   [this](int i) { return m_pSource->GetPoint(i); });
  TPoint* const point = m_pSource->GetPoint(m_iIndex);
  if (MayGo(point)) m_Candidates.push_back(point);
}

bool Decimator::MayGo(TPoint const* point) {
  if (m_pSource->GetMap().FindPoint(point).NumberOfTriangles() == 0) return false;
  // Inside, and with edges preserved, all classes but one are tested alike.
  if (m_bPreserveEdges && FanCloses(point) && !m_pSource->PointIsOnHull(point)) {
    return PassDistanceToPlane(m_iIndex);
  }
  switch (VERTEX_TYPE const type = GetPointOrientation(point)) {
    case VERTEX_TWO_SMOOTH:
      return m_bPreserveEdges ? PassDistanceToPlane(m_iIndex) : PassDistanceToLine(m_iIndex, type);
    case VERTEX_ON_HULL:
      return m_bRemoveBoundaryPoints && PassDistanceToLine(m_iIndex, type);
    case VERTEX_IRREGULAR:
      return m_bPreserveEdges && PassDistanceToPlane(m_iIndex);
    case VERTEX_NO_SMOOTH:
      return PassDistanceToPlane(m_iIndex);
    default:
      return false;
  }
}

void Decimator::RemoveCandidate() {
  auto const index = static_cast<std::size_t>(m_iIndex);
  if (index >= m_Candidates.size()) return;
  FanPrefetch::Run(m_pSource->GetMap(), m_iIndex, static_cast<int>(m_Candidates.size()),
                   [this](int i) { return m_Candidates[static_cast<std::size_t>(i)]; });
  m_pSource->RemovePoint(m_Candidates[index]);
}

void Decimator::FinishStep() {
  m_iMapSize = m_pSource->GetMap().GetNumberOfPoints();
  ++m_iIndex;
  if (m_iIndex >= m_iCount) FinishPhase();
  if (m_hWnd == nullptr || m_iMessage == 0) return;
  ProgressPair const progress = Progress();
  m_Gate.PostMessageW(m_hWnd, m_iMessage, static_cast<std::uint64_t>(progress.wParam),
                      progress.lParam);
}

void Decimator::FinishPhase() {
  m_iIndex = FIRST_INDEX;
  m_bEvaluating = !m_bEvaluating;
  if (!m_bEvaluating) {
    m_iCount = static_cast<int>(m_Candidates.size());
    return;
  }
  ++m_iPass;
  m_iCount = m_iMapSize;
  m_Candidates.clear();
  ScheduleNextPass();
}

void Decimator::ScheduleNextPass() {
  bool goesOn = m_iPass < m_iNumberOfPasses;
  if (goesOn) {
    bool const angleRose = IncrementFeatureAngle();
    bool const errorRose = IncrementError();
    goesOn = angleRose || errorRose;
  }
  if (goesOn) return;
  PostEnd();
  m_Running.Reset();
}

bool Decimator::IncrementFeatureAngle() {
  m_fCurrentFeatureAngle += m_fFeatureAngleIncrement;
  if (!(m_fCurrentFeatureAngle > m_fMaxFeatureAngle)) return true;
  m_fCurrentFeatureAngle = m_fMaxFeatureAngle;
  return false;
}

bool Decimator::IncrementError() {
  m_fCurrentError += m_fErrorIncrement;
  if (!(m_fCurrentError > m_fMaxError)) return true;
  m_fCurrentError = m_fMaxError;
  return false;
}

Decimator::ProgressPair Decimator::Progress() const {
  // The division of whole numbers comes first: 0 until the end.
  if (m_bEvaluating) return {m_iCount == 0 ? 0 : m_iIndex / m_iCount * 100, 0};
  if (m_iIndex == m_iCount) return {-1, -1};
  if (m_iCount == 0) return {100, 100};
  auto const done = static_cast<float>(std::int64_t{m_iIndex} * 100);
  return {100, static_cast<std::int64_t>(done / static_cast<float>(m_iCount))};
}

void Decimator::PostEnd() {
  ::PostMessageW(m_hWnd, m_iMessage, static_cast<std::uint64_t>(std::int64_t{-1}), -1);
}
