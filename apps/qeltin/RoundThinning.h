#pragma once

#include <cstddef>
#include <deque>
#include <vector>

#include "qeltin/decimate/CStatist.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// Thins a surface in place, round after round, by TIN::RemovePoint. A round removes the points that
// are nearest to the plane through their neighbours, but none beside another one: so what is left
// stays evenly spread, and each distance is that to the surface as it is when the point goes.
//
// In a surface whose edge is that of its triangles, without a seed rectangle around it, a point
// stays too whose hole would be filled with triangles over each other: near an edge these cannot
// always be mended.
//
// A point without a closed, visible fan stays, and one with fewer than four neighbours does until
// it has more. Planes are fitted by least squares of the heights, as TPlane does, from the point as
// their origin: coordinates may be as large as they like.
//
// Rounds are quick where points that are near each other stand so in memory too, as TIN::Compact
// leaves them.
class RoundThinning {
 public:
  // The distances that let a point go: up to `least` always, beyond `most` never.
  struct Limits {
    float least;
    float most;
  };

  // Builds the map. `tin` is not owned; it must be left alone meanwhile, and compacted afterwards.
  explicit RoundThinning(TIN& tin);

  // Makes a round and returns how many points it removed, at most `wanted`; 0 where no more may go.
  int Round(int wanted, Limits limits);

  // The distances of the points that went.
  CStatist const& Distances() const { return m_Distances; }

 private:
  struct State {
    float distance;   // when it was last asked for
    int changed = 0;  // the round in which a neighbour went since then, 0 for none
  };

  void ListVertices();
  float LimitFor(int wanted, Limits limits) const;
  int Sweep(int wanted, float limit, bool& asked);
  bool Ask(TPoint const& p, State& state, float limit);
  bool Remove(TPoint const& p);
  bool LeavesACleanHole(TPoint const& p);
  std::deque<TPoint*> HoleAround(TPoint const& p);
  bool CollectRing(TPoint const& p);
  float DistanceOf(TPoint const& p);
  State& StateOf(TPoint const* p) { return m_States[static_cast<std::size_t>(p - m_pFirst)]; }

  TIN& m_Tin;
  TPoint const* m_pFirst = nullptr;       // the vertex with the lowest address
  std::vector<TPoint const*> m_Vertices;  // those that are left, in the order of their addresses
  std::vector<State> m_States;            // by offset from the first
  std::vector<TPoint const*> m_Ring;
  CStatist m_Distances;
  int m_iRound = 0;
  bool m_bOpen = false;  // whether a visible triangle lacks a neighbour
};

}  // namespace qeltin::cli
