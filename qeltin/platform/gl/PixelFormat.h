#pragma once

#include <cstdint>

// What a drawing surface is asked for and what it offers, member by member as hosts know it.
struct PIXELFORMATDESCRIPTOR {
  std::uint16_t nSize;
  std::uint16_t nVersion;
  std::uint32_t dwFlags;  // PFD_ bits
  std::uint8_t iPixelType;
  std::uint8_t cColorBits;  // of red, green and blue together
  std::uint8_t cRedBits;
  std::uint8_t cRedShift;
  std::uint8_t cGreenBits;
  std::uint8_t cGreenShift;
  std::uint8_t cBlueBits;
  std::uint8_t cBlueShift;
  std::uint8_t cAlphaBits;
  std::uint8_t cAlphaShift;
  std::uint8_t cAccumBits;
  std::uint8_t cAccumRedBits;
  std::uint8_t cAccumGreenBits;
  std::uint8_t cAccumBlueBits;
  std::uint8_t cAccumAlphaBits;
  std::uint8_t cDepthBits;
  std::uint8_t cStencilBits;
  std::uint8_t cAuxBuffers;
  std::uint8_t iLayerType;
  std::uint8_t bReserved;
  std::uint32_t dwLayerMask;
  std::uint32_t dwVisibleMask;
  std::uint32_t dwDamageMask;
};
static_assert(sizeof(PIXELFORMATDESCRIPTOR) == 40);

inline constexpr std::uint32_t PFD_DOUBLEBUFFER = 0x1;
inline constexpr std::uint32_t PFD_DRAW_TO_WINDOW = 0x4;
inline constexpr std::uint32_t PFD_SUPPORT_OPENGL = 0x20;
inline constexpr std::uint32_t PFD_GENERIC_ACCELERATED = 0x1000;

inline constexpr std::uint8_t PFD_TYPE_RGBA = 0;
