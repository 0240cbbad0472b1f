#include "qeltin/models/ProfileSurface.h"

#include <cstdint>
#include <limits>
#include <vector>

#include "qeltin/models/CProfile.h"
#include "qeltin/models/IProfileList.h"
#include "qeltin/tin/InsertionOrder.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::detail {

namespace {

constexpr double LARGEST_FLOAT = std::numeric_limits<float>::max();

struct Box {
  TPoint min{LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT};
  TPoint max{-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT};

  void Widen(IProfile const& profile) {
    if (double const x = profile.GetMaxX(); x > max.x) max.x = x;
    if (double const y = profile.GetMaxY(); y > max.y) max.y = y;
    if (double const z = profile.GetMaxZ(); z > max.z) max.z = z;
    if (double const x = profile.GetMinX(); x < min.x) min.x = x;
    if (double const y = profile.GetMinY(); y < min.y) min.y = y;
    if (double const z = profile.GetMinZ(); z < min.z) min.z = z;
  }
};

std::int64_t CountPoints(IProfileList const& profiles) {
  std::int64_t count = 0;
  for (int i = 0; i < profiles.GetNumProfiles(); ++i)
    count += profiles.GetProfile(i)->GetNumPoints();
  return count;
}

void AppendPoints(IProfile const& profile, std::vector<TPoint>& points) {
  for (int i = 0; i < profile.GetNumPoints(); ++i) {
    TPoint p;
    profile.GetPoint(i, &p.x, &p.y, &p.z);
    points.push_back(p);
  }
}

}  // namespace

std::wstring NamesOf(IProfileList const& profiles) {
  std::wstring names;
  for (int i = 0; i < profiles.GetNumProfiles(); ++i) {
    CProfile const& profile = *profiles.GetProfile(i);
    names.append(profile.GetLineName()).append(profile.GetSecondName());
  }
  return names;
}

std::unique_ptr<TIN> MakeSurface(IProfileList const& profiles) {
  std::int64_t const count = CountPoints(profiles);
  if (count <= 0 || count > std::numeric_limits<int>::max()) return nullptr;

  Box box;
  std::vector<TPoint> points;
  points.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < profiles.GetNumProfiles(); ++i) {
    IProfile const& profile = *profiles.GetProfile(i);
    box.Widen(profile);
    AppendPoints(profile, points);
  }
  auto tin = std::make_unique<TIN>();
  tin->Init(static_cast<int>(count), box.min, box.max);
  for (int i : RandomOrder(points.data(), static_cast<int>(count))) {
    tin->AddPoint(points[static_cast<std::size_t>(i)]);
  }
  return tin;
}

}  // namespace qeltin::detail
