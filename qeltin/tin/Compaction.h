#pragma once

#include <memory>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/FaceMesh.h"
#include "qeltin/tin/TArray.h"

class TIN;

namespace qeltin::detail {

// The work of TIN::Compact: one object a surface, run once.
//
// Threads: one.
class Compaction {
 public:
  // REQUIRES: the surface has pools.
  explicit Compaction(TIN& tin);

  // As TIN::Compact.
  bool Run();

 private:
  static constexpr int NONE = -1;

  bool ListFaces();
  void FindPlaces();
  void FetchAfter(std::size_t i) const;
  bool ReachFrom(int slot);
  bool Read(Face& face) const;
  static TTriangle const* Partner(TTriangle const& t, int side);
  std::vector<int> SeedCorners() const;
  bool MakePools();
  void FillPoints();
  void NumberTriangles();
  void FillTriangles();
  int NewPosition(int slot) const;
  template <typename T, typename PositionOf>
  void Follow(TArray<T>& list, PositionOf positionOf) const;
  void Publish();

  TIN& m_Tin;
  TArray<TPoint> const& m_Points;
  TArray<TTriangle> const& m_Triangles;
  std::vector<int> m_Reached;     // slots of triangles: the live ones first, in their order
  std::vector<bool> m_bSeen;      // by slot of a triangle: whether it is among those reached
  std::vector<bool> m_HasPlace;   // by slot of a point: whether x and y are numbers
  std::vector<int> m_FaceOfSlot;  // by slot of a triangle: its face, or NONE
  FaceMesh m_Mesh;
  std::unique_ptr<TArray<TPoint>> m_pNewPoints;
  std::unique_ptr<TArray<TTriangle>> m_pNewTriangles;
  std::vector<int> m_NewPoint;     // by slot of a point: its new slot, or NONE
  std::vector<int> m_NewTriangle;  // by face: its new slot, or NONE
  std::vector<int> m_NewPosition;  // by face: its new position, or NONE
};

}  // namespace qeltin::detail
