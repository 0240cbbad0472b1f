#include "qeltin/platform/gl/X11Connection.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <memory>

#include "testing/InAChild.h"
#include "testing/gl/Xvfb.h"

// It defines words that others use, such as None.
#include <X11/Xlib.h>

namespace {

using qeltin::detail::X11Connection;
using qeltin::testing::InAChild;
using qeltin::testing::Xvfb;

TEST(X11Connection, SaysThatNoServerIsNamed) {
  EXPECT_EQ(InAChild([] {
              unsetenv("DISPLAY");
              X11Connection const connection("");
              return connection.Reason() == "DISPLAY names no X server" ? 0 : 1;
            }),
            0);
}

TEST(X11Connection, OpensTheServerThatTheEnvironmentNames) {
  Xvfb const server;
  if (server.Display().empty()) GTEST_SKIP() << "there is no Xvfb";
  EXPECT_EQ(InAChild([&server] {
              setenv("DISPLAY", server.Display().c_str(), 1);
              X11Connection const connection("");
              return connection.IsOk() && connection.Name() == server.Display() ? 0 : 1;
            }),
            0);
}

int errors_heard = 0;

int Hear(::Display*, XErrorEvent*) { return ++errors_heard; }

void ProvokeError(::Display* display) {
  constexpr unsigned long NO_WINDOW = 1;
  XMapWindow(display, NO_WINDOW);
  XSync(display, False);
}

TEST(X11Connection, LeavesTheErrorsOfOthersToTheirHandler) {
  Xvfb const server;
  if (server.Display().empty()) GTEST_SKIP() << "there is no Xvfb";
  EXPECT_EQ(InAChild([&server] {
              XSetErrorHandler(Hear);
              X11Connection const connection(server.Display());
              ::Display* const other = XOpenDisplay(server.Display().c_str());
              ProvokeError(connection.Display());
              bool const quiet = errors_heard == 0 && connection.IsOk();
              ProvokeError(other);
              return quiet && errors_heard == 1 ? 0 : 1;
            }),
            0);
}

TEST(X11Connection, TheLastToGoPutsBackTheHandlerOfBefore) {
  Xvfb const server;
  if (server.Display().empty()) GTEST_SKIP() << "there is no Xvfb";
  EXPECT_EQ(InAChild([&server] {
              XSetErrorHandler(Hear);
              auto one = std::make_unique<X11Connection>(server.Display());
              auto other = std::make_unique<X11Connection>(server.Display());
              one.reset();
              other.reset();
              return XSetErrorHandler(nullptr) == Hear ? 0 : 1;
            }),
            0);
}

int HearToo(::Display*, XErrorEvent*) { return 0; }

TEST(X11Connection, LeavesAHandlerAloneThatTheHostSetsLater) {
  Xvfb const server;
  if (server.Display().empty()) GTEST_SKIP() << "there is no Xvfb";
  EXPECT_EQ(InAChild([&server] {
              auto connection = std::make_unique<X11Connection>(server.Display());
              XSetErrorHandler(HearToo);
              connection.reset();
              return XSetErrorHandler(nullptr) == HearToo ? 0 : 1;
            }),
            0);
}

}  // namespace
