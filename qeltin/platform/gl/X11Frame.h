#pragma once

#include <atomic>
#include <chrono>
#include <string>

#include "qeltin/platform/gl/WindowEvent.h"
#include "qeltin/platform/gl/X11Connection.h"

union _XEvent;

namespace qeltin::detail {

// The outer window: what the user sees, moves and touches. A window that is made inside it fills
// it from then on.
//
// Threads: as X11Window tells.
class X11Frame {
 public:
  X11Frame(std::wstring const& title, int width, int height, std::string const& display);
  ~X11Frame();

  X11Connection const& Connection() const { return m_Connection; }

  // The window system's number for the window, 0 where there is none.
  unsigned long Id() const { return m_iWindow; }

  int Width() const { return m_iWidth; }
  int Height() const { return m_iHeight; }

  void SetTitle(std::wstring const& title);
  void Resize(int width, int height);
  bool NextEvent(WindowEvent& event, std::chrono::milliseconds limit);

 private:
  void Open(std::wstring const& title);

  // Returns true iff the pending event is one for the host.
  bool TakePending(WindowEvent& event);
  bool Translate(_XEvent& x, WindowEvent& event);
  bool TakeSize(int width, int height, WindowEvent& event);
  void Adopt(unsigned long inner);
  void FitInner();

  X11Connection m_Connection;
  unsigned long m_iWindow = 0;
  unsigned long m_iInner = 0;   // the window inside, 0 as long as there is none
  unsigned long m_iDelete = 0;  // the window manager's word for closing
  std::atomic<int> m_iWidth;
  std::atomic<int> m_iHeight;
};

}  // namespace qeltin::detail
