#pragma once

#include <map>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/platform/Export.h"
#include "qeltin/tin/PlanTable.h"

class TIN;

namespace qeltin::detail {
class Removal;
}

// The type in which lists of triangles cross the boundary.
extern template class std::vector<TTriangle*>;

// A point and the triangles that have it as a corner. Owns neither. A null point marks the invalid
// node that lookups answer when they find nothing.
//
// Threads: a value; readers may share it.
class QELTIN_API PointMapNode {
 public:
  PointMapNode() = default;
  PointMapNode(TPoint const* point) : m_pPoint(point) {}

  // Compare the points by value on x, then y, then z, exactly. REQUIRES: both nodes are valid.
  bool operator==(PointMapNode const& other) const { return *m_pPoint == *other.m_pPoint; }
  bool operator<(PointMapNode const& other) const { return *m_pPoint < *other.m_pPoint; }
  bool operator>(PointMapNode const& other) const { return *m_pPoint > *other.m_pPoint; }

  // Returns triangle i of the list, or null from its size on. REQUIRES: i >= 0.
  TTriangle* operator[](int i) const;

  int NumberOfTriangles() const { return static_cast<int>(m_Triangles.size()); }
  TPoint const* GetPoint() const { return m_pPoint; }
  std::vector<TTriangle*> const& GetTriangles() const { return m_Triangles; }
  bool IsValid() const { return m_pPoint != nullptr; }

 private:
  friend class PointMap;
  friend class qeltin::detail::Removal;

  // Enter `triangle` at the end of the list unless it is there, and erase it, if it is, with the
  // order of the others kept.
  void Enter(TTriangle* triangle);
  void Erase(TTriangle const* triangle);

  void Append(TTriangle* triangle);

  TPoint const* m_pPoint = nullptr;
  std::vector<TTriangle*> m_Triangles;
};

// An index from a point, by value, to the triangles around it. Points of equal coordinates share
// one entry, which keeps the point that came first.
//
// A map is as good as the moment it was built: an insertion enters only the two new triangles that
// it takes, so removal needs a map built after the last insertion. Owns neither points nor
// triangles; both pools must outlive it. Nodes answered by reference stay valid until their entry
// is erased.
//
// Threads: no lock. Lookups only read.
class QELTIN_API PointMap {
 public:
  PointMap() = default;
  PointMap(PointMap const& other);
  PointMap& operator=(PointMap const& other);
  ~PointMap() = default;

  int GetNumberOfPoints() const { return static_cast<int>(m_Tree.size()); }

  // Return the node of the point with equal coordinates, or the invalid node.
  PointMapNode const& operator[](TPoint const* point) { return FindPoint(point); }
  PointMapNode const& FindPoint(TPoint const* point);

  // Returns the node of the first entry that is not less than `point` in the order of x, then y,
  // then z; the invalid node past the last one. The point itself need not be there.
  PointMapNode const& FindLeft(TPoint const& point);

  // Enters `point`, which must outlive the map. Returns false, changing nothing, where an equal
  // point stands already.
  bool AddPoint(TPoint const* point);

  // Erases the entry of the point with equal coordinates. Returns true iff there was one.
  bool RemovePoint(TPoint const* point);

  // Enters `triangle` once under each corner. Returns false at the first corner without an entry;
  // the corners before it keep theirs.
  bool AddTriangle(TTriangle* triangle);

  // Erases `triangle` under each corner that has an entry. Always true.
  bool RemoveTriangle(TTriangle* triangle);

  // Enters all live points and triangles of `tin`, hidden ones too, on top of what the map holds.
  // Returns true iff the map is empty afterwards: false for every real surface.
  bool Build(TIN const& tin);

  // Drops every entry.
  void Clear();

 private:
  friend class TIN;
  friend class qeltin::detail::Removal;

  using Tree = std::map<PointMapNode, PointMapNode>;  // the mapped node carries the triangles

  // Returns the node of the point with equal coordinates, or null. It stays where it is until its
  // entry is erased.
  PointMapNode* Find(TPoint const* point);

  // As AddTriangle, for a triangle that no list holds yet: the lists need not be searched.
  void EnterNew(TTriangle* triangle);

  Tree::iterator Locate(TPoint const* point);
  void IndexEntries();

  // To be called before a point may take the slot, and so the address, of another one: the entries
  // are found by the tree alone from then on.
  void ForgetIndex();

  Tree m_Tree;

  // The way to the entries by place, quicker than down the tree, from Build to the next point. An
  // entry at the end of the tree says that several share a hash, and that only the tree can tell.
  qeltin::detail::PlanTable<Tree::iterator> m_ByPlace;
  bool m_bIndexed = false;

  static PointMapNode const m_ErrNode;
};
