#include "testing/TrimbleFileWriter.h"

#include <map>

namespace qeltin::testing {

namespace {

class Bytes {
 public:
  template <typename T>
  void Put(T value) {
    m_Bytes.append(reinterpret_cast<char const*>(&value), sizeof value);
  }
  void PutText(std::string const& text) { m_Bytes += text; }
  void PutCoordinate(double value, int size) {
    size == 8 ? Put(value) : Put(static_cast<float>(value));
  }
  void PutNumber(std::int32_t value, int size) {
    size == 4 ? Put(value) : Put(static_cast<std::int16_t>(value));
  }
  void PutPlace(TPoint const& p, int size) {
    PutCoordinate(p.y, size);
    PutCoordinate(p.x, size);
  }
  void Pad(int count) { m_Bytes.append(static_cast<std::size_t>(count), '\x7B'); }
  std::size_t Size() const { return m_Bytes.size(); }
  std::string Take() { return std::move(m_Bytes); }

 private:
  std::string m_Bytes;
};

struct Table {
  std::size_t records;
  int recordSize;
  std::string bytes;
};

template <typename List, typename Put>
Table MakeTable(List const& list, int fields, int padding, Put put) {
  Bytes out;
  for (auto const& element : list) {
    put(out, element);
    out.Pad(padding);
  }
  return {list.size(), fields + padding, out.Take()};
}

std::vector<Table> Tables(TrimbleModel const& m, TrimbleLayout const& l) {
  return {
      MakeTable(m.points, 2 * l.plan + l.height, l.padding,
                [&l](Bytes& out, TPoint const& p) {
                  out.PutPlace(p, l.plan);
                  out.PutCoordinate(p.z, l.height);
                }),
      MakeTable(m.triangles, 3 * (l.vertexNumber + l.triangleNumber), l.padding,
                [&l](Bytes& out, TrimbleTriangle const& t) {
                  for (std::int32_t corner : t.corners) out.PutNumber(corner, l.vertexNumber);
                  for (std::int32_t a : t.adjacent) out.PutNumber(a, l.triangleNumber);
                }),
      // The whole record is the number.
      MakeTable(m.border, l.triangleNumber, 0,
                [&l](Bytes& out, std::int32_t number) { out.PutNumber(number, l.triangleNumber); }),
      MakeTable(m.starts, 2 * l.plan + l.triangleNumber, l.padding,
                [&l](Bytes& out, TrimbleStart const& start) {
                  out.PutPlace(TPoint(start.x, start.y), l.plan);
                  out.PutNumber(start.triangle, l.triangleNumber);
                }),
  };
}

// Returns the number of each visible triangle, from 1, in order.
std::map<TTriangle const*, std::int32_t> VisibleNumbers(TIN const& tin) {
  std::map<TTriangle const*, std::int32_t> numbers;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, false);
    if (t != nullptr) numbers.emplace(t, static_cast<std::int32_t>(numbers.size()) + 1);
  }
  return numbers;
}

template <typename T>
std::int32_t NumberOf(std::map<T const*, std::int32_t> const& numbers, T const* element) {
  auto const at = numbers.find(element);
  return at == numbers.end() ? 0 : at->second;
}

}  // namespace

std::vector<TrimbleLayout> AllTrimbleLayouts() {
  std::vector<TrimbleLayout> layouts;
  for (int padding : {0, 1, 13}) {
    for (int plan : {4, 8}) {
      for (int height : {4, 8}) {
        for (int vertexNumber : {2, 4}) {
          for (int triangleNumber : {2, 4}) {
            layouts.push_back({plan, height, vertexNumber, triangleNumber, padding});
          }
        }
      }
    }
  }
  return layouts;
}

std::string TrimbleFile(TrimbleModel const& model, TrimbleLayout const& layout) {
  Bytes out;
  out.Pad(TRIMBLE_MAGIC_AT);
  out.PutText("TNL TIN DTM FILE");
  out.Pad(static_cast<int>(TRIMBLE_HEADER_UNITS_AT - out.Size()));
  out.Put(model.headerUnits);
  out.Put(model.tableUnits);
  out.Pad(1);
  for (TPoint const& p : {model.origin, model.min, model.max}) out.PutPlace(p, 8);
  for (int size : {layout.plan, layout.height, layout.vertexNumber, layout.triangleNumber}) {
    out.Put(static_cast<char>(size));
  }
  std::vector<Table> const tables = Tables(model, layout);
  std::size_t offset = TRIMBLE_HEADER_END;
  for (Table const& table : tables) {
    out.Put(static_cast<std::int32_t>(offset));
    out.Put(static_cast<std::uint32_t>(table.records));
    out.Put(static_cast<std::int16_t>(table.recordSize));
    offset += table.bytes.size();
  }
  for (Table const& table : tables) out.PutText(table.bytes);
  return out.Take();
}

TrimbleModel TrimbleModelOf(TIN const& tin, int startsEvery) {
  TrimbleModel model;
  tin.GetBounds(model.min, model.max);
  std::map<TPoint const*, std::int32_t> vertices;
  std::map<TTriangle const*, std::int32_t> const numbers = VisibleNumbers(tin);
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, false);
    if (t == nullptr) continue;
    TrimbleTriangle& to = model.triangles.emplace_back();
    auto const number = static_cast<std::int32_t>(model.triangles.size());
    for (int k = 0; k < 3; ++k) {
      TPoint const* const corner = t->m_pVertex[k];
      if (vertices.emplace(corner, static_cast<std::int32_t>(vertices.size()) + 1).second) {
        model.points.push_back(*corner);
      }
      to.corners[k] = NumberOf(vertices, corner);
      to.adjacent[k] = NumberOf<TTriangle>(numbers, t->m_pAdjacent[k]);
    }
    if (to.adjacent[0] == 0 || to.adjacent[1] == 0 || to.adjacent[2] == 0) {
      model.border.push_back(number);
    }
    if (number % startsEvery == 0) {
      TPoint const& a = *t->m_pVertex[0];
      TPoint const& b = *t->m_pVertex[1];
      TPoint const& c = *t->m_pVertex[2];
      model.starts.push_back(
          {0.4 * a.x + 0.3 * (b.x + c.x), 0.4 * a.y + 0.3 * (b.y + c.y), number});
    }
  }
  return model;
}

TrimbleModel TrimbleSquare() {
  TrimbleModel model;
  model.origin = TPoint(500, 9000);
  model.min = TPoint(490, 8900);
  model.max = TPoint(520, 9100);
  model.points = {TPoint(0, 1, -9), TPoint(0, 8.5, 9), TPoint(4, 8.5, 9.5), TPoint(4, 1, 2)};
  model.triangles = {{{1, 2, 3}, {0, 0, 2}}, {{1, 3, 4}, {1, 0, -1}}};
  model.border = {1, 2};
  model.starts = {{1, 7, 1}, {3, 2.5, 2}};
  return model;
}

}  // namespace qeltin::testing
