#include "apps/qeltin/picture/DrapedLines.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "apps/qeltin/CrossSection.h"

namespace qeltin::cli {

namespace {

// A point of a line. Its height is not a number off the surface.
struct Station {
  double distance;  // from the start of the line, in plan
  TPoint place;
};

using Stations = std::vector<Station>;

bool IsKnown(Station const& station) { return !std::isnan(station.place.z); }

// The vertices of a line, as if it were off the surface.
Stations VerticesOf(TPolygon const& line) {
  constexpr double UNKNOWN = std::numeric_limits<double>::quiet_NaN();
  Stations stations;
  double distance = 0.0;
  for (int i = 0; i < line.GetSize(); ++i) {
    TPoint const& p = *line.Get(i);
    if (i > 0) distance += p.XY_Distance(*line.Get(i - 1));
    stations.push_back({distance, {p.x, p.y, UNKNOWN}});
  }
  return stations;
}

// Puts the pieces, which come in the order of the line, in place of the vertices that they cover.
Stations Replaced(Stations const& vertices, std::span<Piece const> pieces) {
  Stations stations;
  auto vertex = vertices.begin();
  for (Piece const& piece : pieces) {
    for (; vertex != vertices.end() && vertex->distance < piece.distances.front(); ++vertex) {
      stations.push_back(*vertex);
    }
    for (std::size_t i = 0; i < piece.points.size(); ++i) {
      stations.push_back({piece.distances[i], piece.points[i]});
    }
    while (vertex != vertices.end() && vertex->distance <= piece.distances.back()) ++vertex;
  }
  stations.insert(stations.end(), vertex, vertices.end());
  return stations;
}

double Between(Station const& a, Station const& b, double distance) {
  double const length = b.distance - a.distance;
  if (length <= 0.0) return a.place.z;
  return a.place.z + (b.place.z - a.place.z) * (distance - a.distance) / length;
}

// Gives heights to those without, from the known ones before and after each stretch of them.
void FillHeights(Stations& stations, double otherwise) {
  auto begin = std::find_if_not(stations.begin(), stations.end(), IsKnown);
  while (begin != stations.end()) {
    auto const end = std::find_if(begin, stations.end(), IsKnown);
    Station const* const before = begin == stations.begin() ? nullptr : &*(begin - 1);
    Station const* const after = end == stations.end() ? nullptr : &*end;
    for (auto it = begin; it != end; ++it) {
      if (before != nullptr && after != nullptr) {
        it->place.z = Between(*before, *after, it->distance);
      } else {
        Station const* const nearest = before != nullptr ? before : after;
        it->place.z = nearest != nullptr ? nearest->place.z : otherwise;
      }
    }
    begin = std::find_if_not(end, stations.end(), IsKnown);
  }
}

}  // namespace

TPolygon DrapeLines(TIN const& tin, std::vector<TPolygon> const& lines, double otherwise,
                    bool quiet) {
  std::vector<Piece> const pieces = CrossSections(tin, lines, quiet);
  std::vector<TPoint> pairs;
  std::size_t first = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::size_t end = first;
    while (end < pieces.size() && pieces[end].line == static_cast<int>(i)) ++end;
    Stations stations =
        Replaced(VerticesOf(lines[i]), std::span(pieces).subspan(first, end - first));
    first = end;
    FillHeights(stations, otherwise);
    for (std::size_t k = 1; k < stations.size(); ++k) {
      pairs.push_back(stations[k - 1].place);
      pairs.push_back(stations[k].place);
    }
  }
  return {pairs};
}

}  // namespace qeltin::cli
