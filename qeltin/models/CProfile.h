#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "qeltin/models/CurvedCenterLine.h"
#include "qeltin/models/IProfile.h"
#include "qeltin/models/ProfileLabel.h"
#include "qeltin/platform/Export.h"

// A profile that a loader fills. All numbers start at 0, but for the info code at 1, and all texts
// are empty. A value: a copy shares nothing that can change.
//
//   CProfile profile;
//   profile.SetBase(500000, 5900000, 0);  // before the soundings
//   profile.SetInfo(0, 0, L"Vessel", L"Line 7", 0, 1);
//   for (...) profile.AddSounding(x, y, z, distance, time);
//   profile.SetExtentsFromPoints();       // what surfaces and lists go by
//
// What the statistics and the info values hold is the host's affair: they are stored and returned.
// A null text counts as an empty one.
//
// Threads: as IProfile.
class QELTIN_API CProfile : public IProfile {
 public:
  int GetNumSegments() const override;
  bool GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const override;
  wchar_t const* GetLineName() const override;
  bool GetArea(double* area) const override;
  int GetNumPoints() const override;
  ProfilePoint const* GetPointRecord(int index) const override;
  bool GetPoint(int index, double* x, double* y, double* z) const override;
  bool GetPointAndTravel(int index, double* x, double* y, double* z, double* travel) const override;
  bool GetPointAndTime(int index, double* x, double* y, double* z, double* time) const override;
  double GetOffset(int index) const override;
  double GetTravelAt(double x, double y) const override;
  double GetDistance(int index) const override;
  CurvedCenterLine* GetCenterLine() override;
  float GetMinZ() const override;
  float GetMaxZ() const override;
  float GetStatZ() const override;
  float GetMinX() const override;
  float GetMaxX() const override;
  float GetStatX() const override;
  float GetMinY() const override;
  float GetMaxY() const override;
  float GetStatY() const override;
  float GetStatMin() const override;
  float GetStatMax() const override;
  int GetNumLabels() const override;
  bool GetLabel(int index, double* x, double* y, double* z, wchar_t* text,
                int textSize) const override;

  // --- Filling --------------------------------------------------------------------------------

  // Sets what is added to x, y and time of every sounding. Those that are there already move with
  // it.
  void SetBase(double x, double y, double time);

  // Appends a sounding as it is to be stored, relative to the bases.
  void AddPoint(ProfilePoint const& point) { m_Points.push_back(point); }

  // Appends a sounding, less the bases and rounded to single precision.
  void AddSounding(double x, double y, double z, double distance, double time);

  // Makes room for that many soundings at once.
  void ReservePoints(int count) { m_Points.reserve(count); }

  // Appends a label with a copy of `text`.
  void AddLabel(float x, float y, float z, wchar_t const* text);

  void SetExtents(double minX, double maxX, double minY, double maxY, double minZ, double maxZ);

  // Sets the extents to the box of the soundings, each limit rounded outward to single precision:
  // that is how the limits are read, and a surface built from profiles holds what lies in them.
  // All 0 without soundings.
  void SetExtentsFromPoints();

  void SetStatistics(double statX, double statY, double statZ, double statMin, double statMax);

  // An empty `lineName` is stored as "No Line Name", an empty `vehicleName` as "No Vehicle Name".
  // Always true.
  bool SetInfo(double infoValue, std::uint8_t infoFlag, wchar_t const* vehicleName,
               wchar_t const* lineName, double infoTime, std::uint16_t infoCode);

  // The second name stands behind the line name in the name of a surface built from profiles.
  void SetSecondName(wchar_t const* name);

  // --- Reading beside the interface -----------------------------------------------------------

  // Returns the travel of a sounding along the center line, the bases added; 0.0 where it does not
  // lie beside the line. The index is tested: 0.0 as well.
  double GetTravel(int index) const;

  wchar_t const* GetSecondName() const { return m_SecondName.c_str(); }
  wchar_t const* GetVehicleName() const { return m_VehicleName.c_str(); }
  double GetBaseX() const { return m_dBaseX; }
  double GetBaseY() const { return m_dBaseY; }
  double GetBaseTime() const { return m_dBaseTime; }
  double GetInfoValue() const { return m_dInfoValue; }
  std::uint8_t GetInfoFlag() const { return m_uInfoFlag; }
  double GetInfoTime() const { return m_dInfoTime; }
  std::uint16_t GetInfoCode() const { return m_uInfoCode; }

 private:
  bool HasPoint(int index) const;

  std::vector<ProfilePoint> m_Points;  // in order along the profile
  std::vector<ProfileLabel> m_Labels;
  std::vector<std::shared_ptr<std::wstring const>> m_LabelTexts;  // what m_Labels point at
  CurvedCenterLine m_CenterLine;
  std::wstring m_LineName;
  std::wstring m_SecondName;
  double m_dBaseX = 0.0;
  double m_dBaseY = 0.0;
  double m_dInfoValue = 0.0;
  std::uint8_t m_uInfoFlag = 0;
  std::wstring m_VehicleName;
  double m_dMaxX = 0.0;
  double m_dMaxY = 0.0;
  double m_dMaxZ = 0.0;
  double m_dMinX = 0.0;
  double m_dMinY = 0.0;
  double m_dMinZ = 0.0;
  double m_dStatX = 0.0;
  double m_dStatY = 0.0;
  double m_dStatZ = 0.0;
  double m_dStatMax = 0.0;
  double m_dStatMin = 0.0;
  double m_dBaseTime = 0.0;
  double m_dInfoTime = 0.0;
  std::uint16_t m_uInfoCode = 1;
};
