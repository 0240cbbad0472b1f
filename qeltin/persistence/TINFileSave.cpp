#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>

#include "qeltin/persistence/NativeFormat.h"
#include "qeltin/persistence/Ordinals.h"
#include "qeltin/persistence/TINFile.h"

using qeltin::detail::NATIVE_MAGIC;
using qeltin::detail::Ordinals;
using qeltin::detail::TriangleRecord;

namespace {

// How many records are handed on at once: more than the stream would take into its buffer, so that
// they are not copied once more.
constexpr std::int32_t BLOCK = 16'384;

// How many elements ahead memory is fetched. The live order may be a random one.
constexpr std::int32_t AHEAD = 24;

template <typename T>
std::int32_t Count(TArray<T> const* pool) {
  return pool == nullptr ? 0 : pool->m_iCount;
}

void WriteInt(FileStream& out, std::int32_t value) { out.Write(&value, sizeof value); }

void WritePoint(FileStream& out, TPoint const& p) { out.Write(&p, sizeof p); }

// Writes `count` records, the one at a position being what `record` answers for it. Returns false
// where there is no memory for a block of them.
template <typename Record, typename RecordAt>
bool WriteRecords(FileStream& out, std::int32_t count, RecordAt const& record) {
  std::unique_ptr<Record[]> const block(new (std::nothrow) Record[std::min(BLOCK, count)]);
  if (block == nullptr) return false;
  WriteInt(out, count);
  for (std::int32_t first = 0; first < count; first += BLOCK) {
    std::int32_t const size = std::min(BLOCK, count - first);
    for (std::int32_t i = 0; i < size; ++i) block[i] = record(first + i);
    out.Write(block.get(), sizeof(Record) * static_cast<std::size_t>(size));
  }
  return true;
}

bool WritePoints(FileStream& out, TArray<TPoint> const* pool) {
  std::int32_t const count = Count(pool);
  return WriteRecords<TPoint>(out, count, [=](std::int32_t i) {
    if (i + AHEAD < count) __builtin_prefetch(pool->At(i + AHEAD));
    return *pool->At(i);
  });
}

bool WriteTriangles(FileStream& out, TArray<TTriangle> const* pool, Ordinals<TPoint> const& points,
                    Ordinals<TTriangle> const& triangles) {
  std::int32_t const count = Count(pool);
  return WriteRecords<TriangleRecord>(out, count, [&](std::int32_t i) {
    if (i + 2 * AHEAD < count) __builtin_prefetch(pool->At(i + 2 * AHEAD));
    if (i + AHEAD < count) {
      TTriangle const& next = *pool->At(i + AHEAD);
      for (TPoint const* corner : next.m_pVertex) points.Fetch(corner);
      for (TTriangle const* adjacent : next.m_pAdjacent) triangles.Fetch(adjacent);
    }
    TTriangle const& t = *pool->At(i);
    TPoint* const* const v = t.m_pVertex;
    TTriangle* const* const a = t.m_pAdjacent;
    return TriangleRecord{{points.Of(v[0]), points.Of(v[1]), points.Of(v[2])},
                          {triangles.Of(a[0]), triangles.Of(a[1]), triangles.Of(a[2])},
                          t.m_Flags,
                          t.m_Reserved};
  });
}

}  // namespace

bool TINFile::SaveTIN(wchar_t const* file, TIN const& tin) {
  Close();
  m_iLastError = 0;
  return Save(file, tin);
}

bool TINFile::Save(wchar_t const* file, TIN const& tin) {
  if (!Open(file, true)) return false;
  if (!WriteTables(tin)) {
    m_iLastError = ENOMEM;
    m_pFile.reset();  // without a Sync: nothing is published
    return false;
  }
  Close();
  return true;
}

bool TINFile::WriteTables(TIN const& tin) {
  Ordinals<TPoint> const points(tin.m_pPoints);
  Ordinals<TTriangle> const triangles(tin.m_pTriangles);
  if (!points.IsAllocated() || !triangles.IsAllocated()) return false;

  FileStream& out = *m_pFile;
  out.Write(NATIVE_MAGIC, sizeof NATIVE_MAGIC);
  WriteInt(out, m_iCurrentVersion);
  WritePoint(out, tin.m_Min);
  WritePoint(out, tin.m_Max);
  WritePoint(out, tin.m_WorldMin);
  WritePoint(out, tin.m_WorldMax);

  return WritePoints(out, tin.m_pPoints) &&
         WriteTriangles(out, tin.m_pTriangles, points, triangles);
}
