#include <cmath>
#include <cstdint>
#include <sstream>

#include "apps/qeltin/CommandTest.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;

struct Sounding {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

std::vector<Sounding> Parse(std::string const& text) {
  std::vector<Sounding> soundings;
  std::istringstream in(text);
  Sounding s;
  while (in >> s.x >> s.y >> s.z) soundings.push_back(s);
  return soundings;
}

// FNV-1a.
std::uint64_t Hash(std::string const& text) {
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (char const c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
  return hash;
}

class Sample : public CommandTest {
 protected:
  std::string Make(std::string const& pattern, int points, int seed = 1) const {
    return MustRun({"sample", "--pattern", pattern, "--points", std::to_string(points), "--seed",
                    std::to_string(seed)})
        .out;
  }
};

std::vector<std::string> const PATTERNS = {"swaths", "lines", "grid", "random"};

// Surveys that people have made and talked about: another hash breaks their examples.
TEST_F(Sample, EqualSeedsMakeEqualSurveysOnEveryMachine) {
  EXPECT_EQ(Hash(Make("swaths", 5000, 7)), 0xad53097259dbd809u);
  EXPECT_EQ(Hash(Make("lines", 5000, 7)), 0x392cdf30849663c1u);
  EXPECT_EQ(Hash(Make("grid", 5000, 7)), 0x4451e914dce01083u);
  EXPECT_EQ(Hash(Make("random", 5000, 7)), 0xd464c50597e86ea7u);
}

TEST_F(Sample, OtherSeedsMakeOtherSurveys) {
  for (std::string const& pattern : PATTERNS) EXPECT_NE(Make(pattern, 50, 1), Make(pattern, 50, 2));
}

TEST_F(Sample, MakesExactlyAsManyPointsAsAskedFor) {
  for (std::string const& pattern : PATTERNS) {
    for (int const points : {1, 2, 3, 4, 17, 1000, 20011}) {
      std::string const text = Make(pattern, points);
      EXPECT_EQ(Parse(text).size(), static_cast<std::size_t>(points)) << pattern;
      EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), points) << pattern;
    }
  }
}

TEST_F(Sample, HeightsAreUpAndBelowTheWater) {
  for (std::string const& pattern : PATTERNS) {
    for (Sounding const& s : Parse(Make(pattern, 20000))) {
      ASSERT_LT(s.z, -1.0) << pattern;
      ASSERT_GT(s.z, -40.0) << pattern;
    }
  }
}

TEST_F(Sample, HasAChannelAndAWreck) {
  int deep = 0;
  int shallow_in_the_east = 0;
  for (Sounding const& s : Parse(Make("grid", 10000))) {
    if (s.z < -16.5) ++deep;
    bool const on_the_wreck = s.x > 482300 && s.x < 482420 && s.y > 5932110 && s.y < 5932230;
    if (on_the_wreck && s.z > -7.0) ++shallow_in_the_east;
  }
  EXPECT_GT(deep, 300);
  EXPECT_LT(deep, 3000);
  EXPECT_GT(shallow_in_the_east, 4);
  EXPECT_LT(shallow_in_the_east, 100);
}

TEST_F(Sample, SwathsRunAcrossTracksThatAreSailedToAndFro) {
  std::vector<Sounding> const survey = Parse(Make("swaths", 20000));
  // 35 soundings a ping; the ship is at the middle one.
  std::vector<double> northings;
  for (std::size_t ping = 17; ping < survey.size(); ping += 35) northings.push_back(survey[ping].y);
  int turns = 0;
  double const leg = 30.0;
  double extreme = northings.front();
  int heading = 1;
  for (double const y : northings) {
    if ((y - extreme) * heading > 0) extreme = y;
    if ((extreme - y) * heading > leg) {
      heading = -heading;
      extreme = y;
      ++turns;
    }
  }
  EXPECT_GE(turns, 3);
  EXPECT_LE(turns, 8);
}

TEST_F(Sample, LinesAreDenseAlongAndWideApart) {
  std::vector<Sounding> const survey = Parse(Make("lines", 5000));
  int steps = 0;
  int jumps = 0;
  for (std::size_t i = 1; i < survey.size(); ++i) {
    double const step = std::hypot(survey[i].x - survey[i - 1].x, survey[i].y - survey[i - 1].y);
    if (step < 5.0) ++steps;
    if (step > 25.0) ++jumps;
  }
  EXPECT_EQ(steps + jumps, 4999);
  EXPECT_GE(jumps, 10);
}

TEST_F(Sample, TheGridIsExact) {
  std::vector<Sounding> const survey = Parse(Make("grid", 95));
  for (std::size_t i = 0; i < survey.size(); ++i) {
    EXPECT_EQ(survey[i].x, 482000.0 + 5.0 * static_cast<double>(i % 10));
    EXPECT_EQ(survey[i].y, 5932000.0 + 5.0 * static_cast<double>(i / 10));
  }
}

TEST_F(Sample, WritesAFileAndTellsAboutItAsJson) {
  Ran const ran = MustRun({"sample", "--points", "12", "--seed", "3", "-o", "s.xyz", "--json"});
  EXPECT_EQ(m_Folder.Get("s.xyz"), Make("swaths", 12, 3));
  EXPECT_EQ(
      ran.Json(),
      (nlohmann::json{{"file", "s.xyz"}, {"points", 12}, {"pattern", "swaths"}, {"seed", 3}}));
  EXPECT_EQ(ran.err, "");
}

TEST_F(Sample, QuietKeepsTheNoteToItself) {
  EXPECT_EQ(MustRun({"sample", "-o", "a.xyz"}).err, "qeltin: a.xyz: 20000 points\n");
  EXPECT_EQ(MustRun({"sample", "-o", "b.xyz", "-q"}).err, "");
}

TEST_F(Sample, EveryPatternMakesASurface) {
  for (std::string const& pattern : PATTERNS) {
    std::string const survey = pattern + ".xyz";
    MustRun({"sample", "--points", "2000", "--pattern", pattern, "-o", survey});
    nlohmann::json const built =
        MustRun({"build", survey, "-o", pattern + ".tin", "--json"}).Json();
    EXPECT_EQ(built["points_in_surface"], 2000) << pattern;
    EXPECT_EQ(built["triangles"], 2 * 2000 + 2) << pattern;
    EXPECT_GT(built["visible_triangles"], 2 * 2000 * 9 / 10) << pattern;
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
