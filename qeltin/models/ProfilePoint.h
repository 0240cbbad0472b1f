#pragma once

// One sounding of a profile. Hosts compile against its layout. x, y and time are relative to the
// bases of the profile, so that single precision is enough for projected coordinates.
struct ProfilePoint {
  float x;         // easting less the profile's base
  float y;         // northing less the profile's base
  float z;         // height
  float distance;  // position along the profile
  float time;      // time less the profile's base
};

static_assert(sizeof(ProfilePoint) == 5 * 4);
