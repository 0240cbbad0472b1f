#pragma once

#include <memory>

#include "qeltin/models/ITin.h"

class CQelUnitCnv;

// The surface that the model manager hands out: a shell that owns one TIN and at most one grid.
//
// Without a TIN, as the manager never hands one out, only the counts, which are 0 then, and
// PointOperationStub may be asked.
//
// Threads: as ITin.
class CTin : public ITin {
 public:
  CTin();
  explicit CTin(std::unique_ptr<TIN> tin, CQelUnitCnv* converter = nullptr);
  CTin(CTin const&) = delete;
  CTin& operator=(CTin const&) = delete;
  ~CTin() override;

  void GetWorldBounds(IPoint& max, IPoint& min) const override;
  void GetBounds(IPoint& min, IPoint& max) const override;
  bool InWorldBounds(TriangleCorners const& triangle) const override;
  bool InWorldBounds(IPoint const& point) const override;
  bool InBounds(TriangleCorners const& triangle) const override;
  bool InBounds(IPoint const& point) const override;
  int GetNumPoints() const override;
  bool GetPoint(int index, IPoint& point) const override;
  bool AddPoint(double x, double y, double z) override;
  bool PointOperationStub() override { return false; }
  void ResetPoints() override;
  int GetNumTriangles() const override;
  bool GetTriangle(int index, TriangleCorners& corners) const override;
  bool FindTriangle(IPoint const& point, TriangleCorners& corners) const override;
  bool GetZ(double x, double y, double* z) const override;
  bool LoadXYZ(wchar_t const* path) override;
  bool SaveXYZ(wchar_t const* path) const override;
  bool LoadTin(wchar_t const* path) override;
  bool SaveTin(wchar_t const* path) const override;
  TIN* GetTIN() const override { return m_pTin.get(); }
  TGrid* GetGrid() const override { return m_pGrid.get(); }
  void DestroyGrid() override;
  void CreateGrid(double dx, double dy) override;
  void FilterTriangles(double limit) override;
  int GenerateIsoline(std::vector<TPolygon*>& lines, double level) const override;
  int GenerateProfile(std::vector<TPolygon>& sections, TPolygon const& path) const override;
  int GenerateProfile(std::vector<TPolygon>& sections, IPoint const& from,
                      IPoint const& to) const override;

  CQelUnitCnv* GetUnitConverter() const { return m_pUnitConverter; }

 private:
  std::unique_ptr<TIN> m_pTin;
  std::unique_ptr<TGrid> m_pGrid;  // null until CreateGrid
  CQelUnitCnv* m_pUnitConverter;   // not owned
};
