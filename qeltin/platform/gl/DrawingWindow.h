#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/platform/MessageTarget.h"
#include "qeltin/platform/gl/DrawingSurface.h"

// A window that can be drawn on with GL; its address is the HWND that GlContext takes. A host that
// has a window system of its own derives from this class and DrawingSurface.
//
// Threads: GetDC and ReleaseDC from any thread, one at a time.
class QELTIN_API DrawingWindow : public MessageTarget {
 public:
  DrawingWindow() = default;
  ~DrawingWindow() override;

  // Returns the surface to draw on, the same at each call. Owned by the window, stays valid as long
  // as it. Null where there is none.
  virtual HDC GetDC() = 0;

  // Gives back what GetDC returned, once for each call.
  virtual void ReleaseDC(HDC surface) = 0;

  // The size of what is drawn on, in pixels.
  virtual int GetWidth() const = 0;
  virtual int GetHeight() const = 0;
};
