#include <chrono>
#include <random>

#include "apps/qeltin/CommandTest.h"
#include "testing/NativeFileWriter.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;

// A plane: z = 1 + x / 10 + y / 4 over a square of 10.
constexpr char PLANE[] = "0 0 1\n10 0 2\n10 10 4.5\n0 10 3.5\n";

class Height : public CommandTest {
 protected:
  Height() {
    m_Folder.Put("plane.xyz", PLANE);
    MustRun({"build", "plane.xyz", "-o", "plane.tin", "-q"});
  }

  Ran Ask(std::string const& places, std::vector<std::string> const& options = {}) const {
    std::vector<std::string> arguments = {"height", "plane.tin", "--points", "-"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Qeltin(arguments).Input(places).Run();
  }

  std::string Answers(std::string const& places,
                      std::vector<std::string> const& options = {}) const {
    Ran const ran = Ask(places, options);
    EXPECT_EQ(ran.status, 0) << ran.err;
    return ran.out;
  }
};

TEST_F(Height, AnswersInTheOrderAsked) {
  Ran const ran = MustRun({"height", "plane.tin", "--at", "5,4", "--at", "20,0", "--at=0,0"});
  EXPECT_EQ(ran.out, "5,4,2.5\n20,0,\n0,0,1\n");
  EXPECT_EQ(ran.err, "qeltin: 2 of 3 places lie on the surface\n");
}

TEST_F(Height, OptionsMayStandBeforeTheSurface) {
  EXPECT_EQ(MustRun({"height", "-q", "--at", "-3,-4", "--at", "5,4", "plane.tin"}).out,
            "-3,-4,\n5,4,2.5\n");
}

TEST_F(Height, ATextIsASurfaceToo) {
  EXPECT_EQ(MustRun({"height", "plane.xyz", "--at", "5,4", "-q"}).out, "5,4,2.5\n");
  EXPECT_EQ(Qeltin({"height", "-", "--at", "5,4", "-q"}).Input(PLANE).Run().out, "5,4,2.5\n");
  m_Folder.Put("line.xyz", "0 0 1\n1 1 1\n2 2 1\n");
  ExpectError(Run({"height", "line.xyz", "--at", "1,1"}),
              "line.xyz: all 3 points lie on one line: there is no surface");
}

TEST_F(Height, ReadsPlacesSeparatedByCommasBlanksOrTabs) {
  EXPECT_EQ(Answers("5 4\n5,4\n5\t4\n  5   4  \n5, 4\n5 , 4\r\n+5 4e0\n5 4"),
            "5,4,2.5\n5,4,2.5\n5,4,2.5\n5,4,2.5\n5,4,2.5\n5,4,2.5\n5,4,2.5\n5,4,2.5\n");
}

TEST_F(Height, IgnoresFurtherColumnsAndEmptyLines) {
  EXPECT_EQ(Answers("5 4 -12.5 buoy\n\n   \n5,4,,x\n5 4,\n"), "5,4,2.5\n5,4,2.5\n5,4,2.5\n");
  EXPECT_EQ(Answers(""), "");
  EXPECT_EQ(Answers("\xEF\xBB\xBF"
                    "5 4\n"),
            "5,4,2.5\n");
}

TEST_F(Height, ABadLineIsAnErrorWithItsNumber) {
  for (std::string const bad : {"x y", "5", "5;4", "5 4x", "5 nan", "inf 4", "5 1e999", "# 5 4",
                                "5,,4", "--5 4", "+-5 4", "0x5 4"}) {
    ExpectError(Ask("5 4\n\n" + bad + "\n5 4\n"),
                "standard input: line 3: \"" + bad + "\" does not start with x and y");
  }
  m_Folder.Put("places.txt", "5 4\nx\n");
  ExpectError(Run({"height", "plane.tin", "--points", "places.txt"}),
              "places.txt: line 2: \"x\" does not start with x and y");
}

TEST_F(Height, ALineOfAnyLengthIsReadInBoundedMemory) {
  EXPECT_EQ(Answers("5 4 " + std::string(60000, 'x') + "\n"), "5,4,2.5\n");
  ExpectError(Ask("5 4\n5 4 " + std::string(3000000, 'x') + "\n"),
              "standard input: line 2: is longer than 65536 characters");
}

TEST_F(Height, NumbersReadBackToTheSameBits) {
  unsigned const seed = std::getenv("QELTIN_TEST_SEED") == nullptr
                            ? std::random_device()()
                            : static_cast<unsigned>(std::stoul(std::getenv("QELTIN_TEST_SEED")));
  std::cout << "QELTIN_TEST_SEED=" << seed << '\n';
  std::mt19937_64 dice(seed);
  std::string places;
  std::vector<double> asked;
  for (int i = 0; i < 2000; ++i) {
    double const size = std::ldexp(1.0, static_cast<int>(dice() % 120) - 60);
    asked.push_back(size * (static_cast<double>(dice() >> 11) * 0x1p-53 - 0.5));
    char line[64];
    std::snprintf(line, sizeof line, "%.17g 0\n", asked.back());
    places += line;
  }
  std::istringstream answers(Answers(places, {"-q"}));
  std::string line;
  for (double const x : asked) {
    ASSERT_TRUE(std::getline(answers, line));
    ASSERT_EQ(std::strtod(line.c_str(), nullptr), x) << line;
  }
}

TEST_F(Height, RoundCoordinatesAreNotWrittenWithExponents) {
  EXPECT_EQ(Answers("400000 1e6\n0.00001 -0\n1e17 1e-7\n"),
            "400000,1000000,\n0.00001,0,1.000001\n1e+17,1e-07,\n");
}

TEST_F(Height, PrecisionIsForHeightsAlone) {
  EXPECT_EQ(Answers("5.123 4\n50.123 4\n", {"--precision", "2"}), "5.123,4,2.51\n50.123,4,\n");
  EXPECT_EQ(Answers("5.123 4\n", {"--precision", "0"}), "5.123,4,3\n");
}

TEST_F(Height, JsonIsOneObject) {
  Ran const ran = Ask("5 4\n20 0\n", {"--json"});
  EXPECT_EQ(
      ran.Json(),
      (Json{{"heights", {{{"x", 5}, {"y", 4}, {"z", 2.5}}, {{"x", 20}, {"y", 0}, {"z", nullptr}}}},
            {"hits", 1},
            {"misses", 1}}));
  EXPECT_EQ(Ask("", {"--json"}).Json(),
            (Json{{"heights", Json::array()}, {"hits", 0}, {"misses", 0}}));
}

TEST_F(Height, WritesAFile) {
  EXPECT_EQ(Answers("5 4\n", {"-o", "z.csv"}), "");
  EXPECT_EQ(m_Folder.Get("z.csv"), "5,4,2.5\n");
  ExpectError(Ask("5 4\n", {"-o", "z.csv"}), "z.csv: exists already (--overwrite replaces it)");
  EXPECT_EQ(Answers("0 0\n", {"-o", "z.csv", "--overwrite"}), "");
  EXPECT_EQ(m_Folder.Get("z.csv"), "0,0,1\n");
}

TEST_F(Height, AnErrorLeavesNoFile) {
  int const before = m_Folder.Entries();
  EXPECT_EQ(Ask("5 4\nx\n", {"-o", "z.csv"}).status, 1);
  EXPECT_EQ(m_Folder.Entries(), before);
}

TEST_F(Height, ASurfaceOfAnOlderVersionAnswers) {
  m_Folder.Put("old.tin", qeltin::testing::NativeFile(1, qeltin::testing::SquareModel()));
  Ran const ran = MustRun({"height", "old.tin", "--at", "0.25,0.25", "-q"});
  EXPECT_EQ(ran.err, "");
}

TEST_F(Height, AnswersBeforeTheNextPlaceIsAsked) {
  Running running = Qeltin({"height", "plane.tin", "--points", "-", "-q"}).Start();
  std::string expected;
  for (int i = 0; i < 3; ++i) {
    running.Say("5 4\n");
    expected += "5,4,2.5\n";
    for (int wait = 0; wait < 500 && running.OutSoFar() != expected; ++wait) usleep(10'000);
    EXPECT_EQ(running.OutSoFar(), expected);
  }
  running.EndInput();
  EXPECT_EQ(running.Wait().status, 0);
}

TEST_F(Height, AMillionPlacesPassThroughAPipeInConstantMemory) {
  Running running = Qeltin({"height", "plane.tin", "--points", "-"}).Start();
  std::string block;
  for (int i = 0; i < 1000; ++i) block += "5.25 " + std::to_string(i % 10) + '\n';
  for (int i = 0; i < 1000; ++i) running.Say(block);
  running.EndInput();
  Ran const ran = running.Wait();
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.err, "qeltin: 1000000 of 1000000 places lie on the surface\n");
  EXPECT_EQ(std::count(ran.out.begin(), ran.out.end(), '\n'), 1000000);
  EXPECT_EQ(ran.out.substr(0, 24), "5.25,0,1.525\n5.25,1,1.77");
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  long const peak_of_one_place = Ask("5.25 0\n").peak_kib;  // most of it is shared libraries
  EXPECT_LT(ran.peak_kib, peak_of_one_place + 8 * 1024);
#endif
}

}  // namespace
}  // namespace qeltin::cli::testing
