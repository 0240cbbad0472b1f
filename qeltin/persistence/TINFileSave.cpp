#include <cerrno>

#include "qeltin/persistence/NativeFormat.h"
#include "qeltin/persistence/Ordinals.h"
#include "qeltin/persistence/TINFile.h"

using qeltin::detail::NATIVE_MAGIC;
using qeltin::detail::Ordinals;
using qeltin::detail::TriangleTail;

namespace {

// How many elements ahead memory is fetched. The live order may be a random one.
constexpr std::int32_t NEAR = 8;
constexpr std::int32_t FAR = 16;

template <typename T>
std::int32_t Count(TArray<T> const* pool) {
  return pool == nullptr ? 0 : pool->m_iCount;
}

void WriteInt(FileStream& out, std::int32_t value) { out.Write(&value, sizeof value); }

void WritePoint(FileStream& out, TPoint const& p) { out.Write(&p, sizeof p); }

void WritePoints(FileStream& out, TArray<TPoint> const* pool) {
  std::int32_t const count = Count(pool);
  WriteInt(out, count);
  for (std::int32_t i = 0; i < count; ++i) {
    if (i + FAR < count) __builtin_prefetch(pool->At(i + FAR));
    WritePoint(out, *pool->At(i));
  }
}

void WriteTriangles(FileStream& out, TArray<TTriangle> const* pool, Ordinals<TPoint> const& points,
                    Ordinals<TTriangle> const& triangles) {
  std::int32_t const count = Count(pool);
  WriteInt(out, count);
  for (std::int32_t i = 0; i < count; ++i) {
    if (i + FAR < count) __builtin_prefetch(pool->At(i + FAR));
    if (i + NEAR < count) {
      TTriangle const& next = *pool->At(i + NEAR);
      for (TPoint const* corner : next.m_pVertex) points.Fetch(corner);
      for (TTriangle const* adjacent : next.m_pAdjacent) triangles.Fetch(adjacent);
    }
    TTriangle const& t = *pool->At(i);
    std::int32_t ordinals[6];
    for (int k = 0; k < 3; ++k) {
      ordinals[k] = points.Of(t.m_pVertex[k]);
      ordinals[3 + k] = triangles.Of(t.m_pAdjacent[k]);
    }
    out.Write(ordinals, sizeof ordinals);
    TriangleTail const tail = {t.m_Flags, t.m_Reserved};
    out.Write(&tail, sizeof tail);
  }
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

  WritePoints(out, tin.m_pPoints);
  WriteTriangles(out, tin.m_pTriangles, points, triangles);
  return true;
}
