#pragma once

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "testing/TemporaryFolder.h"

// Runs the command as a shell does, and looks at what comes out.
namespace qeltin::cli::testing {

// What a finished command left. A status below 0 is the signal that killed it.
struct Ran {
  int status = 0;
  std::string out;
  std::string err;
  long peak_kib = 0;  // of memory

  nlohmann::json Json() const { return nlohmann::json::parse(out); }
};

// A file without a name, for the output of a child.
class Capture {
 public:
  Capture() : m_pFile(std::tmpfile()) {}
  ~Capture() { std::fclose(m_pFile); }
  Capture(Capture const&) = delete;
  Capture& operator=(Capture const&) = delete;
  int Descriptor() const { return fileno(m_pFile); }
  std::string Text() const {
    std::string text(static_cast<std::size_t>(lseek(Descriptor(), 0, SEEK_END)), '\0');
    text.resize(static_cast<std::size_t>(pread(Descriptor(), text.data(), text.size(), 0)));
    return text;
  }

 private:
  std::FILE* m_pFile;
};

// A pipe for what a child says on standard error, which a limit on files does not touch. It holds
// 64 KiB.
class Ear {
 public:
  Ear() { EXPECT_EQ(pipe2(m_iEnds, O_CLOEXEC | O_NONBLOCK), 0); }
  ~Ear() {
    close(m_iEnds[0]);
    close(m_iEnds[1]);
  }
  Ear(Ear const&) = delete;
  Ear& operator=(Ear const&) = delete;
  int Descriptor() const { return m_iEnds[1]; }
  std::string Text() const {
    std::string text(1 << 16, '\0');
    ssize_t const size = read(m_iEnds[0], text.data(), text.size());
    text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return text;
  }

 private:
  int m_iEnds[2] = {-1, -1};
};

// A command under way, with a pipe as its standard input.
class Running {
 public:
  Running(pid_t child, int input, std::shared_ptr<Capture> out, std::shared_ptr<Ear> err)
      : m_iChild(child), m_iInput(input), m_pOut(std::move(out)), m_pErr(std::move(err)) {}

  pid_t Child() const { return m_iChild; }
  std::string OutSoFar() const { return m_pOut->Text(); }

  void Say(std::string_view text) const {
    while (!text.empty()) {
      ssize_t const written = write(m_iInput, text.data(), text.size());
      if (written <= 0) return;  // it went without hearing us out
      text.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void EndInput() { close(std::exchange(m_iInput, -1)); }

  void Signal(int number) const { kill(m_iChild, number); }

  Ran Wait() {
    int state = 0;
    struct rusage used {};
    wait4(m_iChild, &state, 0, &used);
    if (m_iInput >= 0) EndInput();
    int const status = WIFEXITED(state) ? WEXITSTATUS(state) : -WTERMSIG(state);
    return {status, m_pOut->Text(), m_pErr->Text(), used.ru_maxrss};
  }

 private:
  pid_t m_iChild;
  int m_iInput;
  std::shared_ptr<Capture> m_pOut;
  std::shared_ptr<Ear> m_pErr;
};

class Command {
 public:
  Command(qeltin::testing::TemporaryFolder const& folder, std::vector<std::string> arguments)
      : m_Folder(folder), m_Arguments(std::move(arguments)) {}

  // What it reads; otherwise nothing.
  Command& Input(std::string text) { return m_Input = std::move(text), *this; }

  // Sends its standard output or its standard error somewhere else. -1 closes it.
  Command& OutTo(int descriptor) { return m_iOut = descriptor, *this; }
  Command& ErrTo(int descriptor) { return m_iErr = descriptor, *this; }

  // No file may grow beyond so many bytes: to the command that is a disk that runs full.
  Command& FileLimit(rlim_t bytes) { return m_iFileLimit = bytes, *this; }

  // It gets so much memory, its own code included. Not for sanitizers, which want it all.
  Command& MemoryLimit(rlim_t bytes) { return m_iMemoryLimit = bytes, *this; }

  // Takes away the right of root to write where nobody may.
  Command& WithoutOverride() { return m_bOverride = false, *this; }

  Command& Ignoring(int signal) { return m_iIgnored = signal, *this; }

  // Starts it in the folder. Whoever hangs for a minute is killed.
  Running Start() const {
    int input[2];
    EXPECT_EQ(pipe2(input, O_CLOEXEC), 0);
    auto const out = std::make_shared<Capture>();
    auto const err = std::make_shared<Ear>();
    pid_t const child = fork();
    if (child == 0) {
      dup2(input[0], STDIN_FILENO);
      Connect(m_iOut, out->Descriptor(), STDOUT_FILENO);
      Connect(m_iErr, err->Descriptor(), STDERR_FILENO);
      Restrict();
      Execute();
    }
    close(input[0]);
    return {child, input[1], out, err};
  }

  Ran Run() const {
    Running running = Start();
    signal(SIGPIPE, SIG_IGN);
    std::thread speaker([this, &running] {
      running.Say(m_Input);
      running.EndInput();
    });
    speaker.join();
    return running.Wait();
  }

 private:
  static constexpr int CAPTURED = -2;

  static void Connect(int chosen, int captured, int standard) {
    if (chosen == -1) {
      close(standard);
    } else {
      dup2(chosen == CAPTURED ? captured : chosen, standard);
    }
  }

  void Restrict() const {
    alarm(60);
    setenv("TSAN_OPTIONS", "atexit_sleep_ms=0", 0);  // otherwise each command takes a second longer
    // The leak check crashes now and then while threads of the software driver are ending.
    bool const draws =
        !m_Arguments.empty() && (m_Arguments[0] == "render" || m_Arguments[0] == "view");
    if (draws) setenv("ASAN_OPTIONS", "detect_leaks=0", 0);
    signal(SIGPIPE, SIG_DFL);
    if (m_iIgnored != 0) signal(m_iIgnored, SIG_IGN);
    if (m_iFileLimit != RLIM_INFINITY) {
      struct rlimit const limit{m_iFileLimit, m_iFileLimit};
      setrlimit(RLIMIT_FSIZE, &limit);
    }
    if (m_iMemoryLimit != RLIM_INFINITY) {
      struct rlimit const limit{m_iMemoryLimit, m_iMemoryLimit};
      setrlimit(RLIMIT_AS, &limit);
    }
    constexpr int CAP_DAC_OVERRIDE = 1;
    if (!m_bOverride) prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
    std::filesystem::current_path(m_Folder.Path());
  }

  [[noreturn]] void Execute() const {
    std::vector<std::string> words = m_Arguments;
    words.insert(words.begin(), QELTIN_COMMAND);
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    execv(QELTIN_COMMAND, pointers.data());
    _exit(127);
  }

  qeltin::testing::TemporaryFolder const& m_Folder;
  std::vector<std::string> m_Arguments;
  std::string m_Input;
  int m_iOut = CAPTURED;
  int m_iErr = CAPTURED;
  rlim_t m_iFileLimit = RLIM_INFINITY;
  rlim_t m_iMemoryLimit = RLIM_INFINITY;
  bool m_bOverride = true;
  int m_iIgnored = 0;
};

// A test with a folder of its own, in which the command runs.
class CommandTest : public ::testing::Test {
 protected:
  Command Qeltin(std::vector<std::string> arguments) const {
    return {m_Folder, std::move(arguments)};
  }

  Ran Run(std::vector<std::string> arguments) const { return Qeltin(std::move(arguments)).Run(); }

  // Runs what must succeed.
  Ran MustRun(std::vector<std::string> arguments) const {
    Ran ran = Run(std::move(arguments));
    EXPECT_EQ(ran.status, 0) << ran.err;
    return ran;
  }

  // Puts the surface of `points` as s.tin and returns that name.
  std::string PutSurvey(std::vector<TPoint> const& points) const {
    std::string text;
    for (TPoint const& p : points) {
      char line[120];
      std::snprintf(line, sizeof line, "%.17g %.17g %.17g\n", p.x, p.y, p.z);
      text += line;
    }
    m_Folder.Put("s.xyz", text);
    MustRun({"build", "s.xyz", "-o", "s.tin", "-q", "--overwrite"});
    return "s.tin";
  }

  // Expects status 1 and exactly this line.
  static void ExpectError(Ran const& ran, std::string const& line) {
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.err, "qeltin: error: " + line + "\n");
  }

  qeltin::testing::TemporaryFolder m_Folder;
};

}  // namespace qeltin::cli::testing
