#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/render/GlColor.h"

class GlContext;

namespace qeltin::testing {
struct GlPeer;
}

// How a drawable is drawn: the size of its points, width and stipple of its lines, its colour, and
// what becomes of the two sides of its polygons. A front is seen counter-clockwise.
//
// Point sizes and line widths are pixels, within limits that GL reports. The limits belong to the
// process and come from the latest GlContext. Before there is one they are all 0, so that sizes and
// widths other than 0 are refused.
//
// Threads: a value. Concurrent reads are safe, a write needs a lock of the caller's, and so does
// the construction of a GlContext, which writes the limits.
class QELTIN_API GlDrawingAttributes {
 public:
  // Bits of the draw mode. A side with neither lines nor points is filled.
  enum eDrawMode : int {
    FRONT_LINE = 0x02,   // fronts as lines; wins over FRONT_POINT
    BACK_LINE = 0x04,    // backs as lines; wins over BACK_POINT
    FRONT_POINT = 0x08,  // fronts as points; GlTIN draws its points instead of triangles
    BACK_POINT = 0x10,   // backs as points
    CULL_FRONT = 0x20,   // fronts are left out, unless CULL_BACK is set
    CULL_BACK = 0x40,    // backs are left out
    BLEND = 0x80,        // what is behind shines through, where alpha of the colour is below 1; not
                         // with drawables, whose vertices have opaque colours of their own
  };

  static constexpr float DEFAULT_POINT_SIZE = 1.0f;
  static constexpr unsigned short DEFAULT_LINE_STIPPLE_PATTERN = 0xFFFF;
  static constexpr int DEFAULT_LINE_STIPPLE_FACTOR = 1;
  static constexpr float DEFAULT_LINE_WIDTH = 1.0f;
  static constexpr GlColor DEFAULT_COLOR{0.5f, 0.5f, 0.5f, 1.0f};
  static constexpr int DEFAULT_DRAW_MODE = CULL_BACK;

  bool operator==(GlDrawingAttributes const& other) const = default;

  void SetToDefault() { *this = GlDrawingAttributes(); }

  float GetPointSize() const { return m_fPointSize; }
  float GetLineWidth() const { return m_fLineWidth; }
  unsigned short GetLineStipplePattern() const { return m_wLineStipplePattern; }
  int GetLineStippleFactor() const { return m_iLineStippleFactor; }
  GlColor const& GetColor() const { return m_Color; }

  // Set a size or width. Return false, with nothing changed, outside the limits.
  bool SetPointSize(float pixels);
  bool SetLineWidth(float pixels);

  // Sets which of 16 pieces of a line are drawn, the lowest bit first. 0xFFFF draws a whole line
  // whatever the factor is.
  void SetLineStipplePattern(unsigned short pattern) { m_wLineStipplePattern = pattern; }

  // Sets the length of a piece of the pattern in pixels. Returns false, with nothing changed, below
  // 1. There is no upper limit here; GL takes more than 256 as 256.
  bool SetLineStippleFactor(int factor);

  void SetColor(GlColor const& color) { m_Color = color; }

  static void GetPointSizeLimits(float& min, float& max);
  static void GetLineWidthLimits(float& min, float& max);
  static float GetPointSizeStep();
  static float GetLineWidthStep();

  void EnableDrawMode(eDrawMode bits) { m_iDrawMode |= bits; }
  void DisableDrawMode(eDrawMode bits) { m_iDrawMode &= ~bits; }

  // Returns true iff any of the bits is set.
  bool HasDrawMode(eDrawMode bits) const { return (m_iDrawMode & bits) != 0; }

  // Applies everything to the state of GL. The context is not read. REQUIRES: a current rendering
  // context, as within a frame.
  void SetRC(GlContext const* context) const;

 private:
  friend class GlContext;
  friend struct qeltin::testing::GlPeer;

  // What GL can do, in pixels.
  struct Limits {
    float minPointSize;
    float maxPointSize;
    float pointSizeStep;
    float minLineWidth;
    float maxLineWidth;
    float lineWidthStep;
  };

  static void SetLimits(Limits const& limits) { m_Limits = limits; }

  static Limits m_Limits;  // written by each new GlContext

  float m_fPointSize = DEFAULT_POINT_SIZE;
  unsigned short m_wLineStipplePattern = DEFAULT_LINE_STIPPLE_PATTERN;
  int m_iLineStippleFactor = DEFAULT_LINE_STIPPLE_FACTOR;
  float m_fLineWidth = DEFAULT_LINE_WIDTH;
  GlColor m_Color = DEFAULT_COLOR;
  int m_iDrawMode = DEFAULT_DRAW_MODE;
};

constexpr GlDrawingAttributes::eDrawMode operator|(GlDrawingAttributes::eDrawMode a,
                                                   GlDrawingAttributes::eDrawMode b) {
  return static_cast<GlDrawingAttributes::eDrawMode>(int{a} | int{b});
}
