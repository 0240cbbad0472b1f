#include "qeltin/platform/gl/X11Connection.h"

#include <X11/Xlib.h>
#include <poll.h>

#include <mutex>
#include <set>
#include <vector>

namespace qeltin::detail {

namespace {

// The handlers of the window system serve the whole process. Ours are in place as long as there is
// a connection of ours.
class Handlers {
 public:
  static Handlers& Get() {
    static Handlers* const handlers = new Handlers;  // other threads may need it to the very end
    return *handlers;
  }

  void Add(::Display* display) {
    std::lock_guard const lock(m_Mutex);
    if (m_Ours.empty()) {
      m_pError = XSetErrorHandler(OnError);
      m_pIOError = XSetIOErrorHandler(OnIOError);
    }
    m_Ours.insert(display);
  }

  void Remove(::Display* display) {
    std::lock_guard const lock(m_Mutex);
    m_Ours.erase(display);
    if (!m_Ours.empty()) return;
    XErrorHandler const error = XSetErrorHandler(m_pError);
    if (error != OnError) XSetErrorHandler(error);  // the host has set its own since
    XIOErrorHandler const io_error = XSetIOErrorHandler(m_pIOError);
    if (io_error != OnIOError) XSetIOErrorHandler(io_error);
  }

  // Takes over a connection that has broken. It is never closed, since extensions of the window
  // system would then free twice what is theirs.
  void Keep(::Display* display) {
    std::lock_guard const lock(m_Mutex);
    m_Broken.push_back(display);
  }

 private:
  // Returns the handler that was there before, null where the connection is ours.
  template <typename Handler>
  Handler Before(::Display* display, Handler Handlers::*handler) {
    std::lock_guard const lock(m_Mutex);
    return m_Ours.contains(display) ? nullptr : this->*handler;
  }

  static int OnError(::Display* display, XErrorEvent* error) {
    XErrorHandler const before = Get().Before(display, &Handlers::m_pError);
    return before == nullptr ? 0 : before(display, error);
  }

  static int OnIOError(::Display* display) {
    XIOErrorHandler const before = Get().Before(display, &Handlers::m_pIOError);
    return before == nullptr ? 0 : before(display);
  }

  std::mutex m_Mutex;  // guards all below
  std::set<::Display*> m_Ours;
  std::vector<::Display*> m_Broken;
  XErrorHandler m_pError = nullptr;  // set while m_Ours is not empty
  XIOErrorHandler m_pIOError = nullptr;
};

void NoteBroken(::Display*, void* broken) { *static_cast<std::atomic<bool>*>(broken) = true; }

void IgnoreBroken(::Display*, void*) {}

}  // namespace

X11Connection::X11Connection(std::string const& display)
    : m_Name(XDisplayName(display.empty() ? nullptr : display.c_str())) {
  static bool const threads = XInitThreads() != 0;
  if (!threads) return;
  m_pDisplay = XOpenDisplay(m_Name.c_str());
  if (m_pDisplay == nullptr) return;
  Handlers::Get().Add(m_pDisplay);
  XSetIOErrorExitHandler(m_pDisplay, NoteBroken, &m_bBroken);
}

X11Connection::~X11Connection() {
  if (m_pDisplay == nullptr) return;
  if (IsOk()) {
    XCloseDisplay(m_pDisplay);
  } else {
    XSetIOErrorExitHandler(m_pDisplay, IgnoreBroken, nullptr);
    Handlers::Get().Keep(m_pDisplay);
  }
  Handlers::Get().Remove(m_pDisplay);
}

// The window system learns of a server that has gone only as it writes, or reads, the next time,
// and is then in the middle of something.
bool X11Connection::IsOk() const {
  if (m_pDisplay == nullptr || m_bBroken) return false;
  pollfd line{ConnectionNumber(m_pDisplay), 0, 0};
  return poll(&line, 1, 0) < 1;
}

std::string X11Connection::Reason() const {
  if (IsOk()) return {};
  if (m_pDisplay != nullptr) return "the X server " + m_Name + " has gone";
  return m_Name.empty() ? "DISPLAY names no X server" : "there is no X server at " + m_Name;
}

}  // namespace qeltin::detail
