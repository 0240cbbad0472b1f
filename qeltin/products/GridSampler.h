#pragma once

#include <cstddef>
#include <vector>

#include "qeltin/products/TGrid.h"
#include "qeltin/tin/TIN.h"
#include "qeltin/tin/Walker.h"

namespace qeltin::detail {

// Asks a surface for the heights of a lattice, with the outcome of TIN::GetZ at node after node,
// row after row, and leaves the location object where that would.
//
// On a surface that tiles, several rows are walked ahead at once, in turns, so that memory is on
// its way for one while the others go on. A row's walk starts from a guess. The rows are settled in
// order afterwards: the plain query is asked from where the row before ended, and at every further
// node until it comes to the triangle that the walk was in there. From then on the two are one,
// since a query depends on nothing but the place of the last one, with one exception: a FAR node,
// for which the query would have an index, if there is one. At a far node the walk stands where no
// other triangle takes the node, or where there is certainly no index; else the query is asked.
//
// Threads: one at a time on a surface, for its location object.
class GridSampler {
 public:
  // The nodes stand at the crossings of `xs` and `ys`, both ascending, and are written to `nodes`
  // row by row; those outside the data bounds are left alone. All must outlive the sampler.
  GridSampler(TIN const& tin, std::vector<double> const& xs, std::vector<double> const& ys,
              TGrid::Node* nodes);

  void Run();

 private:
  struct Far {
    int column;
    int moves;
    bool sure;  // no other triangle takes the node
  };

  // A walk from the end of one row to the first node of the next.
  struct Back {
    TTriangle* start = nullptr;  // of the next row; null where the walk did not come there
    int moves = 0;
  };

  // A row walked ahead, as far as the walk came.
  struct Track {
    std::vector<TTriangle*> at;  // one a node
    std::vector<Far> far;
    Back back;
  };

  struct Leg {
    int row;
    Track* track;
    Walker walker;
  };

  // The same, not walked.
  struct Return {
    TTriangle* from;
    int row;
  };

  bool CanWalkAhead() const;
  void WalkAhead(int first);
  bool Advance(Leg& leg);
  void Note(Leg& leg);
  void Settle(int row);
  bool SettleStart(int row);
  bool IsSure(TTriangle const& t, TPoint const& p) const;
  bool Stands(Far const& far) const;
  bool HasNoIndexYet() const;
  void CountSteps(int moves);
  void CatchUp();
  void Ask(int column, int row);
  static void Record(TTriangle const& triangle, TPoint const& p, TGrid::Node& node);
  Track& TrackOf(int row);
  TGrid::Node& NodeAt(int column, int row) const {
    return m_pNodes[static_cast<std::size_t>(row) * m_Xs.size() + static_cast<std::size_t>(column)];
  }
  TPoint PlaceOf(int column, int row) const {
    return {m_Xs[static_cast<std::size_t>(column)], m_Ys[static_cast<std::size_t>(row)]};
  }

  TIN const& m_Tin;
  Triangulator& m_Location;
  std::vector<double> const& m_Xs;
  std::vector<double> const& m_Ys;
  TGrid::Node* m_pNodes;
  int m_iColumns;  // within the data bounds
  int m_iRows;
  double m_dError = 0.0;
  TTriangle* m_pGuess = nullptr;  // near the next row's first node
  std::vector<Track> m_Tracks;
  std::vector<Return> m_Returns;  // whose steps are not counted yet
  Back m_Back;                    // from the row settled last
  bool m_bReturn = false;         // whether the ways back are walked ahead, too
};

}  // namespace qeltin::detail
