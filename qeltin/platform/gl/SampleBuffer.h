#pragma once

namespace qeltin::detail {

// A place for GL to draw to with several samples a pixel, beside the surface of a window. It is an
// object of the rendering context that was current when it was made, and goes with that.
//
// All operations REQUIRE that context to be current.
class SampleBuffer {
 public:
  // Makes a buffer with at least as many samples, or as many as the driver offers. It has none, and
  // the others do nothing, where the driver cannot do so.
  void Make(int width, int height, int samples);
  void Delete();

  int GetSamples() const { return m_iSamples; }
  bool HasSize(int width, int height) const { return m_iWidth == width && m_iHeight == height; }

  // Lets GL draw to the buffer.
  void Bind() const;

  // Puts the means of the samples on the surface, and lets GL read and draw there.
  void Resolve() const;

 private:
  int m_iWidth = 0;
  int m_iHeight = 0;
  int m_iSamples = 0;
  unsigned int m_iFramebuffer = 0;  // names of GL; 0 is none
  unsigned int m_iColors = 0;
  unsigned int m_iDepths = 0;
};

}  // namespace qeltin::detail
