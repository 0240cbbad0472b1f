#include "testing/gl/Screen.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace qeltin::testing {

namespace {

// REQUIRES: eight bits a colour, blue the lowest, as the screens of tests have.
std::vector<unsigned char> Bytes(XImage& image) {
  std::vector<unsigned char> bytes;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      unsigned long const pixel = XGetPixel(&image, x, y);
      for (int const shift : {16, 8, 0}) {
        bytes.push_back(static_cast<unsigned char>(pixel >> shift & 0xff));
      }
    }
  }
  return bytes;
}

}  // namespace

std::vector<unsigned char> ReadScreen(std::string const& display, int x, int y, int width,
                                      int height) {
  std::vector<unsigned char> bytes;
  Display* const connection = XOpenDisplay(display.c_str());
  if (connection == nullptr) return bytes;
  int const screen = DefaultScreen(connection);
  bool const inside = x >= 0 && y >= 0 && x + width <= DisplayWidth(connection, screen) &&
                      y + height <= DisplayHeight(connection, screen);
  XImage* const image = inside ? XGetImage(connection, DefaultRootWindow(connection), x, y, width,
                                           height, AllPlanes, ZPixmap)
                               : nullptr;
  if (image != nullptr) {
    bytes = Bytes(*image);
    XDestroyImage(image);
  }
  XCloseDisplay(connection);
  return bytes;
}

void AskToClose(std::string const& display, unsigned long window) {
  Display* const connection = XOpenDisplay(display.c_str());
  if (connection == nullptr) return;
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(connection, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(connection, "WM_DELETE_WINDOW", False));
  XSendEvent(connection, window, False, NoEventMask, &event);
  XCloseDisplay(connection);
}

}  // namespace qeltin::testing
