// Opens a stored surface, asks heights on it, and gives it back.

#include <cstdio>

#include "qeltin/models/CModelManager.h"
#include "qeltin/models/ITin.h"

int main() {
  CModelManager& manager = CModelManager::GetTinModelManager();

  // The manager opens the file and keeps the surface until we give it back.
  ITin* const harbour = manager.CreateTin(L"harbour.tin");
  if (harbour == nullptr) {
    std::fprintf(stderr, "harbour.tin: no surface could be read\n");
    return 1;
  }

  IPoint min;
  IPoint max;
  harbour->GetBounds(min, max);
  std::printf("surface from (%.2f, %.2f) to (%.2f, %.2f)\n", min.x, min.y, max.x, max.y);

  // Along the middle of the channel, and on beyond the survey.
  for (double x = 20; x <= 260; x += 40) {
    double z = 0.0;
    if (harbour->GetZ(x, 50.0, &z)) {
      std::printf("%6.1f  %7.2f\n", x, z);
    } else {
      std::printf("%6.1f  no surface\n", x);
    }
  }

  manager.ReleaseTin(harbour);
  return 0;
}
