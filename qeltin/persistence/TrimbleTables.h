#pragma once

#include <memory>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/persistence/TrimbleFormat.h"
#include "qeltin/platform/FileStream.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

// The contents of a Trimble terrain model on their way from the file into a surface.
//
// A table whose fields have a size that the format does not know, or do not fit into its records,
// is passed over and stays empty. A corner that the file does not have becomes slot 0 of the points
// and hides its triangle; a neighbour that it does not have becomes null.
class TrimbleTables {
 public:
  std::unique_ptr<TArray<TPoint>> points;
  std::unique_ptr<TArray<TTriangle>> triangles;
  std::unique_ptr<TArray<int>> border;
  std::unique_ptr<TArray<TArrayStartPoint>> startPoints;

  // `origin` and `factor` are those of the tables, in internal units.
  TrimbleTables(TrimbleHeader const& header, TPoint const& origin, double factor)
      : m_Header(header), m_Origin(origin), m_dFactor(factor) {}

  // Makes the pools. Returns false where the counts are none that a file with so much `memory` may
  // ask for. Throws std::bad_alloc where the system refuses.
  bool MakePools(long long memory);

  // Fills them. REQUIRES: MakePools.
  void Read(FileStream& in);

 private:
  void ReadVertices(FileStream& in);
  void ReadTriangles(FileStream& in);
  void ReadBorder(FileStream& in);
  void ReadStartPoints(FileStream& in);
  TPoint Place(TrimbleRecords& records) const;

  TrimbleHeader const& m_Header;
  TPoint m_Origin;
  double m_dFactor;
};

}  // namespace qeltin::detail
