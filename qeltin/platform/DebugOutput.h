#pragma once

#include <functional>

#include "qeltin/platform/Export.h"

// Takes what the library tells a debugger: a null-terminated text, good during the call.
using DebugSink = std::function<void(wchar_t const* text)>;

// Sends later debug texts to `sink`; an empty one makes them vanish, as at the start. A sink that
// lives in a module must be taken back before that module goes. Safe from any thread.
QELTIN_API void SetDebugSink(DebugSink sink);

// A ready sink: writes the text to stderr in UTF-8, as it stands, without an end of line.
QELTIN_API void WriteDebugToStderr(wchar_t const* text);

// Hands `text` to the sink, on the calling thread and without a lock. REQUIRES: not null. Safe from
// any thread.
QELTIN_API void OutputDebugStringW(wchar_t const* text);
