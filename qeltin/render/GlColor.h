#pragma once

#include "qeltin/platform/Export.h"

// A colour of the rendering layer: red, green, blue and alpha, each meant to lie from 0 to 1. Alpha
// 1 is opaque.
//
// A plain value of four floats, kept in that order, so that GL can read it in place. Comparisons
// are exact.
//
// Threads: a value like a float. Concurrent reads are safe, a write needs a lock of the caller's.
class QELTIN_API GlColor {
 public:
  // The channels of a new colour, and colours with a name, all opaque. Hosts may overwrite them,
  // for the whole process and before anything draws.
  static float DEFAULT_RED;
  static float DEFAULT_GREEN;
  static float DEFAULT_BLUE;
  static float DEFAULT_ALPHA;

  static GlColor GLC_BLACK;
  static GlColor GLC_BLUE;
  static GlColor GLC_CYAN;
  static GlColor GLC_DARKGRAY;
  static GlColor GLC_GRAY;
  static GlColor GLC_GREEN;
  static GlColor GLC_LIGHTGRAY;
  static GlColor GLC_MAGENTA;
  static GlColor GLC_ORANGE;
  static GlColor GLC_PINK;
  static GlColor GLC_RED;
  static GlColor GLC_WHITE;
  static GlColor GLC_YELLOW;

  GlColor() : GlColor(DEFAULT_RED, DEFAULT_GREEN, DEFAULT_BLUE, DEFAULT_ALPHA) {}

  // Keeps the values as they are: only the setters clamp.
  constexpr GlColor(float red, float green, float blue, float alpha)
      : m_fChannels{red, green, blue, alpha} {}

  bool operator==(GlColor const& other) const = default;

  float GetRed() const { return m_fChannels[0]; }
  float GetGreen() const { return m_fChannels[1]; }
  float GetBlue() const { return m_fChannels[2]; }
  float GetAlpha() const { return m_fChannels[3]; }

  // Set one channel, clamped to 0 to 1; not-a-number becomes 0.
  void SetRed(float red) { m_fChannels[0] = Clamp(red); }
  void SetGreen(float green) { m_fChannels[1] = Clamp(green); }
  void SetBlue(float blue) { m_fChannels[2] = Clamp(blue); }
  void SetAlpha(float alpha) { m_fChannels[3] = Clamp(alpha); }

  // Returns the four channels, red first. Stays valid as long as the colour lives.
  float const* GetArrayOf4() const { return m_fChannels; }

  // Sets red, green and blue from hue, saturation and value, each from 0 to 1; alpha stays. Hue 0
  // is red, 1/3 green, 2/3 blue, and 1 is red again. A hue outside 0 to 1 gives black. The method
  // is that of Smith, Color gamut transform pairs (SIGGRAPH 1978).
  void SetHSV(float h, float s, float v);

  // Sets red, green and blue to the same brightness, 0.3 red + 0.59 green + 0.11 blue; alpha stays.
  // Returns false, with nothing changed, where they are equal already.
  bool ColorToGrayScale();

 private:
  static constexpr float Clamp(float channel) {
    if (!(channel > 0.0f)) return 0.0f;  // not-a-number too
    return channel > 1.0f ? 1.0f : channel;
  }

  float m_fChannels[4];
};
