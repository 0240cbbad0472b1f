#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "testing/MakeSurvey.h"

namespace qeltin::testing {

// A parameter of tests that run on every survey at every place.
using SurveyAtPlace = std::tuple<Survey, Place>;

inline auto AllSurveysAtAllPlaces() {
  return ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS), ::testing::ValuesIn(PLACES));
}

inline std::vector<TPoint> MakeSurvey(SurveyAtPlace const& parameter, int count,
                                      std::uint64_t seed) {
  return MakeSurvey(std::get<0>(parameter), count, seed, std::get<1>(parameter).frame);
}

inline std::string NameOfParam(::testing::TestParamInfo<SurveyAtPlace> const& info) {
  return std::string(NameOf(std::get<0>(info.param))) + std::get<1>(info.param).name;
}

}  // namespace qeltin::testing
