#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace qeltin::bench {

// What one run of a benchmark program does: PROGRAM WORK INPUT SIZE.
struct Task {
  std::string work;
  std::string input;
  int size;
};

// Ends the program with status 2 and a line on what is wrong where the arguments do not name a task
// with one of these works.
Task ParseTask(int argc, char** argv, std::initializer_list<char const*> works);

// Ends the program with status 2: `what`, say "input x", has no meaning here.
[[noreturn]] void Reject(std::string const& what);

// Time and memory of one piece of work.
//
// The memory counted is the largest resident size after construction less the one at construction:
// so make the input first, then this.
class Measurement {
 public:
  Measurement();

  void Start();
  void Stop();

  // A number about the result that the other side's program reports too: a benchmark whose two
  // sides did different work says nothing.
  void AddFact(std::string name, double value) { m_Facts.emplace_back(std::move(name), value); }

  // Writes one JSON object to standard output.
  void Report(Task const& task) const;

 private:
  std::int64_t m_iBaseBytes;
  double m_dWall = 0.0;  // seconds; less the time of the clock's start while it runs
  double m_dCpu = 0.0;   // seconds of this process, user and system, in the same way
  std::vector<std::pair<std::string, double>> m_Facts;
};

}  // namespace qeltin::bench
