// The work of decimation by VTK, on the visible triangles of our surface: a tenth of the points is
// left, and the edge stays as it is.
#include <vtkDecimatePro.h>
#include <vtkNew.h>
#include <vtkPolyData.h>

#include "bench/BuildSurface.h"
#include "bench/HeightError.h"
#include "bench/Measurement.h"
#include "bench/peers/SurfaceVtk.h"

using namespace qeltin::bench;

namespace {

constexpr double SHARE_LEFT = 0.1;

[[gnu::noinline]] void Thin(vtkPolyData& mesh, vtkDecimatePro& filter) {
  filter.SetInputData(&mesh);
  filter.SetTargetReduction(1.0 - SHARE_LEFT);
  filter.PreserveTopologyOn();
  filter.SplittingOff();
  filter.BoundaryVertexDeletionOff();
  filter.Update();
}

FlatMesh CopyOf(vtkPolyData& mesh) {
  FlatMesh copy;
  for (vtkIdType i = 0; i < mesh.GetNumberOfPoints(); ++i) {
    double p[3];
    mesh.GetPoint(i, p);
    copy.points.push_back({p[0], p[1], p[2]});
  }
  vtkCellArray* const cells = mesh.GetPolys();
  vtkIdType size = 0;
  vtkIdType const* corners = nullptr;
  for (cells->InitTraversal(); cells->GetNextCell(size, corners) != 0;) {
    for (vtkIdType k = 0; k < size; ++k) {
      copy.corners.push_back(static_cast<std::uint32_t>(corners[k]));
    }
  }
  return copy;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"thin", "runs"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  vtkNew<vtkPolyData> mesh;
  {
    TIN tin;
    BuildSurface(tin, points);
    CopySurface(tin, *mesh);
  }
  vtkNew<vtkDecimatePro> filter;
  Measurement measurement;
  measurement.Start();
  Thin(*mesh, *filter);
  measurement.Stop();
  FlatMesh const left = CopyOf(*filter->GetOutput());
  AddFacts(MeasureHeightError(points, left), left, measurement);
  measurement.Report(task);
}
