#include "qeltin/platform/gl/X11Frame.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <poll.h>

#include <algorithm>

#include "qeltin/platform/Utf8.h"

namespace qeltin::detail {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = WindowEvent::Kind;

constexpr long EVENTS = KeyPressMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                        ExposureMask | StructureNotifyMask | SubstructureNotifyMask;

// Key, button and motion events have these members in common.
template <typename Event>
void SetPointer(Event const& x, Kind kind, WindowEvent& event) {
  event.kind = kind;
  event.x = x.x;
  event.y = x.y;
  event.shift = (x.state & ShiftMask) != 0;
  event.control = (x.state & ControlMask) != 0;
}

bool TranslateKey(XKeyEvent& x, WindowEvent& event) {
  SetPointer(x, Kind::KEY, event);
  char text[8];
  if (XLookupString(&x, text, sizeof text, nullptr, nullptr) != 1) return false;
  event.key = static_cast<unsigned char>(text[0]);
  return true;
}

bool TranslateButton(XButtonEvent const& x, WindowEvent& event) {
  bool const press = x.type == ButtonPress;
  SetPointer(x, press ? Kind::PRESS : Kind::RELEASE, event);
  switch (x.button) {
    case Button1:
      event.button = WindowEvent::LEFT;
      return true;
    case Button2:
      event.button = WindowEvent::MIDDLE;
      return true;
    case Button3:
      event.button = WindowEvent::RIGHT;
      return true;
    case Button4:
    case Button5:
      event.kind = Kind::WHEEL;
      event.steps = x.button == Button4 ? 1 : -1;
      return press;
    default:
      return false;
  }
}

// Waits until `descriptor` has something to read, or `end` has come.
bool AwaitInput(int descriptor, Clock::time_point end) {
  using std::chrono::milliseconds;
  constexpr milliseconds LONGEST{1'000'000};
  auto const left = std::chrono::ceil<milliseconds>(end - Clock::now());
  pollfd input{descriptor, POLLIN, 0};
  int const limit = static_cast<int>(std::clamp(left, milliseconds{0}, LONGEST).count());
  return poll(&input, 1, limit) != 0;
}

}  // namespace

X11Frame::X11Frame(std::wstring const& title, int width, int height, std::string const& display)
    : m_Connection(display), m_iWidth(std::max(width, 1)), m_iHeight(std::max(height, 1)) {
  if (m_Connection.IsOk()) Open(title);
}

X11Frame::~X11Frame() {
  if (m_Connection.IsOk()) XDestroyWindow(m_Connection.Display(), m_iWindow);
}

void X11Frame::Open(std::wstring const& title) {
  ::Display* const display = m_Connection.Display();
  m_iWindow =
      XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, m_iWidth, m_iHeight, 0, 0, 0);
  XSelectInput(display, m_iWindow, EVENTS);
  m_iDelete = XInternAtom(display, "WM_DELETE_WINDOW", False);
  XSetWMProtocols(display, m_iWindow, &m_iDelete, 1);
  SetTitle(title);
  XMapWindow(display, m_iWindow);
  XSync(display, False);  // other connections may use the window from now on
}

void X11Frame::SetTitle(std::wstring const& title) {
  if (!m_Connection.IsOk()) return;
  ::Display* const display = m_Connection.Display();
  std::string text = ToUtf8(title);
  Xutf8SetWMProperties(display, m_iWindow, text.c_str(), text.c_str(), nullptr, 0, nullptr, nullptr,
                       nullptr);
  auto const* const bytes = reinterpret_cast<unsigned char const*>(text.data());
  XChangeProperty(display, m_iWindow, XInternAtom(display, "_NET_WM_NAME", False),
                  XInternAtom(display, "UTF8_STRING", False), 8, PropModeReplace, bytes,
                  static_cast<int>(text.size()));
  XFlush(display);
}

void X11Frame::Resize(int width, int height) {
  if (!m_Connection.IsOk()) return;
  XResizeWindow(m_Connection.Display(), m_iWindow, std::max(width, 1), std::max(height, 1));
  XFlush(m_Connection.Display());
}

bool X11Frame::NextEvent(WindowEvent& event, std::chrono::milliseconds limit) {
  Clock::time_point const end = Clock::now() + limit;
  event = {};
  while (m_Connection.IsOk()) {
    while (XPending(m_Connection.Display()) > 0) {
      if (TakePending(event)) return true;
    }
    if (m_Connection.IsOk() && !AwaitInput(ConnectionNumber(m_Connection.Display()), end)) {
      return false;
    }
  }
  event.kind = Kind::CLOSE;
  return true;
}

bool X11Frame::TakePending(WindowEvent& event) {
  XEvent x;
  XNextEvent(m_Connection.Display(), &x);
  event = {};
  return m_Connection.IsOk() && Translate(x, event);
}

bool X11Frame::Translate(XEvent& x, WindowEvent& event) {
  switch (x.type) {
    case KeyPress:
      return TranslateKey(x.xkey, event);
    case ButtonPress:
    case ButtonRelease:
      return TranslateButton(x.xbutton, event);
    case MotionNotify:
      SetPointer(x.xmotion, Kind::MOTION, event);
      return true;
    case CreateNotify:
      Adopt(x.xcreatewindow.window);
      return true;
    case Expose:
      return x.xexpose.count == 0;
    case ConfigureNotify:
      return x.xconfigure.window == m_iWindow &&
             TakeSize(x.xconfigure.width, x.xconfigure.height, event);
    case DestroyNotify:
      event.kind = Kind::CLOSE;
      return x.xdestroywindow.window == m_iWindow;
    case ClientMessage:
      event.kind = Kind::CLOSE;
      return static_cast<unsigned long>(x.xclient.data.l[0]) == m_iDelete;
    default:
      return false;
  }
}

bool X11Frame::TakeSize(int width, int height, WindowEvent& event) {
  if (width == m_iWidth && height == m_iHeight) return false;
  m_iWidth = width;
  m_iHeight = height;
  FitInner();
  event.kind = Kind::RESIZE;
  event.width = width;
  event.height = height;
  return true;
}

void X11Frame::Adopt(unsigned long inner) {
  m_iInner = inner;
  XSelectInput(m_Connection.Display(), inner, ExposureMask);
  FitInner();
}

void X11Frame::FitInner() {
  if (m_iInner == 0) return;
  XResizeWindow(m_Connection.Display(), m_iInner, m_iWidth, m_iHeight);
  XSync(m_Connection.Display(), False);  // what is drawn next has the size already
}

}  // namespace qeltin::detail
