// Builds a surface.
//   triangulate  Init, LoadPoint for every point, Triangulate
//   create       Create, in the order of the input
#include "bench/BuildSurface.h"
#include "bench/Measurement.h"
#include "testing/TINPeer.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void CreateSurface(TIN& tin, std::vector<IPoint>& points) { tin.Create(&points); }

int VisibleTriangles(TIN const& tin) {
  int visible = 0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    if (tin.GetTriangle(i, false) != nullptr) ++visible;
  }
  return visible;
}

template <typename T>
double BytesOf(TArray<T> const& pool) {
  return static_cast<double>(sizeof(T) + sizeof(int)) * pool.m_iCapacity;
}

double PoolBytes(TIN const& tin) {
  using qeltin::testing::TINPeer;
  return BytesOf(*TINPeer::Points(tin)) + BytesOf(*TINPeer::Triangles(tin));
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"triangulate", "create"});
  std::vector<IPoint> points = MakeSurveyInput(task.input, task.size);

  Measurement measurement;
  TIN tin;
  measurement.Start();
  if (task.work == "triangulate") {
    BuildSurface(tin, points);
  } else {
    CreateSurface(tin, points);
  }
  measurement.Stop();

  measurement.AddFact("triangles", VisibleTriangles(tin));
  measurement.AddFact("pool_bytes", PoolBytes(tin));
  measurement.Report(task);
}
