#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/platform/Export.h"
#include "qeltin/tin/PlanTable.h"

class TIN;

namespace qeltin::detail {
class FanPrefetch;
class Removal;
}  // namespace qeltin::detail

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
  friend class qeltin::detail::FanPrefetch;
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
// Threads: no lock. Lookups only read, but the first FindLeft puts the entries in order.
class QELTIN_API PointMap {
 public:
  PointMap() = default;
  PointMap(PointMap const& other);
  PointMap& operator=(PointMap const& other);
  ~PointMap() = default;

  int GetNumberOfPoints() const { return m_iCount; }

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
  friend class qeltin::detail::FanPrefetch;
  friend class qeltin::detail::Removal;

  // An entry that shares its place, and its point as it was when it was entered.
  struct Sharer {
    PointMapNode* node;
    TPoint point;
  };

  // A node as it stands in the tree.
  struct Place {
    mutable PointMapNode* node;  // changed by a copy, to the node of an equal point
  };

  // Orders nodes by the value of their points.
  struct ByValue {
    using is_transparent = void;
    bool operator()(Place a, Place b) const { return *a.node < *b.node; }
    bool operator()(Place a, TPoint const& b) const { return *a.node->m_pPoint < b; }
    bool operator()(TPoint const& a, Place b) const { return a < *b.node->m_pPoint; }
  };

  // Returns the node of the point with equal coordinates, or null. It stays where it is until its
  // entry is erased.
  PointMapNode* Find(TPoint const* point) {
    PointMapNode* const own = OwnNode(point);
    return own != nullptr ? own : Search(point);
  }

  // Returns where the node of a pool point would stand, or null for any other point.
  PointMapNode* OwnNodeAt(TPoint const* point) {
    std::size_t const slot = SlotOf(point);
    return slot < m_OfSlot.size() ? &m_OfSlot[slot] : nullptr;
  }

  // Returns the node that a pool point has to itself, in a place that it shares with no other
  // entry, or null.
  PointMapNode* OwnNode(TPoint const* point) {
    PointMapNode* const node = OwnNodeAt(point);
    if (node == nullptr || node->m_pPoint != point) return nullptr;
    return m_Shares.empty() || !m_Shares[SlotOf(point)] ? node : nullptr;
  }

  std::size_t SlotOf(TPoint const* point) const {
    return (reinterpret_cast<std::uintptr_t>(point) - reinterpret_cast<std::uintptr_t>(m_pPool)) /
           sizeof(TPoint);
  }

  // Returns the pool point whose node this is. REQUIRES: a node of m_OfSlot.
  TPoint const* PointOf(PointMapNode const& node) const {
    return m_pPool + (&node - m_OfSlot.data());
  }

  PointMapNode* Search(TPoint const* point);

  // As AddTriangle, for a triangle that no list holds yet: the lists need not be searched.
  void EnterNew(TTriangle* triangle);

  bool EnterPoints(TIN const& tin);
  bool EnterIndexed(PointMapNode* node);
  bool EnterIntoCluster(PointMapNode* node);
  bool FindInCluster(TPoint const& point, PointMapNode*& node) const;
  void EraseFromIndex(PointMapNode* node);
  void EnterTriangles(TIN const& tin);
  void IndexEntries();
  void DropIndex();
  void CompleteTree();
  PointMapNode* NewNode(TPoint const* point);
  void Release(PointMapNode* node);

  // To be called before a point may take the slot, and so the address, of another one: the entries
  // are found by the tree alone from then on.
  void ForgetIndex();

  int m_iCount = 0;

  // The nodes: those that Build made, by the slot of their points in the pool, and all others. A
  // null point marks a free one.
  std::vector<PointMapNode> m_OfSlot;
  std::deque<PointMapNode> m_Others;
  std::vector<PointMapNode*> m_Free;  // of m_Others

  // The index, in the place of a tree, from Build to the next point. A null handle says that
  // several entries share the place, or its hash, and one of a free node of m_OfSlot that there is
  // none any more: those are never used again before the next Build.
  bool m_bIndexed = false;
  qeltin::detail::PlanTable<PointMapNode*> m_ByPlace;
  TPoint const* m_pPool = nullptr;  // whose nodes m_OfSlot are; not owned; null without an index
  std::vector<bool> m_Shares;       // by slot; empty where no two entries share a place
  std::map<std::pair<double, double>, std::vector<Sharer>> m_Clusters;  // in order of z

  // Complete whenever there is no index, and as soon as an order is asked for: then it has grown
  // as if it had been there from the start, entry by entry and removal by removal. Empty otherwise.
  bool m_bComplete = true;
  std::set<Place, ByValue> m_Tree;
  std::vector<PointMapNode*> m_Entered;  // by Build, while the tree is not complete
  std::vector<PointMapNode*> m_Removed;  // since then
  std::deque<Sharer> m_Sharers;          // all that Build entered

  static PointMapNode const m_ErrNode;
};
