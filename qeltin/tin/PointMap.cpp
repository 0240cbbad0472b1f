#include "qeltin/tin/PointMap.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "qeltin/tin/TIN.h"

template class std::vector<TTriangle*>;

namespace {

constexpr std::size_t USUAL_DEGREE = 8;  // triangles that a list has room for at once

// How many elements before its turn memory is asked for.
constexpr int AHEAD = 8;
constexpr int FAR_AHEAD = 16;

constexpr std::size_t LARGEST_CLUSTER = 100;  // entries; a larger one is searched by the tree

bool Differ(TPoint const& a, TPoint const& b) { return a < b || b < a; }

bool HasPlace(TPoint const& p) { return p.x == p.x && p.y == p.y; }

}  // namespace

PointMapNode const PointMap::m_ErrNode;

TTriangle* PointMapNode::operator[](int i) const {
  return i >= NumberOfTriangles() ? nullptr : m_Triangles[static_cast<std::size_t>(i)];
}

void PointMapNode::Enter(TTriangle* triangle) {
  if (std::find(m_Triangles.begin(), m_Triangles.end(), triangle) != m_Triangles.end()) return;
  Append(triangle);
}

void PointMapNode::Append(TTriangle* triangle) {
  if (m_Triangles.capacity() == 0) m_Triangles.reserve(USUAL_DEGREE);
  m_Triangles.push_back(triangle);
}

void PointMapNode::Erase(TTriangle const* triangle) {
  auto const it = std::find(m_Triangles.begin(), m_Triangles.end(), triangle);
  if (it != m_Triangles.end()) m_Triangles.erase(it);
}

PointMap::PointMap(PointMap const& other) { *this = other; }

PointMap& PointMap::operator=(PointMap const& other) {
  if (this == &other) return *this;
  Clear();
  m_iCount = other.m_iCount;
  m_OfSlot = other.m_OfSlot;
  m_Others = other.m_Others;
  m_pPool = other.m_pPool;
  m_Tree = other.m_Tree;
  m_bComplete = other.m_bComplete;
  std::unordered_map<PointMapNode const*, PointMapNode*> copies;
  for (std::size_t i = 0; i < m_OfSlot.size(); ++i) copies[&other.m_OfSlot[i]] = &m_OfSlot[i];
  for (std::size_t i = 0; i < m_Others.size(); ++i) copies[&other.m_Others[i]] = &m_Others[i];
  for (PointMapNode const* node : other.m_Free) m_Free.push_back(copies[node]);
  for (Place const& place : m_Tree) place.node = copies[place.node];
  for (PointMapNode const* node : other.m_Entered) m_Entered.push_back(copies[node]);
  for (PointMapNode const* node : other.m_Removed) m_Removed.push_back(copies[node]);
  for (Sharer const& s : other.m_Sharers) m_Sharers.push_back({copies[s.node], s.point});
  CompleteTree();
  m_pPool = nullptr;
  if (other.m_bIndexed) IndexEntries();
  return *this;
}

void PointMap::Clear() {
  m_iCount = 0;
  m_OfSlot = {};
  m_Others.clear();
  m_Free.clear();
  DropIndex();
  m_bComplete = true;
  m_Tree.clear();
  m_Entered = {};
  m_Removed = {};
  m_Sharers.clear();
}

void PointMap::DropIndex() {
  m_bIndexed = false;
  m_ByPlace.Clear();
  m_pPool = nullptr;
  m_Shares = {};
  m_Clusters.clear();
}

void PointMap::ForgetIndex() {
  if (!m_bIndexed) return;
  CompleteTree();
  DropIndex();
}

// Makes the index of a complete tree.
void PointMap::IndexEntries() {
  m_ByPlace.Reserve(m_Tree.size());
  for (Place const& place : m_Tree) {
    TPoint const& p = *place.node->m_pPoint;
    if (!HasPlace(p)) return m_ByPlace.Clear();
    if (auto* const entry = m_ByPlace.Find(p)) {
      entry->handle = nullptr;
    } else {
      m_ByPlace.Add(p, place.node);
    }
  }
  m_bIndexed = true;
}

void PointMap::CompleteTree() {
  if (std::exchange(m_bComplete, true)) return;
  m_Tree.clear();
  for (PointMapNode* node : m_Removed) node->m_pPoint = PointOf(*node);
  for (Sharer const& sharer : m_Sharers) sharer.node->m_pPoint = &sharer.point;
  for (PointMapNode* node : m_Entered) m_Tree.insert(Place{node});
  for (PointMapNode* node : m_Removed) m_Tree.erase(Place{node});
  for (Sharer const& sharer : m_Sharers) sharer.node->m_pPoint = PointOf(*sharer.node);
  for (PointMapNode* node : m_Removed) node->m_pPoint = nullptr;
  m_Entered = {};
  m_Removed = {};
  m_Sharers.clear();
}

PointMapNode* PointMap::Search(TPoint const* point) {
  if (m_bIndexed && HasPlace(*point)) {
    auto const* const entry = m_ByPlace.Find(*point);
    if (entry == nullptr) return nullptr;
    PointMapNode* node = entry->handle;
    if (node != nullptr)
      return !node->IsValid() || Differ(*node->m_pPoint, *point) ? nullptr : node;
    if (!m_bComplete && FindInCluster(*point, node)) return node;
  }
  CompleteTree();
  auto const at = m_Tree.find(*point);
  return at == m_Tree.end() ? nullptr : at->node;
}

// Returns false where only the tree can tell: heights that a host has changed have no order to
// search by, and one that is not a number equals every other.
bool PointMap::FindInCluster(TPoint const& point, PointMapNode*& node) const {
  auto const at = m_Clusters.find({point.x, point.y});
  node = nullptr;
  if (at == m_Clusters.end()) return true;
  auto const& cluster = at->second;
  if (cluster.size() > LARGEST_CLUSTER || point.z != point.z) return false;
  for (Sharer const& sharer : cluster) {
    if (sharer.node->m_pPoint->z != sharer.point.z) return false;
    if (sharer.point.z == point.z) node = sharer.node;
  }
  return true;
}

PointMapNode const& PointMap::FindPoint(TPoint const* point) {
  PointMapNode const* const node = Find(point);
  return node == nullptr ? m_ErrNode : *node;
}

PointMapNode const& PointMap::FindLeft(TPoint const& point) {
  CompleteTree();
  auto const at = m_Tree.lower_bound(point);
  return at == m_Tree.end() ? m_ErrNode : *at->node;
}

bool PointMap::AddPoint(TPoint const* point) {
  ForgetIndex();
  PointMapNode* const node = NewNode(point);
  if (m_Tree.insert(Place{node}).second) {
    ++m_iCount;
    return true;
  }
  Release(node);
  return false;
}

bool PointMap::RemovePoint(TPoint const* point) {
  PointMapNode* const node = Find(point);
  if (node == nullptr) return false;
  if (m_bIndexed && OwnNode(node->m_pPoint) != node) EraseFromIndex(node);
  if (m_bComplete) {
    m_Tree.erase(m_Tree.find(*point));  // not by key: a coordinate need not be a number
  } else {
    m_Removed.push_back(node);
  }
  --m_iCount;
  Release(node);
  return true;
}

void PointMap::EraseFromIndex(PointMapNode* node) {
  TPoint const& p = *node->m_pPoint;
  auto* const entry = m_ByPlace.Find(p);
  if (entry != nullptr && entry->handle == node) return m_ByPlace.Remove(entry);
  if (entry == nullptr || entry->handle != nullptr) return ForgetIndex();  // a host has moved it
  if (m_bComplete) return;
  std::erase_if(m_Clusters[{p.x, p.y}], [node](Sharer const& s) { return s.node == node; });
}

PointMapNode* PointMap::NewNode(TPoint const* point) {
  if (m_Free.empty()) return &m_Others.emplace_back(point);
  PointMapNode* const node = m_Free.back();
  m_Free.pop_back();
  node->m_pPoint = point;
  return node;
}

void PointMap::Release(PointMapNode* node) {
  node->m_pPoint = nullptr;
  node->m_Triangles.clear();
  auto const slot = static_cast<std::size_t>(node - m_OfSlot.data());
  if (slot >= m_OfSlot.size()) m_Free.push_back(node);
}

bool PointMap::AddTriangle(TTriangle* triangle) {
  for (TPoint const* corner : triangle->m_pVertex) {
    PointMapNode* const node = Find(corner);
    if (node == nullptr) return false;
    node->Enter(triangle);
  }
  return true;
}

bool PointMap::RemoveTriangle(TTriangle* triangle) {
  for (TPoint const* corner : triangle->m_pVertex) {
    if (PointMapNode* const node = Find(corner)) node->Erase(triangle);
  }
  return true;
}

bool PointMap::Build(TIN const& tin) {
  bool const fresh = m_iCount == 0;
  if (!fresh || !EnterPoints(tin)) {
    for (int i = 0; i < tin.GetNumberOfPoints(); ++i) AddPoint(tin.GetPoint(i));
    IndexEntries();
  }
  if (fresh) {
    EnterTriangles(tin);
  } else {
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) AddTriangle(tin.GetTriangle(i, true));
  }
  return m_iCount == 0;  // true for an empty map, not for success
}

// Enters the points into an empty map by the index alone. Returns false, with the map still empty,
// where a coordinate is not a number: then only a tree that has grown point by point can tell which
// points are equal.
bool PointMap::EnterPoints(TIN const& tin) {
  int const count = tin.GetNumberOfPoints();
  if (count <= 0) return false;
  Clear();
  m_pPool = tin.m_pPoints->m_pData;
  m_OfSlot.resize(static_cast<std::size_t>(tin.m_pPoints->m_iCapacity));
  m_ByPlace.Reserve(static_cast<std::size_t>(count));
  m_Entered.reserve(static_cast<std::size_t>(count));
  m_bIndexed = true;
  m_bComplete = false;
  for (int i = 0; i < count; ++i) {
    if (i + FAR_AHEAD < count) __builtin_prefetch(tin.GetPoint(i + FAR_AHEAD));
    if (i + AHEAD < count) m_ByPlace.Prefetch(*tin.GetPoint(i + AHEAD));
    TPoint const* const point = tin.GetPoint(i);
    if (!HasPlace(*point) || point->z != point->z) {
      Clear();
      return false;
    }
    PointMapNode& node = m_OfSlot[static_cast<std::size_t>(point - m_pPool)];
    node.m_pPoint = point;
    if (EnterIndexed(&node)) {
      m_Entered.push_back(&node);
      ++m_iCount;
    } else {
      node.m_pPoint = nullptr;
    }
  }
  for (PointMapNode& node : m_OfSlot) {  // so that lists stand as their points do
    if (node.IsValid()) node.m_Triangles.reserve(USUAL_DEGREE);
  }
  return true;
}

// Returns false where an equal point stands already.
bool PointMap::EnterIndexed(PointMapNode* node) {
  auto* const entry = m_ByPlace.Find(*node->m_pPoint);
  if (entry == nullptr) {
    m_ByPlace.Add(*node->m_pPoint, node);
    return true;
  }
  if (entry->handle != nullptr) {
    if (*entry->handle->m_pPoint == *node->m_pPoint) return false;
    EnterIntoCluster(std::exchange(entry->handle, nullptr));
  }
  return EnterIntoCluster(node);
}

bool PointMap::EnterIntoCluster(PointMapNode* node) {
  TPoint const& p = *node->m_pPoint;
  auto& cluster = m_Clusters[{p.x, p.y}];
  auto const at = std::lower_bound(cluster.begin(), cluster.end(), p.z,
                                   [](Sharer const& s, double z) { return s.point.z < z; });
  if (at != cluster.end() && at->point.z == p.z) return false;
  cluster.insert(at, {node, p});
  m_Sharers.push_back({node, p});
  m_Shares.resize(m_OfSlot.size());
  m_Shares[SlotOf(&p)] = true;
  return true;
}

void PointMap::EnterTriangles(TIN const& tin) {
  int const count = tin.GetNumberOfTriangles();
  for (int i = 0; i < count; ++i) {
    if (i + FAR_AHEAD < count) __builtin_prefetch(tin.GetTriangle(i + FAR_AHEAD, true));
    if (i + AHEAD < count) {
      for (TPoint const* corner : tin.GetTriangle(i + AHEAD, true)->m_pVertex) {
        __builtin_prefetch(OwnNodeAt(corner));
      }
    }
    EnterNew(tin.GetTriangle(i, true));
  }
}

void PointMap::EnterNew(TTriangle* triangle) {
  for (TPoint const* corner : triangle->m_pVertex) {
    PointMapNode* const node = Find(corner);
    if (node == nullptr) return;
    auto const& list = node->m_Triangles;
    if (list.empty() || list.back() != triangle) node->Append(triangle);
  }
}
