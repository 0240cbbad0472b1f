#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qeltin/persistence/TINFile.h"
#include "qeltin/platform/CQelUnitCnv.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/TrimbleFileWriter.h"

namespace qeltin::testing {

// A file of its own, and what comes of loading it.
class Loaded {
 public:
  explicit Loaded(std::string const& bytes, CQelUnitCnv* converter = nullptr) {
    m_Folder.Put("model.ttm", bytes);
    file.SetUnitConverter(converter);
    result = file.LoadTrimbleTINModel(m_Folder.Wide("model.ttm").c_str(), tin);
    EXPECT_EQ(m_Folder.Get("model.ttm"), bytes);
  }
  std::vector<int> Border() { return Entries(*TINPeer::Border(tin)); }
  std::vector<TArrayStartPoint> Starts() { return Entries(*TINPeer::StartPoints(tin)); }
  int Corner(int triangle, int k) {
    return static_cast<int>(tin.GetTriangle(triangle, true)->m_pVertex[k] - tin.GetPoint(0));
  }
  // The position of a neighbour, -1 for none.
  int Adjacent(int triangle, int k) {
    TTriangle const* const adjacent = tin.GetTriangle(triangle, true)->m_pAdjacent[k];
    return adjacent == nullptr ? -1 : static_cast<int>(adjacent - tin.GetTriangle(0, true));
  }

  TIN tin;
  TINFile file;
  unsigned int result = 0;

 private:
  template <typename T>
  static std::vector<T> Entries(TArray<T> const& list) {
    std::vector<T> entries;
    for (int i = 0; i < list.m_iCount; ++i) entries.push_back(*list.At(i));
    return entries;
  }

  TemporaryFolder m_Folder;
};

// Expects the model of TrimbleSquare, whole.
inline void ExpectSquare(Loaded& l) {
  EXPECT_EQ(l.result, 4U);
  EXPECT_EQ(l.file.LastError(), 0);
  EXPECT_EQ(l.file.LastFault(), TINFile::Fault::NONE);
  ASSERT_EQ(l.tin.GetNumberOfPoints(), 4);
  EXPECT_EQ(*l.tin.GetPoint(0), TPoint(500, 9001, -9));
  EXPECT_EQ(*l.tin.GetPoint(1), TPoint(500, 9008.5, 9));
  EXPECT_EQ(*l.tin.GetPoint(2), TPoint(504, 9008.5, 9.5));
  EXPECT_EQ(*l.tin.GetPoint(3), TPoint(504, 9001, 2));
  ASSERT_EQ(l.tin.GetNumberOfTriangles(), 2);
  TrimbleModel const square = TrimbleSquare();
  for (int i = 0; i < 2; ++i) {
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(l.Corner(i, k), square.triangles[i].corners[k] - 1);
    }
    EXPECT_EQ(l.tin.GetTriangle(i, true)->m_Flags, 0);
  }
  EXPECT_EQ(l.Adjacent(0, 0), -1);
  EXPECT_EQ(l.Adjacent(0, 1), -1);
  EXPECT_EQ(l.Adjacent(0, 2), 1);
  EXPECT_EQ(l.Adjacent(1, 0), 0);
  EXPECT_EQ(l.Adjacent(1, 2), -1);
  EXPECT_EQ(l.Border(), (std::vector<int>{0, 1}));
  std::vector<TArrayStartPoint> const starts = l.Starts();
  ASSERT_EQ(starts.size(), 2U);
  EXPECT_EQ(starts[0].x, 501);
  EXPECT_EQ(starts[0].y, 9007);
  EXPECT_EQ(starts[0].z, 0);
  EXPECT_EQ(starts[0].triangle, 0);
  EXPECT_EQ(starts[1].x, 503);
  EXPECT_EQ(starts[1].y, 9002.5);
  EXPECT_EQ(starts[1].triangle, 1);
}

}  // namespace qeltin::testing
