#pragma once

#include <utility>
#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::detail {

// A triangle by numbers: corners are slots of the point pool, in clockwise order, and neighbours
// places in the list of faces.
struct Face {
  static constexpr int HULL = -1;  // nothing lies across the side
  static constexpr int OPEN = -2;  // something should lie there, but does not lead back

  static constexpr int MADE = -1;   // not in the pool: made to fill a hole
  static constexpr int FRAME = -2;  // not in the pool: stands outside the seed rectangle

  int corner[3];
  int adjacent[3];
  int slot;  // in the triangle pool
  bool dropped = false;
};

// The faces of a structure over the points of a pool, and what is wrong with it.
//
// Faces are sound where each neighbour leads back across the same side in the opposite direction,
// no corner 2 lies to the left of the line from corner 0 to corner 1, and no vertex begins two
// sides without a neighbour. Where the sides without a neighbour join the corners of a seed
// rectangle, they must do nothing else. Such a mesh covers its rectangle once: each triangle covers
// with the same sign, and the hull turns once.
//
// Threads: one.
class FaceMesh {
 public:
  // `points` and their number of slots. Not owned.
  FaceMesh(TPoint const* points, int slots)
      : m_pPoints(points), m_iSlots(slots), m_Begun(static_cast<std::size_t>(slots) + 1, NONE) {}

  std::vector<Face>& Faces() { return m_Faces; }
  std::vector<Face> const& Faces() const { return m_Faces; }

  // Names the vertices that may be corners of a seed rectangle.
  void SetSeedCorners(std::vector<int> corners) { m_SeedCorners = std::move(corners); }

  // Returns true iff the faces are sound.
  bool IsSound();

  // Replaces the faces that are in the way of soundness, and as many around them as it takes, by
  // others over the same vertices. In a seed rectangle one part is left then. Without one, all
  // parts are, with the hull where it was; a side that it has lost cannot be mended. Returns true
  // iff the mesh is sound now. After a false result the mesh is of no further use.
  bool Mend();

  // Turns all faces over where none turns right, as a whole surface of a Trimble model may run.
  void TurnOver();

 private:
  static constexpr int NONE = -1;
  static constexpr int PINCHED = -2;
  static constexpr int SEED_CORNERS = 4;

  // Side number s of face f stands as 3 f + s.
  using Loop = std::vector<int>;

  TPoint const& At(int vertex) const { return m_pPoints[vertex]; }
  Face& FaceOf(int side) { return m_Faces[static_cast<std::size_t>(side / 3)]; }
  int Start(int side) { return FaceOf(side).corner[side % 3]; }
  int End(int side) { return FaceOf(side).corner[(side + 1) % 3]; }
  int& Across(int side) { return FaceOf(side).adjacent[side % 3]; }

  bool IsTiled();
  void AddFrame();
  void AddLooseFrame();
  void RemoveFrame();
  bool SortSeedCorners();
  bool HasFlaws() const;
  void DropFlawed();
  bool IsFlawed(Face const& face, bool strictly) const;
  bool RunsBack(Face const& face, int side, Face const& other) const;
  bool TurnsRight(Face const& face) const;
  bool TurnsLeft(Face const& face) const;
  bool IsOutside(int vertex, int p, int q, int r) const;
  bool IsInside(int vertex, Face const& face) const;

  void Drop(Face& face);
  bool DropWhatIsInTheWay();
  bool IsSeedCorner(int vertex) const;
  void DropAllButTheLargestPart();
  void DropStrayParts();
  int NumberParts(std::vector<int>& part) const;
  bool FindLoops(std::vector<Loop>& loops);
  bool IsPinched(int vertex) const { return m_Begun[static_cast<std::size_t>(vertex)] == PINCHED; }
  bool FillAll(std::vector<Loop> const& loops);
  int FindSeedRectangle(std::vector<Loop> const& loops);
  bool IsSeedRectangle(Loop const& loop);
  bool Fill(Loop const& loop);
  bool InsertVertices(std::vector<char> lost);
  void MarkAround(int vertex);
  void MarkInTheWay(int face);
  void Insert(int vertex, int place);
  void Join(int side, int other);
  void TakeBack(std::size_t faces);

  TPoint const* m_pPoints;
  int m_iSlots;
  std::vector<Face> m_Faces;
  std::vector<int> m_SeedCorners;
  std::vector<int> m_Begun;      // by vertex: the side without neighbour that begins there, or NONE
  std::vector<char> m_InTheWay;  // by face that was given: to be dropped before the next try
};

}  // namespace qeltin::detail
