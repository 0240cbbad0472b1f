#pragma once

#include <vector>

#include "qeltin/models/IContour.h"

class ITin;

// The contour that the model manager hands out. Owns its lines.
//
// Threads: as IContour.
class CContour : public IContour {
 public:
  CContour();
  CContour(CContour const&) = delete;
  CContour& operator=(CContour const&) = delete;
  ~CContour() override;

  // Stores the surface, not owned. Comes before Regenerate.
  void SetTin(ITin const* tin) { m_pTin = tin; }

  int GetNumLines() const override;
  int GetNumPoints(int line) const override;
  bool GetSegment(int line, int index, double* x1, double* y1, double* z1, double* x2, double* y2,
                  double* z2) const override;
  int Regenerate(double level) override;
  TPolygon* GetLine(int index) const override;

 private:
  std::vector<TPolygon*> m_Lines;  // owned
  ITin const* m_pTin = nullptr;    // not owned
};
