#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "apps/qeltin/View.h"
#include "apps/qeltin/picture/Orbit.h"
#include "apps/qeltin/picture/Scene.h"
#include "apps/qeltin/picture/Sight.h"
#include "qeltin/platform/gl/X11Window.h"
#include "qeltin/render/GlContext.h"

namespace qeltin::cli {

// A window on a scene, which the user turns, moves and changes.
//
// Threads: one.
class SurfaceWindow {
 public:
  // `tin` and `scene` are not owned and outlive the window. Throws Failure where none can be shown.
  SurfaceWindow(TIN const& tin, Scene& scene, ViewOptions const& options);

  // Draws, and does what the user wants, until the user has had enough. Throws Failure where the
  // screen goes away.
  void Run();

  int Frames() const { return m_iFrames; }

  // What the frames took to draw, without the wait for the user.
  std::chrono::duration<double> Drawing() const { return m_Drawing; }

 private:
  void Take(WindowEvent const& event);
  void TakeKey(char32_t key);
  void TakeMotion(WindowEvent const& event);
  void TakeWheel(WindowEvent const& event);

  void Fit(Bearing const& from);
  void Stretch(double factor);
  void Toggle(unsigned layers);

  void Draw();
  Camera Eye() const { return m_Orbit->Eye(m_Scene.SceneBounds()); }

  void PointTo(WindowEvent const& event);

  // In the coordinates of the scene.
  Sight SightThroughPointer() const;

  // Returns the place on the surface under the pointer, in true coordinates.
  std::optional<TPoint> UnderPointer() const;
  void UpdateTitle();

  TIN const& m_Tin;
  Scene& m_Scene;
  ViewOptions const& m_Options;
  X11Window m_Window;
  GlContext m_Context;
  std::optional<Orbit> m_Orbit;

  unsigned m_iLayers;
  unsigned m_iRecorded = 0;
  bool m_bToDraw = true;
  bool m_bEnd = false;

  int m_iPointerX = -1;  // below 0 until the pointer has been in the window
  int m_iPointerY = -1;
  WindowEvent::Button m_Held = WindowEvent::NONE;
  std::string m_Title;

  int m_iFrames = 0;
  std::chrono::duration<double> m_Drawing{0};
};

}  // namespace qeltin::cli
