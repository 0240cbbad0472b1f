// The work of contours and isolines by VTK, on the visible triangles of our surface: the lines of
// 20 levels, then joined into long ones.
#include <vtkContourFilter.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkStripper.h>

#include <cmath>

#include "bench/BuildSurface.h"
#include "bench/HeightLevels.h"
#include "bench/Measurement.h"
#include "bench/peers/SurfaceVtk.h"

using namespace qeltin::bench;

namespace {

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

// In plan.
double LengthOf(vtkPolyData& lines) {
  double length = 0.0;
  vtkCellArray* const cells = lines.GetLines();
  vtkIdType size = 0;
  vtkIdType const* corners = nullptr;
  for (cells->InitTraversal(); cells->GetNextCell(size, corners) != 0;) {
    for (vtkIdType k = 1; k < size; ++k) {
      double p[3];
      double q[3];
      lines.GetPoint(corners[k - 1], p);
      lines.GetPoint(corners[k], q);
      length += std::hypot(q[0] - p[0], q[1] - p[1]);
    }
  }
  return length;
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
  measurement.AddFact("length", LengthOf(*stripper->GetOutput()));
  measurement.Report(task);
}
