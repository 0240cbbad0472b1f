#include <algorithm>
#include <cmath>

#include "apps/qeltin/CommandTest.h"
#include "testing/VerifySurface.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;

class Decimate : public CommandTest {
 protected:
  Decimate() {
    MustRun({"sample", "--points", "2000", "-o", "in.xyz"});
    MustRun({"build", "in.xyz", "--keep-order", "-o", "in.tin", "-q"});
  }

  Json Told(std::vector<std::string> const& options) const {
    std::vector<std::string> arguments = {"decimate", "in.tin",      "-o",
                                          "out.tin",  "--overwrite", "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return MustRun(arguments).Json();
  }

  // The written surface, which must be sound.
  std::unique_ptr<TIN> Result() const {
    auto tin = std::make_unique<TIN>();
    EXPECT_TRUE(tin->Load(m_Folder.Wide("out.tin").c_str()));
    qeltin::testing::SurfaceRules rules;
    rules.delaunay = false;
    qeltin::testing::SurfaceReport const report = qeltin::testing::VerifySurface(*tin, rules);
    EXPECT_TRUE(report.Ok()) << report;
    return tin;
  }

  void ExpectUsageError(std::vector<std::string> const& options, std::string const& what) const {
    std::vector<std::string> arguments = {"decimate", "in.tin", "-o", "out.tin"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Ran const ran = Run(arguments);
    EXPECT_EQ(ran.status, 2);
    EXPECT_THAT(ran.err, HasSubstr(what));
    EXPECT_FALSE(m_Folder.Has("out.tin"));
  }
};

TEST_F(Decimate, WritesASoundSurfaceWithFewerPoints) {
  MustRun({"build", "in.xyz", "-o", "in.tin", "-q", "--overwrite"});  // all of it visible
  Json const told = Told({"--max-error", "0.1"});
  EXPECT_EQ(told["file"], "out.tin");
  EXPECT_EQ(told["runs"], 1);
  EXPECT_EQ(told["before"]["points_in_surface"], 2000);
  int const after = told["after"]["points_in_surface"];
  EXPECT_LT(after, 1500);
  EXPECT_EQ(told["difference"]["removed"], 2000 - after);
  EXPECT_EQ(told["difference"]["beside"], 0);
  EXPECT_LE(told["error"]["max"], 0.1f);
  EXPECT_EQ(told["error"]["samples"], 2000 - after + 4);  // the first four stay
  EXPECT_NEAR(told["after"]["area"], told["before"]["area"], 1e-6);
  EXPECT_EQ(Result()->GetNumberOfPoints(), after + 4);
}

TEST_F(Decimate, TellsTheLargestDifferenceAtTheRemovedPoints) {
  Json const told = Told({"--max-error", "0.1"});
  TIN original;
  ASSERT_TRUE(original.Load(m_Folder.Wide("in.tin").c_str()));
  std::unique_ptr<TIN> const thinned = Result();
  double largest = 0.0;
  for (int i = 0; i < original.GetNumberOfPoints(); ++i) {
    TPoint const& p = *original.GetPoint(i);
    double z = 0.0;
    if (thinned->GetZ(p, z, nullptr)) largest = std::max(largest, std::fabs(z - p.z));
  }
  EXPECT_EQ(told["difference"]["largest"], largest);
  Json const& at = told["difference"]["at"];
  double z = 0.0;
  ASSERT_TRUE(thinned->GetZ(at[0], at[1], z));
  EXPECT_EQ(std::fabs(z - at[2].get<double>()), largest);
}

TEST_F(Decimate, SeveralPassesEndAtTheLargestError) {
  Json const told = Told({"--max-error", "0.2", "--min-error", "0.05", "--passes", "4"});
  EXPECT_EQ(told["runs"], 1);
  EXPECT_GT(told["error"]["max"], 0.15f);
  EXPECT_LE(told["error"]["max"], 0.2f);
  Result();
}

TEST_F(Decimate, WithoutPreservedEdgesPointsWithSmoothSidesStay) {
  int const all = Told({"--max-error", "0.2"})["after"]["points_in_surface"];
  int const some = Told({"--max-error", "0.2", "--no-keep-edges", "--feature-angle",
                         "10,20"})["after"]["points_in_surface"];
  EXPECT_LT(all, some);
  Result();
}

TEST_F(Decimate, ThinsToANumberOfPoints) {
  Json const told = Told({"--target-points", "500", "--min-error", "0.1"});
  int const after = told["after"]["points_in_surface"];
  EXPECT_LE(after, 500);
  EXPECT_GT(after, 350);
  EXPECT_GT(told["runs"], 1);
  Result();
}

TEST_F(Decimate, ATargetThatIsReachedAlreadyTakesNoRun) {
  Json const told = Told({"--target-points", "2000"});
  EXPECT_EQ(told["runs"], 0);
  EXPECT_EQ(told["after"], told["before"]);
}

TEST_F(Decimate, StopsShortOfATargetWhereNothingMoreMayGo) {
  Ran const ran = MustRun({"decimate", "in.tin", "-o", "out.tin", "--target-points", "1",
                           "--min-error", "0.02", "--max-error", "0.02", "--json"});
  int const after = ran.Json()["after"]["points_in_surface"];
  EXPECT_GT(after, 1);
  EXPECT_EQ(ran.err,
            "qeltin: nothing more may go: " + std::to_string(after) + " points are left\n");
  Result();
}

TEST_F(Decimate, TellsPeople) {
  Ran const ran =
      MustRun({"decimate", "in.tin", "-o", "out.tin", "--max-error", "0.1", "--precision", "3"});
  for (char const* line : {"points in surface  2000 -> ", "\nruns               1\n",
                           "\ndistance to plane  0.0", "\nheight difference  largest "}) {
    EXPECT_THAT(ran.out, HasSubstr(line));
  }
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(MustRun({"decimate", "in.tin", "-o", "q.tin", "--max-error", "0.1", "-q"}).out, "");
}

TEST_F(Decimate, PointsOnTheEdgeGoOnDemand) {
  std::string text;
  for (int i = 0; i < 15; ++i) {
    for (int j = 0; j < 15; ++j) text += std::to_string(i) + ' ' + std::to_string(j) + " 5\n";
  }
  m_Folder.Put("level.xyz", text);
  MustRun({"build", "level.xyz", "-o", "in.tin", "-q", "--overwrite"});
  int const inside = Told({"--max-error", "0.1"})["after"]["points_in_surface"];
  EXPECT_GE(inside, 56);  // those on the edge
  Json const told = Told({"--max-error", "0.1", "--boundary"});
  EXPECT_LT(told["after"]["points_in_surface"], inside);
  Result();
}

TEST_F(Decimate, RefusesWhatLeadsNowhere) {
  ExpectUsageError({}, "--max-error or --target-points");
  ExpectUsageError({"--max-error", "-1"}, "--max-error \"-1\": a distance is 0 or above");
  ExpectUsageError({"--max-error", "1", "--min-error", "2"}, "--min-error is above --max-error");
  ExpectUsageError({"--max-error", "1", "--feature-angle", "20,10"}, "--feature-angle \"20,10\"");
  ExpectUsageError({"--max-error", "1", "--feature-angle", "20,360"}, "--feature-angle");
  ExpectUsageError({"--max-error", "1", "--passes", "0"}, "--passes");
}

TEST_F(Decimate, CtrlCStopsTheRunAndLeavesNothingBehind) {
  MustRun({"sample", "--points", "60000", "-o", "big.xyz"});
  MustRun({"build", "big.xyz", "-o", "big.tin", "-q"});
  int const entries = m_Folder.Entries();
  Running running = Qeltin({"decimate", "big.tin", "-o", "out.tin", "--max-error", "0.001",
                            "--min-error", "0.0005", "--passes", "10000"})
                        .Start();
  while (m_Folder.Entries() == entries) usleep(1000);  // its draft is there
  running.Signal(SIGINT);
  EXPECT_EQ(running.Wait().status, 128 + SIGINT);
  EXPECT_EQ(m_Folder.Entries(), entries);
}

}  // namespace
}  // namespace qeltin::cli::testing
