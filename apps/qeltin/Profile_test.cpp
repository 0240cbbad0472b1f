#include <cmath>
#include <filesystem>
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
using ::testing::StartsWith;
using Json = nlohmann::json;

// A plane, z = 1 + x / 8 + y / 4, in two triangles that meet where x = y.
constexpr char PLANE[] = "0 0 1\n8 0 2\n8 8 4\n0 16 5\n";

// z = x y over a grid of 4 by 4 places, 1 apart.
std::string Saddle() {
  std::string text;
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) {
      text += std::to_string(x) + ' ' + std::to_string(y) + ' ' + std::to_string(x * y) + '\n';
    }
  }
  return text;
}

class Profile : public CommandTest {
 protected:
  struct Row {
    int piece = 0;
    double distance = 0.0;
    TPoint at;
    int line = 0;
  };

  Profile() { m_Folder.Put("plane.xyz", PLANE); }

  Ran Cut(std::string const& surface, std::vector<std::string> const& options) const {
    std::vector<std::string> arguments = {"profile", surface, "-o", "p.csv", "--overwrite"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Run(arguments);
  }

  std::vector<Row> Rows(std::string const& surface, std::vector<std::string> options) const {
    options.push_back("-q");
    Ran const ran = Cut(surface, options);
    EXPECT_EQ(ran.status, 0) << ran.err;
    std::istringstream text(m_Folder.Get("p.csv"));
    std::string row;
    std::getline(text, row);
    EXPECT_EQ(row, "piece,distance,x,y,z,line");
    std::vector<Row> rows;
    while (std::getline(text, row)) {
      Row& r = rows.emplace_back();
      EXPECT_EQ(std::sscanf(row.c_str(), "%d,%lf,%lf,%lf,%lf,%d", &r.piece, &r.distance, &r.at.x,
                            &r.at.y, &r.at.z, &r.line),
                6);
    }
    return rows;
  }

  std::vector<Row> Straight(std::string const& surface, std::string const& from,
                            std::string const& to) const {
    return Rows(surface, {"--from", from, "--to", to});
  }

  std::string Text() const { return m_Folder.Get("p.csv"); }

  // Two unit squares of z = x with an empty one between them, without a seed rectangle.
  void PutGap() const {
    NativeModel model = SquareModel();
    model.min = model.worldMin = {-10, -10, 0};
    model.max = model.worldMax = {10, 10, 5};
    model.points = {{0, 0, 0}, {0, 1, 0}, {1, 1, 1}, {1, 0, 1},
                    {2, 0, 2}, {2, 1, 2}, {3, 1, 3}, {3, 0, 3}};
    model.triangles.assign(4, {});
    model.triangles[0] = {{0, 1, 2}, {-1, -1, 1}};
    model.triangles[1] = {{0, 2, 3}, {0, -1, -1}};
    model.triangles[2] = {{4, 5, 6}, {-1, -1, 3}};
    model.triangles[3] = {{4, 6, 7}, {2, -1, -1}};
    m_Folder.Put("gap.tin", NativeFile(3, model));
  }
};

TEST_F(Profile, ALineInsideOneTriangleHasTrueHeightsAtBothEnds) {
  Straight("plane.xyz", "1,2", "1,8");
  EXPECT_THAT(Text(), StartsWith("piece,distance,x,y,z,line\n1,0,1,2,1.625,1\n1,6,1,8,3.125,1\n"));
}

TEST_F(Profile, ALineOverAPlaneRisesEvenly) {
  std::vector<Row> const rows = Straight("plane.xyz", "1,2", "7,5");
  ASSERT_EQ(rows.size(), 3u);
  for (Row const& row : rows) {
    EXPECT_NEAR(row.at.z, 1 + row.at.x / 8 + row.at.y / 4, 1e-14);
    EXPECT_NEAR(row.distance, std::hypot(row.at.x - 1, row.at.y - 2), 1e-14);
    EXPECT_EQ(row.piece, 1);
    EXPECT_EQ(row.line, 1);
  }
  EXPECT_EQ(rows.front().at, TPoint(1, 2, rows.front().at.z));
  EXPECT_EQ(rows.back().at, TPoint(7, 5, rows.back().at.z));
}

TEST_F(Profile, ALineIsCutWhereTheSurfaceBeginsAndEnds) {
  std::vector<Row> const rows = Straight("plane.xyz", "-10,5", "30,5");
  EXPECT_EQ(rows.front().distance, 10.0);
  EXPECT_EQ(rows.front().at, TPoint(0, 5, 2.25));
  EXPECT_EQ(rows.back().distance, 18.0);
  EXPECT_EQ(rows.back().at, TPoint(8, 5, 3.25));
}

TEST_F(Profile, ALineAlongSidesHasEveryVertexOnce) {
  m_Folder.Put("saddle.xyz", Saddle());
  Straight("saddle.xyz", "0,2", "3,2");
  EXPECT_EQ(Text(),
            "piece,distance,x,y,z,line\n"
            "1,0,0,2,0,1\n1,1,1,2,2,1\n1,2,2,2,4,1\n1,3,3,2,6,1\n");
  Straight("saddle.xyz", "2.5,1", "0.25,1");
  EXPECT_EQ(Text(),
            "piece,distance,x,y,z,line\n"
            "1,0,2.5,1,2.5,1\n1,0.5,2,1,2,1\n1,1.5,1,1,1,1\n1,2.25,0.25,1,0.25,1\n");
}

TEST_F(Profile, ALineAlongTheBrimIsOnTheSurface) {
  Straight("plane.xyz", "0,0", "8,0");
  EXPECT_EQ(Text(), "piece,distance,x,y,z,line\n1,0,0,0,1,1\n1,8,8,0,2,1\n");
}

TEST_F(Profile, ALineFromVertexToVertexHasBothEnds) {
  m_Folder.Put("saddle.xyz", Saddle());
  for (std::string const to : {"0,3", "3,3", "1,2", "2,1", "1,1"}) {
    std::vector<Row> const rows = Straight("saddle.xyz", "0,0", to);
    ASSERT_GE(rows.size(), 2u);
    Row const& end = rows.back();
    EXPECT_EQ(std::to_string(int(end.at.x)) + ',' + std::to_string(int(end.at.y)), to);
    EXPECT_EQ(end.at.z, end.at.x * end.at.y);
  }
}

TEST_F(Profile, ALineThatOnlyTouchesTheSurfaceGivesNothing) {
  EXPECT_TRUE(Straight("plane.xyz", "0,-8", "16,8").empty());
  EXPECT_TRUE(Straight("plane.xyz", "-10,10", "10,-10").empty());
  Ran const ran = Cut("plane.xyz", {"--from", "20,20", "--to", "30,20"});
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.err, "qeltin: plane.xyz: no line runs over the surface\n");
  EXPECT_EQ(Text(), "piece,distance,x,y,z,line\n");
}

TEST_F(Profile, EachPieceAtAGapIsWrittenOnce) {
  PutGap();
  Straight("gap.tin", "-1,0.25", "4,0.25");
  EXPECT_EQ(Text(),
            "piece,distance,x,y,z,line\n"
            "1,1,0,0.25,0,1\n1,1.25,0.25,0.25,0.25,1\n1,2,1,0.25,1,1\n"
            "2,3,2,0.25,2,1\n2,3.25,2.25,0.25,2.25,1\n2,4,3,0.25,3,1\n");
}

TEST_F(Profile, DistancesRunOnOverTurnsAndGaps) {
  PutGap();
  m_Folder.Put("line.txt", "-1 -3\n-1 0.25\n0.5 0.25\n2.5 0.25\n2.5 0.75\n");
  Rows("gap.tin", {"--along", "line.txt"});
  EXPECT_EQ(Text(),
            "piece,distance,x,y,z,line\n"
            "1,4.25,0,0.25,0,1\n1,4.5,0.25,0.25,0.25,1\n1,4.75,0.5,0.25,0.5,1\n"
            "1,5.25,1,0.25,1,1\n"
            "2,6.25,2,0.25,2,1\n2,6.5,2.25,0.25,2.25,1\n2,6.75,2.5,0.25,2.5,1\n"
            "2,7,2.5,0.5,2.5,1\n2,7.25,2.5,0.75,2.5,1\n");
}

TEST_F(Profile, LinesOfAFileAreCountedAndBeginAtDistanceZero) {
  m_Folder.Put("lines.txt", "1 2\n1 3\n\n20 20\n30 30\n\n4,1\n4,3\n");
  Rows("plane.xyz", {"--along", "lines.txt"});
  EXPECT_EQ(Text(),
            "piece,distance,x,y,z,line\n"
            "1,0,1,2,1.625,1\n1,1,1,3,1.875,1\n2,0,4,1,1.75,3\n2,2,4,3,2.25,3\n");
}

TEST_F(Profile, TheOutlineOfAVectorFileIsALine) {
  m_Folder.Put("area.geojson",
               R"({"type": "Polygon", "coordinates": [[[2, 1], [7, 1], [7, 2], [2, 1]]]})");
  Ran const ran = Cut("plane.xyz", {"--along", "area.geojson", "-q"});
  if (ran.err.find("built without GDAL") != std::string::npos) GTEST_SKIP() << ran.err;
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_THAT(Text(), StartsWith("piece,distance,x,y,z,line\n1,0,2,1,1.5,1\n1,5,7,1,2.125,1\n"));
}

TEST_F(Profile, ALineFileOnStandardInput) {
  Ran const ran = Qeltin({"profile", "plane.xyz", "--along", "-", "-o", "p.csv", "--json"})
                      .Input("1 2\n1 3\n")
                      .Run();
  EXPECT_EQ(ran.Json(), (Json{{"file", "p.csv"},
                              {"lines", 1},
                              {"pieces", 1},
                              {"points", 2},
                              {"left_out", 0},
                              {"length", 1},
                              {"height_range", {1.625, 1.875}}}));
}

TEST_F(Profile, TellsPeopleTheSame) {
  Ran const ran = Cut("plane.xyz", {"--from", "1,2", "--to", "1,3"});
  EXPECT_EQ(ran.out,
            "lines    1\n"
            "pieces   1\n"
            "points   2\n"
            "length   1\n"
            "heights  1.625 to 1.875\n");
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(Cut("plane.xyz", {"--from", "1,1", "--to", "1,2", "-q"}).out, "");
}

TEST_F(Profile, LinesOfOtherFormatsTellWhereTheyStart) {
  PutGap();
  MustRun({"profile", "gap.tin", "--from", "-1,0.25", "--to", "4,0.25", "-o", "p.geojson", "-q"});
  Json const json = Json::parse(m_Folder.Get("p.geojson"));
  EXPECT_EQ(json["features"].size(), 2u);
  EXPECT_EQ(json["features"][1]["properties"], (Json{{"piece", 2}, {"start", 3.0}, {"line", 1}}));
  EXPECT_EQ(json["features"][1]["geometry"]["coordinates"],
            (Json{{2, 0.25, 2}, {2.25, 0.25, 2.25}, {3, 0.25, 3}}));
}

// Expects the rows to be the surface along the line from a to b: a point at every bend.
void ExpectSurface(std::vector<std::pair<double, TPoint>> const& points, TIN const& tin,
                   double scale) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    auto const& [near, p] = points[i - 1];
    auto const& [far, q] = points[i];
    ASSERT_LT(near, far);
    for (double const f : {0.25, 0.5, 0.75}) {
      TPoint const between{p.x + (q.x - p.x) * f, p.y + (q.y - p.y) * f, p.z + (q.z - p.z) * f};
      double z = 0.0;
      if (far - near < 1e-6 * scale || !tin.GetZ(between.x, between.y, z)) continue;
      EXPECT_NEAR(between.z, z, 1e-6) << "at " << between.x << ' ' << between.y;
    }
  }
}

TEST_F(Profile, FollowsEveryKindOfSurvey) {
  std::uint64_t const seed = TestSeed();
  qeltin::testing::Dice dice(seed);
  for (Survey const kind : {Survey::Uniform, Survey::ExactGrid, Survey::SingleBeam,
                            Survey::Cocircular, Survey::Duplicates, Survey::Spiral}) {
    SCOPED_TRACE(NameOf(kind));
    std::vector<TPoint> const points = MakeSurvey(kind, 300, seed, qeltin::testing::AT_UTM);
    PutSurvey(points);
    TIN const tin(m_Folder.Wide("s.tin").c_str());

    // Half of the lines run from one sounding to another, and so through vertices.
    std::string lines;
    std::vector<std::pair<TPoint, TPoint>> asked;
    auto const extent = qeltin::testing::ExtentOf(points);
    for (int i = 0; i < 12; ++i) {
      auto const place = [&]() -> TPoint {
        if (i % 2 == 0) return points[dice.Below(static_cast<int>(points.size()))];
        return {dice.Between(extent.min.x, extent.max.x), dice.Between(extent.min.y, extent.max.y)};
      };
      asked.emplace_back(place(), place());
      if (asked.back().first.XY_EqualsTo(asked.back().second)) asked.back().second.x += 1.0;
      char line[240];
      std::snprintf(line, sizeof line, "%.17g %.17g\n%.17g %.17g\n\n", asked.back().first.x,
                    asked.back().first.y, asked.back().second.x, asked.back().second.y);
      lines += line;
    }
    m_Folder.Put("lines.txt", lines);
    std::vector<std::vector<std::pair<double, TPoint>>> cut(asked.size());
    std::vector<int> pieces(asked.size());
    int latest = 0;
    for (Row const& row : Rows("s.tin", {"--along", "lines.txt"})) {
      cut[row.line - 1].emplace_back(row.distance, row.at);
      pieces[row.line - 1] += row.piece != latest ? 1 : 0;
      latest = row.piece;
    }
    for (std::size_t i = 0; i < asked.size(); ++i) {
      auto const& [from, to] = asked[i];
      EXPECT_LE(pieces[i], 1) << "the hull is convex";
      ExpectSurface(cut[i], tin, from.XY_Distance(to));
      if (i % 2 != 0) continue;
      ASSERT_FALSE(cut[i].empty());
      EXPECT_TRUE(cut[i].front().second.XY_EqualsTo(from));
      EXPECT_TRUE(cut[i].back().second.XY_EqualsTo(to));
      EXPECT_EQ(cut[i].front().first, 0.0);
      EXPECT_EQ(cut[i].back().first, from.XY_Distance(to));
    }
  }
}

TEST_F(Profile, CrossesTheSidesThatTheLibraryCrosses) {
  std::vector<TPoint> const points = MakeSurvey(Survey::Uniform, 300, TestSeed());
  PutSurvey(points);
  TIN const tin(m_Folder.Wide("s.tin").c_str());
  TPoint const from{400.25, 401.5};
  TPoint const to{590.75, 622.125};
  std::vector<TPolygon> cut;
  ASSERT_EQ(tin.GenerateProfile(cut, from, to), 1);
  std::vector<Row> const rows = Straight("s.tin", "400.25,401.5", "590.75,622.125");
  ASSERT_EQ(static_cast<int>(rows.size()), cut[0].GetSize());
  for (int i = 0; i < cut[0].GetSize(); ++i) {
    EXPECT_NEAR(rows[i].at.x, cut[0].Get(i)->x, 1e-9);
    EXPECT_NEAR(rows[i].at.y, cut[0].Get(i)->y, 1e-9);
    EXPECT_NEAR(rows[i].at.z, cut[0].Get(i)->z, 1e-9);
  }
  std::vector<Row> const raw =
      Rows("s.tin", {"--from", "400.25,401.5", "--to", "590.75,622.125", "--raw"});
  ASSERT_EQ(raw.size(), rows.size());
  for (int i = 0; i < cut[0].GetSize(); ++i) EXPECT_EQ(raw[i].at, *cut[0].Get(i));
}

TEST_F(Profile, RawPiecesKeepTheWaysOfTheLibrary) {
  Rows("plane.xyz", {"--from", "1,2", "--to", "1,3", "--raw"});
  EXPECT_EQ(Text(), "piece,distance,x,y,z,line\n1,0,1,2,1.625,1\n1,1,1,3,1.625,1\n");
  Ran const ran = Cut("plane.xyz", {"--from", "-8,8", "--to", "8,0", "--raw", "--json"});
  EXPECT_EQ(ran.Json()["left_out"], 1);
  EXPECT_EQ(ran.err,
            "qeltin: 1 piece of one point is left out\n"
            "qeltin: plane.xyz: no line runs over the surface\n");
}

TEST_F(Profile, BadInputIsAnErrorAndLeavesNoFile) {
  m_Folder.Put("bad.txt", "1 1\nsomewhere else\n");
  ExpectError(Run({"profile", "plane.xyz", "--along", "bad.txt", "-o", "out.csv"}),
              "bad.txt: line 2: \"somewhere else\" does not start with x and y");
  ExpectError(Run({"profile", "plane.xyz", "--along", "missing.txt", "-o", "out.csv"}),
              "missing.txt: No such file or directory");
  ExpectError(Run({"profile", "missing.tin", "--from", "0,0", "--to", "1,1", "-o", "out.csv"}),
              "missing.tin: No such file or directory");
  ExpectError(Run({"profile", "plane.xyz", "--from", "0,0", "--to", "1,1", "-o", "out.png"}),
              "out.png: the name of a vector file ends in .gpkg, .geojson, .json, .shp, .dxf or "
              ".csv");
  NativeModel model = SquareModel();
  for (auto& triangle : model.triangles) triangle.flags = TRI_OUTSIDE;
  m_Folder.Put("hidden.tin", NativeFile(3, model));
  ExpectError(Run({"profile", "hidden.tin", "--from", "0,0", "--to", "1,1", "-o", "out.csv"}),
              "hidden.tin: no triangle is visible: there is no surface");
  EXPECT_EQ(m_Folder.Entries(), 3);
}

TEST_F(Profile, WrongUsageIsStatus2) {
  m_Folder.Put("line.txt", "1 1\n1 2\n");
  std::vector<std::vector<std::string>> const mistakes = {
      {},
      {"--from", "1,1"},
      {"--to", "1,1"},
      {"--from", "1,1", "--to", "1"},
      {"--from", "1,1", "--to", "1,x"},
      {"--from", "1,1", "--to", "1,1"},
      {"--from", "1,1", "--to", "1,2", "--along", "line.txt"},
      {"--to", "1,2", "--along", "line.txt"},
  };
  for (auto const& options : mistakes) {
    std::vector<std::string> arguments = {"profile", "plane.xyz", "-o", "out.csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(Run(arguments).status, 2) << ::testing::PrintToString(options);
  }
  EXPECT_EQ(Run({"profile", "-", "--along", "-", "-o", "out.csv"}).status, 2);
  EXPECT_EQ(Run({"profile", "plane.xyz", "--from", "1,1", "--to", "1,2"}).status, 2);
  EXPECT_EQ(m_Folder.Entries(), 2);
}

TEST_F(Profile, ALineOfThousandsOfPlacesOverARealSurvey) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  std::string text;
  for (int i = 0; i <= 4000; ++i) {
    text += std::to_string(391200 + i * 1.5) + ' ' +
            std::to_string(4934500 + 2500 * std::sin(i * 0.01)) + '\n';
  }
  m_Folder.Put("line.txt", text);
  MustRun({"build", std::string(folder) + "/sbes_opinicon_20k.xyz", "-o", "real.tin", "-q"});
  TIN const tin(m_Folder.Wide("real.tin").c_str());
  std::vector<Row> const rows = Rows("real.tin", {"--along", "line.txt"});
  EXPECT_GT(rows.size(), 4000u);
  for (Row const& row : rows) {
    double z = 0.0;
    if (tin.GetZ(row.at.x, row.at.y, z)) {
      EXPECT_NEAR(row.at.z, z, 1e-5);
    }
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
