#include "qeltin/render/GlColor.h"

#include <cmath>

constinit float GlColor::DEFAULT_RED = 0.0f;
constinit float GlColor::DEFAULT_GREEN = 0.0f;
constinit float GlColor::DEFAULT_BLUE = 0.0f;
constinit float GlColor::DEFAULT_ALPHA = 1.0f;

constinit GlColor GlColor::GLC_BLACK(0.0f, 0.0f, 0.0f, 1.0f);
constinit GlColor GlColor::GLC_BLUE(0.0f, 0.0f, 1.0f, 1.0f);
constinit GlColor GlColor::GLC_CYAN(0.0f, 1.0f, 1.0f, 1.0f);
constinit GlColor GlColor::GLC_DARKGRAY(0.25f, 0.25f, 0.25f, 1.0f);
constinit GlColor GlColor::GLC_GRAY(0.5f, 0.5f, 0.5f, 1.0f);
constinit GlColor GlColor::GLC_GREEN(0.0f, 1.0f, 0.0f, 1.0f);
constinit GlColor GlColor::GLC_LIGHTGRAY(0.75f, 0.75f, 0.75f, 1.0f);
constinit GlColor GlColor::GLC_MAGENTA(1.0f, 0.0f, 1.0f, 1.0f);
constinit GlColor GlColor::GLC_ORANGE(1.0f, 0.7812f, 0.0f, 1.0f);
constinit GlColor GlColor::GLC_PINK(1.0f, 0.6836f, 0.6836f, 1.0f);
constinit GlColor GlColor::GLC_RED(1.0f, 0.0f, 0.0f, 1.0f);
constinit GlColor GlColor::GLC_WHITE(1.0f, 1.0f, 1.0f, 1.0f);
constinit GlColor GlColor::GLC_YELLOW(1.0f, 1.0f, 0.0f, 1.0f);

void GlColor::SetHSV(float h, float s, float v) {
  if (h == 1.0f) h = 0.0f;
  float const x = h * 6.0f;
  float const sector = std::floor(x);
  double const f = x - sector;
  double const ds = s;
  double const dv = v;
  double const p = (1.0 - ds) * dv;
  double const q = (1.0 - ds * f) * dv;
  double const t = (1.0 - (1.0 - f) * ds) * dv;

  double const rgb[6][3] = {{dv, t, p}, {q, dv, p}, {p, dv, t}, {p, q, dv}, {t, p, dv}, {dv, p, q}};
  static constexpr double BLACK[3] = {0.0, 0.0, 0.0};
  bool const inside = sector >= 0.0f && sector <= 5.0f;
  double const* const chosen = inside ? rgb[static_cast<int>(sector)] : BLACK;
  SetRed(static_cast<float>(chosen[0]));
  SetGreen(static_cast<float>(chosen[1]));
  SetBlue(static_cast<float>(chosen[2]));
}

bool GlColor::ColorToGrayScale() {
  if (GetRed() == GetGreen() && GetGreen() == GetBlue()) return false;
  auto const gray = static_cast<float>(0.3 * GetRed() + 0.59 * GetGreen() + 0.11 * GetBlue());
  SetRed(gray);
  SetGreen(gray);
  SetBlue(gray);
  return true;
}
