#include <cmath>
#include <functional>
#include <numbers>

#include "apps/qeltin/CommandTest.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;

std::string Text(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

class Volume : public CommandTest {
 protected:
  // Builds a surface of cells of `step` over the box from (x, y) with `side` cells a side.
  void Build(std::string const& name, double x, double y, double step, int side,
             std::function<double(double, double)> const& height) const {
    std::string text;
    for (int i = 0; i <= side; ++i) {
      for (int j = 0; j <= side; ++j) {
        double const px = x + i * step;
        double const py = y + j * step;
        text += Text(px) + ' ' + Text(py) + ' ' + Text(height(px, py)) + '\n';
      }
    }
    m_Folder.Put("points.xyz", text);
    MustRun({"build", "points.xyz", "-o", name, "-q"});
  }

  Ran Measure(std::vector<std::string> const& options) const {
    std::vector<std::string> arguments = {"volume", "s.tin", "--inside", "p.txt"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Run(arguments);
  }

  Json Result(std::vector<std::string> options = {}) const {
    options.push_back("--json");
    Ran const ran = Measure(options);
    EXPECT_EQ(ran.status, 0) << ran.err;
    return ran.status == 0 ? ran.Json() : Json();
  }
};

void ExpectNear(double value, double expected) {
  EXPECT_NEAR(value, expected, 1e-9 * std::max(1.0, std::fabs(expected)));
}

TEST_F(Volume, APrismIsExact) {
  Build("s.tin", 482000, 5931900, 2.5, 40, [](double, double) { return 7.25; });
  m_Folder.Put("p.txt", "482010 5931910\n482060 5931910\n482060 5931980\n482010 5931980\n");
  Json const result = Result();
  ExpectNear(result["cut"], 50 * 70 * 7.25);
  EXPECT_EQ(result["fill"], 0.0);
  ExpectNear(result["area"], 50 * 70);
  EXPECT_EQ(result["triangles"], 2 * 20 * 28);
  Json const below = Result({"--datum", "10"});
  EXPECT_EQ(below["cut"], 0.0);
  ExpectNear(below["fill"], 50 * 70 * 2.75);
  ExpectNear(below["net"], -50 * 70 * 2.75);
}

TEST_F(Volume, TheSummaryIsForPeople) {
  Build("s.tin", 0, 0, 1, 10, [](double, double) { return 2.0; });
  m_Folder.Put("p.txt", "1 1\n4 1\n4 3\n1 3\n\n5 5\n6 5\n6 6\n5 6\n");
  EXPECT_EQ(Measure({"--datum", "0.5"}).out,
            "cut           10.5\nfill          0\nnet           10.5\nplan area     7\n"
            "triangles in  14\npolygons      2\n");
}

TEST_F(Volume, EachPolygonIsListed) {
  Build("s.tin", 0, 0, 1, 10, [](double, double) { return 2.0; });
  m_Folder.Put("p.txt", "1 1\n4 1\n4 3\n1 3\n\n5 5\n6 5\n6 6\n5 6\n");
  Json const result = Result({"--precision", "3"});
  EXPECT_EQ(result["file"], "s.tin");
  EXPECT_EQ(result["inside"], "p.txt");
  EXPECT_EQ(result["datum"], 0.0);
  EXPECT_EQ(result["triangles"], 14);
  ASSERT_EQ(result["polygons"].size(), 2u);
  EXPECT_EQ(result["polygons"][0]["cut"], 12.0);
  EXPECT_EQ(result["polygons"][0]["triangles"], 12);
  EXPECT_EQ(result["polygons"][1]["cut"], 2.0);
  EXPECT_EQ(result["polygons"][1]["triangles"], 2);
}

TEST_F(Volume, ATriangleThatTheDatumCutsCountsOnBothSides) {
  m_Folder.Put("points.xyz", "0 0 -1\n6 0 2\n0 6 2\n");
  MustRun({"build", "points.xyz", "-o", "s.tin", "-q"});
  m_Folder.Put("p.txt", "-1 -1\n8 -1\n-1 8\n");
  // The plane cuts off a third of either side: 1/9 of the area 18, one deep.
  Json result = Result();
  ExpectNear(result["fill"], 2.0 / 3);
  ExpectNear(result["net"], 18.0);
  ExpectNear(result["cut"], 18.0 + 2.0 / 3);
  m_Folder.Put("points.xyz", "0 0 1\n6 0 -2\n0 6 -2\n");
  MustRun({"build", "points.xyz", "-o", "s.tin", "-q", "--overwrite"});
  result = Result();
  ExpectNear(result["cut"], 2.0 / 3);
  ExpectNear(result["net"], -18.0);
  ExpectNear(result["fill"], 18.0 + 2.0 / 3);
}

TEST_F(Volume, ADatumThroughASlopeHasItsClosedForm) {
  // z = x / 2 over 40 by 40, against 7.3: wedges of 14.6 and 25.4 along x.
  Build("s.tin", 0, 0, 1, 40, [](double x, double) { return x / 2; });
  m_Folder.Put("p.txt", "0 0\n40 0\n40 40\n0 40\n");
  Json const result = Result({"--datum", "7.3"});
  ExpectNear(result["fill"], 14.6 * 7.3 / 2 * 40);
  ExpectNear(result["cut"], 25.4 * 12.7 / 2 * 40);
  EXPECT_EQ(result["triangles"], 3200);
}

TEST_F(Volume, RefiningConvergesOnAPlane) {
  double const x = 482000;
  double const y = 5931900;
  Build("s.tin", x, y, 2.5, 40,
        [&](double px, double py) { return 1 + (px - x) / 10 + (py - y) / 4; });
  m_Folder.Put("p.txt", "482010 5931910\n482090 5931920\n482030 5931985\n");
  double const area = (80.0 * 75 - 20 * 10) / 2;
  double const exact = area * (1 + 130.0 / 3 / 10 + 115.0 / 3 / 4);  // height at the centroid
  for (double const step : {2.0, 1.0, 0.5, 0.25, 0.125, 0.0625}) {
    Json const result = Result({"--refine", Text(step)});
    EXPECT_LT(std::fabs(result["cut"].get<double>() / exact - 1), 1e-4 * step * step) << step;
    EXPECT_LT(std::fabs(result["area"].get<double>() / area - 1), 1e-4 * step * step) << step;
    EXPECT_EQ(result["fill"], 0.0);
    EXPECT_EQ(result["refine"], step);
    EXPECT_GE(result["pieces"], result["triangles"]);
  }
}

TEST_F(Volume, RefiningConvergesOnACone) {
  constexpr double HEIGHT = 20;
  constexpr double RADIUS = 50;
  Build("s.tin", -30, -30, 0.5, 120,
        [](double x, double y) { return HEIGHT * (1 - std::hypot(x, y) / RADIUS); });
  std::string circle;
  for (int k = 0; k < 720; ++k) {
    double const angle = k * std::numbers::pi / 360;
    circle += Text(25 * std::cos(angle)) + ' ' + Text(25 * std::sin(angle)) + '\n';
  }
  m_Folder.Put("p.txt", circle);
  double const exact = std::numbers::pi * 625 * HEIGHT * (1 - 2.0 * 25 / (3 * RADIUS));
  EXPECT_NEAR(Result()["cut"].get<double>() / exact, 1.0, 2e-3);
  EXPECT_NEAR(Result({"--refine", "0.1"})["cut"].get<double>() / exact, 1.0, 2e-4);
  double const finest = Result({"--refine", "0.01"})["cut"];
  double const finer = Result({"--refine", "0.02"})["cut"];
  EXPECT_NEAR(finest / exact, 1.0, 1e-4);  // what remains is that a cone is no polyhedron
  EXPECT_NEAR(finest, finer, 2e-6 * exact);

  // Above the height 12 stands a cone of radius 20 on the circle of radius 25 that lies below.
  double const top = std::numbers::pi * 400 * 8 / 3;
  double const whole = exact - 12 * std::numbers::pi * 625;
  Json const cut = Result({"--refine", "0.02", "--datum", "12"});
  EXPECT_NEAR(cut["cut"].get<double>() / top, 1.0, 1e-3);
  EXPECT_NEAR(cut["net"].get<double>() / whole, 1.0, 1e-3);
}

TEST_F(Volume, ABoundaryAlongTheSidesOfTrianglesNeedsNoPieces) {
  Build("s.tin", 0, 0, 1, 10, [](double x, double y) { return 1 + x + y; });
  m_Folder.Put("p.txt", "2 2\n7 2\n7 6\n2 6\n");
  Json const result = Result({"--refine", "0.001"});
  EXPECT_EQ(result["triangles"], 40);
  EXPECT_EQ(result["pieces"], 40);
  ExpectNear(result["cut"], 20 * (1 + 4.5 + 4));
}

TEST_F(Volume, ACentroidLevelWithAVertexIsNotMiscounted) {
  // Centroids stand at whole numbers that are no multiples of 3, on the heights of all four
  // corners.
  Build("s.tin", -30, -30, 3, 20, [](double, double) { return 1.0; });
  TPoint const corners[] = {{-8.37, 1, 0}, {0.11, -7, 0}, {8.53, 2, 0}, {0.29, 11, 0}};
  std::string polygon;
  for (TPoint const& corner : corners) polygon += Text(corner.x) + ' ' + Text(corner.y) + '\n';
  m_Folder.Put("p.txt", polygon);

  auto const has = [&corners](double x, double y) {
    for (int k = 0; k < 4; ++k) {
      TPoint const& a = corners[k];
      TPoint const& b = corners[(k + 1) % 4];
      if ((b.x - a.x) * (y - a.y) - (x - a.x) * (b.y - a.y) < 0.0) return false;
    }
    return true;
  };
  TIN const tin(m_Folder.Wide("s.tin").c_str());
  int inside = 0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, false);
    if (t == nullptr) continue;
    TPoint const sum = *t->m_pVertex[0] + *t->m_pVertex[1] + *t->m_pVertex[2];
    inside += has(sum.x / 3, sum.y / 3) ? 1 : 0;
  }
  EXPECT_GT(inside, 20);
  EXPECT_EQ(Result()["triangles"], inside);
}

TEST_F(Volume, HiddenTrianglesDoNotCount) {
  m_Folder.Put("points.xyz", "0 0 1\n1 0 1\n0 1 1\n1 1 1\n9 0 1\n9 1 1\n");
  MustRun({"build", "points.xyz", "-o", "s.tin", "-q"});
  m_Folder.Put("p.txt", "-5 -5\n20 -5\n20 20\n-5 20\n");
  ExpectNear(Result()["area"], 9.0);
  TIN tin(m_Folder.Wide("s.tin").c_str());
  tin.FilterTriangles(2.0);
  ASSERT_TRUE(tin.SaveTin(m_Folder.Wide("s.tin").c_str()));
  Json const result = Result();
  ExpectNear(result["area"], 1.0);
  ExpectNear(result["cut"], 1.0);
  EXPECT_EQ(result["triangles"], 2);
}

TEST_F(Volume, TheFilesStayAsTheyAre) {
  Build("s.tin", 0, 0, 1, 10, [](double x, double) { return x; });
  m_Folder.Put("p.txt", "1.5 1.5\n7.5 2.5\n4.5 8.5\n");
  std::string const surface = m_Folder.Get("s.tin");
  int const entries = m_Folder.Entries();
  Result({"--datum", "3"});
  Result({"--refine", "0.1"});
  EXPECT_EQ(m_Folder.Get("s.tin"), surface);
  EXPECT_EQ(m_Folder.Entries(), entries);
}

TEST_F(Volume, RawTellsWhatTheLibraryMeasures) {
  Build("s.tin", 0, 0, 1, 20, [](double x, double y) { return 3 + x / 10 + y / 7; });
  m_Folder.Put("p.txt", "2 2\n17 2\n17 16\n2 16\n");
  EXPECT_FALSE(Result()["polygons"][0].contains("raw"));
  Json const plain = Result({"--raw"})["polygons"][0];
  ExpectNear(plain["raw"]["above"], plain["cut"]);  // nothing is cut or hidden
  EXPECT_EQ(plain["raw"]["below"], 0.0);

  // In a triangle that the datum cuts, the side away from the corner that stands alone has the
  // opposite sign.
  m_Folder.Put("points.xyz", "0 0 -1\n6 0 2\n0 6 2\n");
  MustRun({"build", "points.xyz", "-o", "s.tin", "-q", "--overwrite"});
  m_Folder.Put("p.txt", "0 0\n6 0\n0 6\n");
  Json const cut = Result({"--raw"})["polygons"][0];
  ExpectNear(cut["cut"], 18.0 + 2.0 / 3);
  ExpectNear(cut["fill"], 2.0 / 3);
  ExpectNear(cut["raw"]["below"], 2.0 / 3);
  ExpectNear(cut["raw"]["above"], -18.0 - 2.0 / 3);
  EXPECT_THAT(Measure({"--raw", "--precision", "2"}).out,
              HasSubstr("raw below     0.67\nraw above     -18.67\n"));
}

TEST_F(Volume, APolygonBesideTheSurfaceIsTold) {
  Build("s.tin", 0, 0, 1, 10, [](double, double) { return 1.0; });
  std::string const square = "1 1\n4 1\n4 3\n1 3\n";
  std::string const far = "50 50\n60 50\n60 60\n";
  m_Folder.Put("p.txt", far);
  ExpectError(Measure({}),
              "p.txt: the polygon holds no part of the surface, by centroids of triangles");
  ExpectError(Measure({"--refine", "0.1"}), "p.txt: the polygon holds no part of the surface");
  m_Folder.Put("p.txt", far + "\n1e5 1e5\n2e5 1e5\n2e5 2e5\n");
  ExpectError(Measure({"--refine", "0.1"}),
              "p.txt: each of the polygons holds no part of the surface");
  m_Folder.Put("p.txt", square + '\n' + far);
  Ran const ran = Measure({"--refine", "1", "--json"});
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.err, "qeltin: p.txt: polygon 2 holds no part of the surface\n");
  EXPECT_EQ(ran.Json()["cut"], 6.0);
  EXPECT_EQ(ran.Json()["polygons"][1]["triangles"], 0);
  EXPECT_EQ(Measure({"-q"}).err, "");
}

TEST_F(Volume, ASmallPolygonInsideOneTriangleIsMeasuredByRefining) {
  m_Folder.Put("points.xyz", "0 0 1\n100 0 1\n0 100 1\n");
  MustRun({"build", "points.xyz", "-o", "s.tin", "-q"});
  m_Folder.Put("p.txt", "10 10\n12 10\n12 12\n10 12\n");
  EXPECT_EQ(Measure({}).status, 1);
  EXPECT_NEAR(Result({"--refine", "0.01"})["cut"].get<double>(), 4.0, 0.01);
}

TEST_F(Volume, ASurfaceWithoutTrianglesIsTold) {
  m_Folder.Put("points.xyz", "0 0 1\n9 0 1\n0 9 1\n");
  MustRun({"build", "points.xyz", "-o", "s.tin", "-q"});
  TIN tin(m_Folder.Wide("s.tin").c_str());
  tin.FilterTriangles(1.0);
  ASSERT_TRUE(tin.SaveTin(m_Folder.Wide("s.tin").c_str()));
  m_Folder.Put("p.txt", "-5 -5\n20 -5\n20 20\n-5 20\n");
  ExpectError(Measure({}), "s.tin: has no visible triangle");
}

TEST_F(Volume, ImpossibleStepsAreTold) {
  Build("s.tin", 0, 0, 1, 10, [](double, double) { return 1.0; });
  m_Folder.Put("p.txt", "1.5 1.5\n7.5 2.5\n4.5 8.5\n");
  ExpectError(Measure({"--refine", "0"}), "p.txt: steps of 0 lead nowhere: --refine is above 0");
  ExpectError(Measure({"--refine", "-1"}), "p.txt: steps of -1 lead nowhere: --refine is above 0");
  EXPECT_EQ(Measure({"--refine", "x"}).status, 2);
  EXPECT_EQ(Measure({"--refine", "nan"}).status, 2);
  EXPECT_EQ(Measure({"--datum", "sea"}).status, 2);
  EXPECT_EQ(Run({"volume", "s.tin"}).status, 2);
  EXPECT_EQ(Run({"volume", "-", "--inside", "-"}).status, 2);
}

TEST_F(Volume, TooManyStepsAreRefused) {
  Build("s.tin", 0, 0, 1, 10, [](double, double) { return 1.0; });
  m_Folder.Put("p.txt", "1.5 1.5\n7.5 2.5\n4.5 8.5\n");
  for (std::string const step : {"1e-6", "1e-300"}) {
    ExpectError(Measure({"--refine", step}),
                "p.txt: --refine " + step + " makes more than 10000000 steps along a boundary");
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
