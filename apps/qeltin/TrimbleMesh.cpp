#include <algorithm>

#include "apps/qeltin/BlockReader.h"
#include "apps/qeltin/Mesh.h"

namespace qeltin::cli {

namespace {

// A table as the header describes it.
struct Table {
  std::uint64_t place = 0;
  std::uint32_t count = 0;
  std::size_t record = 0;
};

// Reads the fields of one record after each other.
class Fields {
 public:
  explicit Fields(unsigned char const* bytes) : m_pNext(bytes) {}

  double Real(int size) {
    double const value =
        size == 4 ? double{LittleEndian<float>(m_pNext)} : LittleEndian<double>(m_pNext);
    m_pNext += size;
    return value;
  }

  std::int32_t Whole(int size) {
    std::int32_t const value =
        size == 2 ? LittleEndian<std::int16_t>(m_pNext) : LittleEndian<std::int32_t>(m_pNext);
    m_pNext += size;
    return value;
  }

 private:
  unsigned char const* m_pNext;
};

bool IsRealSize(int size) { return size == 4 || size == 8; }
bool IsWholeSize(int size) { return size == 2 || size == 4; }

class TrimbleReader {
 public:
  explicit TrimbleReader(std::string const& name) : m_File(name) {}

  Mesh Read() {
    ReadHeader();
    ReadPoints();
    ReadTriangles();
    ReadBorder();
    ReadStarts();
    return std::move(m_Mesh);
  }

 private:
  static constexpr std::size_t HEADER = 149;

  void ReadHeader() {
    unsigned char const* const header = m_File.Next(HEADER);
    if (header == nullptr) return;
    auto const number = [header](std::size_t offset) {
      return LittleEndian<double>(header + offset);
    };
    m_Origin = {number(65), number(57)};
    m_Mesh.bounds = {{number(81), number(73)}, {number(97), number(89)}};
    m_iPlan = header[105];
    m_iHeight = header[106];
    m_iVertex = header[107];
    m_iTriangle = header[108];
    Table* const tables[] = {&m_Points, &m_Triangles, &m_Border, &m_Starts};
    for (std::size_t i = 0; i < 4; ++i) {
      unsigned char const* const entry = header + 109 + 10 * i;
      // A place or a size below 0 leads to no record.
      tables[i]->place = static_cast<std::uint64_t>(LittleEndian<std::int32_t>(entry));
      tables[i]->count = LittleEndian<std::uint32_t>(entry + 4);
      auto const record = LittleEndian<std::int16_t>(entry + 8);
      tables[i]->record = static_cast<std::size_t>(std::max<std::int16_t>(record, 0));
    }
    m_Mesh.point_count = m_Points.count;
    m_Mesh.triangle_count = m_Triangles.count;
  }

  // Hands the records of a table to `take`. `known` tells that the layout of its fields is, and
  // `needed` how many bytes they take.
  template <typename Take>
  void ReadTable(char const* word, Table const& table, bool known, int needed, Take const& take) {
    if (table.count == 0) return;
    if (!known || table.record < static_cast<std::size_t>(needed)) {
      m_Mesh.unreadable.emplace_back(word);
      return;
    }
    m_File.Seek(table.place);
    for (std::uint32_t i = 0; i < table.count; ++i) {
      unsigned char const* const bytes = m_File.Next(table.record);
      if (bytes == nullptr) {
        m_Mesh.cut_short.push_back(std::string(word) + ' ' + std::to_string(i) + " of " +
                                   std::to_string(table.count));
        return;
      }
      take(static_cast<std::int32_t>(i), bytes);
    }
  }

  // Numbers count from 1.
  static std::int32_t Position(std::int32_t number, std::uint32_t count) {
    bool const sound = number >= 1 && static_cast<std::uint32_t>(number) <= count;
    return sound ? number - 1 : MeshTriangle::NOWHERE;
  }

  bool IsTriangle(std::int32_t number) const {
    return Position(number, m_Triangles.count) != MeshTriangle::NOWHERE;
  }

  void ReadPoints() {
    bool const known = IsRealSize(m_iPlan) && IsRealSize(m_iHeight);
    Extent extent;
    ReadTable("point", m_Points, known, 2 * m_iPlan + m_iHeight,
              [&](std::int32_t, unsigned char const* bytes) {
                Fields fields(bytes);
                double const y = fields.Real(m_iPlan) + m_Origin.y;
                double const x = fields.Real(m_iPlan) + m_Origin.x;
                double const z = fields.Real(m_iHeight);
                m_Mesh.points.emplace_back(x, y, z);
                extent.Add({x, y, z});
              });
    TPoint const reach = (m_Mesh.bounds.max - m_Mesh.bounds.min) * 10.0;
    m_Mesh.world_bounds = {m_Mesh.bounds.min - reach, m_Mesh.bounds.max + reach};
    if (extent.Count() > 0) m_Mesh.bounds = extent.Bounds();
  }

  void ReadTriangles() {
    bool const known = IsWholeSize(m_iVertex) && IsWholeSize(m_iTriangle);
    ReadTable("triangle", m_Triangles, known, 3 * (m_iVertex + m_iTriangle),
              [&](std::int32_t, unsigned char const* bytes) {
                Fields fields(bytes);
                MeshTriangle t;
                for (std::int32_t& corner : t.corners) {
                  corner = Position(fields.Whole(m_iVertex), m_Points.count);
                }
                for (std::int32_t& neighbour : t.neighbours) {
                  std::int32_t const number = fields.Whole(m_iTriangle);
                  if (number >= 1) neighbour = Position(number, m_Triangles.count);
                }
                m_Mesh.triangles.push_back(t);
              });
  }

  void ReadBorder() {
    auto const size = static_cast<int>(m_Border.record);
    ReadTable("border entry", m_Border, size >= 1 && size <= 4, size,
              [&](std::int32_t i, unsigned char const* bytes) {
                std::uint32_t number = 0;
                for (int k = size; k-- > 0;) number = number << 8 | bytes[k];
                if (number < 1 || number > m_Triangles.count) m_Mesh.bad_borders.push_back(i);
              });
  }

  void ReadStarts() {
    bool const known = IsRealSize(m_iPlan) && IsWholeSize(m_iTriangle);
    ReadTable("start point", m_Starts, known, 2 * m_iPlan + m_iTriangle,
              [&](std::int32_t i, unsigned char const* bytes) {
                Fields fields(bytes);
                fields.Real(m_iPlan);
                fields.Real(m_iPlan);
                if (!IsTriangle(fields.Whole(m_iTriangle))) m_Mesh.bad_starts.push_back(i);
              });
  }

  BlockReader m_File;
  Mesh m_Mesh;
  TPoint m_Origin;
  int m_iPlan = 0;
  int m_iHeight = 0;
  int m_iVertex = 0;
  int m_iTriangle = 0;
  Table m_Points;
  Table m_Triangles;
  Table m_Border;
  Table m_Starts;
};

}  // namespace

Mesh ReadTrimbleMesh(std::string const& name) { return TrimbleReader(name).Read(); }

}  // namespace qeltin::cli
