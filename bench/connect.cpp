// Joins fragments of lines of one level that meet end to end.
//   connect  SIZE fragments of two points: shuffled chains of a thousand each
#include <algorithm>
#include <random>

#include "bench/Measurement.h"
#include "bench/SurveyInput.h"
#include "qeltin/contour/ContourCreator.h"

using namespace qeltin::bench;

namespace {

class Joiner : public ContourCreator {
 public:
  explicit Joiner(std::vector<Contour> const& parts) {
    m_Contours.assign(parts.begin(), parts.end());
  }
  [[gnu::noinline]] void Join() { ConnectContours(); }
  std::size_t Lines() const { return m_Contours.size(); }

  int AddLevel(double, ContourList&, std::atomic<bool> const&) override { return 0; }
  int AddLevels(std::vector<double> const&, ContourList&, std::atomic<bool> const&) override {
    return 0;
  }
};

std::vector<Contour> MakeChains(int fragments) {
  constexpr int CHAIN = 1000;
  std::mt19937_64 random(1);
  std::vector<Contour> parts;
  for (int i = 0; i < fragments; ++i) {
    double const row = 10.0 * (i / CHAIN);
    double const column = i % CHAIN;
    Contour part(1.0);
    part.Line().AddBack({column, row});
    part.Line().AddBack({column + 1.0, row});
    if (random() % 2 == 0) part.Reverse();
    parts.push_back(part);
  }
  std::shuffle(parts.begin(), parts.end(), random);
  return parts;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"connect"});
  if (task.input != "chains") Reject("input " + task.input);
  Joiner joiner(MakeChains(task.size));
  Measurement measurement;
  measurement.Start();
  joiner.Join();
  measurement.Stop();
  measurement.AddFact("lines", static_cast<double>(joiner.Lines()));
  measurement.Report(task);
}
