#pragma once

#include <memory>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/CriticalSection.h"
#include "qeltin/platform/Export.h"
#include "qeltin/platform/MessageTarget.h"
#include "qeltin/platform/gl/DrawingSurface.h"
#include "qeltin/render/GlColor.h"
#include "qeltin/render/GlColorTable.h"

class DrawingWindow;
class GlLight;
class GlViewer;

namespace qeltin::testing {
struct GlPeer;
}

// One window bound to one GL rendering context, with the viewers and lights that are drawn in it.
//
// A frame is BeginDraw; for each viewer BeginDrawViewer, the Draw of each drawable, EndDrawViewer;
// and EndDraw. GL is current on the thread only from BeginDraw to EndDraw, so that all that draws,
// the brackets, vertices, stacks and compiled lists below, belongs into a frame.
//
// No operation reports a failure of the window system or of GL: what cannot be drawn is not drawn.
// A window that is null, or a mere MessageTarget without GL, gives a context that draws nothing.
//
// Threads: the context has one recursive lock. Frames, resizes, and the making and destroying of
// viewers and lights take it, so that they may come from any thread and wait for a frame to end.
// Setters, getters and all that draws take no lock: call them inside a frame, or from one thread.
// Construct contexts one at a time, since each sets the limits of GlDrawingAttributes.
class QELTIN_API GlContext {
 public:
  static constexpr GlColor DEFAULT_BACKGROUND_COLOR{0.0f, 0.0f, 0.0f, 1.0f};
  static constexpr GlColor DEFAULT_LIGHT_MODEL_AMBIENT_LIGHT{0.2f, 0.2f, 0.2f, 1.0f};

  // `window` is not owned and outlives the context. The depths are in bits for red, green and blue
  // together and for the depth buffer; the window gives what comes nearest. Sets the limits of
  // point sizes and line widths of GlDrawingAttributes, where GL could be made current.
  GlContext(HWND window, unsigned char colorBits, unsigned char depthBits);
  GlContext(GlContext const&) = delete;
  GlContext& operator=(GlContext const&) = delete;

  // Waits for a frame on another thread to end. Deletes viewers, then lights.
  virtual ~GlContext();

  // Takes the lock and keeps it until EndDraw. Clears nothing: BeginDrawViewer does.
  void BeginDraw();
  // Clears what the viewer covers and sets its projection, the lights, and its place. Lights are
  // placed relative to the viewer. A null viewer is ignored, here and below.
  void BeginDrawViewer(GlViewer* viewer);
  // Draws the viewer's frame, if it is to be seen.
  void EndDrawViewer(GlViewer* viewer);
  // Shows the picture and releases the lock.
  void EndDraw();

  // Each is one glBegin, to be ended by EndDrawVertices.
  void BeginDrawPoints() const;
  void BeginDrawLines() const;
  void BeginDrawLineStrip() const;
  void BeginDrawLineLoop() const;
  void BeginDrawTriangles() const;
  void BeginDrawTriangleStrip() const;
  void BeginDrawTriangleFan() const;
  void BeginDrawQuads() const;
  void BeginDrawQuadStrip() const;
  void BeginDrawPolygon() const;
  void EndDrawVertices() const;

  // Coordinates are narrowed to single precision.
  void Vertex(TPoint const& point) const;
  void Vertex(double x, double y, double z) const;
  void Vertex(float x, float y, float z) const;
  void Vertex(double x, double y) const;
  void Vertex(float x, float y) const;
  void SetVertexNormal(TPoint const& normal) const;
  // The colour's alpha is dropped.
  void SetVertexColor(GlColor const& color) const;
  void SetVertexEdgeFlag(bool isEdge) const;

  // A push selects the matrix and loads the identity; a pop selects it, too, and leaves it
  // selected.
  void PushProjectionMatrix() const;
  void PopProjectionMatrix() const;
  void PushModelviewMatrix() const;
  void PopModelviewMatrix() const;
  // Keeps the light settings and switches lighting off, until they are popped.
  void PushLightAttribute() const;
  void PopLightAttribute() const;

  // The height that vertical exaggeration leaves where it is. 0 at first.
  double RefZ() const { return m_dRefZ; }
  void SetRefZ(double z) { m_dRefZ = z; }
  // The reference stays valid as long as the context. A new table has no stops.
  GlColorTable const& GetColorTable() const { return m_ColorTable; }
  void SetColorTable(GlColorTable const& table) { m_ColorTable = table; }

  // These take effect at the next BeginDraw. The depth test is on at first.
  void EnableDepth(bool enable) { m_bDepthEnabled = enable; }
  bool IsDepthEnabled() const { return m_bDepthEnabled; }
  void SetBackgroundColor(GlColor const& color) { m_BackgroundColor = color; }
  GlColor GetBackgroundColor() const { return m_BackgroundColor; }

  // These take effect at the next BeginDrawViewer. Both are on at first. Without ambient light its
  // colour is kept for later, and black stands in for it.
  void EnableLighting(bool enable) { m_bLightingEnabled = enable; }
  bool IsLightingEnabled() const { return m_bLightingEnabled; }
  void EnableAmbientLight(bool enable) { m_bAmbientEnabled = enable; }
  bool IsAmbientLightEnabled() const { return m_bAmbientEnabled; }
  void SetAmbientLight(GlColor const& color) { m_AmbientLight = color; }
  GlColor GetAmbientLight() const { return m_AmbientLight; }

  // Owned by the window system. Null where there is none; the palette always is.
  HGLRC GetRC() const { return m_pRC; }
  HDC GetDC() const { return m_pDC; }
  HWND GetWindow() const { return m_pWindow; }
  HPALETTE GetPalette() const { return m_pPalette; }

  // In pixels. 1 by 1 until the host tells a size, and never 0.
  int GetViewportWidth() const { return m_iViewportWidth; }
  int GetViewportHeight() const { return m_iViewportHeight; }

  // A host calls these as its window system tells it to. A size of 0 becomes 1. SetViewport leaves
  // no context current, so that it ends the drawing of a frame that is under way on the same
  // thread.
  void OnSize(int width, int height);
  void SetViewport(int width, int height);
  // Without effect, as there are no palettes.
  void OnQueryNewPalette();
  void OnPaletteChanged();

  // The objects are owned by the context and stay valid until destroyed here or with it.
  GlViewer* CreateViewer();
  GlLight* CreateLight();
  // A viewer that is not of this context is left alone.
  void DestroyViewer(GlViewer* viewer);
  // Takes the FIRST light off the list, whichever is asked for, and deletes `light`. With two
  // lights, destroying the second leaves the list pointing to it: destroy lights in the order of
  // their creation, or only one. Nothing happens where the list is empty.
  void DestroyLight(GlLight* light);
  // Null where `index` is out of range.
  GlViewer* GetViewer(int index) const;
  GlLight* GetLight(int index) const;
  int GetNumberOfViewers() const { return static_cast<int>(m_Viewers.size()); }
  int GetNumberOfLights() const { return static_cast<int>(m_Lights.size()); }

  // What is drawn from BeginCompileList to EndCompileList is not shown but kept under the number
  // returned, to be shown by DrawCompiledList. A list lives until it is deleted or the context
  // goes.
  int BeginCompileList() const;
  void EndCompileList() const;
  // Returns true iff there is such a list. The number 1281 is never taken for one.
  bool DrawCompiledList(int id) const;
  // 0 is ignored.
  void DeleteCompiledList(int id) const;

 protected:
  // Takes the lock and makes GL current; and the way back.
  void SetRCAsCurrent();
  void ReleaseCurrentRC();

  // Takes note of a size, 0 becoming 1, without GL or the lock.
  void UpdateViewport(int width, int height);

 private:
  friend struct qeltin::testing::GlPeer;

  // Binds `rc` to the calling thread, or unbinds what is current there. Returns true iff it did.
  bool MakeCurrent(HGLRC rc) const;
  void ChooseFormat(unsigned char colorBits, unsigned char depthBits) const;
  static void ReadLimits();
  void SetUpLighting();

  HGLRC m_pRC = nullptr;            // owned
  DrawingWindow* m_pDrawingWindow;  // m_pWindow where it can be drawn on, else null
  HDC m_pDC = nullptr;              // given back to m_pDrawingWindow at the end
  HWND m_pWindow;                   // not owned
  HPALETTE m_pPalette = nullptr;
  bool m_bGlewReady = false;
  double m_dRefZ = 0;
  CriticalSection m_Lock;
  GlColorTable m_ColorTable;
  bool m_bDepthEnabled = true;
  std::vector<std::unique_ptr<GlViewer>> m_Viewers;
  int m_iViewportWidth = 1;   // never 0
  int m_iViewportHeight = 1;  // never 0
  bool m_bLightingEnabled = true;
  bool m_bAmbientEnabled = true;
  GlColor m_AmbientLight = DEFAULT_LIGHT_MODEL_AMBIENT_LIGHT;
  std::vector<GlLight*> m_Lights;  // owned, save those that DestroyLight deleted out of order
  GlColor m_BackgroundColor = DEFAULT_BACKGROUND_COLOR;
};
