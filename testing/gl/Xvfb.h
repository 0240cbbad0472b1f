#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

namespace qeltin::testing {

// An X server of its own for one test, without a screen: its picture is in memory. It ends with the
// object, and with the process.
class Xvfb {
 public:
  Xvfb() {
    int ends[2];
    if (pipe(ends) != 0) return;
    m_iChild = fork();
    if (m_iChild == 0) Execute(ends[1]);
    close(ends[1]);
    m_Display = ReadDisplay(ends[0]);
    close(ends[0]);
  }
  ~Xvfb() { Stop(); }
  Xvfb(Xvfb const&) = delete;
  Xvfb& operator=(Xvfb const&) = delete;

  // As ":1"; empty where there is no Xvfb.
  std::string const& Display() const { return m_Display; }

  // Runs the tool that plays the user, as "key q", and returns what it prints.
  std::string Xdotool(std::string const& arguments) const {
    std::string const command = "DISPLAY=" + m_Display + " xdotool " + arguments + " 2>&1";
    std::FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    std::array<char, 4096> block;
    while (std::size_t const got = std::fread(block.data(), 1, block.size(), pipe)) {
      text.append(block.data(), got);
    }
    pclose(pipe);
    return text;
  }

  void Stop() {
    if (m_iChild <= 0) return;
    kill(m_iChild, SIGTERM);
    waitpid(m_iChild, nullptr, 0);
    m_iChild = 0;
  }

 private:
  [[noreturn]] static void Execute(int answer) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    int const nothing = open("/dev/null", O_RDWR);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    std::string const number = std::to_string(answer);
    execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1280x1024x24",
           "-nolisten", "tcp", "-noreset", nullptr);
    _exit(127);
  }

  // Reads until the server, ready, has told a whole line with its number, or has gone.
  static std::string ReadDisplay(int descriptor) {
    constexpr int LIMIT_MS = 30'000;
    std::string number;
    pollfd input{descriptor, POLLIN, 0};
    char digit = 0;
    while (poll(&input, 1, LIMIT_MS) > 0 && read(descriptor, &digit, 1) == 1) {
      if (digit == '\n') return ":" + number;
      number += digit;
    }
    return {};
  }

  pid_t m_iChild = 0;
  std::string m_Display;
};

}  // namespace qeltin::testing
