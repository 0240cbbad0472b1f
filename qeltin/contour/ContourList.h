#pragma once

#include <deque>

#include "qeltin/contour/Contour.h"
#include "qeltin/platform/Export.h"

// Contours in ascending order of level. Indices count from 0 and are not checked.
//
// Threads: no lock, and copies share points with their source; keep both to one thread.
class QELTIN_API ContourList {
 public:
  ContourList() = default;
  ContourList(ContourList const& other) = default;
  ContourList(ContourList&& other) noexcept;  // leaves `other` empty
  ContourList& operator=(ContourList const& other) = default;
  ContourList& operator=(ContourList&& other) noexcept;
  ~ContourList() = default;

  // Inserts a contour before those of the same level.
  void Add(Contour const& contour);

  // Inserts all of `contours`, in their order, before those of the level of the first. The others
  // should be of that level too: they are not looked at.
  void Add(std::deque<Contour> const& contours);

  // Returns the index of the first contour at exactly `level` at or after index `start`, or -1.
  // Find(level, 0) and then Find(level, i + 1) visit the contours of a level.
  int Find(double level, int start) const;

  void Remove(int index);
  void Clear() { m_Contours.clear(); }

  Contour const& operator[](int index) const { return m_Contours[static_cast<std::size_t>(index)]; }
  int Size() const { return static_cast<int>(m_Contours.size()); }
  bool IsEmpty() const { return m_Contours.empty(); }

 private:
  std::deque<Contour> m_Contours;
};
