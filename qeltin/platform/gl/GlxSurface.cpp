#include "qeltin/platform/gl/GlxSurface.h"

#include <GL/glx.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qeltin::detail {

namespace {

struct FreeByX {
  void operator()(void* memory) const { XFree(memory); }
};
template <typename T>
using FromX = std::unique_ptr<T, FreeByX>;

bool HasGlx(::Display* display) {
  int major = 0;
  int minor = 0;
  return glXQueryExtension(display, nullptr, nullptr) == True &&
         glXQueryVersion(display, &major, &minor) == True &&
         (major > 1 || (major == 1 && minor >= 3));
}

std::vector<GLXFBConfig> Configs(::Display* display, int const* attributes) {
  int count = 0;
  FromX<GLXFBConfig> const found(
      glXChooseFBConfig(display, DefaultScreen(display), attributes, &count));
  std::span<GLXFBConfig> const all(found.get(), found == nullptr ? 0 : count);
  return {all.begin(), all.end()};
}

// Windows of a visual that has more planes than the screen's own may be shown translucent.
bool HasDepthOfScreen(::Display* display, GLXFBConfig config) {
  FromX<XVisualInfo> const visual(glXGetVisualFromFBConfig(display, config));
  return visual != nullptr && visual->depth == DefaultDepth(display, DefaultScreen(display));
}

int NumberOf(::Display* display, GLXFBConfig config) {
  int number = 0;
  glXGetFBConfigAttrib(display, config, GLX_FBCONFIG_ID, &number);
  return number;
}

// Returns 0 where there is none.
int Choose(::Display* display, int bits_per_colour, int depth_bits) {
  int const attributes[] = {
      GLX_X_RENDERABLE,
      True,
      GLX_DRAWABLE_TYPE,
      GLX_WINDOW_BIT,
      GLX_RENDER_TYPE,
      GLX_RGBA_BIT,
      GLX_DOUBLEBUFFER,
      True,
      GLX_RED_SIZE,
      bits_per_colour,
      GLX_GREEN_SIZE,
      bits_per_colour,
      GLX_BLUE_SIZE,
      bits_per_colour,
      GLX_DEPTH_SIZE,
      depth_bits,
      None,
  };
  std::vector<GLXFBConfig> const configs = Configs(display, attributes);
  auto const best = std::find_if(
      configs.begin(), configs.end(),
      [display](GLXFBConfig const& config) { return HasDepthOfScreen(display, config); });
  if (best != configs.end()) return NumberOf(display, *best);
  return configs.empty() ? 0 : NumberOf(display, configs.front());
}

// Lets the drivers that GLX has loaded stay for good. It unloads them with the last connection, and
// each time they leave memory behind.
void KeepDrivers() {
  std::vector<std::string> drivers;
  auto const add = [](dl_phdr_info* module, std::size_t, void* found) {
    std::string_view const path = module->dlpi_name;
    if (path.ends_with("_dri.so"))
      static_cast<std::vector<std::string>*>(found)->emplace_back(path);
    return 0;
  };
  dl_iterate_phdr(add, &drivers);
  for (std::string const& driver : drivers) {
    void* const module = dlopen(driver.c_str(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    if (module != nullptr) dlclose(module);
  }
}

}  // namespace

class GlxSurface::Context : public RenderingContext {
 public:
  Context(::Display* display, GLXFBConfig config)
      : m_pDisplay(display),
        m_pContext(glXCreateNewContext(display, config, GLX_RGBA_TYPE, nullptr, True)) {}
  ~Context() override {
    if (m_pContext != nullptr) glXDestroyContext(m_pDisplay, m_pContext);
  }

  GLXContext Get() const { return m_pContext; }

 private:
  ::Display* m_pDisplay;
  GLXContext m_pContext;
};

GlxSurface::GlxSurface(std::string const& display, unsigned long parent)
    : m_Connection(display), m_iParent(parent) {
  if (m_Connection.IsOk() && !HasGlx(m_Connection.Display())) Fail("the X server knows no GLX 1.3");
}

GlxSurface::~GlxSurface() {
  KeepDrivers();
  if (!m_Connection.IsOk()) return;
  ::Display* const display = m_Connection.Display();
  if (m_iDrawable != 0) glXDestroyWindow(display, m_iDrawable);
  if (m_iWindow != 0) XDestroyWindow(display, m_iWindow);
  if (m_iColormap != 0) XFreeColormap(display, m_iColormap);
}

std::string GlxSurface::Error() const {
  if (!m_Connection.IsOk()) return m_Connection.Reason();
  char const* const error = m_pError;
  return error == nullptr ? "" : error;
}

bool GlxSurface::Fail(char const* error) {
  char const* none = nullptr;
  m_pError.compare_exchange_strong(none, error);
  return false;
}

int GlxSurface::ChoosePixelFormat(PIXELFORMATDESCRIPTOR const& wished) {
  if (!Error().empty()) return 0;
  int const bits_per_colour = std::min(wished.cColorBits / 3, 8);
  for (int depth_bits : {int{wished.cDepthBits}, 24, 16, 0}) {
    int const format = Choose(m_Connection.Display(), bits_per_colour,
                              std::min(depth_bits, int{wished.cDepthBits}));
    if (format != 0) return format;
  }
  Fail("the X server has no pixel format for drawing");
  return 0;
}

bool GlxSurface::SetPixelFormat(int format) {
  if (!Error().empty() || format == 0) return false;
  if (m_iFormat != 0) return format == m_iFormat;
  int const attributes[] = {GLX_FBCONFIG_ID, format, None};
  std::vector<GLXFBConfig> const configs = Configs(m_Connection.Display(), attributes);
  if (configs.empty()) return Fail("the X server has no such pixel format");
  OpenWindow(configs.front());
  if (m_iDrawable == 0) return Fail("the X server makes no window for drawing");
  m_pConfig = configs.front();
  m_iFormat = format;
  return true;
}

void GlxSurface::OpenWindow(GLXFBConfig config) {
  ::Display* const display = m_Connection.Display();
  FromX<XVisualInfo> const visual(glXGetVisualFromFBConfig(display, config));
  XWindowAttributes outer;
  if (visual == nullptr || XGetWindowAttributes(display, m_iParent, &outer) == 0) return;
  m_iColormap = XCreateColormap(display, m_iParent, visual->visual, AllocNone);
  XSetWindowAttributes wished{};
  wished.colormap = m_iColormap;
  m_iWindow = XCreateWindow(display, m_iParent, 0, 0, outer.width, outer.height, 0, visual->depth,
                            InputOutput, visual->visual, CWColormap | CWBorderPixel, &wished);
  XMapWindow(display, m_iWindow);
  XSync(display, False);
  m_iDrawable = glXCreateWindow(display, config, m_iWindow, nullptr);
}

RenderingContext* GlxSurface::CreateContext() {
  if (m_iDrawable == 0 || !Error().empty()) return nullptr;
  auto context = std::make_unique<Context>(m_Connection.Display(), m_pConfig);
  if (context->Get() == nullptr) {
    Fail("the X server makes no context for drawing");
    return nullptr;
  }
  return context.release();
}

void GlxSurface::DeleteContext(RenderingContext* context) {
  auto* const ours = static_cast<Context*>(context);
  if (ours != nullptr && glXGetCurrentContext() == ours->Get()) MakeCurrent(nullptr);
  delete ours;
}

bool GlxSurface::MakeCurrent(RenderingContext* context) {
  if (!m_Connection.IsOk()) return false;
  ::Display* const display = m_Connection.Display();
  if (context == nullptr) return glXMakeContextCurrent(display, None, None, nullptr) == True;
  GLXContext const ours = static_cast<Context*>(context)->Get();
  return glXMakeContextCurrent(display, m_iDrawable, m_iDrawable, ours) == True ||
         Fail("the driver draws nothing on the X server");
}

void GlxSurface::SwapBuffers() {
  if (m_iDrawable != 0 && m_Connection.IsOk()) {
    glXSwapBuffers(m_Connection.Display(), m_iDrawable);
  }
}

}  // namespace qeltin::detail
