#pragma once

#include <vtkCellArray.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>

#include <unordered_map>

#include "qeltin/tin/TIN.h"

namespace qeltin::bench {

// Makes `mesh` the visible triangles of a surface, with the heights as scalars too.
inline void CopySurface(TIN const& tin, vtkPolyData& mesh) {
  vtkNew<vtkPoints> points;
  points->SetDataTypeToDouble();
  vtkNew<vtkDoubleArray> heights;
  vtkNew<vtkCellArray> cells;
  std::unordered_map<TPoint const*, vtkIdType> ids;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, false);
    if (t == nullptr) continue;
    vtkIdType corners[3];
    for (int k = 0; k < 3; ++k) {
      TPoint const* const v = t->m_pVertex[k];
      auto const [found, is_new] = ids.try_emplace(v, points->GetNumberOfPoints());
      if (is_new) {
        points->InsertNextPoint(v->x, v->y, v->z);
        heights->InsertNextValue(v->z);
      }
      corners[k] = found->second;
    }
    cells->InsertNextCell(3, corners);
  }
  mesh.SetPoints(points);
  mesh.SetPolys(cells);
  mesh.GetPointData()->SetScalars(heights);
}

}  // namespace qeltin::bench
