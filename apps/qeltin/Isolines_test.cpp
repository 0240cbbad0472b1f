#include <cmath>
#include <filesystem>
#include <map>
#include <numbers>
#include <set>
#include <sstream>

#include "apps/qeltin/CommandTest.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"

namespace qeltin::cli::testing {
namespace {

using qeltin::testing::MakeSurvey;
using qeltin::testing::NativeFile;
using qeltin::testing::NativeModel;
using qeltin::testing::SquareModel;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using ::testing::HasSubstr;
using Json = nlohmann::json;
using Line = std::vector<TPoint>;

// A ramp of twelve triangles: z = x over 3 by 2.
constexpr char RAMP[] =
    "0 0 0\n1 0 1\n2 0 2\n3 0 3\n0 1 0\n1 1 1\n2 1 2\n3 1 3\n0 2 0\n1 2 1\n2 2 2\n3 2 3\n";

// A peak of 2 in a square of 2, at height 0 along the edge.
constexpr char PYRAMID[] = "-1 -1 0\n1 -1 0\n1 1 0\n-1 1 0\n0 0 2\n";

class Isolines : public CommandTest {
 protected:
  struct Drawn {
    Json summary;
    std::string err;
    std::map<double, std::vector<Line>> lines;  // by level
  };

  Drawn Draw(std::string const& surface, std::vector<std::string> const& options) const {
    std::vector<std::string> arguments = {"isolines",  surface,  "-o",
                                          "lines.csv", "--json", "--overwrite"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Ran const ran = MustRun(arguments);
    Drawn drawn{ran.Json(), ran.err, {}};
    std::istringstream rows(m_Folder.Get("lines.csv"));
    std::string row;
    std::getline(rows, row);
    int latest = 0;
    while (std::getline(rows, row)) {
      int line = 0;
      double level = 0.0;
      TPoint p;
      EXPECT_EQ(std::sscanf(row.c_str(), "%d,%lf,%lf,%lf,%lf", &line, &p.x, &p.y, &p.z, &level), 5);
      EXPECT_EQ(p.z, level);
      if (line != latest) drawn.lines[level].emplace_back();
      latest = line;
      drawn.lines[level].back().push_back(p);
    }
    return drawn;
  }
};

double LengthOf(Line const& line) {
  double length = 0.0;
  for (std::size_t i = 1; i < line.size(); ++i) length += line[i - 1].XY_Distance(line[i]);
  return length;
}

// Positive where the line runs counter-clockwise.
double AreaOf(Line const& ring) {
  double twice = 0.0;
  for (std::size_t i = 1; i < ring.size(); ++i) {
    TPoint const a = ring[i - 1] - ring[0];
    TPoint const b = ring[i] - ring[0];
    twice += a.x * b.y - a.y * b.x;
  }
  return twice / 2;
}

bool IsClosed(Line const& line) { return line.size() > 2 && line.front() == line.back(); }

bool IsCrossed(TPoint const& a, TPoint const& b, double level) {
  return (a.z >= level) != (b.z >= level);
}

// What the triangles hold of a level, each by itself: the length of all stretches, and the places
// where a line ends for want of a visible neighbour.
struct Stretches {
  double length = 0.0;
  std::vector<TPoint> brim;

  Stretches(TIN const& tin, double level) {
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
      TTriangle const* const t = tin.GetTriangle(i, false);
      if (t != nullptr) Add(*t, level);
    }
  }

 private:
  void Add(TTriangle const& t, double level) {
    std::vector<TPoint> ends;
    for (int side = 0; side < 3; ++side) {
      TPoint const& a = *t.m_pVertex[side];
      TPoint const& b = *t.m_pVertex[(side + 1) % 3];
      if (!IsCrossed(a, b, level)) continue;
      double const f = (level - a.z) / (b.z - a.z);
      ends.emplace_back(a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f, level);
      TTriangle const* const next = t.m_pAdjacent[side];
      if (next == nullptr || next->IsHidden()) brim.push_back(ends.back());
    }
    if (ends.size() == 2) length += ends[0].XY_Distance(ends[1]);
  }
};

// Expects the lines to be those of the triangles, each stretch once, and none to end but at the
// brim.
void ExpectWhole(std::vector<Line> const& lines, TIN const& tin, double level) {
  Stretches const truth(tin, level);
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  double const tiny =
      1e-14 * (std::fabs(min.x) + std::fabs(min.y) + std::fabs(max.x) + std::fabs(max.y));
  double length = 0.0;
  int ends = 0;
  for (Line const& line : lines) {
    length += LengthOf(line);
    if (IsClosed(line)) continue;
    for (TPoint const& end : {line.front(), line.back()}) {
      ++ends;
      bool const at_brim = std::any_of(truth.brim.begin(), truth.brim.end(),
                                       [&](TPoint const& p) { return p.XY_Distance(end) <= tiny; });
      EXPECT_TRUE(at_brim) << "a line of level " << level << " ends at " << end.x << ' ' << end.y;
    }
  }
  EXPECT_LE(ends, static_cast<int>(truth.brim.size()));
  EXPECT_NEAR(length, truth.length, 1e-9 * truth.length + tiny * 1000) << "level " << level;
}

TEST_F(Isolines, APlaneHasOneStraightLineALevel) {
  m_Folder.Put("ramp.xyz", RAMP);
  Drawn const drawn = Draw("ramp.xyz", {"--level", "0.5", "--level", "2.25"});
  ASSERT_EQ(drawn.lines.size(), 2u);
  for (auto const& [level, lines] : drawn.lines) {
    ASSERT_EQ(lines.size(), 1u);
    for (TPoint const& p : lines[0]) EXPECT_EQ(p.x, level);
    // From south to north, with the higher ground to the right, in the east.
    EXPECT_EQ(lines[0].front().y, 0.0);
    EXPECT_EQ(lines[0].back().y, 2.0);
    EXPECT_EQ(lines[0].size(), 5u);
  }
  EXPECT_EQ(drawn.summary, (Json{{"file", "lines.csv"},
                                 {"levels", 2},
                                 {"lines", 2},
                                 {"closed", 0},
                                 {"points", 10},
                                 {"left_out", 0},
                                 {"length", 4}}));
}

TEST_F(Isolines, ALevelThroughVerticesIsOneLineWithoutRepeatedPoints) {
  m_Folder.Put("ramp.xyz", RAMP);
  Drawn const drawn = Draw("ramp.xyz", {"--level", "1", "--level", "2"});
  for (auto const& [level, lines] : drawn.lines) {
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], (Line{{level, 0, level}, {level, 1, level}, {level, 2, level}}));
  }
  EXPECT_EQ(drawn.lines.size(), 2u);
}

TEST_F(Isolines, ALineAboutAPeakIsClosedAndRunsClockwise) {
  m_Folder.Put("pyramid.xyz", PYRAMID);
  Drawn const drawn = Draw("pyramid.xyz", {"--level", "1"});
  ASSERT_EQ(drawn.lines.at(1.0).size(), 1u);
  Line const& ring = drawn.lines.at(1.0)[0];
  EXPECT_EQ(ring.size(), 5u);
  EXPECT_EQ(ring.front(), ring.back());
  EXPECT_EQ(AreaOf(ring), -1.0);
  EXPECT_EQ(drawn.summary["closed"], 1);
  EXPECT_EQ(drawn.summary["length"], 4);
}

TEST_F(Isolines, ALineAboutAPitRunsCounterClockwise) {
  m_Folder.Put("pit.xyz", "-1 -1 0\n1 -1 0\n1 1 0\n-1 1 0\n0 0 -2\n");
  Drawn const drawn = Draw("pit.xyz", {"--level", "-1"});
  ASSERT_EQ(drawn.lines.at(-1.0).size(), 1u);
  EXPECT_EQ(AreaOf(drawn.lines.at(-1.0)[0]), 1.0);
}

TEST_F(Isolines, ASummitAtTheLevelIsLeftOutAndTold) {
  m_Folder.Put("pyramid.xyz", PYRAMID);
  Drawn const drawn = Draw("pyramid.xyz", {"--level", "2"});
  EXPECT_TRUE(drawn.lines.empty());
  EXPECT_EQ(drawn.err,
            "qeltin: 1 line of one point is left out\n"
            "qeltin: pyramid.xyz: no line at the levels asked for\n");
  EXPECT_EQ(drawn.summary["left_out"], 1);
  EXPECT_EQ(drawn.summary["lines"], 0);
}

TEST_F(Isolines, ALevelBeyondTheHeightsGivesAFileWithoutLines) {
  m_Folder.Put("pyramid.xyz", PYRAMID);
  Drawn const drawn = Draw("pyramid.xyz", {"--level", "3", "--level", "-1", "--level", "0"});
  EXPECT_EQ(m_Folder.Get("lines.csv"), "line,x,y,z,level\n");
  EXPECT_EQ(drawn.summary["levels"], 3);
  EXPECT_EQ(drawn.summary["lines"], 0);
  MustRun({"isolines", "pyramid.xyz", "--level", "3", "-o", "none.geojson", "-q"});
  EXPECT_EQ(Json::parse(m_Folder.Get("none.geojson"))["features"], Json::array());
}

TEST_F(Isolines, RingsOfAConeHaveTheLengthOfCircles) {
  // A cone of slope 1 whose vertices stand on circles: a ring cuts its sides into chords.
  constexpr int SPOKES = 180;
  std::vector<TPoint> points = {{0, 0, 100}};
  for (int circle = 1; circle <= 10; ++circle) {
    for (int spoke = 0; spoke < SPOKES; ++spoke) {
      double const angle = 2 * std::numbers::pi * (spoke + circle * 0.3) / SPOKES;
      double const r = circle * 10.0;
      points.emplace_back(r * std::cos(angle), r * std::sin(angle), 100 - r);
    }
  }
  std::string const surface = PutSurvey(points);
  Drawn const drawn = Draw(surface, {"--interval", "7", "--base", "3"});
  ASSERT_EQ(drawn.lines.size(), 14u);
  for (auto const& [level, lines] : drawn.lines) {
    ASSERT_EQ(lines.size(), 1u) << level;
    EXPECT_TRUE(IsClosed(lines[0]));
    double const radius = 100 - level;
    EXPECT_NEAR(LengthOf(lines[0]), 2 * std::numbers::pi * radius, 0.002 * radius);
    EXPECT_NEAR(AreaOf(lines[0]), -std::numbers::pi * radius * radius, 0.01 * radius * radius);
  }
  EXPECT_EQ(drawn.summary["closed"], 14);
}

TEST_F(Isolines, LinesAreWholeOnEveryKindOfSurvey) {
  std::uint64_t const seed = TestSeed();
  for (Survey const kind :
       {Survey::Uniform, Survey::Clusters, Survey::ExactGrid, Survey::SingleBeam,
        Survey::Cocircular, Survey::Duplicates, Survey::Spiral}) {
    SCOPED_TRACE(NameOf(kind));
    std::vector<TPoint> points = MakeSurvey(kind, 400, seed, qeltin::testing::AT_UTM);
    // Every other height is whole, so that levels run through vertices and along sides.
    for (std::size_t i = 0; i < points.size(); i += 2) points[i].z = std::round(points[i].z);
    std::string const surface = PutSurvey(points);
    TIN tin(m_Folder.Wide(surface).c_str());
    auto const range = MustRun({"info", surface, "--json"}).Json()["height_range"];
    double const span = range[1].get<double>() - range[0].get<double>();
    double const interval = std::max(0.5, std::round(span / 12 * 2) / 2);
    Drawn const drawn = Draw(surface, {"--interval", std::to_string(interval)});
    EXPECT_GT(drawn.lines.size(), 1u);
    for (auto const& [level, lines] : drawn.lines) ExpectWhole(lines, tin, level);
  }
}

TEST_F(Isolines, LinesReachTheBrimOfASurfaceWithoutASeedRectangle) {
  NativeModel model = SquareModel();
  model.min = model.worldMin = {-10, -10, 0};
  model.max = model.worldMax = {10, 10, 5};
  model.points = {{0, 0, 0}, {0, 1, 0}, {1, 1, 4}, {1, 0, 4}, {2, 1, 0}};
  model.triangles.resize(3);
  model.triangles[0] = {{0, 1, 2}, {-1, -1, 1}};
  model.triangles[1] = {{0, 2, 3}, {0, 2, -1}};
  model.triangles[2] = {{2, 4, 3}, {-1, -1, 1}};
  m_Folder.Put("bare.tin", NativeFile(3, model));
  Drawn const drawn = Draw("bare.tin", {"--level", "1"});
  TIN const tin(m_Folder.Wide("bare.tin").c_str());
  ASSERT_EQ(drawn.lines.at(1.0).size(), 2u);
  ExpectWhole(drawn.lines.at(1.0), tin, 1.0);
  EXPECT_EQ(drawn.lines.at(1.0)[0], (Line{{0.25, 0, 1}, {0.25, 0.25, 1}, {0.25, 1, 1}}));
}

TEST_F(Isolines, RawLinesAreThoseOfTheLibrary) {
  std::string const surface = PutSurvey(MakeSurvey(Survey::Uniform, 300, TestSeed()));
  TIN tin(m_Folder.Wide(surface).c_str());
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  double const level = std::round((min.z + max.z) / 2);
  Drawn const raw = Draw(surface, {"--level", std::to_string(level), "--raw"});
  std::vector<TPolygon*> traced;
  tin.GenerateIsoline(traced, level);
  std::size_t next = 0;
  for (TPolygon* const polygon : traced) {
    std::unique_ptr<TPolygon> const owner(polygon);
    if (polygon->GetSize() < 2) continue;
    Line const expected(polygon->Get(0), polygon->Get(0) + polygon->GetSize());
    ASSERT_LT(next, raw.lines.at(level).size());
    EXPECT_EQ(raw.lines.at(level)[next++], expected);
  }
  EXPECT_GT(next, 1u);
  EXPECT_EQ(next, raw.lines.at(level).size());
  EXPECT_EQ(raw.summary["closed"], 0);
}

TEST_F(Isolines, LevelsByIntervalAreMultipliedNotSummed) {
  m_Folder.Put("tall.xyz", "0 0 0\n1 0 100\n0 1 100\n");
  Drawn const drawn = Draw("tall.xyz", {"--interval", "0.1", "--base", "0.05"});
  EXPECT_EQ(drawn.summary["levels"], 1000);
  int k = 0;
  for (auto const& [level, lines] : drawn.lines) EXPECT_EQ(level, 0.05 + k++ * 0.1);
  EXPECT_EQ(k, 1000);
}

TEST_F(Isolines, LevelsByIntervalIncludeBothEndsOfTheHeights) {
  m_Folder.Put("ramp.xyz", RAMP);
  EXPECT_EQ(Draw("ramp.xyz", {"--interval", "1"}).summary["levels"], 4);
  EXPECT_EQ(Draw("ramp.xyz", {"--interval", "1", "--base", "-1000.5"}).summary["levels"], 3);
  EXPECT_EQ(Draw("ramp.xyz", {"--interval", "10", "--base", "5"}).summary["levels"], 0);
}

TEST_F(Isolines, ALevelGivenTwiceIsDrawnOnce) {
  m_Folder.Put("ramp.xyz", RAMP);
  Drawn const drawn = Draw("ramp.xyz", {"--level", "2.5", "--level", "1.5", "--level", "2.50"});
  EXPECT_EQ(drawn.summary["levels"], 2);
  EXPECT_EQ(drawn.summary["lines"], 2);
}

TEST_F(Isolines, TooManyLevelsAreRefused) {
  m_Folder.Put("ramp.xyz", RAMP);
  for (std::string const interval : {"1e-9", "1e-300"}) {
    ExpectError(Run({"isolines", "ramp.xyz", "--interval", interval, "-o", "out.csv"}),
                "ramp.xyz: an interval of " + interval + " gives more than a million levels");
  }
  EXPECT_EQ(m_Folder.Entries(), 1);
}

TEST_F(Isolines, WrongUsageIsStatus2) {
  m_Folder.Put("ramp.xyz", RAMP);
  std::vector<std::vector<std::string>> const mistakes = {
      {},
      {"--level", "1", "--interval", "1"},
      {"--level", "1", "--base", "1"},
      {"--level", "nan"},
      {"--level", "1,2"},
      {"--level", "1", "2"},
      {"--interval", "0"},
      {"--interval", "-1"},
      {"--interval", "inf"},
      {"--interval", "x"},
      {"--interval", "1", "--base", "inf"},
  };
  for (auto const& options : mistakes) {
    std::vector<std::string> arguments = {"isolines", "ramp.xyz", "-o", "out.csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(Run(arguments).status, 2) << ::testing::PrintToString(options);
  }
  EXPECT_EQ(Run({"isolines", "ramp.xyz", "--level", "1"}).status, 2);
  EXPECT_EQ(Run({"isolines", "--level", "1", "-o", "out.csv"}).status, 2);
  EXPECT_EQ(m_Folder.Entries(), 1);
}

TEST_F(Isolines, ASurfaceWithoutAVisibleTriangleIsAnError) {
  NativeModel model = SquareModel();
  for (auto& triangle : model.triangles) triangle.flags = TRI_OUTSIDE;
  m_Folder.Put("hidden.tin", NativeFile(3, model));
  ExpectError(Run({"isolines", "hidden.tin", "--level", "1", "-o", "out.csv"}),
              "hidden.tin: no triangle is visible: there is no surface");
  EXPECT_EQ(m_Folder.Entries(), 1);
}

TEST_F(Isolines, TellsPeopleTheSame) {
  m_Folder.Put("pyramid.xyz", PYRAMID);
  Ran const ran = MustRun({"isolines", "pyramid.xyz", "--level", "1", "-o", "out.csv"});
  EXPECT_EQ(ran.out,
            "levels        1\n"
            "lines         1\n"
            "closed lines  1\n"
            "points        5\n"
            "length        4\n");
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(
      MustRun({"isolines", "pyramid.xyz", "--level", "1", "-o", "out.csv", "--overwrite", "-q"})
          .out,
      "");
}

TEST_F(Isolines, LinesAreWholeOnRealSurveys) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  struct Case {
    char const* file;
    char const* interval;
  };
  for (Case const& c :
       {Case{"dem_volcano_5k.xyz", "5"}, Case{"sbes_opinicon_20k.xyz", "1"},
        Case{"topo_original_ground_4k.xyz", "2.5"}, Case{"building_pad_172.ttm", "0.5"},
        Case{"carrs_basins_600.ttm", "0.25"}, Case{"original_ground_4155.ttm", "1"}}) {
    SCOPED_TRACE(c.file);
    std::string surface = std::string(folder) + '/' + c.file;
    if (surface.ends_with(".xyz")) {
      MustRun({"build", surface, "-o", "real.tin", "--overwrite", "-q"});
      surface = m_Folder.Path("real.tin").string();
    }
    TIN const tin(qeltin::FromUtf8(surface).c_str());
    Drawn const drawn = Draw(surface, {"--interval", c.interval});
    EXPECT_GT(drawn.lines.size(), 8u);
    for (auto const& [level, lines] : drawn.lines) ExpectWhole(lines, tin, level);
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
