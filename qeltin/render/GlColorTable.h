#pragma once

#include "qeltin/platform/ColorTable.h"

// What a drawing takes the colours of heights from.
using GlColorTable = ColorTable;
