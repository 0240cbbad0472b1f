#include "qeltin/platform/gl/DrawingWindow.h"

DrawingWindow::~DrawingWindow() = default;
