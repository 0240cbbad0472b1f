#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <optional>
#include <regex>

#include "apps/qeltin/CommandTest.h"
#include "qeltin/tin/TIN.h"
#include "testing/gl/Screen.h"
#include "testing/gl/Xvfb.h"

namespace qeltin::cli::testing {
namespace {

using qeltin::testing::AskToClose;
using qeltin::testing::ReadScreen;
using qeltin::testing::Xvfb;
using ::testing::HasSubstr;
using Clock = std::chrono::steady_clock;
using Picture = std::vector<unsigned char>;

constexpr int WIDTH = 480;
constexpr int HEIGHT = 360;
constexpr int WHITE = 255;

// The surface: hills of up to 35 above and below 0, at projected coordinates.
constexpr double WEST = 482000.0;
constexpr double SOUTH = 5931000.0;
constexpr double EAST = WEST + 300.0;
constexpr double NORTH = SOUTH + 240.0;

std::vector<TPoint> Hills() {
  constexpr double STEP = 5.0;
  std::vector<TPoint> points;
  for (double x = WEST; x <= EAST; x += STEP) {
    for (double y = SOUTH; y <= NORTH; y += STEP) {
      points.emplace_back(x, y, 20.0 * std::sin((x - WEST) / 30.0) + 15.0 * std::cos(y / 25.0));
    }
  }
  return points;
}

// The grey of a height in the colours of the test, which are darker than what is around the
// surface.
double GreyOf(double height) { return (height + 35.0) / 70.0 * 250.0; }

// Where the pointer is, and what the title tells of it.
struct Told {
  double x;
  double y;
  double height;
};

class View : public CommandTest {
 protected:
  void SetUp() override {
    if (m_Server.Display().empty()) GTEST_SKIP() << "there is no Xvfb to show windows on";
    if (!m_Server.Xdotool("version").starts_with("xdotool")) {
      GTEST_SKIP() << "there is no xdotool to play the user";
    }
    setenv("DISPLAY", m_Server.Display().c_str(), 1);
    PutSurvey(Hills());
    m_Folder.Put("grey.txt", "-35 0 0 0\n35 250 250 250\n");
  }

  // Starts the command and waits until the surface is to be seen.
  Running Show(std::vector<std::string> const& options = {},
               std::string const& size = "480x360") const {
    std::vector<std::string> arguments = {"view",    "s.tin", "--size",    size,
                                          "--light", "none",  "--colours", "grey.txt"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Running running = Qeltin(arguments).Start();
    AwaitPicture([](Picture const& picture) {
      auto const is_grey = [](int c) { return c > 0 && c < WHITE; };
      return std::any_of(picture.begin(), picture.end(), is_grey);
    });
    return running;
  }

  // Ends the command and returns what it printed.
  static std::string End(Running& running, Xvfb const& server) {
    server.Xdotool("mousemove 5 5 key q");
    Ran const ran = running.Wait();
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.err, "");
    return ran.out;
  }

  std::string User(std::string const& does) const { return m_Server.Xdotool(does); }

  Picture Screen() const { return ReadScreen(m_Server.Display(), 0, 0, WIDTH, HEIGHT); }

  // Returns the first picture that is `wanted`.
  Picture AwaitPicture(std::function<bool(Picture const&)> const& wanted) const {
    Clock::time_point const end = Clock::now() + LONG_ENOUGH;
    while (Clock::now() < end) {
      Picture picture = Screen();
      if (wanted(picture)) return picture;
      usleep(POLL);
    }
    ADD_FAILURE() << "the picture does not come";
    return {};
  }

  Picture AwaitChangeOf(Picture const& before) const {
    return AwaitPicture([&before](Picture const& picture) { return picture != before; });
  }

  void AwaitReturnTo(Picture const& before) const {
    AwaitPicture([&before](Picture const& picture) { return picture == before; });
  }

  std::string AwaitTitle(std::function<bool(std::string const&)> const& wanted) const {
    Clock::time_point const end = Clock::now() + LONG_ENOUGH;
    std::string title;
    while (Clock::now() < end) {
      title = User("search --name s.tin getwindowname");
      if (wanted(title)) return title;
      usleep(POLL);
    }
    ADD_FAILURE() << "the title stays " << title;
    return {};
  }

  static std::optional<Told> Parse(std::string const& title) {
    static std::regex const form(R"(s\.tin: (-?[\d.]+), (-?[\d.]+)  height (-?[\d.]+).*\n)");
    std::smatch parts;
    if (!std::regex_match(title, parts, form)) return {};
    return Told{std::stod(parts[1]), std::stod(parts[2]), std::stod(parts[3])};
  }

  // Puts the pointer beside the surface, in a corner.
  void PointBeside() const {
    User("mousemove 0 0");
    AwaitTitle([](std::string const& title) { return !Parse(title); });
  }

  // Returns what is told of the surface at a pixel that shows it.
  Told PointAt(int x, int y) const {
    PointBeside();
    User("mousemove " + std::to_string(x) + ' ' + std::to_string(y));
    std::string const title =
        AwaitTitle([](std::string const& text) { return Parse(text).has_value(); });
    return Parse(title).value_or(Told{});
  }

  static int GreyAt(Picture const& picture, int x, int y) {
    return picture[3 * (std::size_t{WIDTH} * y + x)];
  }

  Xvfb m_Server;

 private:
  static constexpr auto LONG_ENOUGH = std::chrono::seconds(30);
  static constexpr useconds_t POLL = 2'000;
};

TEST_F(View, EndsOnQAndOnEscapeAndWhereTheWindowIsClosed) {
  for (std::string const key : {"q", "Escape"}) {
    Running running = Show();
    User("mousemove 5 5 key " + key);
    Ran const ran = running.Wait();
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.out + ran.err, "");
  }
  Running running = Show();
  AskToClose(m_Server.Display(), std::stoul(User("search --name s.tin")));
  EXPECT_EQ(running.Wait().status, 0);
}

TEST_F(View, TellsPlaceAndHeightOfWhatIsSeenUnderThePointer) {
  TIN tin;
  ASSERT_TRUE(tin.Load(m_Folder.Wide("s.tin").c_str()));
  for (std::vector<std::string> const& options : std::vector<std::vector<std::string>>{
           {}, {"--view", "top"}, {"--view", "250,15", "--exaggerate", "2.5"}}) {
    Running running = Show(options);
    Picture const picture = Screen();
    int asked = 0;
    for (int y = 7; y < HEIGHT; y += 40) {
      for (int x = 7; x < WIDTH; x += 80) {
        int const grey = GreyAt(picture, x, y);
        if (grey == WHITE) continue;
        Told const told = PointAt(x, y);
        double z = 0.0;
        EXPECT_TRUE(tin.GetZ(told.x, told.y, z));
        EXPECT_NEAR(told.height, z, 0.003);
        EXPECT_NEAR(grey, GreyOf(z), 2.0) << "at " << x << ' ' << y;
        ++asked;
      }
    }
    EXPECT_GT(asked, 8);
    End(running, m_Server);
  }
}

TEST_F(View, TheEdgesOfTheSurfaceAreToldWhereTheyAreSeen) {
  Running running = Show({"--view", "top"});
  Picture const picture = Screen();
  constexpr int MIDDLE = HEIGHT / 2;
  int left = 0;
  while (GreyAt(picture, left, MIDDLE) == WHITE) ++left;
  int right = WIDTH - 1;
  while (GreyAt(picture, right, MIDDLE) == WHITE) --right;
  double const pixel = 1.2 * (EAST - WEST) / (right - left);  // those of low ground are larger
  EXPECT_NEAR(PointAt(left, MIDDLE).x, WEST, pixel);
  EXPECT_NEAR(PointAt(right, MIDDLE).x, EAST, pixel);
  PointAt(left, MIDDLE);
  User("mousemove " + std::to_string(left - 1) + ' ' + std::to_string(MIDDLE));
  AwaitTitle([](std::string const& title) { return title == "s.tin\n"; });
  End(running, m_Server);
}

TEST_F(View, NothingIsToldInAHole) {
  std::vector<TPoint> points = Hills();
  std::erase_if(points, [](TPoint const& p) {
    return std::hypot(p.x - (WEST + EAST) / 2.0, p.y - (SOUTH + NORTH) / 2.0) < 40.0;
  });
  PutSurvey(points);
  MustRun({"filter", "s.tin", "--max-edge", "8", "-o", "hole.tin", "-q"});
  std::filesystem::rename(m_Folder.Path("hole.tin"), m_Folder.Path("s.tin"));
  Running running = Show({"--view", "top"});
  EXPECT_EQ(GreyAt(Screen(), WIDTH / 2, HEIGHT / 2), WHITE);
  PointAt(WIDTH / 2 - 100, HEIGHT / 2);
  User("mousemove " + std::to_string(WIDTH / 2) + ' ' + std::to_string(HEIGHT / 2));
  AwaitTitle([](std::string const& title) { return title == "s.tin\n"; });
  End(running, m_Server);
}

TEST_F(View, TheWheelZoomsToThePointer) {
  Running running = Show();
  Picture const before = Screen();
  Told const told = PointAt(200, 200);
  for (std::string const button : {"4", "4", "5"}) {
    Picture const last = Screen();
    User("click " + button);
    AwaitChangeOf(last);
    Told const now = PointAt(200, 200);
    EXPECT_NEAR(now.x, told.x, 0.0021);
    EXPECT_NEAR(now.y, told.y, 0.0021);
  }
  User("click 5");
  AwaitReturnTo(before);
  End(running, m_Server);
}

TEST_F(View, DraggingWithTheRightButtonMovesThePlaceAlong) {
  Running running = Show({"--view", "top"});
  Told const told = PointAt(200, 200);
  double const pixel = (PointAt(220, 200).x - told.x) / 20.0;
  PointAt(200, 200);
  User("mousedown 3 mousemove 230 180 mouseup 3");
  AwaitTitle([&told, pixel](std::string const& title) {
    std::optional<Told> const now = Parse(title);
    return now && std::fabs(now->x - told.x) < 4.0 * pixel &&
           std::fabs(now->y - told.y) < 4.0 * pixel;
  });
  End(running, m_Server);
}

TEST_F(View, TheMiddleButtonAndShiftMoveToo) {
  Running running = Show();
  User("mousemove 200 200");
  Picture const before = Screen();
  User("mousedown 3 mousemove 230 180 mouseup 3");
  Picture const moved = AwaitChangeOf(before);
  for (std::string const shift : {"", "keydown Shift_L "}) {
    User("key r mousemove 200 200");
    AwaitReturnTo(before);
    std::string const button = shift.empty() ? "2" : "1";
    User(shift + "mousedown " + button + " mousemove 230 180 mouseup " + button);
    AwaitReturnTo(moved);
    User("keyup Shift_L");
  }
  End(running, m_Server);
}

TEST_F(View, DraggingWithTheLeftButtonTurnsAndRReturns) {
  Running running = Show();
  Picture const before = Screen();
  User("mousemove 200 200 mousedown 1 mousemove 260 190 mouseup 1");
  AwaitChangeOf(before);
  User("key r");
  AwaitReturnTo(before);
  End(running, m_Server);
}

TEST_F(View, ADragBeginsWhereTheButtonGoesDown) {
  // The pointer does not move before.
  User("mousemove 200 200");
  Running running = Show({"--view", "top"});
  Picture const before = Screen();
  User("mousedown 1");
  User("mousemove 201 200 mouseup 1");
  AwaitChangeOf(before);
  EXPECT_NEAR(PointAt(150, HEIGHT / 2).y, (SOUTH + NORTH) / 2.0, 5.0);  // hardly turned
  End(running, m_Server);
}

TEST_F(View, KeysShowAndHideContoursMeshAndPoints) {
  Running running = Show();
  User("mousemove 5 5");
  Picture const before = Screen();
  std::vector<Picture> seen = {before};
  for (std::string const key : {"c", "m", "p"}) {
    User("key " + key);
    Picture const with = AwaitChangeOf(before);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), with), 0) << key;
    seen.push_back(with);
    User("key " + key);
    AwaitReturnTo(before);
  }
  End(running, m_Server);
}

TEST_F(View, KeysStretchTheHeights) {
  Running running = Show();
  User("mousemove 5 5");
  Picture const before = Screen();
  User("key plus");
  AwaitChangeOf(before);
  EXPECT_EQ(AwaitTitle([](std::string const& title) { return title != "s.tin\n"; }),
            "s.tin  (heights x 1.25)\n");
  User("key minus");
  AwaitReturnTo(before);
  User("key minus");
  AwaitTitle([](std::string const& title) { return title == "s.tin  (heights x 0.8)\n"; });
  User("key r");
  AwaitReturnTo(before);
  AwaitTitle([](std::string const& title) { return title == "s.tin\n"; });
  End(running, m_Server);
}

TEST_F(View, TLooksFromAbove) {
  Running from_above = Show({"--view", "top"});
  Picture const expected = Screen();
  End(from_above, m_Server);
  Running running = Show();
  User("mousemove 5 5 key t");
  AwaitReturnTo(expected);
  End(running, m_Server);
}

TEST_F(View, FillsAWindowOfAnotherSize) {
  Running running = Show({"--view", "top"}, "200x150");
  User("search --name s.tin windowsize 480 360");
  AwaitPicture([](Picture const& picture) {
    return GreyAt(picture, WIDTH - 1, HEIGHT - 1) == WHITE &&
           GreyAt(picture, WIDTH / 2, HEIGHT - 100) != WHITE;
  });
  End(running, m_Server);
}

TEST_F(View, DrawsOnlyWhatHasChanged) {
  Running running = Show({"--json"});
  for (int x = 100; x < 400; x += 10) PointAt(x, 200);
  nlohmann::json const told = nlohmann::json::parse(End(running, m_Server));
  EXPECT_EQ(told["file"], "s.tin");
  EXPECT_EQ(told["colours"], "grey.txt");
  EXPECT_GE(told["frames"], 1);
  EXPECT_LE(told["frames"], 4);  // a window asks for a few while it opens
  EXPECT_GT(told["seconds_drawing"], 0.0);
}

TEST_F(View, EndsWhereTheScreenGoesAway) {
  Running running = Show();
  m_Server.Stop();
  ExpectError(running.Wait(),
              "s.tin: is shown no longer: the X server " + m_Server.Display() + " has gone");
}

TEST_F(View, WithoutAScreenItTellsWhy) {
  setenv("DISPLAY", ":64321", 1);
  ExpectError(Run({"view", "s.tin"}), "s.tin: cannot be shown: there is no X server at :64321");
  unsetenv("DISPLAY");
  ExpectError(Run({"view", "s.tin"}), "s.tin: cannot be shown: DISPLAY names no X server");
}

TEST_F(View, RefusesAViewFromBelow) {
  Ran const ran = Run({"view", "s.tin", "--view", "180,-10"});
  EXPECT_EQ(ran.status, 2);
  EXPECT_THAT(ran.err, HasSubstr("--view \"180,-10\""));
}

}  // namespace
}  // namespace qeltin::cli::testing
