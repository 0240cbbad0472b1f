#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "qeltin/products/TGrid.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/TemporaryFolder.h"

// What the fuzz targets share: a file is loaded by its name, as a host does, and then used for what
// hosts use surfaces for. A sanitizer, the time limit or the memory limit of libFuzzer tells of a
// fault; so does Require.
namespace qeltin::fuzz {

inline void Require(bool holds, char const* what) {
  if (holds) return;
  std::fprintf(stderr, "fault: %s\n", what);
  std::abort();
}

// A folder in memory for the files of a target. Removed when the program ends.
inline testing::TemporaryFolder const& Folder() {
  static testing::TemporaryFolder const folder;
  return folder;
}

// A broken surface of a small file may still have a million triangles, so that all uses of it
// together take longer than an input may. The rest of them is left out once time is up; none of
// them may take long by itself.
class Budget {
 public:
  bool IsLeft() const { return std::chrono::steady_clock::now() - m_Start < LIMIT; }

 private:
  static constexpr std::chrono::milliseconds LIMIT{300};
  std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
};

class SurfaceUse {
 public:
  explicit SurfaceUse(TIN& tin) : m_Tin(tin) { tin.GetBounds(m_Min, m_Max); }

  void Run() {
    using Use = void (SurfaceUse::*)();
    static constexpr Use USES[] = {
        &SurfaceUse::Heights, &SurfaceUse::Isolines, &SurfaceUse::Grid,  &SurfaceUse::Profiles,
        &SurfaceUse::Save,    &SurfaceUse::Volume,   &SurfaceUse::Insert};
    Budget const budget;
    for (Use use : USES) {
      if (budget.IsLeft()) (this->*use)();
    }
  }

 private:
  static constexpr int LATTICE = 6;
  static constexpr int SAMPLES = 8;

  TPoint Place(int i, int j) const {
    return {m_Min.x + (m_Max.x - m_Min.x) * i / LATTICE,
            m_Min.y + (m_Max.y - m_Min.y) * j / LATTICE};
  }

  // Some of the points, among them the first.
  std::vector<TPoint> Samples() const {
    std::vector<TPoint> samples;
    int const count = m_Tin.GetNumberOfPoints();
    for (int i = 0; i < count; i += std::max(1, count / SAMPLES)) {
      samples.push_back(*m_Tin.GetPoint(i));
    }
    return samples;
  }

  void Heights() {
    Budget const budget;
    std::vector<TPoint> places = Samples();
    for (int i = 0; i <= LATTICE * LATTICE; ++i) {
      places.push_back(Place(i % LATTICE, i / LATTICE));
    }
    for (TPoint const& p : places) {
      double z = 0.0;
      if (m_Tin.GetZ(p, z, nullptr)) Require(m_Tin.InBounds(p), "a height outside the bounds");
      if (!budget.IsLeft()) return;
    }
  }

  void Isolines() {
    std::vector<double> levels = {0.0, (m_Min.z + m_Max.z) / 2};
    if (m_Tin.GetNumberOfPoints() > 0) levels.push_back(m_Tin.GetPoint(0)->z);
    for (double level : levels) {
      std::vector<TPolygon*> lines;
      int const count = m_Tin.GenerateIsoline(lines, level);
      Require(count == static_cast<int>(lines.size()), "the number of isolines");
      for (TPolygon* line : lines) delete line;
    }
  }

  void Grid() {
    std::unique_ptr<TGrid, void (*)(TGrid*)> const grid(CreateGrid(), ReleaseGrid);
    grid->Create(m_Tin, (m_Max.x - m_Min.x) / LATTICE, (m_Max.y - m_Min.y) / LATTICE);
    for (int i = 0; i < grid->GetNumberOfNodesX(); ++i) grid->GetNode(i, 0);
  }

  void Profiles() {
    std::vector<TPolygon> pieces;
    m_Tin.GenerateProfile(pieces, m_Min, m_Max);
    std::vector<TPoint> const samples = Samples();
    if (samples.size() > 1) m_Tin.GenerateProfile(pieces, samples.front(), samples.back());
  }

  void Save() {
    std::wstring const native = Folder().Wide("saved.tin");
    Require(m_Tin.Save(native.c_str()), "a save");
    TIN again;
    Require(again.Load(native.c_str()) == (m_Tin.GetNumberOfPoints() > 0), "what was saved");
    Require(again.GetNumberOfPoints() == m_Tin.GetNumberOfPoints(), "the number of points saved");
    Require(again.GetNumberOfTriangles() == m_Tin.GetNumberOfTriangles(), "that of triangles");
    Require(m_Tin.Save(Folder().Wide("saved.xyz").c_str()), "a save as text");
  }

  // Inserts points, too.
  void Volume() {
    if (m_Tin.GetNumberOfTriangles() == 0) return;
    TPolygon const boundary({Place(1, 1), Place(1, 5), Place(5, 4), Place(1, 1)});
    double below = 0.0;
    double above = 0.0;
    m_Tin.CalculateVolume(&boundary, &below, &above);
  }

  void Insert() {
    if (m_Tin.GetNumberOfTriangles() == 0) return;
    for (int i = 1; i < LATTICE; ++i) {
      TPoint p = Place(i, i);
      p.z = i;
      m_Tin.AddPoint(p);
    }
  }

  TIN& m_Tin;
  TPoint m_Min;
  TPoint m_Max;
};

// Returns the number at `offset`, or 0 past the end.
template <typename T>
T NumberAt(std::string const& bytes, long long offset) {
  T value = 0;
  auto const at = static_cast<std::size_t>(offset);
  if (at < bytes.size() && bytes.size() - at >= sizeof value) {
    std::memcpy(&value, bytes.data() + at, sizeof value);
  }
  return value;
}

// A small file may stand for a surface of a million elements, each the same, which takes a thousand
// times as long as a small one. Returns true for most files that state so many of something.
inline bool IsTooLarge(std::string const& bytes, long long elements) {
  constexpr long long LARGE = 20'000;
  constexpr long long REFUSED = 4'000'000;
  if (elements < LARGE || elements > REFUSED) return false;
  return std::hash<std::string>()(bytes) % 64 != 0;
}

// Loads the bytes from a file of that name, and uses the surface. Returns 0, as libFuzzer asks.
inline int LoadAndUse(std::string const& name, std::string const& bytes) {
  Folder().Put(name, bytes);
  TIN tin;
  bool const loaded = tin.Load(Folder().Wide(name).c_str());
  Require(loaded || tin.GetNumberOfPoints() == 0, "the result of the load");
  SurfaceUse(tin).Run();
  return 0;
}

}  // namespace qeltin::fuzz
