#include <algorithm>
#include <memory>

#include "apps/qeltin/CommandTest.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;

class Smooth : public CommandTest {
 protected:
  Smooth() {
    MustRun({"sample", "--pattern", "random", "--points", "2000", "-o", "in.xyz", "-q"});
    MustRun({"build", "in.xyz", "-o", "in.tin", "-q"});
  }

  std::unique_ptr<TIN> Open(std::string const& name) const {
    auto tin = std::make_unique<TIN>();
    EXPECT_TRUE(tin->Load(m_Folder.Wide(name).c_str()));
    return tin;
  }

  // The points without the seed corners, sorted.
  static std::vector<TPoint> DataOf(TIN const& tin) {
    TPoint min;
    TPoint max;
    tin.GetWorldBounds(min, max);
    std::vector<TPoint> points;
    for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
      TPoint const& p = *tin.GetPoint(i);
      if (p.x != min.x && p.x != max.x) points.push_back(p);
    }
    std::sort(points.begin(), points.end());
    return points;
  }
};

TEST_F(Smooth, HasThePointsThatTheLibraryTakesAndBoundsOfItsOwn) {
  Json const told = MustRun({"smooth", "in.tin", "-o", "out.tin", "--json"}).Json();
  std::unique_ptr<TIN> const library(Open("in.tin")->CreateSmooth(nullptr));
  auto const expected = DataOf(*library);
  EXPECT_EQ(DataOf(*Open("out.tin")), expected);
  EXPECT_EQ(told["after"]["points_in_surface"], expected.size());
  EXPECT_EQ(told["before"]["visible_triangles"], expected.size());
  EXPECT_EQ(told["bounds"]["min"][0], expected.front().x);
  EXPECT_LT(told["after"]["area"], told["before"]["area"]);
  EXPECT_GT(told["after"]["area"].get<double>(), 0.9 * told["before"]["area"].get<double>());
}

TEST_F(Smooth, OfAPlaneIsThePlane) {
  std::string text;
  for (int i = 0; i < 400; ++i) {
    int const x = i % 20;
    int const y = i / 20;
    text += std::to_string(x) + ' ' + std::to_string(y) + ' ' + std::to_string(2 * x - y) + '\n';
  }
  m_Folder.Put("plane.xyz", text);
  MustRun({"smooth", "plane.xyz", "-o", "plane.tin"});
  Json const told = MustRun({"height", "plane.tin", "--at", "7.3,9.1", "--json", "-q"}).Json();
  EXPECT_NEAR(told["heights"][0]["z"].get<double>(), 2 * 7.3 - 9.1, 1e-9);
}

TEST_F(Smooth, TellsPeople) {
  m_Folder.Put("square.xyz", "0 0 0\n9 0 3\n9 9 6\n0 9 3\n3 3 2\n");
  Ran const ran = MustRun({"smooth", "square.xyz", "-o", "out.tin"});
  EXPECT_THAT(ran.out, HasSubstr("points in surface  5 -> 4\n"));
  EXPECT_THAT(ran.out, HasSubstr("triangles          12 -> 10\n"));
  EXPECT_THAT(ran.out, HasSubstr("visible triangles  4 -> 2\n"));
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(MustRun({"smooth", "square.xyz", "-o", "out.tin", "--overwrite", "-q"}).out, "");
}

TEST_F(Smooth, TakesOnlyVisibleTriangles) {
  MustRun({"filter", "in.tin", "--max-edge", "1.5", "-o", "filtered.tin", "-q"});
  Json const told = MustRun({"smooth", "filtered.tin", "-o", "out.tin", "--json"}).Json();
  EXPECT_GT(told["before"]["visible_triangles"], 0);
  EXPECT_LT(told["before"]["visible_triangles"], told["before"]["triangles"].get<int>() - 1000);
  EXPECT_EQ(told["after"]["points_in_surface"], told["before"]["visible_triangles"]);
}

TEST_F(Smooth, InsidePolygonsTakesTheCentroidsInAnyOfThem) {
  m_Folder.Put("square.xyz", "0 0 0\n9 0 3\n9 9 6\n0 9 3\n4.5 4.5 3\n20 0 1\n20 9 1\n");
  auto const points = [this](std::string const& polygons) {
    m_Folder.Put("polygon.txt", polygons);
    return MustRun({"smooth", "square.xyz", "--inside", "polygon.txt", "-o", "out.tin", "--json",
                    "--overwrite"})
        .Json()["after"]["points_in_surface"];
  };
  EXPECT_EQ(points("0 0\n9 0\n9 9\n0 9\n"), 4);
  EXPECT_EQ(points("0 0\n9 0\n4.5 4.5\n\n0 9\n9 9\n9 0\n"), 3);
  EXPECT_EQ(points("0 0\n30 0\n30 9\n0 9\n0 0\n"), 6);
}

// Two polygons whose vertices stand level with every centroid.
TEST_F(Smooth, CentroidLevelWithAVertexIsNotMiscounted) {
  m_Folder.Put("square.xyz", "0 0 0\n6 0 0\n12 0 0\n3 6 0\n9 6 0\n");
  m_Folder.Put("polygon.txt", "-1 -1\n13 -1\n14 2\n13 4\n14 7\n-1 7\n-2 4\n-2 2\n");
  Json const told =
      MustRun({"smooth", "square.xyz", "--inside", "polygon.txt", "-o", "out.tin", "--json"})
          .Json();
  EXPECT_EQ(told["after"]["points_in_surface"], 3);  // at (3, 2), (6, 4) and (9, 2)
}

TEST_F(Smooth, TellsWhatIsMissing) {
  m_Folder.Put("two.txt", "0 0\n1 1\n");
  m_Folder.Put("aside.txt", "0 0\n1 0\n0 1\n");
  m_Folder.Put("three.xyz", "0 0 1\n1 0 1\n0 1 1\n");
  int const files = m_Folder.Entries();
  auto const smooth = [this](std::string const& file, std::string const& inside) {
    return Run({"smooth", file, "--inside", inside, "-o", "out.tin"});
  };
  Ran const two = smooth("in.tin", "two.txt");
  EXPECT_EQ(two.status, 1);
  EXPECT_THAT(two.err, HasSubstr("two.txt: "));
  ExpectError(smooth("in.tin", "aside.txt"),
              "aside.txt: no triangle of in.tin has its centroid inside");
  ExpectError(smooth("in.tin", "missing.txt"), "missing.txt: No such file or directory");
  ExpectError(Run({"smooth", "missing.tin", "-o", "out.tin"}),
              "missing.tin: No such file or directory");
  ExpectError(Run({"smooth", "three.xyz", "-o", "out.tin"}),
              "three.xyz: of the centroids of its triangles: a surface needs three points, and "
              "there are 1");
  EXPECT_EQ(m_Folder.Entries(), files);
}

TEST_F(Smooth, SurfaceWithoutAVisibleTriangleIsAnError) {
  m_Folder.Put("three.xyz", "0 0 1\n5 10 2\n10 0 3\n");
  MustRun({"build", "three.xyz", "--keep-order", "-o", "hidden.tin", "-q"});
  ExpectError(Run({"smooth", "hidden.tin", "-o", "out.tin"}),
              "hidden.tin: has no visible triangle");
  EXPECT_FALSE(m_Folder.Has("out.tin"));
}

}  // namespace
}  // namespace qeltin::cli::testing
