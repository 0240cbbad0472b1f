#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/platform/gl/PixelFormat.h"

// A GL rendering context as the surface made it that it belongs to.
class QELTIN_API RenderingContext {
 public:
  RenderingContext() = default;
  RenderingContext(RenderingContext const&) = delete;
  RenderingContext& operator=(RenderingContext const&) = delete;
  virtual ~RenderingContext();
};

// What a window shows of GL: the place that pixels go to, and the making of contexts that draw on
// it. Each kind of window derives its own.
//
// In the order of use: ChoosePixelFormat and SetPixelFormat once, CreateContext, and then for each
// picture MakeCurrent of the context, drawing, SwapBuffers, MakeCurrent of null.
//
// Threads: as the caller orders them, one at a time. A context is current on one thread at most.
class QELTIN_API DrawingSurface {
 public:
  DrawingSurface() = default;
  DrawingSurface(DrawingSurface const&) = delete;
  DrawingSurface& operator=(DrawingSurface const&) = delete;
  virtual ~DrawingSurface();

  // Returns the number of the format that comes nearest to `wished`, or 0 where there is none.
  virtual int ChoosePixelFormat(PIXELFORMATDESCRIPTOR const& wished) = 0;

  // Gives the surface the format of that number, once for its life. Returns true iff it has that
  // format then.
  virtual bool SetPixelFormat(int format) = 0;

  // Makes a GL compatibility context in the surface's format. Owned by the caller, who gives it to
  // DeleteContext before the surface goes. Null where none can be made.
  virtual RenderingContext* CreateContext() = 0;

  // Takes `context` off the calling thread where it is current there, and destroys it and the lists
  // compiled in it. A null one is ignored. REQUIRES: it comes from this surface.
  virtual void DeleteContext(RenderingContext* context) = 0;

  // Binds `context` and this surface to the calling thread, or unbinds whatever is current there
  // with null. Returns true iff that came about.
  virtual bool MakeCurrent(RenderingContext* context) = 0;

  // Shows what has been drawn.
  virtual void SwapBuffers() = 0;
};

using HDC = DrawingSurface*;
using HGLRC = RenderingContext*;

// The colours of an indexed display. None is supported, so that there is no such object.
struct ColorPalette;
using HPALETTE = ColorPalette*;
