#pragma once

class TPolygon;

// IContour as the hosts in the field were compiled against it. Never changed. A file that includes
// it includes the header of the library by that name in no way.
class IContour {
 public:
  virtual ~IContour() = default;

  virtual int GetNumLines() const = 0;
  virtual int GetNumPoints(int line) const = 0;
  virtual bool GetSegment(int line, int index, double* x1, double* y1, double* z1, double* x2,
                          double* y2, double* z2) const = 0;
  virtual int Regenerate(double level) = 0;
  virtual TPolygon* GetLine(int index) const = 0;
};
