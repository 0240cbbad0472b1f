#include "qeltin/platform/gl/OffscreenWindow.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>

#include <algorithm>
#include <cstdio>
#include <tuple>
#include <utility>

#include "qeltin/platform/gl/SampleBuffer.h"

namespace {

using qeltin::detail::SampleBuffer;

std::string WithEglError(std::string const& what) {
  char code[32];
  std::snprintf(code, sizeof(code), " (EGL error 0x%X)", static_cast<unsigned int>(eglGetError()));
  return what + code;
}

// The connection to EGL that all off-screen windows of the process share. It is never closed, for
// other users of EGL in the process may have been given the same one.
struct Display {
  EGLDisplay handle;
  std::string error;  // empty where the display can be used

  static Display const& Get() {
    static Display const display;
    return display;
  }

 private:
  Display()
      : handle(eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)) {
    if (handle == EGL_NO_DISPLAY) {
      error = WithEglError("no EGL driver here draws without a window system");
    } else if (eglInitialize(handle, nullptr, nullptr) == EGL_FALSE) {
      error = WithEglError("EGL finds no driver that works");
    } else if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE) {
      error = WithEglError("EGL is without OpenGL here");
    }
  }
};

int GetAttribute(EGLConfig config, EGLint name) {
  EGLint value = 0;
  eglGetConfigAttrib(Display::Get().handle, config, name, &value);
  return value;
}

// How far a configuration is from what is wished: what it lacks counts before what it has too much.
auto Distance(EGLConfig config, PIXELFORMATDESCRIPTOR const& wished) {
  int const wishedColor = std::min<int>(wished.cColorBits, 24);  // 32 counts an alpha
  int const color = GetAttribute(config, EGL_RED_SIZE) + GetAttribute(config, EGL_GREEN_SIZE) +
                    GetAttribute(config, EGL_BLUE_SIZE);
  int const depth = GetAttribute(config, EGL_DEPTH_SIZE);
  auto const lack = [](int has, int needs) { return std::max(needs - has, 0); };
  return std::tuple(lack(color, wishedColor), lack(depth, wished.cDepthBits),
                    GetAttribute(config, EGL_SAMPLES), color, depth,
                    GetAttribute(config, EGL_ALPHA_SIZE), GetAttribute(config, EGL_STENCIL_SIZE));
}

std::vector<EGLConfig> FindConfigs(std::vector<EGLint> attributes) {
  attributes.push_back(EGL_NONE);
  EGLDisplay const display = Display::Get().handle;
  EGLint count = 0;
  eglChooseConfig(display, attributes.data(), nullptr, 0, &count);
  std::vector<EGLConfig> configs(count);
  eglChooseConfig(display, attributes.data(), configs.data(), count, &count);
  configs.resize(count);
  return configs;
}

class EglContext : public RenderingContext {
 public:
  explicit EglContext(EGLContext handle) : m_Handle(handle) {}
  ~EglContext() override { eglDestroyContext(Display::Get().handle, m_Handle); }

  EGLContext GetHandle() const { return m_Handle; }
  SampleBuffer& Samples() { return m_Samples; }

 private:
  EGLContext const m_Handle;  // owned
  SampleBuffer m_Samples;     // of that context
};

void FlipRows(std::vector<unsigned char>& pixels, int height) {
  auto const stride = pixels.size() / height;
  for (int low = 0, high = height - 1; low < high; ++low, --high) {
    auto const row = pixels.begin() + low * stride;
    std::swap_ranges(row, row + stride, pixels.begin() + high * stride);
  }
}

}  // namespace

namespace qeltin::detail {

class OffscreenSurface : public DrawingSurface {
 public:
  OffscreenSurface(int width, int height, int samples)
      : m_iWidth(std::max(width, 1)),
        m_iHeight(std::max(height, 1)),
        m_iWishedSamples(samples),
        m_Error(Display::Get().error) {}

  ~OffscreenSurface() override { DestroyBuffer(m_Buffer); }

  int ChoosePixelFormat(PIXELFORMATDESCRIPTOR const& wished) override;
  bool SetPixelFormat(int format) override;
  RenderingContext* CreateContext() override;
  void DeleteContext(RenderingContext* context) override;
  bool MakeCurrent(RenderingContext* context) override;
  void SwapBuffers() override { eglSwapBuffers(Display::Get().handle, m_Buffer); }

  bool Resize(int width, int height);

  // Fills `rgb`, of the surface's size, and returns true iff a context is current on the surface.
  bool ReadPixels(std::vector<unsigned char>& rgb) const;

  int GetWidth() const { return m_iWidth; }
  int GetHeight() const { return m_iHeight; }
  int GetSamples() const { return m_iSamples; }
  std::string const& GetError() const { return m_Error; }

 private:
  static void DestroyBuffer(EGLSurface buffer) {
    if (buffer != EGL_NO_SURFACE) eglDestroySurface(Display::Get().handle, buffer);
  }

  EGLSurface CreateBuffer(int width, int height) const;
  void Fail(std::string const& error);
  void CheckSize();
  void UseSamples();

  int m_iWidth;
  int m_iHeight;
  int m_iWishedSamples;
  int m_iSamples = 0;  // of the latest frame
  std::string m_Error;
  EGLConfig m_Config = nullptr;          // set with m_Buffer
  EGLSurface m_Buffer = EGL_NO_SURFACE;  // owned
  EglContext* m_pCurrent = nullptr;      // not owned; the one that is current on this surface
};

void OffscreenSurface::Fail(std::string const& error) {
  if (m_Error.empty()) m_Error = error;
}

int OffscreenSurface::ChoosePixelFormat(PIXELFORMATDESCRIPTOR const& wished) {
  if (!m_Error.empty()) return 0;
  auto const configs =
      FindConfigs({EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT});
  if (configs.empty()) {
    Fail("EGL offers no format for pictures");
    return 0;
  }
  auto const nearer = [&](EGLConfig a, EGLConfig b) {
    return Distance(a, wished) < Distance(b, wished);
  };
  return GetAttribute(*std::min_element(configs.begin(), configs.end(), nearer), EGL_CONFIG_ID);
}

bool OffscreenSurface::SetPixelFormat(int format) {
  if (m_Config != nullptr) return GetAttribute(m_Config, EGL_CONFIG_ID) == format;
  auto const configs = FindConfigs({EGL_CONFIG_ID, format});
  if (format == 0 || configs.empty()) return false;
  m_Config = configs.front();
  m_Buffer = CreateBuffer(m_iWidth, m_iHeight);
  if (m_Buffer == EGL_NO_SURFACE) Fail(WithEglError("EGL gives no memory for the picture"));
  return m_Buffer != EGL_NO_SURFACE;
}

EGLSurface OffscreenSurface::CreateBuffer(int width, int height) const {
  EGLint const attributes[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
  return eglCreatePbufferSurface(Display::Get().handle, m_Config, attributes);
}

RenderingContext* OffscreenSurface::CreateContext() {
  if (m_Buffer == EGL_NO_SURFACE) return nullptr;
  eglBindAPI(EGL_OPENGL_API);
  EGLContext const handle =
      eglCreateContext(Display::Get().handle, m_Config, EGL_NO_CONTEXT, nullptr);
  if (handle != EGL_NO_CONTEXT) return new EglContext(handle);
  Fail(WithEglError("EGL gives no OpenGL context"));
  return nullptr;
}

void OffscreenSurface::DeleteContext(RenderingContext* context) {
  auto const* const ours = static_cast<EglContext*>(context);
  if (ours != nullptr && eglGetCurrentContext() == ours->GetHandle()) MakeCurrent(nullptr);
  delete ours;
}

bool OffscreenSurface::MakeCurrent(RenderingContext* context) {
  EGLDisplay const display = Display::Get().handle;
  eglBindAPI(EGL_OPENGL_API);  // each thread has one of its own
  m_pCurrent = nullptr;
  if (context == nullptr) {
    return eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) == EGL_TRUE;
  }
  auto* const ours = static_cast<EglContext*>(context);
  if (eglMakeCurrent(display, m_Buffer, m_Buffer, ours->GetHandle()) == EGL_FALSE) {
    Fail(WithEglError("EGL does not make its OpenGL context current"));
    return false;
  }
  m_pCurrent = ours;
  CheckSize();
  if (m_iWishedSamples > 0) UseSamples();
  return true;
}

// EGL gives buffers of any size, and GL leaves what is beyond its limits undrawn.
void OffscreenSurface::CheckSize() {
  GLint limits[2] = {};
  glGetIntegerv(GL_MAX_VIEWPORT_DIMS, limits);
  if (m_iWidth <= limits[0] && m_iHeight <= limits[1]) return;
  Fail("the driver draws no picture larger than " + std::to_string(limits[0]) + " by " +
       std::to_string(limits[1]) + " pixels");
}

void OffscreenSurface::UseSamples() {
  SampleBuffer& samples = m_pCurrent->Samples();
  if (!samples.HasSize(m_iWidth, m_iHeight)) {
    samples.Delete();
    samples.Make(m_iWidth, m_iHeight, m_iWishedSamples);
  }
  samples.Bind();
  m_iSamples = samples.GetSamples();
}

bool OffscreenSurface::Resize(int width, int height) {
  int const newWidth = std::max(width, 1);
  int const newHeight = std::max(height, 1);
  if (m_Buffer != EGL_NO_SURFACE) {
    EGLSurface const buffer = CreateBuffer(newWidth, newHeight);
    if (buffer == EGL_NO_SURFACE) return false;
    DestroyBuffer(std::exchange(m_Buffer, buffer));
  }
  m_iWidth = newWidth;
  m_iHeight = newHeight;
  return true;
}

bool OffscreenSurface::ReadPixels(std::vector<unsigned char>& rgb) const {
  if (m_pCurrent == nullptr || eglGetCurrentSurface(EGL_DRAW) != m_Buffer) return false;
  m_pCurrent->Samples().Resolve();
  GLint readBuffer = 0;
  GLint drawBuffer = 0;
  glGetIntegerv(GL_READ_BUFFER, &readBuffer);
  glGetIntegerv(GL_DRAW_BUFFER, &drawBuffer);
  glReadBuffer(drawBuffer);
  glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glPixelStorei(GL_PACK_ROW_LENGTH, 0);
  glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_PACK_SKIP_ROWS, 0);
  glReadPixels(0, 0, m_iWidth, m_iHeight, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());
  glPopClientAttrib();
  glReadBuffer(readBuffer);
  m_pCurrent->Samples().Bind();
  FlipRows(rgb, m_iHeight);
  return true;
}

}  // namespace qeltin::detail

OffscreenWindow::OffscreenWindow(int width, int height, int samples)
    : m_pSurface(std::make_unique<qeltin::detail::OffscreenSurface>(width, height, samples)) {}

OffscreenWindow::~OffscreenWindow() = default;

bool OffscreenWindow::IsOk() const { return m_pSurface->GetError().empty(); }

std::string OffscreenWindow::GetError() const { return m_pSurface->GetError(); }

HDC OffscreenWindow::GetDC() { return m_pSurface.get(); }

void OffscreenWindow::ReleaseDC(HDC) {}

int OffscreenWindow::GetWidth() const { return m_pSurface->GetWidth(); }

int OffscreenWindow::GetHeight() const { return m_pSurface->GetHeight(); }

int OffscreenWindow::GetSamples() const { return m_pSurface->GetSamples(); }

bool OffscreenWindow::Resize(int width, int height) { return m_pSurface->Resize(width, height); }

bool OffscreenWindow::ReadPixels(std::vector<unsigned char>& rgb) const {
  rgb.resize(std::size_t{3} * GetWidth() * GetHeight());
  if (!m_pSurface->ReadPixels(rgb)) rgb.clear();
  return !rgb.empty();
}
