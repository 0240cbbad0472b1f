#include "testing/MakeFigure.h"

#include <algorithm>
#include <cmath>
#include <ostream>

namespace qeltin::testing {

namespace {

constexpr double TWO_PI = 6.283185307179586;
constexpr double EXTENT = 300.0;

std::vector<TPoint> Star(int count, Dice& dice) {
  std::vector<TPoint> figure;
  for (int i = 0; i < count; ++i) {
    double const angle = TWO_PI * i / count;
    double const radius = EXTENT * dice.Between(0.3, 1.0);
    figure.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
  }
  return figure;
}

std::vector<TPoint> Comb(int count) {
  std::vector<TPoint> figure;
  for (int i = 0; i + 2 < count; ++i) figure.emplace_back(i, i % 2 == 0 ? 0.0 : 200.0);
  figure.emplace_back(count, -10.0);
  figure.emplace_back(-3.0, -10.0);
  figure.resize(count);
  return figure;
}

std::vector<TPoint> Tilted(std::vector<TPoint> figure) {
  for (TPoint& v : figure) v = TPoint(0.8 * v.x - 0.6 * v.y, 0.6 * v.x + 0.8 * v.y);
  return figure;
}

// Out along the turns and back a little beside.
std::vector<TPoint> Corridor(int count, int cornersATurn) {
  std::vector<TPoint> figure;
  int const out = (count + 1) / 2;
  auto const add = [&](int step, double width) {
    double const radius = 2.0 + width + static_cast<double>(step) / cornersATurn;
    double const angle = TWO_PI * (step + 0.5) / cornersATurn;
    figure.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
  };
  for (int i = 0; i < out; ++i) add(i, 0.0);
  for (int i = count - out; i-- > 0;) add(i, 0.4);
  return figure;
}

std::vector<TPoint> AtRandom(int count, int places, double step, Dice& dice) {
  std::vector<TPoint> choice;
  for (int i = 0; i < places; ++i) {
    double const x = dice.Between(-EXTENT, EXTENT);
    double const y = dice.Between(-EXTENT, EXTENT);
    choice.emplace_back(step > 0.0 ? std::floor(x / step) : x,
                        step > 0.0 ? std::floor(y / step) : y);
  }
  if (places == count) return choice;
  std::vector<TPoint> figure;
  for (int i = 0; i < count; ++i) figure.push_back(choice[dice.Below(places)]);
  return figure;
}

std::vector<TPoint> OnALine(int count, Dice& dice) {
  std::vector<TPoint> figure;
  for (int i = 0; i < count; ++i) {
    double const t = dice.Below(3 * count);
    figure.emplace_back(t, t * 0.3);
  }
  return figure;
}

std::vector<TPoint> Make(Figure figure, int count, Dice& dice) {
  switch (figure) {
    case Figure::Simple:
      return Star(count, dice);
    case Figure::Comb:
      return Comb(count);
    case Figure::Spiral:
      return Corridor(count, 60);
    case Figure::SquareSpiral:
      return Corridor(count, 4);
    case Figure::SelfCrossing:
      return AtRandom(count, count, 0.0, dice);
    case Figure::Repeated:
      return AtRandom(count, std::max(2, count / 3), 0.0, dice);
    case Figure::Grid:
      return AtRandom(count, count, 60.0, dice);
    case Figure::Collinear:
      return OnALine(count, dice);
    case Figure::Tilted:
      return Tilted(Comb(count));
  }
  return {};
}

}  // namespace

char const* NameOf(Figure figure) {
  switch (figure) {
    case Figure::Simple:
      return "Simple";
    case Figure::Comb:
      return "Comb";
    case Figure::Spiral:
      return "Spiral";
    case Figure::SquareSpiral:
      return "SquareSpiral";
    case Figure::SelfCrossing:
      return "SelfCrossing";
    case Figure::Repeated:
      return "Repeated";
    case Figure::Grid:
      return "Grid";
    case Figure::Collinear:
      return "Collinear";
    case Figure::Tilted:
      return "Tilted";
  }
  return "";
}

std::ostream& operator<<(std::ostream& out, Figure figure) { return out << NameOf(figure); }

std::vector<TPoint> MakeFigure(Figure figure, int count, std::uint64_t seed, Frame const& frame) {
  Dice dice(seed);
  std::vector<TPoint> vertices = Make(figure, count, dice);
  int height = 0;
  for (TPoint& v : vertices) {
    v = TPoint(v.x + frame.east, v.y + frame.north, figure == Figure::Repeated ? 0.0 : height++);
  }
  if (dice.OneIn(2)) std::reverse(vertices.begin(), vertices.end());
  return vertices;
}

TPoint PlaceAbout(std::vector<TPoint> const& figure, Dice& dice) {
  int const n = static_cast<int>(figure.size());
  int const first = dice.Below(n);
  TPoint const& a = figure[first];
  TPoint const& b = figure[dice.Below(n)];
  TPoint const& next = figure[(first + 1) % n];
  auto const beside = [&](double v) { return v * (1.0 + 2.3e-16 * (dice.Below(5) - 2)); };
  switch (dice.Below(7)) {
    case 0:
      return {a.x, b.y};
    case 1:
      return {a.x + dice.Unit() * (b.x - a.x), a.y};
    case 2:
      return {beside(a.x), beside(a.y)};
    case 3:
      return {(a.x + next.x) / 2, (a.y + next.y) / 2};
    case 4:
      return {(a.x + b.x) / 2, (a.y + b.y) / 2};
    default:
      return {a.x + dice.Between(-0.6, 0.6) * (b.x - a.x),
              b.y + dice.Between(-0.6, 0.6) * (a.y - b.y)};
  }
}

}  // namespace qeltin::testing
