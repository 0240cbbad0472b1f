#include "qeltin/tin/PointMap.h"

#include <algorithm>

#include "qeltin/tin/TIN.h"

template class std::vector<TTriangle*>;

PointMapNode const PointMap::m_ErrNode;

TTriangle* PointMapNode::operator[](int i) const {
  return i >= NumberOfTriangles() ? nullptr : m_Triangles[static_cast<std::size_t>(i)];
}

void PointMapNode::Enter(TTriangle* triangle) {
  if (std::find(m_Triangles.begin(), m_Triangles.end(), triangle) != m_Triangles.end()) return;
  m_Triangles.push_back(triangle);
}

void PointMapNode::Erase(TTriangle const* triangle) {
  auto const it = std::find(m_Triangles.begin(), m_Triangles.end(), triangle);
  if (it != m_Triangles.end()) m_Triangles.erase(it);
}

PointMapNode* PointMap::Find(TPoint const* point) {
  auto const it = m_Tree.find(PointMapNode(point));
  return it == m_Tree.end() ? nullptr : &it->second;
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
  PointMapNode const node(point);
  return m_Tree.emplace(node, node).second;
}

bool PointMap::RemovePoint(TPoint const* point) { return m_Tree.erase(PointMapNode(point)) != 0; }

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
    auto& list = node->m_Triangles;
    if (list.empty() || list.back() != triangle) list.push_back(triangle);
  }
}
