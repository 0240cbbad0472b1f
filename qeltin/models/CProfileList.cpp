#include "qeltin/models/CProfileList.h"

#include <cassert>
#include <limits>

#include "qeltin/models/LastError.h"

int CProfileList::GetNumProfiles() const { return static_cast<int>(m_Profiles.size()); }

bool CProfileList::ResetCursor() {
  m_iCursor = 0;
  return true;
}

CProfile* CProfileList::GetNextProfile() {
  if (m_iCursor < GetNumProfiles()) return m_Profiles[m_iCursor++];
  qeltin::detail::SetLastErrorCode(qeltin::detail::INDEX_OUT_OF_RANGE);
  return nullptr;
}

CProfile* CProfileList::GetProfile(int index) const {
  if (m_Profiles.empty()) return nullptr;
  assert(index >= 0 && index < GetNumProfiles());
  return m_Profiles[index];
}

int CProfileList::GetTotalPoints() const {
  int total = 0;
  for (CProfile const* profile : m_Profiles) total += profile->GetNumPoints();
  return total;
}

bool CProfileList::GetExtents(double* minX, double* maxX, double* minY, double* maxY, double* minZ,
                              double* maxZ, double* statMin, double* statMax) const {
  constexpr double LARGEST = std::numeric_limits<double>::max();
  *minX = *minY = *minZ = *statMin = LARGEST;
  *maxX = *maxY = -LARGEST;
  *maxZ = -10000.0;
  *statMax = 0.0;
  if (m_Profiles.empty()) return false;
  for (int i = 0; i < GetNumProfiles(); ++i) {
    CProfile const& profile = *m_Profiles[i];
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    profile.GetPoint(i, &x, &y, &z);  // leaves its mark where there is no such sounding
    if (profile.GetMinX() < *minX) *minX = profile.GetMinX();
    if (profile.GetMinY() < *minY) *minY = profile.GetMinY();
    if (profile.GetMinZ() < *minZ) *minZ = profile.GetMinZ();
    if (profile.GetStatMin() < *statMin) *statMin = profile.GetStatMin();
    if (profile.GetMaxX() > *maxX) *maxX = profile.GetMaxX();
    if (profile.GetMaxY() > *maxY) *maxY = profile.GetMaxY();
    if (profile.GetMaxZ() > *maxZ) *maxZ = profile.GetMaxZ();
    if (profile.GetStatMax() > *statMax) *statMax = profile.GetStatMax();
  }
  return true;
}

bool CProfileList::AddProfile(CProfile* profile) {
  if (profile == nullptr) return false;
  m_Profiles.push_back(profile);
  return true;
}
