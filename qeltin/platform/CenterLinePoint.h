#pragma once

#include <string>
#include <utility>

#include "qeltin/platform/Point.h"

// What a point of a center line is. Hosts store the numbers.
enum POINT_TYPE : int {
  POINT_STRAIGHT = 1,    // a vertex: the line passes through it
  POINT_ARC_CENTER = 2,  // the centre of an arc between the vertices before and after it
};

// One point of a CenterLine. Lengths have the unit of the survey, angles are bearings in degrees.
//
// Threads: a value. Concurrent reads are safe, a write needs a lock of the caller's.
class CenterLinePoint {
 public:
  CenterLinePoint() = default;

  // The angles and the radius matter for the centre of an arc: the arc runs clockwise from
  // `startAngle` to `endAngle`, and with a negative radius from `endAngle` to `startAngle`.
  // CenterLine::Init works the angles out. `code` and `name` are the host's own. The KP is 0.
  CenterLinePoint(Point const& position, double startAngle, double endAngle, POINT_TYPE type,
                  double radius, int code, std::wstring name)
      : m_Position(position),
        m_dStartAngle(startAngle),
        m_dEndAngle(endAngle),
        m_eType(type),
        m_dRadius(radius),
        m_iCode(code),
        m_Name(std::move(name)) {}

  Point const& GetPosition() const { return m_Position; }
  double GetKP() const { return m_dKP; }
  double GetStartAngle() const { return m_dStartAngle; }
  double GetEndAngle() const { return m_dEndAngle; }
  POINT_TYPE GetPointType() const { return m_eType; }
  double GetRadius() const { return m_dRadius; }
  int GetCode() const { return m_iCode; }
  std::wstring const& GetName() const { return m_Name; }

  void SetKP(double kp) { m_dKP = kp; }

  void SetAngles(double startAngle, double endAngle) {
    m_dStartAngle = startAngle;
    m_dEndAngle = endAngle;
  }

 private:
  Point m_Position;
  double m_dKP = 0.0;
  double m_dStartAngle = 0.0;
  double m_dEndAngle = 0.0;
  POINT_TYPE m_eType = POINT_STRAIGHT;
  double m_dRadius = 0.0;
  int m_iCode = 0;
  std::wstring m_Name;
};
