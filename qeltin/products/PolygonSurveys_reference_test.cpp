#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "qeltin/products/ContainmentIndex.h"
#include "qeltin/products/EarTest.h"
#include "qeltin/products/SlantedRayIndex.h"
#include "testing/MakeFigure.h"
#include "testing/reference/StatedPolygon.h"

// Shorelines as surveys have them: each ring starts with a line `RING number points`, then x and y
// of one vertex a line.
namespace {

using namespace qeltin::testing;

constexpr std::size_t LARGEST_CUBIC = 400;

std::vector<std::vector<TPoint>> ReadRings(std::filesystem::path const& path) {
  std::vector<std::vector<TPoint>> rings;
  std::ifstream file(path);
  std::string word;
  int number;
  int count;
  while (file >> word >> number >> count && word == "RING") {
    std::vector<TPoint>& ring = rings.emplace_back(count);
    for (TPoint& v : ring) file >> v.x >> v.y;
  }
  return rings;
}

std::vector<std::vector<TPoint>> RingsOfSurveys(char const* folder) {
  std::vector<std::vector<TPoint>> rings;
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".txt") continue;
    for (auto& ring : ReadRings(entry.path())) rings.push_back(std::move(ring));
  }
  return rings;
}

std::vector<TPoint> EveryOther(std::vector<TPoint> ring) {
  for (std::size_t i = 0; 2 * i < ring.size(); ++i) ring[i] = ring[2 * i];
  ring.resize((ring.size() + 1) / 2);
  return ring;
}

void CompareTriangles(std::vector<TPoint> const& ring) {
  std::vector<TPoint> actual;
  std::vector<TPoint> expected;
  EXPECT_EQ(TPolygon(ring).Triangulate(actual), stated::Triangulate(ring, expected));
  EXPECT_TRUE(actual == expected);
}

void ComparePlaces(std::vector<TPoint> const& ring, Dice& dice) {
  qeltin::detail::ContainmentIndex const level{TPolygon(ring)};
  qeltin::detail::SlantedRayIndex const slanted(ring);
  for (int i = 0; i < 2000; ++i) {
    TPoint const p = PlaceAbout(ring, dice);
    ASSERT_EQ(level.Contains(p.x, p.y), stated::XY_Contains(ring, p.x, p.y));
    ASSERT_EQ(slanted.Contains(p), stated::PointInPolygon(ring, p));
  }
}

void CompareEars(std::vector<TPoint> const& ring) {
  qeltin::detail::EarTest const test(ring);
  std::size_t const n = ring.size();
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t const step : {1, 3}) {
      TPoint const& b = ring[(i + step) % n];
      TPoint const& c = ring[(i + 2 * step) % n];
      ASSERT_EQ(test.IsEar(ring[i], b, c), stated::IsEar(ring, ring[i], b, c)) << i << ' ' << step;
    }
  }
}

TEST(PolygonsOnSurveys, AreEqual) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  std::vector<std::vector<TPoint>> const rings = RingsOfSurveys(folder);
  ASSERT_FALSE(rings.empty());
  Dice dice(TestSeed());
  for (std::vector<TPoint> ring : rings) {
    SCOPED_TRACE(::testing::Message() << "ring of " << ring.size() << " vertices");
    ComparePlaces(ring, dice);
    CompareEars(ring);
    while (ring.size() > LARGEST_CUBIC) ring = EveryOther(ring);
    CompareTriangles(ring);
  }
}

}  // namespace
