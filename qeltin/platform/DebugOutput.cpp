#include "qeltin/platform/DebugOutput.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "qeltin/platform/Utf8.h"

namespace {

std::mutex sink_mutex;                        // guards the pointer below
std::shared_ptr<DebugSink const> debug_sink;  // null for none

std::shared_ptr<DebugSink const> CurrentSink() {
  std::lock_guard const lock(sink_mutex);
  return debug_sink;
}

}  // namespace

void SetDebugSink(DebugSink sink) {
  auto next = sink ? std::make_shared<DebugSink const>(std::move(sink)) : nullptr;
  std::lock_guard const lock(sink_mutex);
  debug_sink.swap(next);
}

void WriteDebugToStderr(wchar_t const* text) {
  std::string const bytes = qeltin::ToUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

void OutputDebugStringW(wchar_t const* text) {
  if (auto const sink = CurrentSink()) (*sink)(text);
}
