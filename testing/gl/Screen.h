#pragma once

#include <string>
#include <vector>

namespace qeltin::testing {

// What is to be seen on a part of an X server's screen: three bytes a pixel, red, green, blue, rows
// from the top down. Empty where the part is not wholly on the screen.
std::vector<unsigned char> ReadScreen(std::string const& display, int x, int y, int width,
                                      int height);

// Does what a window manager does where the user closes a window, told by its number.
void AskToClose(std::string const& display, unsigned long window);

}  // namespace qeltin::testing
