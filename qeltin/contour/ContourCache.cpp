#include "qeltin/contour/ContourCache.h"

#include <cstdint>

namespace {

constexpr double SMALLEST_LIMIT = 64.0 * 1024 * 1024;
constexpr double BYTES_A_POINT = 16.0;

template <typename T>
void Write(std::FILE* file, T const& value) {
  std::fwrite(&value, sizeof value, 1, file);
}

template <typename T>
bool Read(std::FILE* file, T& value) {
  return std::fread(&value, sizeof value, 1, file) == 1;
}

double BytesOf(std::FILE* file) {
  std::fseek(file, 0, SEEK_END);
  double const bytes = static_cast<double>(std::ftell(file));
  std::fseek(file, 0, SEEK_SET);
  return bytes;
}

// What is left of a longer list may read as any number of points. One that a file of this size
// cannot account for ends the reading.
bool IsCredible(std::int32_t points, double file_bytes) {
  double const bytes = BYTES_A_POINT * points;
  return bytes <= SMALLEST_LIMIT || bytes <= 64.0 * file_bytes;
}

}  // namespace

ContourCache& ContourCache::Get() {
  static ContourCache cache;
  return cache;
}

ContourCache::~ContourCache() { Clear(); }

bool ContourCache::Add(std::wstring const& key, ContourList const& list) {
  auto const known = m_Files.find(key);
  std::FILE* file = nullptr;
  if (known != m_Files.end()) {
    file = known->second;
    std::fseek(file, 0, SEEK_SET);  // not cut off: what a longer list left stays
  } else {
    file = std::tmpfile();
    if (file == nullptr) return false;
    m_Files.emplace(key, file);
  }
  for (int i = 0; i < list.Size(); ++i) {
    Contour const& contour = list[i];
    Write(file, contour.Level());
    Write(file, std::int32_t{contour.NumPoints()});
    for (int k = 0; k < contour.NumPoints(); ++k) {
      Write(file, contour[k].x);
      Write(file, contour[k].y);
    }
  }
  return true;
}

bool ContourCache::Get(std::wstring const& key, ContourList& list) {
  list.Clear();
  auto const known = m_Files.find(key);
  if (known == m_Files.end()) return false;
  std::FILE* const file = known->second;
  double const bytes = BytesOf(file);
  if (bytes == 0.0) return true;

  double level = 0.0;
  std::int32_t count = 0;
  do {
    // Results are not looked at: the pass after the last record repeats its level and count.
    Read(file, level);
    Read(file, count);
    if (!IsCredible(count, bytes)) break;
    double xy[2] = {0.0, 0.0};
    Contour contour(level);
    for (std::int32_t k = 0; k < count; ++k) {
      Read(file, xy);
      contour.Line().AddBack({xy[0], xy[1]});
    }
    list.Add(contour);
  } while (std::feof(file) == 0);
  return true;
}

void ContourCache::Clear(std::wstring const& key) {
  auto const known = m_Files.find(key);
  if (known == m_Files.end()) return;
  std::fclose(known->second);
  m_Files.erase(known);
}

void ContourCache::Clear() {
  for (auto const& [key, file] : m_Files) std::fclose(file);
  m_Files.clear();
}
