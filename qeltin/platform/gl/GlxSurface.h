#pragma once

#include <atomic>
#include <string>

#include "qeltin/platform/gl/DrawingSurface.h"
#include "qeltin/platform/gl/X11Connection.h"

struct __GLXFBConfigRec;

namespace qeltin::detail {

// A window inside another, which GLX draws on. It is made by SetPixelFormat, in the visual that the
// format wants.
class GlxSurface : public DrawingSurface {
 public:
  // `parent` is the window system's number of the outer window, on the server `display`.
  GlxSurface(std::string const& display, unsigned long parent);
  ~GlxSurface() override;

  // Empty as long as nothing has failed. From any thread.
  std::string Error() const;

  int ChoosePixelFormat(PIXELFORMATDESCRIPTOR const& wished) override;
  bool SetPixelFormat(int format) override;
  RenderingContext* CreateContext() override;
  void DeleteContext(RenderingContext* context) override;
  bool MakeCurrent(RenderingContext* context) override;
  void SwapBuffers() override;

 private:
  class Context;

  bool Fail(char const* error);
  void OpenWindow(__GLXFBConfigRec* config);

  X11Connection m_Connection;
  unsigned long m_iParent;
  int m_iFormat = 0;
  __GLXFBConfigRec* m_pConfig = nullptr;  // of the format; owned by GLX
  unsigned long m_iColormap = 0;
  unsigned long m_iWindow = 0;
  unsigned long m_iDrawable = 0;  // what GLX calls the window
  std::atomic<char const*> m_pError = nullptr;
};

}  // namespace qeltin::detail
