#pragma once

#include "qeltin/platform/gl/DrawingWindow.h"
#include "testing/gl/RecordingGl.h"

namespace qeltin::testing {

// A window whose surface records what it is asked, among the calls of the recording GL, and says
// that everything went well.
class RecordingWindow : public DrawingWindow, private DrawingSurface {
 public:
  RecordingWindow(int width, int height) : m_iWidth(width), m_iHeight(height) {}

  HDC GetDC() override {
    RecordGlCall("GetDC()");
    return this;
  }
  void ReleaseDC(HDC) override { RecordGlCall("ReleaseDC()"); }
  int GetWidth() const override { return m_iWidth; }
  int GetHeight() const override { return m_iHeight; }

 private:
  int ChoosePixelFormat(PIXELFORMATDESCRIPTOR const& wished) override {
    RecordGlCall(GlCall("ChoosePixelFormat", wished.nSize, wished.nVersion, wished.dwFlags,
                        int{wished.iPixelType}, int{wished.cColorBits}, int{wished.cDepthBits}));
    return 1;
  }
  bool SetPixelFormat(int format) override {
    RecordGlCall(GlCall("SetPixelFormat", format));
    return true;
  }
  RenderingContext* CreateContext() override {
    RecordGlCall("CreateContext()");
    return &m_Context;
  }
  void DeleteContext(RenderingContext*) override { RecordGlCall("DeleteContext()"); }
  bool MakeCurrent(RenderingContext* context) override {
    RecordGlCall(context == nullptr ? "MakeCurrent(null)" : "MakeCurrent(context)");
    return true;
  }
  void SwapBuffers() override { RecordGlCall("SwapBuffers()"); }

  RenderingContext m_Context;
  int m_iWidth;
  int m_iHeight;
};

}  // namespace qeltin::testing
