#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

#include "apps/qeltin/CommandTest.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using Json = nlohmann::json;

using Pixel = std::array<int, 3>;

constexpr Pixel WHITE{255, 255, 255};

// A PNG as it was read back.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<unsigned char> rgb;

  Pixel At(int x, int y) const {
    unsigned char const* const p = rgb.data() + 3 * (static_cast<std::size_t>(y) * width + x);
    return {p[0], p[1], p[2]};
  }

  bool IsWhite(int x, int y) const { return At(x, y) == WHITE; }

  bool IsDark(int x, int y) const {
    Pixel const p = At(x, y);
    return p[0] < 100 && p[1] < 100 && p[2] < 100;
  }
};

// The part of a picture that is not white; ends are behind the last pixel.
struct Inked {
  int left;
  int top;
  int right;
  int bottom;
};

Inked InkedPart(Image const& image, int right_limit) {
  Inked part{right_limit, image.height, 0, 0};
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < right_limit; ++x) {
      if (image.IsWhite(x, y)) continue;
      part = {std::min(part.left, x), std::min(part.top, y), std::max(part.right, x + 1),
              std::max(part.bottom, y + 1)};
    }
  }
  return part;
}

class Render : public CommandTest {
 protected:
  // A plane over 100 by 80 that rises from 0 in the west to 10 in the east, with its lower left
  // corner at (x, y). `slope` is that of x against height.
  std::string PutSlope(double x = 0.0, double y = 0.0, double slope = 0.1) const {
    return PutSurvey({{x, y, 0.0},
                      {x + 100.0, y, 100.0 * slope},
                      {x + 100.0, y + 80.0, 100.0 * slope},
                      {x, y + 80.0, 0.0}});
  }

  // Black at 0 to white-ish at 10, in one straight line of colours.
  std::string PutColours() const {
    m_Folder.Put("colours.txt", "# height red green blue\n0 0 0 0\n\n10, 200, 100, 50\n");
    return "colours.txt";
  }

  Json Draw(std::string const& surface, std::vector<std::string> const& options) const {
    std::vector<std::string> arguments = {"render",      surface,  "-o",
                                          "picture.png", "--json", "--overwrite"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return MustRun(arguments).Json();
  }

  Image Picture() const {
    std::string const file = m_Folder.Get("picture.png");
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&png, file.data(), file.size()), 0);
    png.format = PNG_FORMAT_RGB;
    Image image{static_cast<int>(png.width), static_cast<int>(png.height), {}};
    image.rgb.resize(PNG_IMAGE_SIZE(png));
    EXPECT_NE(png_image_finish_read(&png, nullptr, image.rgb.data(), 0, nullptr), 0);
    return image;
  }

  void ExpectRefused(std::vector<std::string> const& options, std::string const& why) const {
    std::vector<std::string> arguments = {"render", "s.tin", "-o", "refused.png"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Ran const ran = Run(arguments);
    EXPECT_EQ(ran.status, 2);
    EXPECT_THAT(ran.err, HasSubstr(why));
    EXPECT_FALSE(m_Folder.Has("refused.png"));
  }
};

// Where the places of PutSlope come to lie in a picture from above.
struct SlopeInPicture {
  double width;  // of what shows the surface
  double height;
  double pixels_per_unit;

  int X(double x) const { return Floor(width / 2.0 + (x - 50.0) * pixels_per_unit); }
  int Y(double y) const { return Floor(height / 2.0 - (y - 40.0) * pixels_per_unit); }

  static int Floor(double value) { return static_cast<int>(std::floor(value)); }
};

void ExpectNear(Pixel const& pixel, Pixel const& expected, int tolerance) {
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(pixel[i], expected[i], tolerance) << i;
}

TEST_F(Render, APictureHasTheSizeAskedFor) {
  std::string const surface = PutSlope();
  EXPECT_EQ(Draw(surface, {})["size"], (Json{1600, 1200}));
  EXPECT_EQ(Picture().width, 1600);
  EXPECT_EQ(Picture().height, 1200);
  for (auto const& [text, width, height] :
       {std::tuple("317x211", 317, 211), {"1x1", 1, 1}, {"64x3000", 64, 3000}}) {
    Draw(surface, {"--size", text});
    EXPECT_EQ(Picture().width, width);
    EXPECT_EQ(Picture().height, height);
  }
}

TEST_F(Render, FromAboveAPlaceHasTheColourOfItsHeight) {
  Json const told =
      Draw(PutSlope(), {"--size", "640x480", "--light", "none", "--colours", PutColours()});
  EXPECT_EQ(told["colours"], "colours.txt");
  SlopeInPicture const slope{640, 480, told["pixels_per_unit"]};
  Image const image = Picture();
  for (double x : {5.0, 30.0, 50.0, 77.0, 95.0}) {
    for (double y : {5.0, 40.0, 75.0}) {
      double const share = x / 100.0;
      Pixel const expected{static_cast<int>(200 * share), static_cast<int>(100 * share),
                           static_cast<int>(50 * share)};
      ExpectNear(image.At(slope.X(x), slope.Y(y)), expected, 2);
    }
  }
}

TEST_F(Render, FromAboveThePictureIsTrueToScaleWhateverTheHeights) {
  for (char const* const factor : {"1", "40"}) {
    Json const told =
        Draw(PutSlope(), {"--size", "640x480", "--light", "none", "--exaggerate", factor});
    double const scale = told["pixels_per_unit"];
    EXPECT_NEAR(scale, (480 - 2 * 11) / 80.0, 1e-9);
    Inked const part = InkedPart(Picture(), 640);
    EXPECT_NEAR(part.left, 320 - 50 * scale, 1.0);
    EXPECT_NEAR(part.right, 320 + 50 * scale, 1.0);
    EXPECT_NEAR(part.top, 240 - 40 * scale, 1.0);
    EXPECT_NEAR(part.bottom, 240 + 40 * scale, 1.0);
  }
}

TEST_F(Render, LargeCoordinatesLookLikeSmallOnes) {
  Draw(PutSlope(0, 0), {"--size", "400x300", "--mesh", "--contours", "1"});
  Image const near = Picture();
  Draw(PutSlope(4820000, 59310000), {"--size", "400x300", "--mesh", "--contours", "1"});
  EXPECT_EQ(Picture().rgb, near.rgb);
}

TEST_F(Render, LightFallsOnTheExaggeratedForm) {
  // The normal of the plane is (-slope, 0, 1), and light comes from the west at 30 degrees.
  double const angle = 30.0 * std::numbers::pi / 180.0;
  double const direct = std::min(0.55 / std::sin(angle), 1.2);
  m_Folder.Put("one.txt", "0 120 120 120\n");
  for (double const factor : {1.0, 5.0}) {
    Draw(PutSlope(), {"--size", "100x100", "--light", "270,30", "--colours", "one.txt",
                      "--exaggerate", std::to_string(factor)});
    double const slope = 0.1 * factor;
    double const cosine = (slope * std::cos(angle) + std::sin(angle)) / std::hypot(slope, 1.0);
    int const expected = static_cast<int>(120 * (0.45 + direct * cosine));
    ExpectNear(Picture().At(50, 50), {expected, expected, expected}, 2);
  }
}

TEST_F(Render, LevelGroundHasTheColoursOfTheRamp) {
  m_Folder.Put("one.txt", "0 120 80 40\n");
  for (char const* const light : {"315,45", "10,90", "none"}) {
    Draw(PutSlope(0, 0, 0.0), {"--size", "100x100", "--light", light, "--colours", "one.txt"});
    ExpectNear(Picture().At(50, 50), {120, 80, 40}, 1);
  }
}

TEST_F(Render, AViewFromTheSideFramesTheWholeSurface) {
  constexpr int MARGIN = 11;
  std::string const surface = PutSlope(4820000, 59310000, 0.5);
  for (char const* const view : {"180,30", "10,0", "225,60", "77,15", "315,90"}) {
    Json const told = Draw(surface, {"--size", "500x400", "--view", view, "--exaggerate", "2"});
    EXPECT_EQ(told["pixels_per_unit"], nullptr);
    Inked const part = InkedPart(Picture(), 500);
    SCOPED_TRACE(view);
    EXPECT_GE(part.left, MARGIN - 1);
    EXPECT_GE(part.top, MARGIN - 1);
    EXPECT_LE(part.right, 500 - MARGIN + 1);
    EXPECT_LE(part.bottom, 400 - MARGIN + 1);
    bool const fills_across = part.left <= MARGIN + 3 && part.right >= 500 - MARGIN - 3;
    bool const fills_up = part.top <= MARGIN + 3 && part.bottom >= 400 - MARGIN - 3;
    EXPECT_TRUE(fills_across || fills_up)
        << part.left << ' ' << part.top << ' ' << part.right << ' ' << part.bottom;
  }
}

TEST_F(Render, TheEyeStandsWhereTheViewSays) {
  // From the south the east is on the right, from the north on the left.
  std::string const colours = PutColours();
  for (auto const& [view, rises] : {std::pair("180,45", true), {"0,45", false}}) {
    Draw(PutSlope(),
         {"--size", "400x300", "--light", "none", "--view", view, "--colours", colours});
    Image const image = Picture();
    EXPECT_EQ(image.At(100, 150)[0] < image.At(300, 150)[0], rises) << view;
  }
}

TEST_F(Render, NearGroundHidesWhatIsBehind) {
  // A wall in the south, red, before a lower plain, green.
  m_Folder.Put("wall.txt", "0 0 200 0\n1 0 200 0\n1.1 200 0 0\n9 200 0 0\n");
  std::string const surface = PutSurvey({{0, 0, 9},
                                         {100, 0, 9},
                                         {0, 1, 9},
                                         {100, 1, 9},
                                         {0, 2, 0},
                                         {100, 2, 0},
                                         {0, 9, 0},
                                         {100, 9, 0}});
  for (auto const& [view, red] : {std::pair("180,10", true), {"0,10", false}}) {
    Draw(surface,
         {"--size", "400x300", "--light", "none", "--view", view, "--colours", "wall.txt"});
    Image const image = Picture();
    int green = 0;
    for (int y = 0; y < 300; ++y) green += image.At(200, y)[1] == 200 && image.At(200, y)[0] == 0;
    EXPECT_EQ(green == 0, red) << view;
  }
}

TEST_F(Render, TheScaleBarIsAsLongAsItSays) {
  for (char const* const size : {"400x300", "1600x1200", "900x1500"}) {
    Json const told = Draw(PutSlope(), {"--size", size, "--legend"});
    Json const bar = told["legend"]["scale_bar"];
    double const length = bar["length"];
    double const pixels = bar["pixels"];
    EXPECT_EQ(pixels, length * told["pixels_per_unit"].get<double>());
    double const digit = length / std::pow(10.0, std::floor(std::log10(length)));
    EXPECT_TRUE(digit == 1.0 || digit == 2.0 || digit == 5.0) << length;

    Image const image = Picture();
    int const margin = InkedPart(image, image.width).bottom;
    int run = 0;
    for (int x = image.width / 2; x < image.width; ++x) run += image.IsDark(x, margin - 1);
    EXPECT_NEAR(run, pixels, 2.0) << size;
  }
}

TEST_F(Render, NothingInTheLegendIsCutOff) {
  for (auto const& [size, margin] :
       {std::pair("400x300", 11), {"1600x1200", 22}, {"1200x400", 11}, {"400x1200", 11}}) {
    for (char const* const view : {"top", "200,30"}) {
      Draw(PutSlope(0, 0, -123.456),
           {"--size", size, "--legend", "--view", view, "--contours", "900"});
      Image const image = Picture();
      Inked const part = InkedPart(image, image.width);
      SCOPED_TRACE(size);
      EXPECT_GE(part.top, margin - 1);
      EXPECT_LE(part.bottom, image.height - margin + 1);
      EXPECT_LE(part.right, image.width - margin + 1);
    }
  }
}

TEST_F(Render, TheHeightsOfTheLegendAreRound) {
  Json const heights = Draw(PutSlope(), {"--legend"})["legend"]["heights"];
  EXPECT_EQ(heights.front(), 0.0);
  EXPECT_EQ(heights.back(), 10.0);
  double const step = heights[1].get<double>();
  EXPECT_TRUE(step == 0.5 || step == 1.0) << step;
  double expected = 0.0;
  for (Json const& height : heights) EXPECT_EQ(height, std::exchange(expected, expected + step));
}

TEST_F(Render, ALevelSurfaceHasALegendToo) {
  Json const told = Draw(PutSlope(0, 0, 0.0), {"--legend", "--size", "400x300", "--contours", "1"});
  EXPECT_EQ(told["legend"]["heights"], Json{0.0});
}

TEST_F(Render, ContoursRunAtTheirHeightsAndEveryFifthIsStronger) {
  m_Folder.Put("one.txt", "0 250 250 250\n");
  Json const told = Draw(PutSlope(), {"--size", "640x480", "--light", "none", "--colours",
                                      "one.txt", "--contours", "1"});
  EXPECT_EQ(told["contours"]["levels"], 11);
  SlopeInPicture const slope{640, 480, told["pixels_per_unit"]};
  Image const image = Picture();
  // Beside the label.
  auto const ink = [&](double height) {
    int sum = 0;
    int const x = slope.X(height * 10.0);
    for (int k = -3; k <= 3; ++k) sum += 250 - image.At(x + k, slope.Y(2.0))[0];
    return sum;
  };
  EXPECT_GT(ink(4.0), 150);
  EXPECT_GT(ink(5.0), 1.5 * ink(4.0));
  EXPECT_EQ(ink(4.5), 0);
}

TEST_F(Render, ContoursAreLightOnDarkGround) {
  for (auto const& [ground, brighter] : {std::pair("40", true), {"220", false}}) {
    m_Folder.Put("one.txt", std::string("0 ") + ground + ' ' + ground + ' ' + ground + '\n');
    Json const told = Draw(PutSlope(), {"--size", "640x480", "--light", "none", "--colours",
                                        "one.txt", "--contours", "3"});
    SlopeInPicture const slope{640, 480, told["pixels_per_unit"]};
    Image const image = Picture();
    int const x = slope.X(30.0);
    int extreme = image.At(x, slope.Y(2.0))[0];
    for (int k = -1; k <= 1; ++k) {
      int const value = image.At(x + k, slope.Y(2.0))[0];
      extreme = brighter ? std::max(extreme, value) : std::min(extreme, value);
    }
    EXPECT_EQ(extreme > 130, brighter);
    EXPECT_EQ(extreme < 110, !brighter);
  }
}

TEST_F(Render, AMeshShowsTheSidesOfTriangles) {
  std::string const surface =
      PutSurvey({{0, 0, 0}, {100, 0, 0}, {100, 80, 0}, {0, 80, 0}, {50, 40, 0}});
  Json const told = Draw(surface, {"--size", "640x480", "--mesh"});
  SlopeInPicture const slope{640, 480, told["pixels_per_unit"]};
  Image const image = Picture();
  auto const darkest = [&](double x, double y) {
    int least = 255;
    for (int k = -1; k <= 1; ++k) least = std::min(least, image.At(slope.X(x) + k, slope.Y(y))[1]);
    return least;
  };
  EXPECT_LT(darkest(25, 20), 120);
  EXPECT_LT(darkest(75, 20), 120);
  EXPECT_GT(darkest(50, 20), darkest(25, 20) + 20);
}

TEST_F(Render, TheMeshOfAnotherSurfaceLiesOverTheOne) {
  std::string const surface = PutSlope();
  MustRun({"convert", surface, "whole.tin"});
  PutSurvey({{0, 0, 0}, {100, 0, 10}, {100, 80, 10}, {0, 80, 0}, {50, 40, 5}});
  m_Folder.Put("one.txt", "0 200 200 200\n");
  auto const draw = [this](char const* drawn, std::vector<std::string> options) {
    options.insert(options.end(), {"--size", "400x300", "--light", "none", "--colours", "one.txt"});
    Draw(drawn, options);
    return Picture().rgb;
  };
  auto const other = draw("whole.tin", {"--mesh-of", "s.tin"});
  EXPECT_NE(other, draw("whole.tin", {"--mesh"}));
  EXPECT_EQ(other, draw("s.tin", {"--mesh"}));
}

TEST_F(Render, AGridHasHolesWhereThereIsNoSurface) {
  std::vector<TPoint> points;
  for (int i = 0; i <= 20; ++i) {
    for (int j = 0; j <= 16; ++j) {
      bool const hole = i > 6 && i < 14 && j > 5 && j < 11;
      if (!hole) points.emplace_back(i * 5.0, j * 5.0, 1.0);
    }
  }
  PutSurvey(points);
  MustRun({"filter", "s.tin", "--max-edge", "8", "-o", "holed.tin", "-q"});
  Json const told = Draw("holed.tin", {"--size", "640x480", "--grid", "2", "--mesh"});
  SlopeInPicture const slope{640, 480, told["pixels_per_unit"]};
  Image const image = Picture();
  for (int x = slope.X(35); x < slope.X(65); ++x) {
    for (int y = slope.Y(48); y < slope.Y(32); ++y)
      ASSERT_TRUE(image.IsWhite(x, y)) << x << ' ' << y;
  }
  EXPECT_FALSE(image.IsWhite(slope.X(10), slope.Y(10)));
  EXPECT_FALSE(image.IsWhite(slope.X(90), slope.Y(70)));
}

TEST_F(Render, LinesLieOnTheSurface) {
  m_Folder.Put("lines.txt", "-20 40\n120 40\n\n20 -30\n20 -5\n");
  std::string const surface = PutSlope();
  auto const is_line = [](Pixel const& p) { return p[0] > 180 && p[1] < 100 && p[2] < 40; };
  Json const told = Draw(surface, {"--size", "640x480", "--lines", "lines.txt"});
  SlopeInPicture const slope{640, 480, told["pixels_per_unit"]};
  Image image = Picture();
  for (double x : {-1.0, 20.0, 80.0, 101.0}) {
    int const row = slope.Y(40.0);
    EXPECT_TRUE(is_line(image.At(slope.X(x), row)) || is_line(image.At(slope.X(x), row - 1)));
  }
  // From the side it follows the ground, which hides no part of it.
  Draw(surface, {"--size", "640x480", "--view", "180,20", "--lines", "lines.txt"});
  image = Picture();
  int columns = 0;
  for (int x = 0; x < 640; ++x) {
    bool found = false;
    for (int y = 0; y < 480; ++y) found = found || is_line(image.At(x, y));
    columns += found;
  }
  EXPECT_GT(columns, 600);
}

TEST_F(Render, TheRampFollowsTheHeights) {
  EXPECT_EQ(Draw(PutSlope(), {"--size", "9x9"})["colours"], "terrain");
  EXPECT_EQ(Draw(PutSlope(0, 0, -0.1), {"--size", "9x9"})["colours"], "terrain");
  std::string const water = PutSurvey({{0, 0, -9}, {9, 0, -5}, {0, 9, -1}});
  EXPECT_EQ(Draw(water, {"--size", "9x9"})["colours"], "bathymetry");
  EXPECT_EQ(Draw(water, {"--size", "9x9", "--colours", "grey"})["colours"], "grey");
}

TEST_F(Render, EqualRunsDrawEqualPictures) {
  MustRun({"sample", "--points", "2000", "-o", "in.xyz"});
  MustRun({"build", "in.xyz", "--keep-order", "-o", "in.tin", "-q"});
  std::vector<std::string> const options = {"--size", "500x400",  "--view",
                                            "200,30", "--legend", "--mesh"};
  Draw("in.tin", options);
  std::string const first = m_Folder.Get("picture.png");
  Draw("in.tin", options);
  EXPECT_EQ(m_Folder.Get("picture.png"), first);
}

TEST_F(Render, TellsPeople) {
  Ran const ran = MustRun({"render", PutSlope(), "-o", "p.png", "--size", "122x102"});
  EXPECT_EQ(ran.out,
            "picture     122 by 102 pixels\n"
            "a pixel is  1\n"
            "heights     0 to 10\n"
            "colours     terrain\n");
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(MustRun({"render", "s.tin", "-o", "q.png", "-q", "--size", "9x9"}).out, "");
}

TEST_F(Render, RefusesWhatMakesNoPicture) {
  PutSlope();
  ExpectRefused({"--size", "0x100"}, "--size \"0x100\": WIDTHxHEIGHT, each from 1 to 8192");
  ExpectRefused({"--size", "8193x10"}, "--size \"8193x10\"");
  ExpectRefused({"--size", "99999999999999999999x10"}, "--size");
  ExpectRefused({"--size", "100"}, "--size \"100\"");
  ExpectRefused({"--size", "100x100x100"}, "--size");
  ExpectRefused({"--size", "-5x100"}, "--size");
  ExpectRefused({"--view", "side"}, "--view \"side\": AZIMUTH,ELEVATION in degrees");
  ExpectRefused({"--view", "180,-5"}, "--view \"180,-5\"");
  ExpectRefused({"--view", "180,91"}, "--view \"180,91\"");
  ExpectRefused({"--light", "315"}, "--light \"315\"");
  ExpectRefused({"--exaggerate", "0"}, "--exaggerate \"0\": a number above 0");
  ExpectRefused({"--contours", "-1"}, "--contours \"-1\": a number above 0");
  ExpectRefused({"--grid", "nan"}, "--grid \"nan\"");
  ExpectRefused({"--colours", "blue"},
                "--colours \"blue\": neither bathymetry, terrain nor grey, nor a file");
  ExpectRefused({"--legend", "--size", "399x300"}, "--legend needs a picture of 400x300 or more");
  ExpectRefused({"-o", "refused.jpg"}, "-o");
  Ran const ran = Run({"render", "s.tin", "-o", "p.jpg"});
  EXPECT_EQ(ran.status, 2);
  EXPECT_THAT(ran.err, HasSubstr("\"p.jpg\": a picture is a .png"));
}

TEST_F(Render, TellsWhatIsWrongWithAFile) {
  PutSlope();
  m_Folder.Put("bad.txt", "0 1 2 3\n1 2 3 256\n");
  m_Folder.Put("empty.txt", "# nothing\n");
  auto const run = [this](std::vector<std::string> const& options) {
    std::vector<std::string> arguments = {"render", "s.tin", "-o", "p.png"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Run(arguments);
  };
  ExpectError(
      run({"--colours", "bad.txt"}),
      "bad.txt: line 2: \"1 2 3 256\" is not a height with red, green and blue from 0 to 255");
  ExpectError(run({"--colours", "empty.txt"}), "empty.txt: holds no colours");
  ExpectError(run({"--lines", "none.txt"}), "none.txt: No such file or directory");
  ExpectError(run({"--mesh-of", "none.tin"}), "none.tin: No such file or directory");
  ExpectError(run({"--contours", "1e-9"}),
              "s.tin: contours so close are more than a million levels");
  EXPECT_FALSE(m_Folder.Has("p.png"));
}

TEST_F(Render, AnOutputThatExistsStaysUnlessItMayGo) {
  PutSlope();
  m_Folder.Put("p.png", "mine");
  ExpectError(Run({"render", "s.tin", "-o", "p.png", "--size", "9x9"}),
              "p.png: exists already (--overwrite replaces it)");
  EXPECT_EQ(m_Folder.Get("p.png"), "mine");
  MustRun({"render", "s.tin", "-o", "p.png", "--size", "9x9", "--overwrite", "-q"});
  EXPECT_THAT(m_Folder.Get("p.png"), StartsWith("\x89PNG"));
}

TEST_F(Render, AFullDiskLeavesNothingBehind) {
  MustRun({"sample", "--points", "2000", "-o", "in.xyz"});
  int const entries = m_Folder.Entries();
  Ran const ran = Qeltin({"render", "in.xyz", "-o", "p.png"}).FileLimit(4096).Run();
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(ran.err, StartsWith("qeltin: error: p.png: cannot be written: "));
  EXPECT_EQ(m_Folder.Entries(), entries);
}

TEST_F(Render, WithoutGlItSaysSo) {
  std::string const surface = PutSlope();
  // Then no driver is found.
  setenv("__EGL_VENDOR_LIBRARY_FILENAMES", "/dev/null", 1);
  Ran const ran = Run({"render", surface, "-o", "p.png"});
  unsetenv("__EGL_VENDOR_LIBRARY_FILENAMES");
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(ran.err, StartsWith("qeltin: error: p.png: cannot be drawn: "));
  EXPECT_FALSE(m_Folder.Has("p.png"));
}

}  // namespace
}  // namespace qeltin::cli::testing
