// Fills profiles from a text, builds a surface from them, and walks a contour on it.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <list>
#include <sstream>
#include <string>

#include "qeltin/models/CModelManager.h"
#include "qeltin/models/CProfile.h"
#include "qeltin/models/CProfileList.h"
#include "qeltin/models/IContour.h"
#include "qeltin/models/ITin.h"

namespace {

// Reads "line NAME", then "x y z time" for every sounding on it. The profiles are ours: they must
// outlive the list that they are put into, and a std::list never moves them.
std::list<CProfile> LoadProfiles(char const* file) {
  std::list<CProfile> profiles;
  std::ifstream text(file);
  double x = 0.0, y = 0.0, z = 0.0, time = 0.0, distance = 0.0, last_x = 0.0, last_y = 0.0;
  for (std::string row; std::getline(text, row);) {
    if (row.starts_with("line ")) {
      CProfile& profile = profiles.emplace_back();
      profile.SetBase(482000.0, 5932000.0, 0.0);  // near the soundings, which are kept as floats
      profile.SetInfo(0.0, 0, L"Launch 2", std::wstring(row.begin() + 5, row.end()).c_str(), 0, 1);
    } else if (std::istringstream(row) >> x >> y >> z >> time && !profiles.empty()) {
      CProfile& profile = profiles.back();
      distance = profile.GetNumPoints() == 0 ? 0 : distance + std::hypot(x - last_x, y - last_y);
      profile.AddSounding(x, y, z, distance, time);
      last_x = x;
      last_y = y;
    }
  }
  for (CProfile& profile : profiles) profile.SetExtentsFromPoints();
  return profiles;
}

}  // namespace

int main() {
  CModelManager& manager = CModelManager::GetTinModelManager();
  std::list<CProfile> profiles = LoadProfiles("soundings.txt");

  // Lists from the manager are CProfileList objects.
  auto* const list = static_cast<CProfileList*>(manager.CreateProfileList());
  for (CProfile& profile : profiles) list->AddProfile(&profile);
  std::printf("%d profiles, %d soundings\n", list->GetNumProfiles(), list->GetTotalPoints());

  ITin* const bank = manager.CreateTin(list);
  if (bank == nullptr) return 1;
  std::printf("model %ls\n", manager.GetModelName(0));

  IContour* const contour = manager.CreateContour(bank, -10.0);
  double west = 1e9, east = -1e9, south = 1e9, north = -1e9;
  for (int line = 0; line < contour->GetNumLines(); ++line) {
    double x1, y1, z1, x2, y2, z2;
    for (int i = 0; contour->GetSegment(line, i, &x1, &y1, &z1, &x2, &y2, &z2); ++i) {
      west = std::min({west, x1, x2});
      east = std::max({east, x1, x2});
      south = std::min({south, y1, y2});
      north = std::max({north, y1, y2});
    }
  }
  std::printf("%d line at -10: the bank is %.1f long and %.1f wide\n", contour->GetNumLines(),
              east - west, north - south);

  // The contour first: it looks at the surface.
  manager.ReleaseContour(contour);
  manager.ReleaseTin(bank);
  manager.ReleaseProfileList(list);
  return 0;
}
