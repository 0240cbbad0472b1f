#include <cmath>
#include <limits>

#include "qeltin/models/CProfile.h"
#include "qeltin/models/TextOf.h"

using qeltin::detail::TextOf;

namespace {

constexpr float INFINITE = std::numeric_limits<float>::infinity();

double RoundedDown(double value) {
  float const rounded = static_cast<float>(value);
  return rounded > value ? std::nextafter(rounded, -INFINITE) : rounded;
}

double RoundedUp(double value) {
  float const rounded = static_cast<float>(value);
  return rounded < value ? std::nextafter(rounded, INFINITE) : rounded;
}

wchar_t const* NameOr(wchar_t const* name, wchar_t const* substitute) {
  return *TextOf(name) == L'\0' ? substitute : name;
}

}  // namespace

void CProfile::SetBase(double x, double y, double time) {
  m_dBaseX = x;
  m_dBaseY = y;
  m_dBaseTime = time;
}

void CProfile::AddSounding(double x, double y, double z, double distance, double time) {
  m_Points.push_back({static_cast<float>(x - m_dBaseX), static_cast<float>(y - m_dBaseY),
                      static_cast<float>(z), static_cast<float>(distance),
                      static_cast<float>(time - m_dBaseTime)});
}

void CProfile::AddLabel(float x, float y, float z, wchar_t const* text) {
  m_LabelTexts.push_back(std::make_shared<std::wstring const>(TextOf(text)));
  m_Labels.push_back({x, y, z, m_LabelTexts.back()->c_str()});
}

void CProfile::SetExtents(double minX, double maxX, double minY, double maxY, double minZ,
                          double maxZ) {
  m_dMinX = minX;
  m_dMaxX = maxX;
  m_dMinY = minY;
  m_dMaxY = maxY;
  m_dMinZ = minZ;
  m_dMaxZ = maxZ;
}

void CProfile::SetExtentsFromPoints() {
  if (m_Points.empty()) return SetExtents(0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  ProfilePoint min = m_Points.front();
  ProfilePoint max = min;
  for (ProfilePoint const& p : m_Points) {
    min.x = std::fmin(min.x, p.x);
    max.x = std::fmax(max.x, p.x);
    min.y = std::fmin(min.y, p.y);
    max.y = std::fmax(max.y, p.y);
    min.z = std::fmin(min.z, p.z);
    max.z = std::fmax(max.z, p.z);
  }
  SetExtents(RoundedDown(min.x + m_dBaseX), RoundedUp(max.x + m_dBaseX),
             RoundedDown(min.y + m_dBaseY), RoundedUp(max.y + m_dBaseY), min.z, max.z);
}

void CProfile::SetStatistics(double statX, double statY, double statZ, double statMin,
                             double statMax) {
  m_dStatX = statX;
  m_dStatY = statY;
  m_dStatZ = statZ;
  m_dStatMin = statMin;
  m_dStatMax = statMax;
}

bool CProfile::SetInfo(double infoValue, std::uint8_t infoFlag, wchar_t const* vehicleName,
                       wchar_t const* lineName, double infoTime, std::uint16_t infoCode) {
  m_dInfoValue = infoValue;
  m_uInfoFlag = infoFlag;
  m_VehicleName = NameOr(vehicleName, L"No Vehicle Name");
  m_LineName = NameOr(lineName, L"No Line Name");
  m_dInfoTime = infoTime;
  m_uInfoCode = infoCode;
  return true;
}

void CProfile::SetSecondName(wchar_t const* name) { m_SecondName = TextOf(name); }
