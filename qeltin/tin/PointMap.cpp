#include "qeltin/tin/PointMap.h"

#include <algorithm>

#include "qeltin/tin/TIN.h"

template class std::vector<TTriangle*>;

namespace {

constexpr std::size_t USUAL_DEGREE = 8;  // triangles that a list has room for at once

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

PointMap::PointMap(PointMap const& other) : m_Tree(other.m_Tree) {}

PointMap& PointMap::operator=(PointMap const& other) {
  if (this == &other) return *this;
  ForgetIndex();
  m_Tree = other.m_Tree;
  return *this;
}

void PointMap::Clear() {
  ForgetIndex();
  m_Tree.clear();
}

void PointMap::ForgetIndex() {
  m_ByPlace.Clear();
  m_bIndexed = false;
}

void PointMap::IndexEntries() {
  for (auto at = m_Tree.begin(); at != m_Tree.end(); ++at) {
    TPoint const& p = *at->first.m_pPoint;
    if (!HasPlace(p)) return ForgetIndex();
    if (auto* const entry = m_ByPlace.Find(p)) {
      entry->handle = m_Tree.end();
    } else {
      m_ByPlace.Add(p, at);
    }
  }
  m_bIndexed = true;
}

PointMap::Tree::iterator PointMap::Locate(TPoint const* point) {
  if (m_bIndexed && HasPlace(*point)) {
    auto const* const entry = m_ByPlace.Find(*point);
    if (entry == nullptr) return m_Tree.end();
    if (entry->handle != m_Tree.end()) {
      TPoint const& there = *entry->handle->first.m_pPoint;
      return there < *point || *point < there ? m_Tree.end() : entry->handle;
    }
  }
  return m_Tree.find(PointMapNode(point));
}

PointMapNode* PointMap::Find(TPoint const* point) {
  auto const at = Locate(point);
  return at == m_Tree.end() ? nullptr : &at->second;
}

PointMapNode const& PointMap::FindPoint(TPoint const* point) {
  PointMapNode const* const node = Find(point);
  return node == nullptr ? m_ErrNode : *node;
}

PointMapNode const& PointMap::FindLeft(TPoint const& point) {
  auto const it = m_Tree.lower_bound(PointMapNode(&point));
  return it == m_Tree.end() ? m_ErrNode : it->second;
}

bool PointMap::AddPoint(TPoint const* point) {
  ForgetIndex();
  PointMapNode const node(point);
  return m_Tree.emplace(node, node).second;
}

bool PointMap::RemovePoint(TPoint const* point) {
  auto const at = Locate(point);
  if (at == m_Tree.end()) return false;
  if (m_bIndexed) {
    auto* const entry = m_ByPlace.Find(*at->first.m_pPoint);
    if (entry == nullptr || (entry->handle != at && entry->handle != m_Tree.end())) {
      ForgetIndex();  // a host has moved the point
    } else if (entry->handle == at) {
      m_ByPlace.Remove(entry);
    }
  }
  m_Tree.erase(at);  // not by key: coordinates that are not numbers have no order to search by
  return true;
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
  bool const fresh = m_Tree.empty();
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) AddPoint(tin.GetPoint(i));
  IndexEntries();
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle* const triangle = tin.GetTriangle(i, true);
    fresh ? EnterNew(triangle) : static_cast<void>(AddTriangle(triangle));
  }
  return m_Tree.empty();  // true for an empty map, not for success
}

void PointMap::EnterNew(TTriangle* triangle) {
  for (TPoint const* corner : triangle->m_pVertex) {
    PointMapNode* const node = Find(corner);
    if (node == nullptr) return;
    auto const& list = node->m_Triangles;
    if (list.empty() || list.back() != triangle) node->Append(triangle);
  }
}
