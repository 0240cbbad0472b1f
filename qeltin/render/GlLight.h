#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/render/GlColor.h"
#include "qeltin/render/GlCoord.h"

class GlContext;

namespace qeltin::testing {
struct GlPeer;
}

// A directional light that shines from the direction of the z axis of a frame of its own. That
// frame is relative to the eye: a light moves with the camera. GlContext creates, owns and calls
// lights.
//
// GL has eight lights, and all contexts of a process share their numbers. A light takes a free one
// when it is made. A light that found none stays dark, and gets one in the first frame after
// another light is gone.
//
// Threads: no lock. SetRC runs within a frame of the context. Lights of different contexts may be
// made and destroyed on different threads.
class QELTIN_API GlLight {
 public:
  static constexpr GlColor DEFAULT_AMBIENT{0.5f, 0.5f, 0.5f, 1.0f};
  static constexpr GlColor DEFAULT_DIFFUSE{0.5f, 0.5f, 0.5f, 1.0f};
  static constexpr GlColor DEFAULT_SPECULAR{1.0f, 1.0f, 1.0f, 1.0f};

  // Gives the light's number back.
  virtual ~GlLight();

  // Copy everything but the number: a new copy has none yet, and an assigned light keeps its own.
  GlLight(GlLight const& other);
  GlLight& operator=(GlLight const& other);

  // A light that is not enabled is dark and keeps its number.
  void Enable(bool enable) { m_bEnabled = enable; }
  bool IsEnabled() const { return m_bEnabled; }

  GlColor GetAmbientLight() const { return m_Ambient; }
  GlColor GetDiffuseLight() const { return m_Diffuse; }
  GlColor GetSpecularLight() const { return m_Specular; }
  void SetAmbientLight(GlColor const& color) { m_Ambient = color; }
  void SetDiffuseLight(GlColor const& color) { m_Diffuse = color; }
  void SetSpecularLight(GlColor const& color) { m_Specular = color; }

  GlCoord GetCS() const { return m_CS; }
  void SetCS(GlCoord const& cs) { m_CS = cs; }

 protected:
  GlLight();

  // Takes the first free number and returns true; false, with the number as it was, where all eight
  // are taken.
  bool ReserveLightNumber();

  // Switches the light on or off in GL and sets its colours and direction, through the modelview
  // matrix, which is restored. Nothing where there is no number to be had.
  void SetRC(GlContext* context);

 private:
  friend class GlContext;
  friend struct qeltin::testing::GlPeer;

  static constexpr unsigned int NO_NUMBER = 0x3FFF;  // one below the first light of GL

  bool m_bEnabled = true;
  GlColor m_Ambient = DEFAULT_AMBIENT;
  GlColor m_Diffuse = DEFAULT_DIFFUSE;
  GlColor m_Specular = DEFAULT_SPECULAR;
  GlCoord m_CS;
  unsigned int m_iLightNumber = NO_NUMBER;  // a light name of GL
};
