#include "testing/NativeFileWriter.h"

#include <map>

namespace qeltin::testing {

namespace {

constexpr std::uint64_t POINT_SLOT = 24;
constexpr std::uint64_t TRIANGLE_SLOT = 80;

class Bytes {
 public:
  explicit Bytes(std::int32_t version) : m_Bytes("QEL2000 TIN", 12) { Put(version); }

  template <typename T>
  void Put(T value) {
    m_Bytes.append(reinterpret_cast<char const*>(&value), sizeof value);
  }
  void Put(TPoint const& p) {
    Put(p.x);
    Put(p.y);
    Put(p.z);
  }
  void PutBoxes(NativeModel const& m) {
    for (TPoint const& corner : {m.min, m.max, m.worldMin, m.worldMax}) Put(corner);
  }
  template <typename List>
  void PutSize(List const& list) {
    Put(static_cast<std::int32_t>(list.size()));
  }
  std::string Take() { return std::move(m_Bytes); }

 private:
  std::string m_Bytes;
};

std::string Keyed(int version, NativeModel const& model, NativeKeys const& keys) {
  Bytes out(version);
  out.PutBoxes(model);
  out.PutSize(model.points);
  for (std::size_t i = 0; i < model.points.size(); ++i) {
    out.Put(keys.Point(i));
    out.Put(model.points[i]);
  }
  out.PutSize(model.triangles);
  for (std::size_t i = 0; i < model.triangles.size(); ++i) {
    NativeTriangle const& t = model.triangles[i];
    out.Put(keys.Triangle(i));
    for (std::int32_t c : t.corners) {
      out.Put(std::uint64_t{keys.Point(static_cast<std::size_t>(c))});
    }
    for (std::int32_t a : t.adjacent) {
      out.Put(std::uint64_t{a == -1 ? 0 : keys.Triangle(static_cast<std::size_t>(a))});
    }
    if (version == 2) {
      out.Put(t.flags);
      out.Put(t.reserved);
    }
  }
  return out.Take();
}

// Returns, for each slot, which live element stands there, or -1.
std::vector<std::int32_t> Residents(std::vector<std::int32_t> const& index, std::size_t live) {
  std::vector<std::int32_t> residents(index.size(), -1);
  for (std::size_t i = 0; i < live; ++i) {
    auto const slot = static_cast<std::size_t>(index[i]);
    if (slot < residents.size()) residents[slot] = static_cast<std::int32_t>(i);
  }
  return residents;
}

// Returns the slot of live element i; without one, the slot before the first.
std::uint64_t SlotOf(std::vector<std::int32_t> const& index, std::int32_t i) {
  auto const position = static_cast<std::size_t>(i);
  return static_cast<std::uint64_t>(position < index.size() ? index[position] : -1);
}

void PutTriangleSlot(Bytes& out, NativeTriangle const& t, NativePools const& pools) {
  for (std::int32_t c : t.corners) {
    out.Put(pools.pointAddress + POINT_SLOT * SlotOf(pools.pointIndex, c));
  }
  for (std::int32_t a : t.adjacent) {
    std::uint64_t const slot = SlotOf(pools.triangleIndex, a);
    out.Put(a == -1 ? 0 : pools.triangleAddress + TRIANGLE_SLOT * slot);
  }
  out.Put(t.flags);
  out.Put(t.reserved);
  for (int i = 0; i < 6; ++i) out.Put('\xCC');
  for (double const value : t.circle) out.Put(value);
}

template <typename T>
std::int32_t PositionOf(std::map<T const*, std::int32_t> const& positions, T const* element) {
  auto const at = positions.find(element);
  return at == positions.end() ? -1 : at->second;
}

}  // namespace

NativeModel ModelOf(TIN const& tin) {
  NativeModel model;
  tin.GetBounds(model.min, model.max);
  tin.GetWorldBounds(model.worldMin, model.worldMax);
  std::map<TPoint const*, std::int32_t> points;
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    points[tin.GetPoint(i)] = i;
    model.points.push_back(*tin.GetPoint(i));
  }
  std::map<TTriangle const*, std::int32_t> triangles;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) triangles[tin.GetTriangle(i, true)] = i;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *tin.GetTriangle(i, true);
    NativeTriangle& to = model.triangles.emplace_back();
    for (int k = 0; k < 3; ++k) {
      to.corners[k] = PositionOf<TPoint>(points, t.m_pVertex[k]);
      to.adjacent[k] = PositionOf<TTriangle>(triangles, t.m_pAdjacent[k]);
    }
    to.flags = t.m_Flags;
    to.reserved = t.m_Reserved;
    to.circle[0] = t.m_CentreX;
    to.circle[1] = t.m_CentreY;
    to.circle[2] = t.m_RadiusSq;
  }
  return model;
}

NativeModel SquareModel() {
  NativeModel model;
  model.min = TPoint(0, 0, -9);
  model.max = TPoint(1, 1, 9);
  model.worldMin = TPoint(-10.5, -20.25, -30);
  model.worldMax = TPoint(10.5, 20.25, 30);
  model.points = {TPoint(0, 0, -9), TPoint(0, 1, 9), TPoint(1, 1, 4), TPoint(1, 0, 2.5)};
  model.triangles = {{{0, 1, 2}, {-1, -1, 1}, 0x41, 0, {0.5, 0.5, 0.75}},
                     {{0, 2, 3}, {0, -1, -1}, 0x02, 0, {0.25, 0.5, 8.5}}};
  return model;
}

std::uint32_t NativeKeys::Point(std::size_t i) const {
  return i < points.size() ? points[i] : static_cast<std::uint32_t>(7 * i + 3);
}

std::uint32_t NativeKeys::Triangle(std::size_t i) const {
  return i < triangles.size() ? triangles[i] : static_cast<std::uint32_t>(7 * i + 5);
}

NativePools ReversedPools(NativeModel const& model) {
  NativePools pools;
  auto const reversed = [](std::size_t live) {
    std::vector<std::int32_t> index;
    for (auto slot = static_cast<std::int32_t>(2 * live); slot-- > 0;) index.push_back(slot);
    return index;
  };
  pools.pointIndex = reversed(model.points.size());
  pools.triangleIndex = reversed(model.triangles.size());
  return pools;
}

std::string NativeVersion0(NativeModel const& model, NativePools const& pools) {
  Bytes out(0);
  for (TPoint const& corner : {model.max, model.min, model.worldMax, model.worldMin}) {
    out.Put(corner);
  }
  out.PutSize(model.points);
  out.PutSize(pools.pointIndex);
  for (std::int32_t resident : Residents(pools.pointIndex, model.points.size())) {
    TPoint const free(-1e30, -2e30, -3e30);
    out.Put(resident < 0 ? free : model.points[static_cast<std::size_t>(resident)]);
  }
  for (std::int32_t slot : pools.pointIndex) out.Put(slot);
  out.Put(static_cast<std::uint32_t>(pools.pointAddress));
  out.Put(static_cast<std::uint32_t>(pools.triangleAddress));

  out.PutSize(model.triangles);
  out.PutSize(pools.triangleIndex);
  for (std::int32_t resident : Residents(pools.triangleIndex, model.triangles.size())) {
    if (resident >= 0) {
      PutTriangleSlot(out, model.triangles[static_cast<std::size_t>(resident)], pools);
    } else {
      for (std::uint64_t i = 0; i < TRIANGLE_SLOT; ++i) out.Put('\x99');
    }
  }
  for (std::int32_t slot : pools.triangleIndex) out.Put(slot);
  return out.Take();
}

std::string NativeVersion1(NativeModel const& model, NativeKeys const& keys) {
  return Keyed(1, model, keys);
}

std::string NativeVersion2(NativeModel const& model, NativeKeys const& keys) {
  return Keyed(2, model, keys);
}

std::string NativeVersion3(NativeModel const& model) {
  Bytes out(3);
  out.PutBoxes(model);
  out.PutSize(model.points);
  for (TPoint const& p : model.points) out.Put(p);
  out.PutSize(model.triangles);
  for (NativeTriangle const& t : model.triangles) {
    for (std::int32_t c : t.corners) out.Put(c);
    for (std::int32_t a : t.adjacent) out.Put(a);
    out.Put(t.flags);
    out.Put(t.reserved);
  }
  return out.Take();
}

std::string NativeFile(int version, NativeModel const& model) {
  switch (version) {
    case 0:
      return NativeVersion0(model, ReversedPools(model));
    case 1:
      return NativeVersion1(model);
    case 2:
      return NativeVersion2(model);
    default:
      return NativeVersion3(model);
  }
}

}  // namespace qeltin::testing
