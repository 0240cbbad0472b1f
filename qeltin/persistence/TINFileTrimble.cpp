#include <cerrno>
#include <new>

#include "qeltin/persistence/LoadedPools.h"
#include "qeltin/persistence/TINFile.h"
#include "qeltin/persistence/TrimbleFormat.h"
#include "qeltin/persistence/TrimbleTables.h"
#include "qeltin/persistence/WidenBox.h"
#include "qeltin/platform/CQelUnitCnv.h"

using qeltin::detail::TrimbleHeader;
using qeltin::detail::TrimbleTables;

namespace {

constexpr int TRIMBLE_UNIT = 1;

// Returns the factor from the unit of a model to the internal one, where there is a flag for it.
double Factor(bool flag, CQelUnitCnv const* converter) {
  bool const converts = flag && converter != nullptr;
  return converts ? converter->ToInternalUnit(TRIMBLE_UNIT, 1.0, 1.0, 0.0) : 1.0;
}

TPoint InPlan(TPoint const& p, double factor) { return {p.x * factor, p.y * factor, 0.0}; }

}  // namespace

unsigned int TINFile::LoadTrimbleTINModel(wchar_t const* file, TIN& tin) {
  Close();
  m_iLastError = 0;
  m_LastFault = Fault::NONE;
  tin.Clear();
  unsigned int result = 0;
  try {
    if (Open(file, false)) result = LoadTrimble(tin);
  } catch (std::bad_alloc const&) {
    tin.Clear();
    m_iLastError = ENOMEM;
  }
  Note();
  return result;
}

unsigned int TINFile::LoadTrimble(TIN& tin) {
  TrimbleHeader header;
  if (!header.Read(*m_pFile)) {
    m_LastFault = Fault::WRONG_MAGIC;
    return 0;
  }
  double const factor = Factor(header.headerUnits, m_pUnitConverter);
  TrimbleTables tables(header, InPlan(header.origin, factor),
                       Factor(header.tableUnits, m_pUnitConverter));
  if (!tables.MakePools(qeltin::detail::MemoryFor(m_pFile->Size()))) return Refuse(tin);
  tables.Read(*m_pFile);

  TPoint const min = InPlan(header.min, factor);
  TPoint const max = InPlan(header.max, factor);
  tin.m_Min = min;
  tin.m_Max = max;
  tin.m_WorldMin = TPoint(min.x - 10 * (max.x - min.x), min.y - 10 * (max.y - min.y), 0.0);
  tin.m_WorldMax = TPoint(max.x + 10 * (max.x - min.x), max.y + 10 * (max.y - min.y), 0.0);
  TArray<TPoint> const& points = *tables.points;
  if (points.m_iCount > 0) tin.m_Min = tin.m_Max = *points.At(0);
  for (int i = 0; i < points.m_iCount; ++i) {
    qeltin::detail::WidenBox(*points.At(i), tin.m_Min, tin.m_Max);
  }
  HandOver(tables, tin);
  return header.vertices.records;
}

// The surface owns its lists from here on, also one that shared those of another.
void TINFile::HandOver(TrimbleTables& tables, TIN& tin) {
  if (tin.m_bOwnsTrimbleArrays) {
    delete tin.m_pBorder;
    delete tin.m_pStartPoints;
  }
  tin.m_bOwnsTrimbleArrays = true;
  tin.m_pPoints = tables.points.release();
  tin.m_pTriangles = tables.triangles.release();
  tin.m_pBorder = tables.border.release();
  tin.m_pStartPoints = tables.startPoints.release();
}
