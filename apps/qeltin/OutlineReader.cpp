#include "apps/qeltin/OutlineReader.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <filesystem>
#include <string_view>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/FileName.h"
#include "apps/qeltin/Outline.h"
#include "apps/qeltin/PlaceReader.h"

namespace qeltin::cli {

namespace fs = std::filesystem;

namespace {

using Places = std::vector<TPoint>;

constexpr char PART_MARK = '>';

bool HasTextName(std::string const& file) {
  std::string const ending = EndingOf(file);
  return ending == ".txt" || ending == ".xy" || ending == ".xyz";
}

// Returns true iff the first line that is not blank could stand in a plain text.
bool StartsLikeText(std::string const& file) {
  LineReader lines(file);
  std::string_view line;
  try {
    do {
      if (!NextTrimmed(lines, line)) return false;
    } while (line.empty());
  } catch (Failure const&) {
    return false;  // a line without end
  }
  Place place;
  return line.starts_with(PART_MARK) || ParsePlace(line, place);
}

bool IsPlainText(std::string const& file) {
  if (file == "-") return true;
  std::error_code error;
  fs::file_status const status = fs::status(file, error);
  if (!fs::exists(status)) throw Failure(file, SystemReason(error ? error.value() : ENOENT));
  if (fs::is_directory(status)) return false;
  return !fs::is_regular_file(status) || HasTextName(file) || StartsLikeText(file);
}

std::vector<Outline> ReadText(std::string const& file) {
  std::vector<Outline> outlines;
  LineReader lines(file);
  std::string_view line;
  bool inside = false;
  while (NextTrimmed(lines, line)) {
    Place place;
    if (line.empty() || line.starts_with(PART_MARK)) {
      inside = false;
      continue;
    }
    if (!ParsePlace(line, place)) {
      throw Failure(lines.Name(), lines.Line(), Quoted(line) + " does not start with x and y");
    }
    if (!inside) outlines.push_back({"line " + std::to_string(lines.Line()), {Places()}});
    inside = true;
    outlines.back().parts.front().push_back({place.x, place.y, 0.0});
  }
  return outlines;
}

bool IsSensible(TPoint const& p) {
  constexpr double LARGEST = 1e100;  // as for the points of a surface
  return std::fabs(p.x) < LARGEST && std::fabs(p.y) < LARGEST;
}

std::vector<Outline> ReadOutlines(std::string const& file) {
  std::vector<Outline> outlines = IsPlainText(file) ? ReadText(file) : ReadVectorFile(file);
  if (outlines.empty()) throw Failure(file, "holds no lines and no polygons");
  for (Outline& outline : outlines) {
    for (Places& part : outline.parts) {
      if (!std::all_of(part.begin(), part.end(), IsSensible)) {
        throw Failure(file, outline.where + ": a coordinate is not a number, or beyond 1e100");
      }
      for (TPoint& p : part) {
        if (!std::isfinite(p.z)) p.z = 0.0;
      }
    }
  }
  return outlines;
}

bool AtSamePlace(TPoint const& a, TPoint const& b) { return a.x == b.x && a.y == b.y; }

// Returns true iff there are at least `count` distinct places, of which 2 or 3 can be asked.
bool HasDistinct(Places const& places, int count) {
  if (places.empty()) return false;
  auto const differs = [&places](TPoint const& p) { return !AtSamePlace(p, places.front()); };
  auto const second = std::find_if(places.begin(), places.end(), differs);
  if (second == places.end() || count == 2) return second != places.end();
  return std::any_of(second, places.end(), [&second, &differs](TPoint const& p) {
    return differs(p) && !AtSamePlace(p, *second);
  });
}

void Close(Places& ring) {
  if (!AtSamePlace(ring.front(), ring.back())) ring.push_back(ring.front());
}

// Appends a closed ring by a bridge from the first vertex of `outer`, and comes back there.
void AppendHole(Places& outer, Places const& hole) {
  TPoint const gate = outer.front();
  TPoint const corner{hole.front().x, gate.y, gate.z};
  outer.push_back(corner);
  outer.insert(outer.end(), hole.begin(), hole.end());
  outer.push_back(corner);
  outer.push_back(gate);
}

}  // namespace

std::vector<TPolygon> ReadLines(std::string const& file) {
  std::vector<TPolygon> lines;
  for (Outline const& outline : ReadOutlines(file)) {
    for (Places const& part : outline.parts) {
      if (!HasDistinct(part, 2)) {
        throw Failure(file, outline.where + ": a line needs two distinct places");
      }
      lines.emplace_back(part);
    }
  }
  return lines;
}

std::vector<TPolygon> ReadPolygons(std::string const& file) {
  std::vector<TPolygon> polygons;
  for (Outline& outline : ReadOutlines(file)) {
    Places& ring = outline.parts.front();
    if (!HasDistinct(ring, 3)) {
      throw Failure(file, outline.where + ": a polygon needs three distinct places");
    }
    Close(ring);
    for (std::size_t i = 1; i < outline.parts.size(); ++i) {
      if (!HasDistinct(outline.parts[i], 3)) continue;
      Close(outline.parts[i]);
      AppendHole(ring, outline.parts[i]);
    }
    polygons.emplace_back(ring);
  }
  return polygons;
}

}  // namespace qeltin::cli
