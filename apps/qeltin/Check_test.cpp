#include <functional>

#include "apps/qeltin/CommandTest.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"

namespace qeltin::cli::testing {
namespace {

using qeltin::testing::Dice;
using qeltin::testing::ModelOf;
using qeltin::testing::NativeFile;
using qeltin::testing::NativeKeys;
using qeltin::testing::NativeModel;
using qeltin::testing::NativePools;
using qeltin::testing::NativeTriangle;
using qeltin::testing::NativeVersion0;
using qeltin::testing::NativeVersion2;
using qeltin::testing::Patch;
using qeltin::testing::ReversedPools;
using qeltin::testing::TestSeed;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Json = nlohmann::json;

// A square of 10 cut from lower left to upper right, two sound triangles.
//
//   1 --- 2
//   | 0 / |
//   | / 1 |
//   0 --- 3
NativeModel Square() {
  NativeModel model;
  model.max = {10, 10, 4};
  model.worldMin = {-100, -100, -40};
  model.worldMax = {110, 110, 44};
  model.points = {{0, 0, 1}, {0, 10, 2}, {10, 10, 3}, {10, 0, 4}};
  model.triangles.resize(2);
  model.triangles[0] = {{0, 1, 2}, {-1, -1, 1}, 0, 0, {5, 5, 50}};
  model.triangles[1] = {{0, 2, 3}, {0, -1, -1}, 0, 0, {5, 5, 50}};
  return model;
}

// A grid of n by n cells of 1, each cut as the square is.
NativeModel Grid(std::int32_t n) {
  NativeModel model;
  model.max = {1.0 * n, 1.0 * n, 0};
  model.worldMin = {-100, -100, 0};
  model.worldMax = {100, 100, 0};
  for (std::int32_t y = 0; y <= n; ++y) {
    for (std::int32_t x = 0; x <= n; ++x) model.points.push_back({1.0 * x, 1.0 * y, 1.0 * (x * y)});
  }
  for (std::int32_t y = 0; y < n; ++y) {
    for (std::int32_t x = 0; x < n; ++x) {
      std::int32_t const corner = y * (n + 1) + x;
      std::int32_t const upper = 2 * (y * n + x);
      std::int32_t const left = x == 0 ? -1 : upper - 1;
      std::int32_t const above = y == n - 1 ? -1 : upper + 2 * n + 1;
      std::int32_t const right = x == n - 1 ? -1 : upper + 2;
      std::int32_t const below = y == 0 ? -1 : upper - 2 * n;
      NativeTriangle one{{corner, corner + n + 1, corner + n + 2}, {left, above, upper + 1}};
      NativeTriangle two{{corner, corner + n + 2, corner + 1}, {upper, right, below}};
      for (NativeTriangle* t : {&one, &two}) {
        t->circle[0] = x + 0.5;
        t->circle[1] = y + 0.5;
        t->circle[2] = 0.5;
      }
      model.triangles.push_back(one);
      model.triangles.push_back(two);
    }
  }
  return model;
}

class Check : public CommandTest {
 protected:
  // Returns what the check says of a file of these bytes, which it must leave alone.
  Json Told(std::string const& bytes, std::string const& name = "s.tin") const {
    m_Folder.Put(name, bytes);
    Ran const ran = Run({"info", "--check", "--json", name});
    EXPECT_EQ(m_Folder.Get(name), bytes);
    Json const check = ran.Json()["check"];
    EXPECT_EQ(ran.status, check["sound"] ? 0 : 1);
    std::size_t const kinds = check["faults"].size();
    std::string const line = "qeltin: error: " + name + ": is not sound: " + std::to_string(kinds) +
                             (kinds == 1 ? " kind of fault\n" : " kinds of faults\n");
    EXPECT_EQ(ran.err, kinds == 0 ? "" : line);
    return check;
  }

  void ExpectSound(std::string const& bytes) const {
    Json const told = Told(bytes);
    EXPECT_TRUE(told["sound"]) << told;
    EXPECT_TRUE(told["delaunay"]);
    EXPECT_EQ(told["remarks"], Json::array());
  }

  // Expects this fault and no other.
  void ExpectFault(std::string const& bytes, Json const& fault) const {
    EXPECT_EQ(Told(bytes)["faults"], Json::array({fault}));
  }
};

constexpr int VERSIONS[] = {0, 1, 2, 3};
constexpr int VERSIONS_WITH_FLAGS[] = {0, 2, 3};

TEST_F(Check, SoundFilesOfEveryVersionAreSound) {
  for (int const version : VERSIONS) {
    SCOPED_TRACE(version);
    ExpectSound(NativeFile(version, Square()));
    ExpectSound(NativeFile(version, Grid(7)));
  }
}

TEST_F(Check, SurfacesThatAreBuiltAreSound) {
  for (std::string const pattern : {"swaths", "lines", "grid", "random"}) {
    MustRun(
        {"sample", "--pattern", pattern, "--points", "3000", "-o", "in.xyz", "--overwrite", "-q"});
    for (bool const keep : {false, true}) {
      std::vector<std::string> arguments = {"build", "in.xyz", "-o", "s.tin", "--overwrite", "-q"};
      if (keep) arguments.emplace_back("--keep-order");
      MustRun(arguments);
      EXPECT_TRUE(Told(m_Folder.Get("s.tin"))["sound"]) << pattern;
    }
  }
}

TEST_F(Check, PeopleAreToldTheSame) {
  NativeModel model = Square();
  model.triangles[1].corners[2] = 77;
  m_Folder.Put("s.tin", NativeFile(3, model));
  Ran const ran = Run({"info", "--check", "s.tin"});
  EXPECT_EQ(ran.status, 1);
  EXPECT_EQ(ran.err, "qeltin: error: s.tin: is not sound: 1 kind of fault\n");
  EXPECT_EQ(ran.out,
            "format                             native surface, version 3\n"
            "points                             4\n"
            "data points                        4\n"
            "triangles                          2\n"
            "visible triangles                  1\n"
            "bounds from                        0 0 0\n"
            "bounds to                          10 10 4\n"
            "world bounds from                  -100 -100 -40\n"
            "world bounds to                    110 110 44\n"
            "heights                            1 to 3\n"
            "area                               50\n"
            "bytes                              268\n"
            "check                              not sound\n"
            "fault: corners that are no point   1, first triangle 1 at 0 0\n"
            "remark: points that are no corner  1, first point 3 at 10 0\n");
}

TEST_F(Check, TheSameFactsAreToldAsWithoutIt) {
  MustRun({"sample", "--points", "500", "-o", "in.xyz", "-q"});
  MustRun({"build", "in.xyz", "-o", "s.tin", "-q"});
  Json facts = MustRun({"info", "--check", "--json", "s.tin"}).Json();
  facts.erase("check");
  EXPECT_EQ(facts, MustRun({"info", "--json", "s.tin"}).Json());
}

TEST_F(Check, CornersThatTheFileDoesNotHave) {
  for (int const version : VERSIONS) {
    NativeModel model = Grid(3);
    for (std::size_t const i : {5, 9, 11}) model.triangles[i].corners[i % 3] = 16;
    Json const told = Told(NativeFile(version, model));
    EXPECT_EQ(told["faults"][0]["kind"], "corner_range") << version;
    EXPECT_EQ(told["faults"][0]["count"], 3);
    EXPECT_EQ(told["faults"][0]["triangle"], 5);
  }
  std::string bytes = NativeFile(3, Square());
  Patch(bytes, 120 + 24 * 4, std::int32_t{-1});
  ExpectFault(bytes, {{"kind", "corner_range"}, {"count", 1}, {"triangle", 0}, {"place", {0, 10}}});
}

TEST_F(Check, NeighboursThatTheFileDoesNotHave) {
  for (int const version : VERSIONS) {
    NativeModel model = Square();
    model.triangles[1].adjacent[1] = 2;
    ExpectFault(NativeFile(version, model),
                {{"kind", "neighbour_range"}, {"count", 1}, {"triangle", 1}, {"place", {0, 0}}});
  }
  std::string bytes = NativeFile(3, Square());
  Patch(bytes, 120 + 24 * 4 + 12, std::int32_t{-2});
  EXPECT_EQ(Told(bytes)["faults"][0]["kind"], "neighbour_range");
}

TEST_F(Check, NeighboursThatDoNotLeadBack) {
  for (int const version : VERSIONS) {
    NativeModel model = Grid(3);
    model.triangles[6].adjacent[2] = -1;  // of 7, which keeps it
    ExpectFault(NativeFile(version, model),
                {{"kind", "not_mutual"}, {"count", 1}, {"triangle", 7}, {"place", {0, 1}}});
    model.triangles[6].adjacent[2] = 6;  // itself
    EXPECT_EQ(Told(NativeFile(version, model))["faults"][0]["count"], 2);
  }
}

TEST_F(Check, NeighboursAcrossTheWrongSide) {
  for (int const version : VERSIONS) {
    NativeModel model = Square();
    std::swap(model.triangles[0].adjacent[1], model.triangles[0].adjacent[2]);
    ExpectFault(NativeFile(version, model),
                {{"kind", "other_side"}, {"count", 2}, {"triangle", 0}, {"place", {0, 0}}});
  }
}

TEST_F(Check, SidesThatAreSharedButNotLinked) {
  for (int const version : VERSIONS) {
    NativeModel model = Square();
    model.triangles[0].adjacent[2] = model.triangles[1].adjacent[0] = -1;
    ExpectFault(NativeFile(version, model),
                {{"kind", "unlinked"}, {"count", 1}, {"triangle", 0}, {"place", {0, 0}}});
  }
}

TEST_F(Check, TrianglesThatRunCounterClockwise) {
  for (int const version : VERSIONS) {
    NativeModel model = Grid(2);
    std::swap(model.triangles[3].corners[0], model.triangles[3].corners[1]);
    std::swap(model.triangles[3].adjacent[1], model.triangles[3].adjacent[2]);
    ExpectFault(NativeFile(version, model),
                {{"kind", "counter_clockwise"}, {"count", 1}, {"triangle", 3}, {"place", {2, 1}}});
  }
}

TEST_F(Check, OnePointAsTwoCorners) {
  NativeModel model = Square();
  model.triangles[1].corners[2] = 0;
  Json const told = Told(NativeFile(3, model));
  EXPECT_EQ(told["faults"][0],
            (Json{{"kind", "repeated_corner"}, {"count", 1}, {"triangle", 1}, {"place", {0, 0}}}));
}

TEST_F(Check, SidesThatAreNotDelaunayAreARemark) {
  for (int const version : {1, 2, 3}) {
    NativeModel model = Square();
    model.points[3] = {9.999, 0.001, 4};
    Json const told = Told(NativeFile(version, model));
    EXPECT_TRUE(told["sound"]);
    EXPECT_FALSE(told["delaunay"]);
    EXPECT_EQ(told["remarks"],
              (Json{{{"kind", "not_delaunay"}, {"count", 1}, {"triangle", 0}, {"place", {0, 0}}}}));
    model.points[3] = {10.001, -0.001, 4};
    ExpectSound(NativeFile(version, model));
  }
}

TEST_F(Check, PeopleAreToldOfSidesThatAreNotDelaunay) {
  NativeModel model = Square();
  model.points[3] = {9, 1, 4};
  m_Folder.Put("s.tin", NativeFile(3, model));
  std::string const told = MustRun({"info", "--check", "s.tin"}).out;
  EXPECT_THAT(told, HasSubstr("sound, not Delaunay everywhere\n"));
  EXPECT_THAT(told, HasSubstr("remark: sides that are not Delaunay  1, first triangle 0 at 0 0\n"));
}

TEST_F(Check, AThinnedSurfaceIsSound) {
  MustRun({"sample", "--points", "3000", "-o", "in.xyz", "-q"});
  MustRun({"build", "in.xyz", "-o", "in.tin", "-q"});
  MustRun({"decimate", "in.tin", "--max-error", "0.1", "-o", "s.tin", "-q"});
  Json const told = Told(m_Folder.Get("s.tin"));
  EXPECT_TRUE(told["sound"]) << told;
}

TEST_F(Check, ACircleIsJudgedUpToItsRounding) {
  // Far from the origin the circles of the library are off by millimetres.
  NativeModel model = Square();
  for (TPoint& p : model.points) p = TPoint(p.x / 10 + 4e5, p.y / 10 + 6e6, p.z);
  model.points[3].x -= 1e-9;
  ExpectSound(NativeFile(3, model));
  model.points[3].x -= 1e-2;
  EXPECT_FALSE(Told(NativeFile(3, model))["delaunay"]);
}

TEST_F(Check, FlagsThatNoTriangleAtRestHas) {
  for (int const version : VERSIONS_WITH_FLAGS) {
    NativeModel model = Square();
    model.triangles[0].flags = TRI_VISITED | TRI_FILTERED;
    ExpectSound(NativeFile(version, model));
    model.triangles[1].flags = TRI_CAVITY;
    ExpectFault(NativeFile(version, model),
                {{"kind", "flags"}, {"count", 1}, {"triangle", 1}, {"place", {0, 0}}});
  }
}

TEST_F(Check, PointsThatAreNoNumbers) {
  for (int const version : {1, 2, 3}) {
    NativeModel model = Square();
    model.points[1].z = std::numeric_limits<double>::quiet_NaN();
    ExpectFault(NativeFile(version, model), {{"kind", "not_finite"}, {"count", 1}, {"point", 1}});
  }
}

TEST_F(Check, DuplicateAndUnconnectedPointsAreRemarks) {
  for (int const version : VERSIONS) {
    NativeModel model = Square();
    model.points.push_back({10, 10, 9});
    model.points.push_back({5, 5, 9});
    Json const told = Told(NativeFile(version, model));
    EXPECT_TRUE(told["sound"]);
    EXPECT_EQ(told["remarks"],
              (Json{{{"kind", "duplicate"}, {"count", 1}, {"point", 4}, {"place", {10, 10}}},
                    {{"kind", "unconnected"}, {"count", 2}, {"point", 4}, {"place", {10, 10}}}}));
  }
}

TEST_F(Check, FlatTrianglesAreRemarksAndHaveNoCircle) {
  for (double const place :
       {20.0, 5.0}) {  // on the line of the side that it shares, and on the side
    NativeModel model = Square();
    model.points[3] = {place, place, 0};
    Json const told = Told(NativeFile(3, model));
    EXPECT_TRUE(told["sound"]);
    EXPECT_EQ(told["remarks"],
              (Json{{{"kind", "flat"}, {"count", 1}, {"triangle", 1}, {"place", {0, 0}}}}));
  }
}

TEST_F(Check, StoredCirclesThatAreNotThoseOfTheCorners) {
  NativeModel model = Square();
  model.triangles[1].circle[2] = 50.0001;
  ExpectFault(NativeFile(0, model),
              {{"kind", "stored_circle"}, {"count", 1}, {"triangle", 1}, {"place", {0, 0}}});
  model.triangles[1].circle[2] = 50;
  model.triangles[0].circle[0] = 5.0001;
  ExpectFault(NativeFile(0, model),
              {{"kind", "stored_circle"}, {"count", 1}, {"triangle", 0}, {"place", {0, 0}}});
}

TEST_F(Check, SlotsThatAreNoneOrLiveTwice) {
  NativeModel const model = Square();
  NativePools pools = ReversedPools(model);
  pools.pointIndex[2] = pools.pointIndex[1];
  EXPECT_EQ(Told(NativeVersion0(model, pools))["faults"][0],
            (Json{{"kind", "point_identity"}, {"count", 1}, {"point", 2}, {"place", {0, 0}}}));
  pools = ReversedPools(model);
  pools.triangleIndex[0] = 999;
  EXPECT_EQ(Told(NativeVersion0(model, pools))["faults"][0],
            (Json{{"kind", "triangle_identity"}, {"count", 1}, {"triangle", 0}}));
}

TEST_F(Check, KeysThatStandTwice) {
  NativeModel const model = Square();
  NativeKeys keys;
  keys.points = {10, 20, 30, 20};
  Json const told = Told(NativeVersion2(model, keys));
  EXPECT_EQ(told["faults"][0],
            (Json{{"kind", "point_identity"}, {"count", 1}, {"point", 3}, {"place", {10, 0}}}));
}

TEST_F(Check, FilesCutShortAreToldWhere) {
  NativeModel const model = Grid(3);
  for (int const version : VERSIONS) {
    std::string const whole = NativeFile(version, model);
    for (std::size_t size = 112; size < whole.size(); size += 1 + size / 5) {
      Json const told = Told(whole.substr(0, size));
      EXPECT_FALSE(told["sound"]);
      EXPECT_EQ(told["faults"][0]["kind"], "cut_short") << version << ", " << size;
    }
  }
  std::string const whole = NativeFile(3, model);
  ExpectFault(whole.substr(0, whole.size() - 1),
              {{"kind", "cut_short"}, {"count", 1}, {"first", "triangle 17 of 18"}});
  EXPECT_EQ(Told(whole.substr(0, 116))["faults"][0]["first"], "point 0 of 16");
}

TEST_F(Check, BytesAfterTheLastTable) {
  for (int const version : VERSIONS) {
    ExpectFault(NativeFile(version, Square()) + "more", {{"kind", "excess_bytes"}, {"count", 4}});
  }
}

TEST_F(Check, AFileThatIsNoneIsAnError) {
  std::string bytes = NativeFile(3, Square());
  m_Folder.Put("text.tin", "1 2 3\n");
  ExpectError(Run({"info", "--check", "text.tin"}),
              "text.tin: is not a surface file, although its name ends like one");
  Patch(bytes, 112, std::int32_t{-1});
  m_Folder.Put("count.tin", bytes);
  ExpectError(Run({"info", "--check", "count.tin"}), "count.tin: is damaged: a count below 0");
  bytes = NativeFile(0, Square());
  Patch(bytes, 112, std::int32_t{1000});
  m_Folder.Put("count.tin", bytes);
  ExpectError(Run({"info", "--check", "count.tin"}),
              "count.tin: is damaged: a count above the capacity");
  ExpectError(Run({"info", "--check", "missing.tin"}), "missing.tin: No such file or directory");
}

TEST_F(Check, ATextHasNoStructure) {
  m_Folder.Put("in.xyz", "1 2 3\n4 5 6\n");
  EXPECT_TRUE(MustRun({"info", "--check", "--json", "in.xyz"}).Json()["check"]["sound"]);
  m_Folder.Put("in.xyz", "1 2 3\n4 5\n");
  ExpectError(Run({"info", "--check", "in.xyz"}), "in.xyz: line 2: \"4 5\" is not x y z");
}

TEST_F(Check, ManyPointsOnOneLineAndInOnePlaceTakeNoTime) {
  NativeModel model = Square();
  for (int i = 0; i < 200000; ++i) model.points.push_back({7, i % 2 == 0 ? 5.0 : 1.0 * i, 0});
  Json const told = Told(NativeFile(3, model));
  EXPECT_EQ(told["remarks"][0]["count"], 100000);
  EXPECT_EQ(told["remarks"][1]["count"], 200000);
}

TEST_F(Check, AnyDamageIsToldOrEndsInOneLine) {
  Dice dice(TestSeed());
  for (int i = 0; i < 24; ++i) {
    std::string bytes = NativeFile(i % 4, Grid(2));
    for (int k = dice.Below(6); k >= 0; --k) {
      bytes[static_cast<std::size_t>(16 + dice.Below(static_cast<int>(bytes.size()) - 16))] =
          static_cast<char>(dice.Below(256));
    }
    m_Folder.Put("s.tin", bytes);
    Ran const ran = Run({"info", "--check", "-q", "s.tin"});
    EXPECT_TRUE(ran.status == 0 || ran.status == 1) << ran.status;
    if (ran.status == 1) {
      EXPECT_THAT(ran.err, StartsWith("qeltin: error: s.tin: "));
      EXPECT_EQ(std::count(ran.err.begin(), ran.err.end(), '\n'), 1) << ran.err;
    }
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
