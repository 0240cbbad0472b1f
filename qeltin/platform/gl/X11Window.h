#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "qeltin/platform/Export.h"
#include "qeltin/platform/gl/DrawingWindow.h"
#include "qeltin/platform/gl/WindowEvent.h"

namespace qeltin::detail {
class GlxSurface;
class X11Frame;
}  // namespace qeltin::detail

// A window on an X server, drawn on with GLX: double-buffered, in the colour and depth bits that
// the GlContext built on it asks for.
//
// Events and drawing run over two connections of their own, so that a thread may wait for events
// while others draw.
//
// Threads: NextEvent, SetTitle and Resize on one thread at a time; the drawing surface, as a
// GlContext orders it, and all other operations beside that on any.
class QELTIN_API X11Window : public DrawingWindow {
 public:
  // Shows a window of that size in pixels on the server `display`, as ":1", or on the one that the
  // environment names. Sizes below 1 become 1.
  X11Window(std::wstring const& title, int width, int height, std::string const& display = {});

  // REQUIRES: every GlContext on it has gone.
  ~X11Window() override;

  // Returns true iff nothing has stood in the way of drawing so far. What may: no server, none that
  // knows GLX, no driver, a server that has gone. Where the answer is false, GetError tells why in
  // words. A driver is first asked for a context when a GlContext is built, so ask again after
  // that. Drawing on a window that is not right is without effect.
  bool IsOk() const;
  std::string GetError() const;

  HDC GetDC() override;
  void ReleaseDC(HDC surface) override;

  // As the last event told.
  int GetWidth() const override;
  int GetHeight() const override;

  void SetTitle(std::wstring const& title);

  // Asks for another size. Whether it comes about is told by a RESIZE event.
  void Resize(int width, int height);

  // Takes the oldest event, waiting up to `limit` for one to come. Returns false where none does.
  // On a window that is not right, CLOSE at once. The host tells its GlContext of a RESIZE with
  // OnSize, and draws anew on EXPOSE and RESIZE.
  bool NextEvent(WindowEvent& event, std::chrono::milliseconds limit);

 private:
  std::unique_ptr<qeltin::detail::X11Frame> m_pFrame;      // what the user sees and touches
  std::unique_ptr<qeltin::detail::GlxSurface> m_pSurface;  // what is drawn on, fills the frame
};
