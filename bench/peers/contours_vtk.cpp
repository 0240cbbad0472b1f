// The work of contours and isolines by VTK, on the visible triangles of our surface: the lines of
// 20 levels, then joined into long ones.
#include <vtkContourFilter.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkStripper.h>

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
