#include "bench/Measurement.h"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace qeltin::bench {

namespace {

double Now(clockid_t clock) {
  timespec t{};
  clock_gettime(clock, &t);
  return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

// Returns a field of /proc/self/status in bytes, -1 where there is none.
std::int64_t StatusBytes(char const* field) {
  std::FILE* const status = std::fopen("/proc/self/status", "r");
  if (status == nullptr) return -1;
  std::int64_t bytes = -1;
  char line[256];
  std::size_t const length = std::strlen(field);
  while (bytes < 0 && std::fgets(line, sizeof line, status) != nullptr) {
    if (std::strncmp(line, field, length) == 0 && line[length] == ':') {
      bytes = 1024 * std::strtoll(line + length + 1, nullptr, 10);
    }
  }
  std::fclose(status);
  return bytes;
}

void ForgetPeak() {
  std::FILE* const references = std::fopen("/proc/self/clear_refs", "w");
  if (references == nullptr) return;
  std::fputs("5", references);
  std::fclose(references);
}

}  // namespace

Task ParseTask(int argc, char** argv, std::initializer_list<char const*> works) {
  int const size = argc == 4 ? std::atoi(argv[3]) : 0;
  if (size < 1) {
    std::fprintf(stderr, "usage: %s WORK INPUT SIZE\n", argv[0]);
    std::exit(2);
  }
  Task const task{argv[1], argv[2], size};
  auto const is_it = [&](char const* work) { return task.work == work; };
  if (std::none_of(works.begin(), works.end(), is_it)) Reject("work " + task.work);
  return task;
}

void Reject(std::string const& what) {
  std::fprintf(stderr, "unknown: %s\n", what.c_str());
  std::exit(2);
}

Measurement::Measurement() {
  malloc_trim(0);
  ForgetPeak();
  m_iBaseBytes = StatusBytes("VmRSS");
}

void Measurement::Start() {
  m_dWall -= Now(CLOCK_MONOTONIC);
  m_dCpu -= Now(CLOCK_PROCESS_CPUTIME_ID);
}

void Measurement::Stop() {
  m_dCpu += Now(CLOCK_PROCESS_CPUTIME_ID);
  m_dWall += Now(CLOCK_MONOTONIC);
}

void Measurement::Report(Task const& task) const {
  std::printf("{\"work\": \"%s\", \"input\": \"%s\", \"size\": %d, ", task.work.c_str(),
              task.input.c_str(), task.size);
  std::printf("\"wall_s\": %.9f, \"cpu_s\": %.9f, \"peak_bytes\": %lld, \"facts\": {", m_dWall,
              m_dCpu, static_cast<long long>(StatusBytes("VmHWM") - m_iBaseBytes));
  char const* separator = "";
  for (auto const& [name, value] : m_Facts) {
    std::printf("%s\"%s\": %.17g", separator, name.c_str(), value);
    separator = ", ";
  }
  std::printf("}}\n");
}

}  // namespace qeltin::bench
