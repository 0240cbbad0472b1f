// A host that loads the library as a plug-in, works with it, leaves a model registered, and unloads
// it again, many times over: the library must go each time, with everything that it owns.
//
// usage: unload_host LIBRARY

#include <dlfcn.h>
#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <vector>

#include "testing/models/frozen/CModelManager.h"
#include "testing/models/frozen/IContour.h"
#include "testing/models/frozen/ITin.h"

namespace {

constexpr int ROUNDS = 400;
constexpr int WARM = 200;  // rounds after which the loader has what it keeps, but for a few bytes

// The allocator gives out no less, so that whoever leaks in every round leaks more than half of it.
constexpr std::size_t LEAST_LEAK = 32;

bool Work(CModelManager& manager) {
  manager.SetPath(L"a path");
  std::vector<IPoint> points = {{0, 0, 1}, {9, 0, 2}, {0, 9, 3}, {2, 2, 4}};
  ITin* const tin = manager.CreateTin(&points);
  IContour* const contour = manager.CreateContour(tin, 3.5);
  bool const traced = contour->GetNumLines() == 1;
  manager.ReleaseContour(contour);
  manager.ReleaseTin(tin);

  IPoint min = {0, 0, 0};
  IPoint max = {9, 9, 9};
  ITin* const left_to_the_library = manager.CreateTin(min, max, 10);
  left_to_the_library->CreateGrid(1, 1);
  return traced && left_to_the_library->AddPoint(1, 1, 1) && manager.GetNumberOfModels() == 1;
}

// Returns what went wrong, or null.
char const* Round(char const* path) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return dlerror();
  void* const symbol = dlsym(library, "_ZN13CModelManager18GetTinModelManagerEv");
  if (symbol == nullptr) return dlerror();
  auto const get_manager = reinterpret_cast<CModelManager& (*)()>(symbol);
  if (!Work(get_manager())) return "the library does not do its work";
  if (dlclose(library) != 0) return dlerror();
  if (dlopen(path, RTLD_NOW | RTLD_NOLOAD) != nullptr) return "the library stays loaded";
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s LIBRARY\n", argv[0]);
    return 2;
  }
  std::size_t warm = 0;
  for (int round = 1; round <= ROUNDS; ++round) {
    if (char const* const fault = Round(argv[1])) {
      std::fprintf(stderr, "round %d: %s\n", round, fault);
      return 1;
    }
    if (round == WARM) warm = mallinfo2().uordblks;
  }
  std::size_t const end = mallinfo2().uordblks;
  std::printf("%d rounds, %zu bytes in use after %d of them, %zu at the end\n", ROUNDS, warm, WARM,
              end);
  return end > warm + (ROUNDS - WARM) * LEAST_LEAK / 2 ? 1 : 0;
}
