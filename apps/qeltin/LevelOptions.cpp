#include "apps/qeltin/LevelOptions.h"

#include <cmath>
#include <set>
#include <utility>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace {

double NumberIn(std::string const& text) {
  double number = 0.0;
  ParseNumbers(text, &number, 1);
  return number;
}

}  // namespace

std::vector<double> HeightsOf(std::vector<Level> const& levels) {
  std::vector<double> heights;
  for (Level const& level : levels) heights.push_back(level.height);
  return heights;
}

std::optional<std::vector<Level>> LevelsInSteps(SurfaceFacts const& facts, double base,
                                                double interval) {
  constexpr double MOST = 1e6;
  constexpr double LARGEST_NUMBER = 9e15;  // whole numbers are exact up to here
  double const first = std::floor((facts.lowest - base) / interval);
  double const last = std::ceil((facts.highest - base) / interval);
  if (!(last - first < MOST) || !(std::fabs(first) < LARGEST_NUMBER)) return {};
  std::vector<Level> levels;
  for (auto k = static_cast<long long>(first); k <= static_cast<long long>(last); ++k) {
    double const height = base + static_cast<double>(k) * interval;
    bool const fresh = levels.empty() || height > levels.back().height;
    if (fresh && height >= facts.lowest && height <= facts.highest) levels.push_back({height, k});
  }
  return levels;
}

void LevelOptions::AddTo(CLI::App& command) {
  command.add_option("--level", m_Levels, "A height; may be given many times")
      ->expected(1)
      ->take_all()
      ->allow_extra_args(false)
      ->check(NumberList(1, "a number"))
      ->type_name("Z");
  command
      .add_option("--interval", m_Interval,
                  "The height from level to level, over the heights of\nthe surface")
      ->check(NumberList(1, "a number"))
      ->type_name("D");
  command
      .add_option("--base", m_Base, "The level that the interval is counted from; 0\nwithout it")
      ->check(NumberList(1, "a number"))
      ->type_name("B");
}

void LevelOptions::Check() const {
  if (m_Levels.empty() == m_Interval.empty()) {
    throw UsageFailure("give either --level Z or --interval D");
  }
  if (!m_Base.empty() && m_Interval.empty()) throw UsageFailure("--base needs --interval");
  if (!m_Interval.empty() && NumberIn(m_Interval) <= 0.0) {
    throw UsageFailure("--interval " + m_Interval + ": must be above 0");
  }
}

std::vector<Level> LevelOptions::LevelsOf(SurfaceFacts const& facts,
                                          std::string const& surface) const {
  if (m_Levels.empty()) {
    double const base = m_Base.empty() ? 0.0 : NumberIn(m_Base);
    std::optional<std::vector<Level>> levels = LevelsInSteps(facts, base, NumberIn(m_Interval));
    if (levels) return *std::move(levels);
    throw Failure(surface, "an interval of " + m_Interval + " gives more than a million levels");
  }
  std::set<double> heights;
  for (std::string const& text : m_Levels) heights.insert(NumberIn(text));
  std::vector<Level> levels;
  for (double const height : heights) {
    levels.push_back({height, static_cast<long long>(levels.size())});
  }
  return levels;
}

}  // namespace qeltin::cli
