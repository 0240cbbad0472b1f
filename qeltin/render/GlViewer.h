#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/render/GlColor.h"
#include "qeltin/render/GlCoord.h"

class GlContext;

namespace qeltin::testing {
struct GlPeer;
}

// A camera with a perspective projection, a place on the window, and a frame that may be drawn
// around that place. Several viewers can share a window. GlContext creates, owns and calls them.
//
// A new viewer fills the window and shows no frame, for VIEWER_CLIP is not among its states. Hosts
// are compiled against the order of the virtual operations.
//
// Threads: no lock. Operations that draw run within a frame of the context.
class QELTIN_API GlViewer {
 public:
  // Bits of the state.
  enum eState : int {
    VIEWER_SHOW = 0x01,           // the frame needs this bit too
    VIEWER_CLIP = 0x04,           // draw inside the clip rectangle only
    VIEWER_CLIP_VIEWPORT = 0x08,  // with VIEWER_CLIP, the rectangle is the viewport too; without
                                  // this bit the viewport stays as it was last set
    VIEWER_FRAME = 0x10,          // with VIEWER_CLIP, draw the frame
    VIEWER_FRAME_INSET = 0x20,    // a little inside the edge
  };

  static constexpr int DEFAULT_STATE = VIEWER_SHOW | VIEWER_CLIP_VIEWPORT | VIEWER_FRAME;
  static constexpr double DEFAULT_EYE_FOVY_DEG = 27.0;
  static constexpr double DEFAULT_EYE_ASPECT = 1.0;
  static constexpr double DEFAULT_EYE_ZNEAR_M = 0.5;
  static constexpr double DEFAULT_EYE_ZFAR_M = 10000.0;
  static constexpr int DEFAULT_CLIP_X = 10;
  static constexpr int DEFAULT_CLIP_Y = 10;
  static constexpr int DEFAULT_CLIP_WIDTH = 150;
  static constexpr int DEFAULT_CLIP_HEIGHT = 100;
  static constexpr GlColor DEFAULT_FRAME_COLOR{1.0f, 1.0f, 1.0f, 1.0f};

  virtual ~GlViewer() = default;
  GlViewer(GlViewer const&) = default;
  GlViewer& operator=(GlViewer const&) = default;

  // Returns true iff all bits of `mask` are set.
  bool HasState(int mask) const { return (m_iState & mask) == mask; }

  void EnableState(int mask) { m_iState |= mask; }
  void DisableState(int mask) { m_iState &= ~mask; }

  // The vertical field of view in degrees, and by how much the picture is wider than its place on
  // the window asks for.
  double GetEyeFovy() const { return m_dEyeFovy; }
  double GetEyeAspect() const { return m_dEyeAspect; }

  // The distances, in the unit of the scene, between which things are seen.
  double GetEyeZNear() const { return m_dEyeZNear; }
  double GetEyeZFar() const { return m_dEyeZFar; }

  // Returns false, with nothing changed, below 0 and from 180 on.
  bool SetEyeFovy(double degrees);

  // Always true: no value is refused.
  bool SetEyeAspect(double aspect);

  // Sets the smaller size of the two as near and the larger as far, whatever their order and signs.
  // Returns false, with nothing changed, where their sizes are equal.
  bool SetEyeZNearAndFar(double a, double b);

  // The clip rectangle in pixels; x and y are those of its lower left corner, from the lower left
  // of the window.
  int GetClipX() const { return m_iClipX; }
  int GetClipY() const { return m_iClipY; }
  int GetClipWidth() const { return m_iClipWidth; }
  int GetClipHeight() const { return m_iClipHeight; }

  // Returns false, with nothing changed, unless 0 <= x < width and 0 <= y < height. Note that the
  // position is held against the size, so that x 200 with width 100 is refused.
  bool SetClipRectangle(int x, int y, int width, int height);

  GlColor const& GetFrameColor() const { return m_FrameColor; }
  void SetFrameColor(GlColor const& color) { m_FrameColor = color; }

  // The place and direction of the eye.
  GlCoord GetCS() const { return m_CS; }
  void SetCS(GlCoord const& cs) { m_CS = cs; }

 protected:
  GlViewer() = default;

  // Sets viewport and scissor, clears colour and depth there, and multiplies the current matrix by
  // the projection. REQUIRES: the projection matrix is selected and the identity.
  void SetProjection(GlContext* context);

  // Draws the frame, in a line of 2 pixels that stays the width afterwards. Nothing unless both
  // VIEWER_CLIP and VIEWER_FRAME are set.
  virtual void DrawFrame(GlContext* context);

 private:
  friend class GlContext;
  friend struct qeltin::testing::GlPeer;

  int m_iState = DEFAULT_STATE;
  double m_dEyeFovy = DEFAULT_EYE_FOVY_DEG;
  double m_dEyeAspect = DEFAULT_EYE_ASPECT;
  double m_dEyeZNear = DEFAULT_EYE_ZNEAR_M;
  double m_dEyeZFar = DEFAULT_EYE_ZFAR_M;
  int m_iClipX = DEFAULT_CLIP_X;
  int m_iClipY = DEFAULT_CLIP_Y;
  int m_iClipWidth = DEFAULT_CLIP_WIDTH;
  int m_iClipHeight = DEFAULT_CLIP_HEIGHT;
  GlColor m_FrameColor = DEFAULT_FRAME_COLOR;
  GlCoord m_CS;
};
