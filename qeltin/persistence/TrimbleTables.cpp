#include "qeltin/persistence/TrimbleTables.h"

#include "qeltin/persistence/LoadedPools.h"

namespace qeltin::detail {

namespace {

// What a loaded list has free beyond the entries of the file.
constexpr int BORDER_MARGIN = 100;
constexpr int START_POINT_MARGIN = 20;

bool IsCoordinate(int size) { return size == 4 || size == 8; }
bool IsNumber(int size) { return size == 2 || size == 4; }

// Replaces `pool` by a new one for the records of a table.
template <typename T>
bool Make(std::unique_ptr<TArray<T>>& pool, TrimbleTable const& table, int margin,
          long long& memory) {
  long long const live = table.records;
  pool.reset(MakePool<T>(live, live + margin, memory));
  return pool != nullptr;
}

}  // namespace

bool TrimbleTables::MakePools(long long memory) {
  return Make(points, m_Header.vertices, POINT_MARGIN, memory) &&
         Make(triangles, m_Header.triangles, TRIANGLE_MARGIN, memory) &&
         Make(border, m_Header.border, BORDER_MARGIN, memory) &&
         Make(startPoints, m_Header.startPoints, START_POINT_MARGIN, memory);
}

void TrimbleTables::Read(FileStream& in) {
  ReadVertices(in);
  ReadTriangles(in);
  ReadBorder(in);
  ReadStartPoints(in);
}

// Reads a place in plan, y first.
TPoint TrimbleTables::Place(TrimbleRecords& records) const {
  double const y = records.Coordinate(m_Header.planSize, m_dFactor);
  double const x = records.Coordinate(m_Header.planSize, m_dFactor);
  return {x + m_Origin.x, y + m_Origin.y, 0.0};
}

void TrimbleTables::ReadVertices(FileStream& in) {
  int const plan = m_Header.planSize;
  int const height = m_Header.heightSize;
  TrimbleTable const& table = m_Header.vertices;
  if (!IsCoordinate(plan) || !IsCoordinate(height)) return;
  if (table.recordSize < 2 * plan + height) return;
  TrimbleRecords records(in, table);
  for (std::uint32_t i = 0; i < table.records; ++i) {
    records.Next();
    TPoint p = Place(records);
    p.z = records.Coordinate(height, m_dFactor);  // the origin has no height
    points->Add(p);
  }
}

void TrimbleTables::ReadTriangles(FileStream& in) {
  int const vertexNumber = m_Header.vertexNumberSize;
  int const triangleNumber = m_Header.triangleNumberSize;
  TrimbleTable const& table = m_Header.triangles;
  if (!IsNumber(vertexNumber) || !IsNumber(triangleNumber)) return;
  if (table.recordSize < 3 * (vertexNumber + triangleNumber)) return;
  auto const count = static_cast<std::int32_t>(table.records);
  TrimbleRecords records(in, table);
  for (std::int32_t i = 0; i < count; ++i) {
    records.Next();
    TTriangle t;
    for (int k = 0; k < 3; ++k) {
      std::int64_t const ordinal = records.Number(vertexNumber) - 1LL;
      SetCorner(t, k, Element(*points, ordinal, points->m_iCount), *points);
    }
    for (TTriangle*& adjacent : t.m_pAdjacent) {
      adjacent = Element(*triangles, records.Number(triangleNumber) - 1LL, count);
    }
    t.CalcTri();
    triangles->Add(t);
  }
}

void TrimbleTables::ReadBorder(FileStream& in) {
  TrimbleTable const& table = m_Header.border;
  if (table.recordSize <= 0) return;
  TrimbleRecords records(in, table);
  for (std::uint32_t i = 0; i < table.records; ++i) {
    std::uint32_t const number = records.NextWhole();
    if (number >= 1 && number <= static_cast<std::uint32_t>(triangles->m_iCount)) {
      border->Add(static_cast<int>(number - 1));
    }
  }
}

void TrimbleTables::ReadStartPoints(FileStream& in) {
  int const plan = m_Header.planSize;
  int const triangleNumber = m_Header.triangleNumberSize;
  TrimbleTable const& table = m_Header.startPoints;
  if (!IsCoordinate(plan) || !IsNumber(triangleNumber)) return;
  if (table.recordSize < 2 * plan + triangleNumber) return;
  TrimbleRecords records(in, table);
  for (std::uint32_t i = 0; i < table.records; ++i) {
    records.Next();
    TPoint const p = Place(records);
    auto const number = static_cast<std::uint32_t>(records.Number(triangleNumber));
    startPoints->Add({p.x, p.y, 0.0, static_cast<std::int32_t>(number - 1)});
  }
}

}  // namespace qeltin::detail
