#pragma once

// A text beside a profile. x and y are not relative to any base.
struct ProfileLabel {
  float x;
  float y;
  float z;
  wchar_t const* text;  // never null; owned by the profile, or by copies of it as well
};
