#include <algorithm>
#include <utility>

#include "apps/qeltin/BlockReader.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Memory.h"
#include "apps/qeltin/Mesh.h"

namespace qeltin::cli {

namespace {

constexpr std::uint64_t BOXES = 16;  // where they stand
constexpr std::size_t POINT = 24;
constexpr std::size_t TRIANGLE = 26;
constexpr std::size_t TRIANGLE_SLOT = 80;

TPoint PointAt(unsigned char const* bytes) {
  return {LittleEndian<double>(bytes), LittleEndian<double>(bytes + 8),
          LittleEndian<double>(bytes + 16)};
}

// From what a file calls an element to its position.
class References {
 public:
  void Add(std::uint64_t called, std::int32_t position) {
    m_Entries.emplace_back(called, position);
  }

  // Returns the positions of those that are called as an earlier one is.
  std::vector<std::int32_t> Sort() {
    std::sort(m_Entries.begin(), m_Entries.end());
    std::vector<std::int32_t> again;
    for (std::size_t i = 1; i < m_Entries.size(); ++i) {
      if (m_Entries[i].first == m_Entries[i - 1].first) again.push_back(m_Entries[i].second);
    }
    std::sort(again.begin(), again.end());
    return again;
  }

  // Returns the earliest position, or `otherwise`.
  std::int32_t Find(std::uint64_t called, std::int32_t otherwise) const {
    auto const at = std::lower_bound(m_Entries.begin(), m_Entries.end(),
                                     std::pair<std::uint64_t, std::int32_t>(called, 0));
    return at != m_Entries.end() && at->first == called ? at->second : otherwise;
  }

 private:
  std::vector<std::pair<std::uint64_t, std::int32_t>> m_Entries;
};

class NativeReader {
 public:
  NativeReader(std::string const& name, int version)
      : m_Name(name), m_File(name), m_iVersion(version) {}

  Mesh Read() {
    ReadBoxes();
    if (m_iVersion == 0) {
      ReadPools();
    } else if (m_iVersion == 3) {
      ReadOrdinals();
    } else {
      ReadKeyed();
    }
    m_Mesh.excess = m_File.Size() - m_File.Position();
    return std::move(m_Mesh);
  }

 private:
  using Triple = std::array<std::uint64_t, 3>;

  void ReadBoxes() {
    m_File.Seek(BOXES);
    TPoint corners[4];
    for (TPoint& corner : corners) {
      if (unsigned char const* const bytes = m_File.Next(POINT)) corner = PointAt(bytes);
    }
    bool const reversed = m_iVersion == 0;
    m_Mesh.bounds = {corners[reversed ? 1 : 0], corners[reversed ? 0 : 1]};
    m_Mesh.world_bounds = {corners[reversed ? 3 : 2], corners[reversed ? 2 : 3]};
  }

  std::int32_t Count() {
    unsigned char const* const bytes = m_File.Next(4);
    if (bytes == nullptr) {
      m_Mesh.cut_short.emplace_back("a count");
      return 0;
    }
    auto const count = LittleEndian<std::int32_t>(bytes);
    if (count < 0) throw Failure(m_Name, "is damaged: a count below 0");
    return count;
  }

  // Returns how many records of a table the file can have from here on.
  std::size_t Records(std::int32_t count, std::size_t record) const {
    std::uint64_t const left = m_File.Size() - std::min(m_File.Size(), m_File.Position());
    return std::min<std::size_t>(static_cast<std::size_t>(count), left / record);
  }

  // Hands `count` records of a table to `take`; tells where the table ends early.
  template <typename Take>
  void ReadTable(char const* table, std::int32_t count, std::size_t record, Take const& take) {
    for (std::int32_t i = 0; i < count; ++i) {
      unsigned char const* const bytes = m_File.Next(record);
      if (bytes == nullptr) {
        m_Mesh.cut_short.push_back(std::string(table) + ' ' + std::to_string(i) + " of " +
                                   std::to_string(count));
        return;
      }
      take(i, bytes);
    }
  }

  static std::int32_t Within(std::int32_t position, std::int32_t count) {
    return position >= 0 && position < count ? position : MeshTriangle::NOWHERE;
  }

  void ReadOrdinals() {
    std::int32_t const points = Count();
    m_Mesh.point_count = points;
    ReserveTable(m_Mesh.points, Records(points, POINT));
    ReadTable("point", points, POINT, [this](std::int32_t, unsigned char const* bytes) {
      m_Mesh.points.push_back(PointAt(bytes));
    });
    std::int32_t const triangles = Count();
    m_Mesh.triangle_count = triangles;
    ReserveTable(m_Mesh.triangles, Records(triangles, TRIANGLE));
    ReadTable("triangle", triangles, TRIANGLE, [&](std::int32_t, unsigned char const* bytes) {
      MeshTriangle t;
      for (std::size_t k = 0; k < 3; ++k) {
        t.corners[k] = Within(LittleEndian<std::int32_t>(bytes + 4 * k), points);
        auto const neighbour = LittleEndian<std::int32_t>(bytes + 12 + 4 * k);
        if (neighbour != -1) t.neighbours[k] = Within(neighbour, triangles);
      }
      t.flags = bytes[24];
      m_Mesh.triangles.push_back(t);
    });
  }

  // Versions 1 and 2.
  void ReadKeyed() {
    References points;
    m_Mesh.point_count = Count();
    ReadTable("point", static_cast<std::int32_t>(m_Mesh.point_count), 4 + POINT,
              [&](std::int32_t i, unsigned char const* bytes) {
                points.Add(LittleEndian<std::uint32_t>(bytes), i);
                m_Mesh.points.push_back(PointAt(bytes + 4));
              });
    m_Mesh.bad_points = points.Sort();

    References triangles;
    std::vector<Triple> neighbours;
    bool const flags = m_iVersion == 2;
    m_Mesh.triangle_count = Count();
    ReadTable("triangle", static_cast<std::int32_t>(m_Mesh.triangle_count), flags ? 54 : 52,
              [&](std::int32_t i, unsigned char const* bytes) {
                MeshTriangle t;
                Triple keys;
                for (std::size_t k = 0; k < 3; ++k) {
                  auto const corner = LittleEndian<std::uint64_t>(bytes + 4 + 8 * k);
                  t.corners[k] = points.Find(corner, MeshTriangle::NOWHERE);
                  keys[k] = LittleEndian<std::uint64_t>(bytes + 28 + 8 * k);
                }
                if (flags) t.flags = bytes[52];
                triangles.Add(LittleEndian<std::uint32_t>(bytes), i);
                neighbours.push_back(keys);
                m_Mesh.triangles.push_back(t);
              });
    m_Mesh.bad_triangles = triangles.Sort();
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      for (std::size_t k = 0; k < 3; ++k) {
        std::uint64_t const key = neighbours[i][k];
        m_Mesh.triangles[i].neighbours[k] =
            triangles.Find(key, key == 0 ? MeshTriangle::NONE : MeshTriangle::NOWHERE);
      }
    }
  }

  // Reads an index table behind its slots. Returns, by slot, the position of the live element
  // there, and notes the live positions that have no slot or one that is taken.
  std::vector<std::int32_t> ReadIndex(char const* table, std::int32_t capacity, std::size_t slots,
                                      std::int32_t live, std::vector<std::int32_t>& live_slots,
                                      std::vector<std::int32_t>& bad) {
    std::vector<std::int32_t> positions(slots, MeshTriangle::NOWHERE);
    ReadTable(table, capacity, 4, [&](std::int32_t i, unsigned char const* bytes) {
      if (i >= live) return;
      auto const slot = LittleEndian<std::int32_t>(bytes);
      bool const sound = slot >= 0 && static_cast<std::size_t>(slot) < slots &&
                         positions[static_cast<std::size_t>(slot)] == MeshTriangle::NOWHERE;
      live_slots.push_back(sound ? slot : -1);
      if (sound) positions[static_cast<std::size_t>(slot)] = i;
      if (!sound) bad.push_back(i);
    });
    return positions;
  }

  // Returns the position of what stands at `address`, by the rule of 32-bit differences.
  static std::int32_t Resolve(std::uint64_t address, std::uint32_t base, std::size_t slot_size,
                              std::vector<std::int32_t> const& positions) {
    std::uint32_t const offset = static_cast<std::uint32_t>(address) - base;
    std::size_t const slot = offset / slot_size;
    bool const sound = offset % slot_size == 0 && slot < positions.size();
    return sound ? positions[slot] : MeshTriangle::NOWHERE;
  }

  // Version 0.
  void ReadPools() {
    std::int32_t const live_points = Count();
    std::int32_t const point_capacity = Count();
    CheckCapacity(live_points, point_capacity);
    std::vector<TPoint> slots;
    ReadTable("point slot", point_capacity, POINT,
              [&](std::int32_t, unsigned char const* bytes) { slots.push_back(PointAt(bytes)); });
    std::vector<std::int32_t> live_slots;
    std::vector<std::int32_t> const points =
        ReadIndex("entry of the point index", point_capacity, slots.size(), live_points, live_slots,
                  m_Mesh.bad_points);
    m_Mesh.point_count = live_points;
    for (std::int32_t const slot : live_slots) {
      m_Mesh.points.push_back(slot < 0 ? TPoint() : slots[static_cast<std::size_t>(slot)]);
    }
    auto const point_base = m_File.Number<std::uint32_t>(0);
    auto const triangle_base = m_File.Number<std::uint32_t>(0);
    ReadTrianglePool(points, point_base, triangle_base);
  }

  void ReadTrianglePool(std::vector<std::int32_t> const& points, std::uint32_t point_base,
                        std::uint32_t triangle_base) {
    std::int32_t const live = Count();
    std::int32_t const capacity = Count();
    CheckCapacity(live, capacity);
    std::vector<MeshTriangle> slots;
    std::vector<Triple> addresses;
    std::vector<StoredCircle> circles;
    ReadTable("triangle slot", capacity, TRIANGLE_SLOT,
              [&](std::int32_t, unsigned char const* bytes) {
                MeshTriangle t;
                Triple neighbours;
                for (std::size_t k = 0; k < 3; ++k) {
                  auto const corner = LittleEndian<std::uint64_t>(bytes + 8 * k);
                  t.corners[k] = Resolve(corner, point_base, POINT, points);
                  neighbours[k] = LittleEndian<std::uint64_t>(bytes + 24 + 8 * k);
                }
                t.flags = bytes[48];
                slots.push_back(t);
                addresses.push_back(neighbours);
                TPoint const circle = PointAt(bytes + 56);
                circles.push_back({circle.x, circle.y, circle.z});
              });
    std::vector<std::int32_t> live_slots;
    std::vector<std::int32_t> const triangles =
        ReadIndex("entry of the triangle index", capacity, slots.size(), live, live_slots,
                  m_Mesh.bad_triangles);
    m_Mesh.triangle_count = live;
    for (std::int32_t const live_slot : live_slots) {
      auto const slot = static_cast<std::size_t>(live_slot);
      MeshTriangle t = live_slot < 0 ? MeshTriangle() : slots[slot];
      for (std::size_t k = 0; k < 3 && live_slot >= 0; ++k) {
        std::uint64_t const address = addresses[slot][k];
        if (address == 0) continue;
        t.neighbours[k] = Resolve(address, triangle_base, TRIANGLE_SLOT, triangles);
      }
      m_Mesh.triangles.push_back(t);
      m_Mesh.circles.push_back(live_slot < 0 ? StoredCircle() : circles[slot]);
    }
  }

  void CheckCapacity(std::int32_t live, std::int32_t capacity) const {
    if (live > capacity && m_Mesh.cut_short.empty())
      throw Failure(m_Name, "is damaged: a count above the capacity");
  }

  std::string m_Name;
  BlockReader m_File;
  int m_iVersion;
  Mesh m_Mesh;
};

}  // namespace

Mesh ReadNativeMesh(std::string const& name, int version) {
  return NativeReader(name, version).Read();
}

}  // namespace qeltin::cli
