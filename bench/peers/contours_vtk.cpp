// The work of contours and isolines by VTK, on the visible triangles of our surface: the lines of
// 20 levels, then joined into long ones.
#include <vtkCellArray.h>
#include <vtkContourFilter.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkStripper.h>

#include <unordered_map>

#include "bench/BuildSurface.h"
#include "bench/HeightLevels.h"
#include "bench/Measurement.h"

using namespace qeltin::bench;

namespace {

void CopySurface(TIN const& tin, vtkPolyData& mesh) {
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

[[gnu::noinline]] void Contour(vtkPolyData& mesh, std::vector<double> const& levels,
                               vtkStripper& stripper) {
  vtkNew<vtkContourFilter> filter;
  filter->SetInputData(&mesh);
  filter->ComputeScalarsOn();
  for (std::size_t i = 0; i < levels.size(); ++i) {
    filter->SetValue(static_cast<int>(i), levels[i]);
  }
  stripper.SetInputConnection(filter->GetOutputPort());
  stripper.SetMaximumLength(1 << 30);
  stripper.Update();
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"levels"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<double> const levels = HeightLevels(points);
  vtkNew<vtkPolyData> mesh;
  {
    TIN tin;
    BuildSurface(tin, points);
    CopySurface(tin, *mesh);
  }
  vtkNew<vtkStripper> stripper;
  Measurement measurement;
  measurement.Start();
  Contour(*mesh, levels, *stripper);
  measurement.Stop();
  measurement.AddFact("crossings", static_cast<double>(stripper->GetOutput()->GetNumberOfPoints()));
  measurement.Report(task);
}
