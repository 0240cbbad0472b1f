#pragma once

// What happened in a window that a user sees.
struct WindowEvent {
  enum class Kind {
    EXPOSE,   // what was drawn may be gone: draw again
    RESIZE,   // tells width and height
    KEY,      // a key went down, or repeats: tells key
    PRESS,    // a button went down: tells button
    RELEASE,  // a button came up: tells button
    MOTION,   // the pointer moved
    WHEEL,    // tells steps
    CLOSE,    // the user wants the window gone, or the screen has gone
  };
  enum Button { NONE = 0, LEFT = 1, MIDDLE = 2, RIGHT = 3 };

  Kind kind = Kind::EXPOSE;
  int x = 0;  // of the pointer, in pixels from the window's upper left corner, y downward; set for
  int y = 0;  // KEY, PRESS, RELEASE, MOTION and WHEEL
  bool shift = false;    // held down, for the same kinds
  bool control = false;  // likewise
  char32_t key = 0;      // the character that the key types, 27 for Escape
  Button button = NONE;
  int steps = 0;  // above 0 away from the user
  int width = 0;  // pixels, at least 1
  int height = 0;
};
