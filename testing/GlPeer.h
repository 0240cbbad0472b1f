#pragma once

#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlDrawingAttributes.h"
#include "qeltin/render/GlLight.h"
#include "qeltin/render/GlViewer.h"

namespace qeltin::testing {

// What tests reach of the rendering layer that hosts do not. GlContext calls the operations.
struct GlPeer {
  using Limits = GlDrawingAttributes::Limits;
  static Limits& DrawingLimits() { return GlDrawingAttributes::m_Limits; }

  static bool IsGlewReady(GlContext const& context) { return context.m_bGlewReady; }

  static GlViewer MakeViewer() { return GlViewer(); }
  static void SetProjection(GlViewer& viewer, GlContext* context) { viewer.SetProjection(context); }
  static auto DrawFrameOperation() { return &GlViewer::DrawFrame; }
  static void DrawFrame(GlViewer& viewer, GlContext* context) { viewer.DrawFrame(context); }

  // A light made in place: its number is taken and given back with it.
  struct Light : GlLight {
    Light() = default;
    Light(GlLight const& other) : GlLight(other) {}
    using GlLight::ReserveLightNumber;
    using GlLight::SetRC;
  };

  static unsigned int NumberOf(GlLight const& light) { return light.m_iLightNumber; }
};

}  // namespace qeltin::testing
