#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/products/EarTest.h"

namespace qeltin::detail {

// Clips the ears of a closed figure, the one with the smallest circumcircle first, the foremost
// among equal ones; the first corner where no ear is left.
//
// The candidate ear at a vertex is this vertex with the two that follow it. Whether it is an ear
// rests on these three and on the whole figure, not on what is clipped already, so that each
// candidate is looked at once at most, and a clipping makes only two new ones. They wait in a heap.
//
// Use: construct, call Run once.
class EarClipping {
 public:
  // Keeps a reference to `figure`. REQUIRES: at least three vertices.
  explicit EarClipping(std::vector<TPoint> const& figure);

  // Appends the figure's size less two triangles to `triangles`, three points each.
  void Run(std::vector<TPoint>& triangles);

 private:
  struct Candidate {
    double radius;
    int a, b, c;
  };
  struct ClippedLater {
    bool operator()(Candidate const& p, Candidate const& q) const {
      return p.radius != q.radius ? p.radius > q.radius : p.a > q.a;
    }
  };

  Candidate CandidateAt(int a) const;
  void AddCandidateAt(int a);
  bool Stands(Candidate const& candidate) const;
  Candidate TakeBest();
  void Clip(Candidate const& ear);
  void Emit(Candidate const& ear, std::vector<TPoint>& triangles) const;

  std::vector<TPoint> const& m_Figure;
  EarTest m_Test;
  std::vector<int> m_Next;      // the ring of vertices left, in the order of the figure
  std::vector<int> m_Previous;  // in the ring
  int m_iFirst = 0;             // the lowest vertex in the ring
  std::vector<Candidate> m_Heap;
};

}  // namespace qeltin::detail
