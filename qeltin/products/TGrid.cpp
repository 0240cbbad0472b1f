#include "qeltin/products/TGrid.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "qeltin/products/GridSampler.h"
#include "qeltin/tin/TIN.h"

namespace {

constexpr double FINEST_SHARE = 0.0010000000474974513;  // 0.001 in single precision

double Spacing(double wanted, double extent) {
  return std::max(extent * FINEST_SHARE, std::min(extent, wanted));
}

int NodesAlong(double extent, double spacing) {
  double const intervals = std::ceil(extent / spacing);
  return std::isfinite(intervals) ? static_cast<int>(intervals) + 1 : 1;
}

// Sums, not products.
std::vector<double> Ascend(double place, double spacing, int nodes) {
  std::vector<double> places;
  for (int i = 0; i < nodes; ++i, place += spacing) places.push_back(place);
  return places;
}

}  // namespace

TGrid::TGrid(TIN const& tin, double dx, double dy) { Create(tin, dx, dy); }

TGrid::~TGrid() { DestroyNodes(); }

bool TGrid::Create(TIN const& tin, double dx, double dy) {
  tin.GetBounds(m_Min, m_Max);
  double const width = m_Max.x - m_Min.x;
  double const height = m_Max.y - m_Min.y;
  m_dDeltaX = Spacing(dx, width);
  m_dDeltaY = Spacing(dy, height);
  m_iNodesX = NodesAlong(width, m_dDeltaX);
  m_iNodesY = NodesAlong(height, m_dDeltaY);
  BuildNodes(m_iNodesX * m_iNodesY);

  std::vector<double> const xs = Ascend(m_Min.x, m_dDeltaX, m_iNodesX);
  std::vector<double> const ys = Ascend(m_Min.y, m_dDeltaY, m_iNodesY);
  qeltin::detail::GridSampler(tin, xs, ys, m_pNodes).Run();
  return true;
}

TPoint* TGrid::GetNode(int i, int j) const {
  if (i < 0 || i >= m_iNodesX || j < 0 || j >= m_iNodesY) return nullptr;
  Node& node = m_pNodes[j * m_iNodesX + i];
  return node.m_bValid ? &node.m_Point : nullptr;
}

bool TGrid::InBounds(TPoint const& p) const {
  return p.x >= m_Min.x && p.x <= m_Max.x && p.y >= m_Min.y && p.y <= m_Max.y && p.z >= m_Min.z &&
         p.z <= m_Max.z;
}

void TGrid::GetBounds(TPoint& min, TPoint& max) const {
  min = m_Min;
  max = m_Max;
}

void TGrid::BuildNodes(int count) {
  DestroyNodes();
  m_pNodes = new Node[static_cast<std::size_t>(count)];
}

void TGrid::DestroyNodes() {
  delete[] m_pNodes;
  m_pNodes = nullptr;
}

TGrid* CreateGrid() { return new TGrid; }

void ReleaseGrid(TGrid* grid) { delete grid; }
