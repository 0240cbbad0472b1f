#pragma once

#include <vector>

#include "qeltin/kernel/IPoint.h"
#include "qeltin/models/TriangleCorners.h"

class TGrid;
class TIN;
class TPolygon;

// ITin as the hosts in the field were compiled against it. Never changed. A file that includes it
// includes the header of the library by that name in no way.
class ITin {
 public:
  virtual ~ITin() = default;

  virtual void GetWorldBounds(IPoint& max, IPoint& min) const = 0;
  virtual void GetBounds(IPoint& min, IPoint& max) const = 0;
  virtual bool InWorldBounds(TriangleCorners const& triangle) const = 0;
  virtual bool InWorldBounds(IPoint const& point) const = 0;
  virtual bool InBounds(TriangleCorners const& triangle) const = 0;
  virtual bool InBounds(IPoint const& point) const = 0;
  virtual int GetNumPoints() const = 0;
  virtual bool GetPoint(int index, IPoint& point) const = 0;
  virtual bool AddPoint(double x, double y, double z) = 0;
  virtual bool PointOperationStub() = 0;
  virtual void ResetPoints() = 0;
  virtual int GetNumTriangles() const = 0;
  virtual bool GetTriangle(int index, TriangleCorners& corners) const = 0;
  virtual bool FindTriangle(IPoint const& point, TriangleCorners& corners) const = 0;
  virtual bool GetZ(double x, double y, double* z) const = 0;
  virtual bool LoadXYZ(wchar_t const* path) = 0;
  virtual bool SaveXYZ(wchar_t const* path) const = 0;
  virtual bool LoadTin(wchar_t const* path) = 0;
  virtual bool SaveTin(wchar_t const* path) const = 0;
  virtual TIN* GetTIN() const = 0;
  virtual TGrid* GetGrid() const = 0;
  virtual void DestroyGrid() = 0;
  virtual void CreateGrid(double dx, double dy) = 0;
  virtual void FilterTriangles(double limit) = 0;
  virtual int GenerateIsoline(std::vector<TPolygon*>& lines, double level) const = 0;
  virtual int GenerateProfile(std::vector<TPolygon>& sections, TPolygon const& path) const = 0;
  virtual int GenerateProfile(std::vector<TPolygon>& sections, IPoint const& from,
                              IPoint const& to) const = 0;
};
