#include "qeltin/platform/gl/X11Window.h"

#include "qeltin/platform/gl/GlxSurface.h"
#include "qeltin/platform/gl/X11Frame.h"

using qeltin::detail::GlxSurface;
using qeltin::detail::X11Frame;

X11Window::X11Window(std::wstring const& title, int width, int height, std::string const& display)
    : m_pFrame(std::make_unique<X11Frame>(title, width, height, display)),
      m_pSurface(std::make_unique<GlxSurface>(m_pFrame->Connection().Name(), m_pFrame->Id())) {}

X11Window::~X11Window() = default;

bool X11Window::IsOk() const { return GetError().empty(); }

std::string X11Window::GetError() const {
  std::string const error = m_pFrame->Connection().Reason();
  return error.empty() ? m_pSurface->Error() : error;
}

HDC X11Window::GetDC() { return m_pSurface.get(); }

void X11Window::ReleaseDC(HDC) {}

int X11Window::GetWidth() const { return m_pFrame->Width(); }

int X11Window::GetHeight() const { return m_pFrame->Height(); }

void X11Window::SetTitle(std::wstring const& title) { m_pFrame->SetTitle(title); }

void X11Window::Resize(int width, int height) { m_pFrame->Resize(width, height); }

bool X11Window::NextEvent(WindowEvent& event, std::chrono::milliseconds limit) {
  if (m_pSurface->Error().empty()) return m_pFrame->NextEvent(event, limit);
  event = {};
  event.kind = WindowEvent::Kind::CLOSE;
  return true;
}
