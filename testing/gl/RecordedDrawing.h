#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlDrawable.h"
#include "testing/gl/RecordingGl.h"
#include "testing/gl/RecordingWindow.h"

namespace qeltin::testing {

// For tests of what is asked of GL, and in which order: a context on a window of 400 by 100 pixels
// that records. What its construction asked is forgotten.
class RecordedDrawing : public ::testing::Test {
 protected:
  RecordedDrawing() {
    m_Context.SetViewport(400, 100);
    TakeGlCalls();
  }

  // Returns what drawing asks for after the attributes are set, which it does first.
  GlCalls CallsOf(GlDrawable& drawable, double zScale) {
    drawable.GetDrawingAttributes()->SetRC(&m_Context);
    GlCalls const attributes = TakeGlCalls();
    drawable.Draw(&m_Context, zScale);
    GlCalls calls = TakeGlCalls();
    bool const first = calls.size() >= attributes.size() &&
                       std::equal(attributes.begin(), attributes.end(), calls.begin());
    EXPECT_TRUE(first) << "does not begin with its attributes";
    if (first) calls.erase(calls.begin(), calls.begin() + attributes.size());
    return calls;
  }

  // Returns the calls for a vertex with the colour of the true height `z` in the table.
  GlCalls ColoredVertex(double x, double y, double z, double drawn) const {
    std::uint32_t const color = m_Context.GetColorTable().GetColor(z);
    auto const channel = [color](int shift) {
      return static_cast<float>(color >> shift & 255) / 255.0f;
    };
    return {GlCall("glColor3f", channel(0), channel(8), channel(16)), Vertex(x, y, drawn)};
  }

  static std::string Vertex(double x, double y, double z) {
    return GlCall("glVertex3f", static_cast<float>(x), static_cast<float>(y),
                  static_cast<float>(z));
  }

  RecordingWindow m_Window{400, 100};
  GlContext m_Context{&m_Window, 24, 24};
};

// A table whose colour tells every metre from 0 to 255 apart.
inline ColorTable MetreTable() {
  ColorTable table;
  table.AddStop(0.0, ColorTable::MakeColor(0, 255, 100));
  table.AddStop(255.0, ColorTable::MakeColor(255, 0, 101));
  return table;
}

}  // namespace qeltin::testing
