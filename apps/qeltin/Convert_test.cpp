#include <cmath>

#include "apps/qeltin/CommandTest.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"
#include "testing/VerifySurface.h"

namespace qeltin::cli::testing {
namespace {

using qeltin::testing::Dice;
using qeltin::testing::NativeFile;
using qeltin::testing::NativeModel;
using qeltin::testing::SquareModel;
using qeltin::testing::TestSeed;
using qeltin::testing::VerifySurface;
using ::testing::HasSubstr;
using Json = nlohmann::json;

class Convert : public CommandTest {};

TEST_F(Convert, ASurfaceStaysAsItIs) {
  MustRun({"sample", "--points", "2000", "-o", "in.xyz", "-q"});
  MustRun({"build", "in.xyz", "-o", "a.tin", "-q"});
  MustRun({"convert", "a.tin", "b.tin"});
  EXPECT_TRUE(m_Folder.Get("a.tin") == m_Folder.Get("b.tin"));
}

TEST_F(Convert, OlderVersionsBecomeTheNewestWithTheirFlags) {
  for (int version = 0; version < 4; ++version) {
    NativeModel model = SquareModel();
    model.triangles[0].flags = TRI_FILTERED;
    m_Folder.Put("old.tin", NativeFile(version, model));
    MustRun({"convert", "old.tin", "new.tin", "--overwrite", "-q"});
    if (version == 1) model.triangles[0].flags = model.triangles[1].flags = 0;
    if (version % 2 == 1) model.triangles[0].reserved = model.triangles[1].reserved = 0;
    EXPECT_EQ(m_Folder.Get("new.tin"), NativeFile(3, model)) << version;
  }
}

TEST_F(Convert, PointsBecomeTheSurfaceThatBuildMakes) {
  m_Folder.Put("in.xyz", "0 0 1\n10 0 2\n10 10 3\n0 10 4\n10 10 5\n");
  Json const told = MustRun({"convert", "in.xyz", "s.tin", "--json"}).Json();
  EXPECT_EQ(told, (Json{{"input", "in.xyz"},
                        {"input_format", "xyz"},
                        {"file", "s.tin"},
                        {"format", "tin"},
                        {"points", 9},
                        {"data_points", 5},
                        {"triangles", 10},
                        {"visible_triangles", 2},
                        {"bounds", {{"min", {0, 0, 1}}, {"max", {10, 10, 5}}}},
                        {"world_bounds", {{"min", {-100, -100, -39}}, {"max", {110, 110, 45}}}},
                        {"height_range", told["height_range"]},
                        {"area", 100},
                        {"unconnected", 1}}));
  TIN tin;
  ASSERT_TRUE(tin.Load(m_Folder.Wide("s.tin").c_str()));
  EXPECT_TRUE(VerifySurface(tin).Ok());
}

TEST_F(Convert, HeightsAndPlacesKeepEveryBit) {
  Dice dice(TestSeed());
  std::string text;
  std::vector<double> numbers;
  for (int i = 0; i < 3000; ++i) {
    double const scale = std::ldexp(1.0, dice.Below(80) - 60);
    for (double const number : {dice.Between(-1, 1) * 1e6, dice.Between(-1, 1) * scale,
                                dice.Normal() * std::ldexp(1.0, dice.Below(1000) - 700)}) {
      char digits[40];
      std::snprintf(digits, sizeof digits, "%.17g ", number);
      text += digits;
      numbers.push_back(number);
    }
    text += '\n';
  }
  m_Folder.Put("in.xyz", text);
  MustRun({"convert", "in.xyz", "out.csv"});
  std::string out = m_Folder.Get("out.csv");
  for (char& c : out) {
    if (c == ',') c = ' ';
  }
  char* at = out.data();
  for (double const number : numbers) EXPECT_EQ(std::strtod(at, &at), number);
  MustRun({"convert", "out.csv", "again.csv"});
  EXPECT_EQ(m_Folder.Get("again.csv"), m_Folder.Get("out.csv"));
}

TEST_F(Convert, ASurfaceGivesItsDataPointsAlone) {
  m_Folder.Put("in.xyz", "0.1 0 1\n10 0 2.0000000000000004\n10 10 3\n");
  MustRun({"build", "in.xyz", "-o", "s.tin", "--keep-order", "-q"});
  EXPECT_EQ(MustRun({"convert", "s.tin", "out.xyz"}).out,
            "points       3\n"
            "bounds from  0.1 0 1\n"
            "bounds to    10 10 3\n");
  EXPECT_EQ(m_Folder.Get("out.xyz"), "0.1,0,1\n10,0,2.0000000000000004\n10,10,3\n");
}

TEST_F(Convert, PrecisionShortensTheText) {
  m_Folder.Put("in.xyz", "0.126 0 -0.001\n");
  EXPECT_EQ(MustRun({"convert", "in.xyz", "-", "--precision", "2"}).out, "0.13,0.00,0.00\n");
}

TEST_F(Convert, StandardStreamsTakePart) {
  Ran const ran = Qeltin({"convert", "-", "-"}).Input("1 2 3\n4 5 6\n").Run();
  EXPECT_EQ(ran.out, "1,2,3\n4,5,6\n");
  EXPECT_EQ(ran.status, 0);
}

TEST_F(Convert, AFileMayBecomeItself) {
  m_Folder.Put("in.xyz", "1 2 3\n4 5 6\n");
  MustRun({"convert", "in.xyz", "in.xyz", "--overwrite", "-q"});
  EXPECT_EQ(m_Folder.Get("in.xyz"), "1,2,3\n4,5,6\n");
}

TEST_F(Convert, AnOutputThatExistsStays) {
  m_Folder.Put("in.xyz", "1 2 3\n4 5 6\n7 9 9\n");
  m_Folder.Put("out.tin", "mine");
  m_Folder.Put("out.xyz", "mine");
  for (std::string const name : {"out.tin", "out.xyz"}) {
    ExpectError(Run({"convert", "in.xyz", name}),
                name + ": exists already (--overwrite replaces it)");
    EXPECT_EQ(m_Folder.Get(name), "mine");
  }
}

TEST_F(Convert, AnInputThatFailsLeavesNothing) {
  m_Folder.Put("in.xyz", "1 2 3\n4 5 x\n");
  m_Folder.Put("line.xyz", "1 1 1\n2 2 2\n3 3 3\n");
  for (std::string const name : {"out.tin", "out.xyz"}) {
    ExpectError(Run({"convert", "in.xyz", name}), "in.xyz: line 2: \"4 5 x\" is not x y z");
    EXPECT_EQ(m_Folder.Entries(), 2);
  }
  ExpectError(Run({"convert", "line.xyz", "out.tin"}),
              "line.xyz: all 3 points lie on one line: there is no surface");
  EXPECT_EQ(m_Folder.Entries(), 2);
  ExpectError(Qeltin({"convert", "line.xyz", "out.xyz"}).FileLimit(8).Run(),
              "out.xyz: File too large");
  EXPECT_EQ(m_Folder.Entries(), 2);
}

TEST_F(Convert, NamesThatWouldBeReadAsSomethingElseAreRefused) {
  m_Folder.Put("in.xyz", "1 2 3\n4 5 6\n7 9 9\n");
  for (std::string const name : {"out.ttm", "out.LAS", "out.laz", "out.gpkg"}) {
    Ran const ran = Run({"convert", "in.xyz", name});
    EXPECT_EQ(ran.status, 2);
    EXPECT_THAT(ran.err, HasSubstr("such files are not written"));
  }
  EXPECT_EQ(m_Folder.Entries(), 1);
}

}  // namespace
}  // namespace qeltin::cli::testing
