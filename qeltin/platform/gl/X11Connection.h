#pragma once

#include <atomic>
#include <string>

struct _XDisplay;

namespace qeltin::detail {

// A connection to an X server. What goes wrong on it ends neither the process nor prints anything;
// errors on other connections of the process reach whoever handled them before.
//
// Threads: the display may be used on any thread, as the window system locks it.
class X11Connection {
 public:
  // Opens `display`, as ":1"; the one that the environment names where it is empty.
  explicit X11Connection(std::string const& display);
  ~X11Connection();
  X11Connection(X11Connection const&) = delete;
  X11Connection& operator=(X11Connection const&) = delete;

  // Null where there is no server. Owned by this object.
  _XDisplay* Display() const { return m_pDisplay; }

  // Returns true iff there was a server and it has not gone since.
  bool IsOk() const;

  // Why it is not, empty where it is.
  std::string Reason() const;

  // What the server is called, as ":1".
  std::string const& Name() const { return m_Name; }

 private:
  std::string m_Name;
  _XDisplay* m_pDisplay = nullptr;
  std::atomic<bool> m_bBroken = false;
};

}  // namespace qeltin::detail
