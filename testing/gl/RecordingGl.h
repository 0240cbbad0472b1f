#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>
#include <vector>

// A GL that draws nothing and writes down what it is asked. A program that has RecordingGl.cpp
// among its sources calls that one instead of the system's. It needs no context: calls are recorded
// whatever is current.
//
// A call is recorded as text, "glVertex3f(0.5, 2, -1)". Numbers have as many digits as tell them
// from their neighbours in the precision of the call. Symbols stand as names, arrays as their
// elements.
//
// Threads: none but the main thread.
namespace qeltin::testing {

// What it says it can do.
inline constexpr float RECORDED_POINT_SIZES[2] = {0.5f, 64.0f};
inline constexpr float RECORDED_POINT_SIZE_STEP = 0.125f;
inline constexpr float RECORDED_LINE_WIDTHS[2] = {1.0f, 8.0f};
inline constexpr float RECORDED_LINE_WIDTH_STEP = 0.5f;

using GlCalls = std::vector<std::string>;

// Returns the calls since the last time, in order, and forgets them.
GlCalls TakeGlCalls();

// Records a line of a test's own among the calls.
void RecordGlCall(std::string call);

template <typename Number>
std::string GlArgument(Number value) {
  if constexpr (std::convertible_to<Number, std::string_view>) {
    return std::string(value);
  } else {
    char text[40];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
  }
}

// Returns the text of a call.
template <typename First, typename... Others>
std::string GlCall(std::string_view name, First first, Others... others) {
  std::string text(name);
  text += '(' + GlArgument(first);
  ((text += ", " + GlArgument(others)), ...);
  return text + ')';
}

inline std::string GlCall(std::string_view name) { return std::string(name) + "()"; }

// Adds the calls of `more` at the end of `calls`.
inline void Append(GlCalls& calls, GlCalls const& more) {
  calls.insert(calls.end(), more.begin(), more.end());
}

}  // namespace qeltin::testing
