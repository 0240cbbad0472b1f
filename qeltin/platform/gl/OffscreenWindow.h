#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qeltin/platform/Export.h"
#include "qeltin/platform/gl/DrawingWindow.h"

namespace qeltin::detail {
class OffscreenSurface;
}

// A window that nobody sees: GL draws into memory, without a screen or a window system, and the
// host reads the picture back. It stands on EGL.
//
// Threads: one at a time.
class QELTIN_API OffscreenWindow : public DrawingWindow {
 public:
  // Sizes below 1 become 1. `samples` is how many places a pixel is the mean of, for smooth edges;
  // 0 takes each pixel at its centre. A driver may take more than wished, or fewer where it has not
  // as many.
  OffscreenWindow(int width, int height, int samples = 0);
  ~OffscreenWindow() override;

  // Returns true iff nothing has stood in the way of drawing so far. What may: no EGL, no driver,
  // a picture too large. Where the answer is false, GetError tells the first that did in words.
  // A driver is first asked for a context when a GlContext is built, so ask again after that.
  bool IsOk() const;
  std::string GetError() const;

  HDC GetDC() override;
  void ReleaseDC(HDC surface) override;
  int GetWidth() const override;
  int GetHeight() const override;

  // The number of samples that pictures have. Known once a GlContext has been built; 0 before that.
  int GetSamples() const;

  // Gives later frames another size; sizes below 1 become 1. What was drawn is lost. The host tells
  // its GlContext with OnSize. Returns false, with nothing changed, where there is no memory for
  // the size. REQUIRES: no frame is under way.
  bool Resize(int width, int height);

  // Fills `rgb` with what the frame under way has drawn up to here: three bytes a pixel, red,
  // green, blue, rows from the top down without gaps. Returns false, with `rgb` empty, outside of a
  // frame on this window.
  bool ReadPixels(std::vector<unsigned char>& rgb) const;

 private:
  std::unique_ptr<qeltin::detail::OffscreenSurface> m_pSurface;  // not null
};
