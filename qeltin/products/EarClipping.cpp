#include "qeltin/products/EarClipping.h"

#include <algorithm>

#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

namespace {

constexpr double RADIUS_LIMIT = 9e20;
constexpr int CLIPPED = -1;

}  // namespace

EarClipping::EarClipping(std::vector<TPoint> const& figure)
    : m_Figure(figure), m_Test(figure), m_Next(figure.size()), m_Previous(figure.size()) {
  int const n = static_cast<int>(figure.size());
  for (int i = 0; i < n; ++i) {
    m_Next[i] = i + 1 < n ? i + 1 : 0;
    m_Previous[i] = i > 0 ? i - 1 : n - 1;
  }
}

void EarClipping::Run(std::vector<TPoint>& triangles) {
  int const n = static_cast<int>(m_Figure.size());
  triangles.reserve(triangles.size() + 3 * static_cast<std::size_t>(n - 2));
  for (int i = 0; i < n; ++i) AddCandidateAt(i);
  for (int left = n; left > 3; --left) {
    Candidate const ear = TakeBest();
    Emit(ear, triangles);
    Clip(ear);
  }
  Emit(CandidateAt(m_iFirst), triangles);
}

EarClipping::Candidate EarClipping::CandidateAt(int a) const {
  int const b = m_Next[a];
  return {0.0, a, b, m_Next[b]};
}

void EarClipping::AddCandidateAt(int a) {
  Candidate candidate = CandidateAt(a);
  TPoint corners[] = {m_Figure[a], m_Figure[candidate.b], m_Figure[candidate.c]};
  candidate.radius = TTriangle(&corners[0], &corners[1], &corners[2]).XY_CircumcircleRadius();
  if (!(candidate.radius < RADIUS_LIMIT)) return;  // not-a-number never wins
  m_Heap.push_back(candidate);
  std::push_heap(m_Heap.begin(), m_Heap.end(), ClippedLater());
}

bool EarClipping::Stands(Candidate const& candidate) const {
  return m_Next[candidate.a] == candidate.b && m_Next[candidate.b] == candidate.c;
}

EarClipping::Candidate EarClipping::TakeBest() {
  while (!m_Heap.empty()) {
    std::pop_heap(m_Heap.begin(), m_Heap.end(), ClippedLater());
    Candidate const best = m_Heap.back();
    m_Heap.pop_back();
    if (Stands(best) && m_Test.IsEar(m_Figure[best.a], m_Figure[best.b], m_Figure[best.c])) {
      return best;
    }
  }
  return CandidateAt(m_iFirst);
}

void EarClipping::Clip(Candidate const& ear) {
  m_Next[ear.b] = CLIPPED;
  m_Next[ear.a] = ear.c;
  m_Previous[ear.c] = ear.a;
  if (ear.b == m_iFirst) m_iFirst = ear.c;
  AddCandidateAt(m_Previous[ear.a]);
  AddCandidateAt(ear.a);
}

void EarClipping::Emit(Candidate const& ear, std::vector<TPoint>& triangles) const {
  triangles.push_back(m_Figure[ear.a]);
  triangles.push_back(m_Figure[ear.b]);
  triangles.push_back(m_Figure[ear.c]);
}

}  // namespace qeltin::detail
