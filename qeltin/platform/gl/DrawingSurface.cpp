#include "qeltin/platform/gl/DrawingSurface.h"

RenderingContext::~RenderingContext() = default;

DrawingSurface::~DrawingSurface() = default;
