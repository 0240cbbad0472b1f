#include <atomic>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>

#include "apps/qeltin/CommandTest.h"
#include "qeltin/contour/TINContourCreator.h"
#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"

namespace qeltin::cli::testing {
namespace {

using qeltin::testing::Dice;
using qeltin::testing::TestSeed;
using ::testing::HasSubstr;
using Json = nlohmann::json;

struct Line {
  double level = 0.0;
  bool index = false;
  bool closed = false;
  std::vector<TPoint> points;
};

// Positive for a line that goes round counter-clockwise.
double TwiceArea(Line const& line) {
  double sum = 0.0;
  for (std::size_t i = 1; i < line.points.size(); ++i) {
    TPoint const& p = line.points[i - 1];
    TPoint const& q = line.points[i];
    sum += p.x * q.y - q.x * p.y;
  }
  return sum;
}

double Side(TPoint const& a, TPoint const& b, TPoint const& p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

// Returns how many pairs of lines of different levels cross each other.
int Crossings(std::vector<Line> const& lines, double cell) {
  struct Segment {
    TPoint a;
    TPoint b;
    double level;
  };
  std::map<std::pair<long, long>, std::vector<Segment>> cells;
  int crossings = 0;
  for (Line const& line : lines) {
    for (std::size_t i = 1; i < line.points.size(); ++i) {
      Segment const s{line.points[i - 1], line.points[i], line.level};
      auto const column = [cell](double v) { return std::lround(std::floor(v / cell)); };
      for (long x = column(std::min(s.a.x, s.b.x)); x <= column(std::max(s.a.x, s.b.x)); ++x) {
        for (long y = column(std::min(s.a.y, s.b.y)); y <= column(std::max(s.a.y, s.b.y)); ++y) {
          std::vector<Segment>& others = cells[{x, y}];
          for (Segment const& o : others) {
            if (o.level == s.level) continue;
            bool const apart = Side(s.a, s.b, o.a) * Side(s.a, s.b, o.b) >= 0 ||
                               Side(o.a, o.b, s.a) * Side(o.a, o.b, s.b) >= 0;
            if (!apart) ++crossings;
          }
          others.push_back(s);
        }
      }
    }
  }
  return crossings;
}

class Contours : public CommandTest {
 protected:
  using Height = std::function<double(double, double)>;

  // Puts the surface of random places over a square from -10 to 10 as s.tin.
  void Sample(Height const& height, int points = 4000) const {
    Dice dice(TestSeed());
    std::string text = "-10 -10 " + Text(height(-10, -10)) + "\n10 -10 " + Text(height(10, -10)) +
                       "\n10 10 " + Text(height(10, 10)) + "\n-10 10 " + Text(height(-10, 10)) +
                       "\n";
    for (int i = 0; i < points; ++i) {
      double const x = dice.Between(-10, 10);
      double const y = dice.Between(-10, 10);
      text += Text(x) + ' ' + Text(y) + ' ' + Text(height(x, y)) + '\n';
    }
    m_Folder.Put("s.xyz", text);
    MustRun({"build", "s.xyz", "-o", "s.tin", "-q"});
  }

  static std::string Text(double value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.17g", value);
    return digits;
  }

  std::vector<Line> Draw(std::vector<std::string> const& options,
                         std::string const& surface = "s.tin") const {
    std::vector<std::string> arguments = {"contours",  surface,       "-o",
                                          "c.geojson", "--overwrite", "-q"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    MustRun(arguments);
    std::vector<Line> lines;
    Json const drawn = Json::parse(m_Folder.Get("c.geojson"));
    for (Json const& feature : drawn["features"]) {
      Json const& properties = feature["properties"];
      Line line{properties["level"], properties["index"] == 1, properties["closed"] == 1, {}};
      for (Json const& p : feature["geometry"]["coordinates"]) {
        line.points.emplace_back(p[0].get<double>(), p[1].get<double>(), p[2].get<double>());
      }
      EXPECT_GE(line.points.size(), 2u);
      lines.push_back(line);
    }
    return lines;
  }
};

// Every line lies on its level, is closed iff it says so, and neighbours differ.
void ExpectSound(std::vector<Line> const& lines) {
  for (Line const& line : lines) {
    for (TPoint const& p : line.points) EXPECT_EQ(p.z, line.level);
    EXPECT_EQ(line.points.front() == line.points.back(), line.closed);
    for (std::size_t i = 1; i < line.points.size(); ++i) {
      EXPECT_FALSE(line.points[i - 1].XY_EqualsTo(line.points[i]));
    }
  }
  EXPECT_EQ(Crossings(lines, 0.5), 0);
}

TEST_F(Contours, OfAConeAreOneClockwiseRingALevel) {
  Sample([](double x, double y) { return 10 - std::hypot(x, y); });
  std::vector<Line> const lines = Draw({"--interval", "1", "--base", "0.5"});
  ExpectSound(lines);
  std::map<double, int> rings;
  for (Line const& line : lines) {
    if (line.level < 0.0) continue;  // cut by the edge of the square
    ++rings[line.level];
    EXPECT_TRUE(line.closed);
    EXPECT_LT(TwiceArea(line), 0.0);
    for (TPoint const& p : line.points) EXPECT_NEAR(std::hypot(p.x, p.y), 10 - p.z, 0.2);
  }
  ASSERT_GE(rings.size(), 9u);
  for (auto const& [level, count] : rings) EXPECT_EQ(count, 1) << level;
}

TEST_F(Contours, OfAPitRunTheOtherWay) {
  Sample([](double x, double y) { return std::hypot(x, y) - 10; });
  std::vector<Line> const lines = Draw({"--level", "-5", "--level", "-2.5"});
  ExpectSound(lines);
  ASSERT_EQ(lines.size(), 2u);
  for (Line const& line : lines) EXPECT_GT(TwiceArea(line), 0.0);
}

TEST_F(Contours, OfASaddleAreTwoOpenLinesALevel) {
  Sample([](double x, double y) { return x * y; });
  std::vector<Line> const lines = Draw({"--interval", "10", "--base", "5"});
  ExpectSound(lines);
  std::map<double, int> open;
  for (Line const& line : lines) {
    if (!line.closed) ++open[line.level];
    // Higher ground to the right: on a positive level the origin lies to the left.
    std::size_t const middle = line.points.size() / 2;
    double const side = Side(line.points[middle - 1], line.points[middle], TPoint(0, 0));
    if (std::fabs(line.level) < 60) {
      EXPECT_GT(side * line.level, 0.0) << line.level;
    }
  }
  for (double const level : {-45.0, -15.0, -5.0, 5.0, 25.0, 55.0}) EXPECT_EQ(open[level], 2);
}

TEST_F(Contours, OfTwoPeaksAreTwoRingsAboveThePassAndOneBelow) {
  auto const peak = [](double x, double y) { return 10 * std::exp(-(x * x + y * y) / 8); };
  Sample([&](double x, double y) { return peak(x - 4, y) + peak(x + 4, y); });
  std::vector<Line> const lines = Draw({"--level", "7", "--level", "1"});
  ExpectSound(lines);
  std::map<double, int> rings;
  for (Line const& line : lines) rings[line.level] += line.closed ? 1 : 0;
  EXPECT_EQ(rings[7.0], 2);
  EXPECT_EQ(rings[1.0], 1);
}

TEST_F(Contours, OnARasterWithHeightsAtTheLevelsNeverCross) {
  std::string text;
  for (int i = 0; i < 40; ++i) {
    for (int j = 0; j < 40; ++j) {
      double const z = std::round(6 * std::sin(i * 0.3) * std::cos(j * 0.25));
      text += std::to_string(i) + ' ' + std::to_string(j) + ' ' + Text(z) + '\n';
    }
  }
  m_Folder.Put("raster.xyz", text);
  std::vector<Line> const lines = Draw({"--interval", "1"}, "raster.xyz");
  EXPECT_GT(lines.size(), 30u);
  EXPECT_EQ(Crossings(lines, 1.0), 0);
  for (Line const& line : lines) {
    for (TPoint const& p : line.points) EXPECT_EQ(p.z, line.level);
  }
}

TEST_F(Contours, MarkEveryFifthLevelFromTheBase) {
  Sample([](double x, double y) { return 10 - std::hypot(x, y); }, 500);
  std::map<double, bool> index;
  for (Line const& line : Draw({"--interval", "1", "--base", "1"})) index[line.level] = line.index;
  EXPECT_TRUE(index[1.0]);
  EXPECT_TRUE(index[6.0]);
  EXPECT_FALSE(index[5.0]);
  for (Line const& line : Draw({"--interval", "1", "--index-every", "2"})) {
    EXPECT_EQ(line.index, std::fmod(line.level, 2.0) == 0.0) << line.level;
  }
  for (Line const& line : Draw({"--interval", "1", "--index-every", "0"})) EXPECT_FALSE(line.index);
}

TEST_F(Contours, LeaveOutShortLines) {
  Sample([](double x, double y) { return 10 - std::hypot(x, y); });
  std::vector<std::string> const options = {"--level", "9.5", "--level", "5", "--min-length", "10"};
  std::vector<Line> const lines = Draw(options);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].level, 5.0);
  Ran const ran = MustRun({"contours", "s.tin", "--level", "9.5", "--level", "5", "--min-length",
                           "10", "-o", "c.csv", "--json"});
  EXPECT_EQ(ran.Json()["left_out"], 1);
  EXPECT_EQ(ran.Json()["lines"], 1);
  EXPECT_THAT(ran.err, HasSubstr("1 short line is left out"));
}

TEST_F(Contours, AsGeneratedAreThoseOfTheLibrary) {
  Sample([](double x, double y) { return x * y + std::hypot(x, y); }, 1000);
  std::vector<Line> const lines = Draw({"--interval", "5", "--as-generated"});

  TIN tin;
  ASSERT_TRUE(tin.Load(m_Folder.Wide("s.tin").c_str()));
  std::vector<double> levels;
  for (Line const& line : lines) {
    if (levels.empty() || levels.back() != line.level) levels.push_back(line.level);
  }
  ContourList list;
  std::atomic<bool> const running{true};
  TINContourCreator(&tin).AddLevels(levels, list, running);
  ASSERT_EQ(static_cast<int>(lines.size()), list.Size());
  for (int i = 0; i < list.Size(); ++i) {
    Line const& line = lines[static_cast<std::size_t>(i)];
    EXPECT_EQ(line.level, list[i].Level());
    ASSERT_EQ(static_cast<int>(line.points.size()), list[i].NumPoints());
    for (int k = 0; k < list[i].NumPoints(); ++k) {
      EXPECT_EQ(line.points[static_cast<std::size_t>(k)].x, list[i][k].x);
      EXPECT_EQ(line.points[static_cast<std::size_t>(k)].y, list[i][k].y);
    }
  }
}

TEST_F(Contours, AsAPictureHaveHeightsAlongIndexContours) {
  Sample([](double x, double y) { return 10 - std::hypot(x, y); });
  MustRun({"contours", "s.tin", "--interval", "1", "-o", "c.svg", "-q"});
  std::string const picture = m_Folder.Get("c.svg");
  EXPECT_TRUE(picture.starts_with("<svg "));
  EXPECT_TRUE(picture.ends_with("</svg>\n"));
  EXPECT_THAT(picture, HasSubstr(">5</text>"));
  EXPECT_THAT(picture, Not(HasSubstr(">4</text>")));
}

TEST_F(Contours, SayWhatIsWrong) {
  Sample([](double x, double y) { return x + y; }, 10);
  ExpectError(
      Run({"contours", "s.tin", "--level", "1", "-o", "c.doc"}),
      "c.doc: the name of a vector file ends in .gpkg, .geojson, .json, .shp, .dxf or .csv");
  ExpectError(Run({"contours", "none.tin", "--level", "1", "-o", "c.csv"}),
              "none.tin: No such file or directory");
  EXPECT_FALSE(m_Folder.Has("c.csv"));
  EXPECT_EQ(Run({"contours", "s.tin", "-o", "c.csv"}).status, 2);
  EXPECT_EQ(Run({"contours", "s.tin", "--level", "1", "--interval", "1", "-o", "c.csv"}).status, 2);
  EXPECT_EQ(Run({"contours", "s.tin", "--interval", "0", "-o", "c.csv"}).status, 2);
  EXPECT_EQ(Run({"contours", "s.tin", "--level", "1", "--min-length", "-1", "-o", "c.csv"}).status,
            2);
  ExpectError(Run({"contours", "s.tin", "--interval", "1e-9", "-o", "c.csv"}),
              "s.tin: an interval of 1e-9 gives more than a million levels");
  MustRun({"contours", "s.tin", "--level", "1", "-o", "c.svg", "-q"});
  ExpectError(Run({"contours", "s.tin", "--level", "1", "-o", "c.svg"}),
              "c.svg: exists already (--overwrite replaces it)");
}

TEST_F(Contours, OfRealSurveysNeverCross) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  struct Survey {
    char const* name;
    char const* interval;
    double cell;
  };
  for (Survey const& survey :
       {Survey{"dem_volcano_5k.xyz", "1", 10}, Survey{"mbes_riverbed_100k.xyz", "0.05", 0.2},
        Survey{"sbes_opinicon_20k.xyz", "0.5", 20}, Survey{"lidar_autzen_110k.xyz", "2", 2}}) {
    std::vector<Line> const lines =
        Draw({"--interval", survey.interval}, std::string(folder) + '/' + survey.name);
    EXPECT_GT(lines.size(), 50u) << survey.name;
    EXPECT_EQ(Crossings(lines, survey.cell), 0) << survey.name;
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
