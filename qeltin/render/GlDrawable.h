#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/render/GlDrawingAttributes.h"

class GlContext;

// A piece of the model with the attributes that it is drawn with. It points to the model and does
// not own it: the model must outlive the drawable. Every Draw walks the model anew and emits it in
// immediate mode; a host that draws the same thing often records it with
// GlContext::BeginCompileList.
//
// Coordinates are narrowed to single precision AS THEY ARE, which leaves 24 bits: half a metre at
// seven digits before the point. A host whose coordinates are that large, as those of UTM are,
// shifts its model to the neighbourhood of the origin before it draws.
//
// Copies share the model; an assignment between two different kinds copies the attributes alone.
// Hosts are compiled against the order of the virtual operations.
//
// Threads: Draw runs within a frame, on the thread that holds it, and nobody may write the model
// meanwhile: nothing locks it.
class QELTIN_API GlDrawable {
 public:
  virtual ~GlDrawable() = default;
  GlDrawable(GlDrawable const&) = default;
  GlDrawable& operator=(GlDrawable const&) = default;

  // Draws with heights exaggerated by `zScale`. REQUIRES: a frame of `context` is open, between
  // BeginDrawViewer and EndDrawViewer.
  virtual void Draw(GlContext const* context, double zScale) = 0;

  // Returns the attributes, to be read and set. Stays valid as long as the drawable.
  GlDrawingAttributes* GetDrawingAttributes() { return &m_Attributes; }
  GlDrawingAttributes const* GetDrawingAttributes() const { return &m_Attributes; }

 protected:
  GlDrawable() = default;

  GlDrawingAttributes m_Attributes;
};
