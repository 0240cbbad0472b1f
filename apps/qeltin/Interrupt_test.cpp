#include <pty.h>

#include <chrono>

#include "apps/qeltin/CommandTest.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class Interrupt : public CommandTest {
 protected:
  // Waits until the command has made its folder beside the output, or is gone.
  void AwaitFolder(int entries_before) const {
    for (int i = 0; i < 1000 && m_Folder.Entries() == entries_before; ++i) usleep(5'000);
    EXPECT_EQ(m_Folder.Entries(), entries_before + 1);
  }
};

TEST_F(Interrupt, WhileReadingLeavesNothing) {
  struct Case {
    int signal;
    int status;
  };
  for (Case const& c : {Case{SIGINT, 130}, Case{SIGTERM, 143}, Case{SIGHUP, 129}}) {
    Running running = Qeltin({"build", "-", "-o", "out.tin"}).Start();
    running.Say("0 0 1\n1 0 1\n0 1 1\n");
    AwaitFolder(0);
    running.Signal(c.signal);
    Ran const ran = running.Wait();
    EXPECT_EQ(ran.status, c.status);
    EXPECT_EQ(ran.out + ran.err, "");
    EXPECT_EQ(m_Folder.Entries(), 0);
  }
}

TEST_F(Interrupt, LeavesTheOldFileAlone) {
  m_Folder.Put("s.xyz", "0 0 1\n1 0 1\n0 1 1\n");
  m_Folder.Put("z.csv", "old");
  Running running =
      Qeltin({"height", "s.xyz", "--points", "-", "-o", "z.csv", "--overwrite"}).Start();
  running.Say("0.1 0.1\n");
  AwaitFolder(2);
  running.Signal(SIGINT);
  EXPECT_EQ(running.Wait().status, 130);
  EXPECT_EQ(m_Folder.Get("z.csv"), "old");
  EXPECT_EQ(m_Folder.Entries(), 2);
}

TEST_F(Interrupt, AtAnyMomentLeavesTheOutputWholeOrNotThere) {
  MustRun({"sample", "--points", "60000", "-o", "s.xyz", "-q"});
  using Clock = std::chrono::steady_clock;
  auto const start = Clock::now();
  MustRun({"build", "s.xyz", "-o", "whole.tin", "-q"});
  auto const duration = Clock::now() - start;
  std::uintmax_t const whole = std::filesystem::file_size(m_Folder.Path("whole.tin"));

  constexpr int MOMENTS = 12;
  for (int moment = 0; moment < MOMENTS; ++moment) {
    Running running = Qeltin({"build", "s.xyz", "-o", "out.tin", "-q"}).Start();
    std::this_thread::sleep_for(duration * moment / MOMENTS);
    running.Signal(SIGINT);
    auto const signalled = Clock::now();
    Ran const ran = running.Wait();
    EXPECT_LT(Clock::now() - signalled, std::chrono::seconds(2));
    // Before main has begun, a signal ends the process in the system's way.
    EXPECT_TRUE(ran.status == 130 || ran.status == 0 || ran.status == -SIGINT) << ran.status;
    if (m_Folder.Has("out.tin")) {
      EXPECT_EQ(std::filesystem::file_size(m_Folder.Path("out.tin")), whole);
      std::filesystem::remove(m_Folder.Path("out.tin"));
    } else {
      EXPECT_NE(ran.status, 0);
    }
    EXPECT_EQ(m_Folder.Entries(), 2) << "moment " << moment;
  }
}

TEST_F(Interrupt, EndsTheInsertionItself) {
  // Far more points than can be inserted before the signal.
  MustRun({"sample", "--points", "250000", "--pattern", "random", "-o", "s.xyz", "-q"});
  Running running = Qeltin({"build", "s.xyz", "-o", "out.tin", "--keep-order"}).Start();
  AwaitFolder(1);
  usleep(150'000);
  running.Signal(SIGINT);
  EXPECT_EQ(running.Wait().status, 130);
  EXPECT_EQ(m_Folder.Entries(), 1);
}

TEST_F(Interrupt, AnIgnoredSignalStaysIgnored) {
  Running running = Qeltin({"build", "-", "-o", "out.tin", "-q"}).Ignoring(SIGINT).Start();
  running.Say("0 0 1\n1 0 1\n");
  AwaitFolder(0);
  running.Signal(SIGINT);
  usleep(50'000);
  running.Say("0 1 1\n");
  running.EndInput();
  EXPECT_EQ(running.Wait().status, 0);
  EXPECT_TRUE(m_Folder.Has("out.tin"));
}

// A terminal whose far end is read by the test.
class Terminal {
 public:
  Terminal() {
    EXPECT_EQ(openpty(&m_iMaster, &m_iSlave, nullptr, nullptr, nullptr), 0);
    fcntl(m_iMaster, F_SETFL, O_NONBLOCK);
  }
  ~Terminal() {
    close(m_iMaster);
    close(m_iSlave);
  }
  int Descriptor() const { return m_iSlave; }

  std::string Screen() {
    char bytes[4096];
    for (ssize_t n = 0; (n = read(m_iMaster, bytes, sizeof bytes)) > 0;) m_Screen.append(bytes, n);
    return m_Screen;
  }

  void Await(std::string const& text) {
    for (int i = 0; i < 1000 && Screen().find(text) == std::string::npos; ++i) usleep(10'000);
    EXPECT_THAT(Screen(), HasSubstr(text));
  }

 private:
  int m_iMaster = -1;
  int m_iSlave = -1;
  std::string m_Screen;
};

class ProgressBar : public Interrupt {
 protected:
  ProgressBar() { m_Folder.Put("s.xyz", "0 0 1\n1 0 1\n0 1 1\n"); }
};

constexpr char WIPED[] = "\r\033[K";

TEST_F(ProgressBar, AppearsOnATerminalAndIsWipedInTheEnd) {
  Terminal terminal;
  Running running =
      Qeltin({"height", "s.xyz", "--points", "-"}).ErrTo(terminal.Descriptor()).Start();
  terminal.Await("heights  1 s so far");
  running.EndInput();
  EXPECT_EQ(running.Wait().status, 0);
  terminal.Await(std::string(WIPED) + "qeltin: 0 of 0 places lie on the surface\r\n");
}

TEST_F(ProgressBar, IsWipedByAnInterrupt) {
  Terminal terminal;
  Running running =
      Qeltin({"height", "s.xyz", "--points", "-"}).ErrTo(terminal.Descriptor()).Start();
  terminal.Await("heights  1 s so far");
  running.Signal(SIGINT);
  EXPECT_EQ(running.Wait().status, 130);
  EXPECT_THAT(terminal.Screen(), EndsWith(WIPED));
}

TEST_F(ProgressBar, TellsTheShareAndAnEstimate) {
  Terminal terminal;
  Running running = Qeltin({"sample", "--points", "1000000000", "-o", "/dev/null"})
                        .ErrTo(terminal.Descriptor())
                        .Start();
  terminal.Await("sample  [------------------------] 0 %  about ");
  running.Signal(SIGINT);
  EXPECT_EQ(running.Wait().status, 130);
}

TEST_F(ProgressBar, GivesWayToTheTimeSoFarWhereTheWorkTakesLongerThanGuessed) {
  std::string const survey = MustRun({"sample", "--points", "250000", "-q"}).out;
  Terminal terminal;
  Running running =
      Qeltin({"build", "-", "-o", "out.tin", "--keep-order"}).ErrTo(terminal.Descriptor()).Start();
  running.Say(survey);
  running.EndInput();
  // It builds now, and is stopped for longer than it should take.
  usleep(50'000);
  running.Signal(SIGSTOP);
  usleep(1'500'000);
  running.Signal(SIGCONT);
  terminal.Await("build  ");
  EXPECT_EQ(running.Wait().status, 0);
  EXPECT_THAT(terminal.Screen(), ContainsRegex("build  [0-9]+ s so far"));
}

TEST_F(ProgressBar, DoesNotAppearInALog) {
  Running running = Qeltin({"height", "s.xyz", "--points", "-"}).Start();
  usleep(1'000'000);
  running.EndInput();
  EXPECT_EQ(running.Wait().err, "qeltin: 0 of 0 places lie on the surface\n");
}

}  // namespace
}  // namespace qeltin::cli::testing
