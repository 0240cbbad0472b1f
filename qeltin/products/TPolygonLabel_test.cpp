#include "qeltin/products/TPolygonLabel.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "testing/Formula.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;

TPolygon Square() { return TPolygon({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, 0)}); }

int LabelsOf(TPolygonLabel const& label) {
  int labels = 0;
  for (int i = 0; i < label.GetPolygon()->GetSize(); ++i) {
    if (label.GetLabeledSegment(i) != nullptr) ++labels;
  }
  return labels;
}

// --- TLabeledSegment
// ----------------------------------------------------------------------------

TEST(TLabeledSegment, StartsAllZero) {
  TLabeledSegment const segment;
  EXPECT_EQ(segment.GetBeginSegmentPoint(), nullptr);
  EXPECT_EQ(segment.GetEndSegmentPoint(), nullptr);
  EXPECT_EQ(*segment.GetBeginLabelPoint(), TPoint(0, 0, 0));
  EXPECT_EQ(*segment.GetEndLabelPoint(), TPoint(0, 0, 0));
}

TEST(TLabeledSegment, LabelIsCentredOnTheEdgeInSpace) {
  TPoint const a(0, 0, 0);
  TPoint const b(30, 40, 100);
  TLabeledSegment const segment(&a, &b, 10);
  EXPECT_EQ(segment.GetBeginSegmentPoint(), &a);
  EXPECT_EQ(segment.GetEndSegmentPoint(), &b);
  EXPECT_EQ(*segment.GetBeginLabelPoint(), TPoint(12, 16, 40));
  EXPECT_EQ(*segment.GetEndLabelPoint(), TPoint(18, 24, 60));
}

TEST(TLabeledSegment, LabelWiderThanTheEdgeReachesPastBothEnds) {
  TPoint const a(0, 0, 0);
  TPoint const b(10, 0, 1);
  TLabeledSegment const segment(&a, &b, 30);
  EXPECT_EQ(*segment.GetBeginLabelPoint(), TPoint(-10, 0, -1));
  EXPECT_EQ(*segment.GetEndLabelPoint(), TPoint(20, 0, 2));
}

TEST(TLabeledSegment, OnAnEdgeWithoutLengthOnlyHeightsDiffer) {
  TPoint const a(5, 6, 7);
  TPoint const b(5, 6, 9);
  TLabeledSegment const segment(&a, &b, 10);
  EXPECT_EQ(*segment.GetBeginLabelPoint(), TPoint(5, 6, -3));
  EXPECT_EQ(*segment.GetEndLabelPoint(), TPoint(5, 6, 17));
}

TEST(TLabeledSegment, FollowsTheFormula) {
  FormulaInputs inputs;
  for (int round = 0; round < 2000; ++round) {
    TPoint const a = inputs.AnyPoint();
    TPoint const b = inputs.AnyPoint();
    double const w = inputs.Number();
    double const d = std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
    double const h = (d - w) * 0.5;
    auto const at = [d](double from, double to, double f) {
      double const step = (to - from) * f;
      return from + (d == 0.0 ? step : step / d);
    };
    TLabeledSegment const segment(&a, &b, w);
    ASSERT_TRUE(SameBits(*segment.GetBeginLabelPoint(),
                         {at(a.x, b.x, h), at(a.y, b.y, h), at(a.z, b.z, h)}));
    ASSERT_TRUE(SameBits(*segment.GetEndLabelPoint(),
                         {at(a.x, b.x, h + w), at(a.y, b.y, h + w), at(a.z, b.z, h + w)}));
    ASSERT_TRUE(SameBits(segment.GetCenter(), {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2}));
  }
}

TEST(TLabeledSegment, ComparesAddresses) {
  TPoint const a(0, 0);
  TPoint const b(1, 0);
  TLabeledSegment const segments[] = {{&a, &b, 0.5}, {&a, &b, 0.5}};
  EXPECT_TRUE(segments[0] == segments[0]);
  EXPECT_FALSE(segments[0] == segments[1]);
  EXPECT_TRUE(segments[0] < segments[1]);
  EXPECT_FALSE(segments[1] < segments[0]);
  EXPECT_FALSE(segments[0] < segments[0]);
}

TEST(TLabeledSegment, CopiesAndMovesAllFields) {
  TPoint const a(0, 0);
  TPoint const b(10, 0);
  TLabeledSegment segment(&a, &b, 4);
  TLabeledSegment const copy(segment);
  TLabeledSegment moved;
  moved = std::move(segment);
  for (TLabeledSegment const* s : {&copy, &std::as_const(moved)}) {
    EXPECT_EQ(s->GetBeginSegmentPoint(), &a);
    EXPECT_EQ(s->GetEndSegmentPoint(), &b);
    EXPECT_EQ(*s->GetBeginLabelPoint(), TPoint(3, 0));
    EXPECT_EQ(*s->GetEndLabelPoint(), TPoint(7, 0));
  }
}

TEST(TLabeledSegment, AngleOfAnEdgeFromWestToEastIsThatOfTheXAxis) {
  TPoint const west(-5, 3, 1);
  TPoint const east(12, 3, 9);
  EXPECT_EQ(TLabeledSegment(&west, &east, 1).GetAngle(), TPoint(1, 0, 0).XY_Angle());
  EXPECT_EQ(TLabeledSegment(&west, &east, 1).GetAngle(), 0.0);
  EXPECT_EQ(TLabeledSegment(&east, &west, 1).GetAngle(), 3.141592653589793);
  EXPECT_EQ(TLabeledSegment(&east, &east, 1).GetAngle(), -1.0);
}

// --- TPolygonLabel
// ------------------------------------------------------------------------------

TEST(TPolygonLabel, KeepsItsArguments) {
  TPolygon const square = Square();
  TPolygonLabel const label(&square, L"12.5", 4, 100);
  EXPECT_EQ(label.GetPolygon(), &square);
  EXPECT_STREQ(label.GetText(), L"12.5");
  EXPECT_EQ(label.GetLabelWidth(), 4.0);
  EXPECT_EQ(label.GetSpaceBetweenLabels(), 100.0);
}

TEST(TPolygonLabel, SpacingZeroLabelsEveryEdgeLongerThanTheLabel) {
  TPolygon const polygon(
      {TPoint(0, 0), TPoint(0, 10), TPoint(3, 10), TPoint(10, 10), TPoint(10, 0)});
  TPolygonLabel const label(&polygon, L"a", 5, 0);
  EXPECT_NE(label.GetLabeledSegment(0), nullptr);
  EXPECT_EQ(label.GetLabeledSegment(1), nullptr);
  EXPECT_NE(label.GetLabeledSegment(2), nullptr);
  EXPECT_NE(label.GetLabeledSegment(3), nullptr);
  EXPECT_NE(label.GetLabeledSegment(4), nullptr);  // the edge back to the first vertex
}

TEST(TPolygonLabel, EdgeAsLongAsTheLabelIsTooShort) {
  TPolygon const square = Square();
  EXPECT_EQ(LabelsOf(TPolygonLabel(&square, L"a", 10, 0)), 0);
  EXPECT_EQ(LabelsOf(TPolygonLabel(&square, L"a", 9.999, 0)), 4);
}

TEST(TPolygonLabel, RunIsCountedFromTheMiddleOfTheLastLabelledEdge) {
  TPolygon const square = Square();
  // 10; 20 passes 14 at edge 1; then 5 + 10 passes 14 at edge 2, and again at edge 3.
  TPolygonLabel const close(&square, L"a", 2, 14);
  EXPECT_EQ(close.GetLabeledSegment(0), nullptr);
  EXPECT_NE(close.GetLabeledSegment(1), nullptr);
  EXPECT_NE(close.GetLabeledSegment(2), nullptr);
  EXPECT_NE(close.GetLabeledSegment(3), nullptr);
  // 5 + 10 does not pass 15: the run has to exceed the spacing.
  TPolygonLabel const wide(&square, L"a", 2, 15);
  EXPECT_NE(wide.GetLabeledSegment(1), nullptr);
  EXPECT_EQ(wide.GetLabeledSegment(2), nullptr);
  EXPECT_NE(wide.GetLabeledSegment(3), nullptr);
}

TEST(TPolygonLabel, EdgesTooShortForALabelThatIsDueAddNothingToTheRun) {
  // The run is 10 after the first edge. Each short edge would take it past 10, so that none is
  // added; the last one is long enough.
  TPolygon const polygon({TPoint(0, 0), TPoint(0, 10), TPoint(3, 10), TPoint(6, 10), TPoint(6, 0)});
  TPolygonLabel const label(&polygon, L"a", 5, 10);
  EXPECT_EQ(label.GetLabeledSegment(0), nullptr);
  EXPECT_EQ(label.GetLabeledSegment(1), nullptr);
  EXPECT_EQ(label.GetLabeledSegment(2), nullptr);
  EXPECT_NE(label.GetLabeledSegment(3), nullptr);
  EXPECT_NE(label.GetLabeledSegment(4), nullptr);  // 5 + 6 passes 10, counted from edge 3
}

TEST(TPolygonLabel, LabelWiderThanEveryEdgeIsNeverPlaced) {
  TPolygon const square = Square();
  EXPECT_EQ(LabelsOf(TPolygonLabel(&square, L"a", 11, 5)), 0);
}

TEST(TPolygonLabel, PolygonWithoutVerticesHasNoLabels) {
  TPolygon const empty;
  TPolygonLabel const label(&empty, L"a", 1, 1);
  EXPECT_EQ(label.GetLabeledSegment(0), nullptr);
}

TEST(TPolygonLabel, NoLabelAtAVertexOutOfRange) {
  TPolygon const square = Square();
  TPolygonLabel const label(&square, L"a", 1, 0);
  EXPECT_NE(label.GetLabeledSegment(3), nullptr);
  EXPECT_EQ(label.GetLabeledSegment(4), nullptr);
  EXPECT_EQ(label.GetLabeledSegment(-1), nullptr);
}

TEST(TPolygonLabel, SegmentStandsOnTheVerticesOfThePolygon) {
  TPolygon const square = Square();
  TPolygonLabel const label(&square, L"a", 4, 0);
  TLabeledSegment const* const last = label.GetLabeledSegment(3);
  ASSERT_NE(last, nullptr);
  EXPECT_EQ(last->GetBeginSegmentPoint(), square.Get(3));
  EXPECT_EQ(last->GetEndSegmentPoint(), square.Get(0));
  EXPECT_EQ(*last->GetBeginLabelPoint(), TPoint(7, 0));
  EXPECT_EQ(*last->GetEndLabelPoint(), TPoint(3, 0));
}

// --- The text
// -----------------------------------------------------------------------------------

// A label made in memory that holds one pattern throughout.
class LabelInPreparedMemory {
 public:
  explicit LabelInPreparedMemory(std::wstring const& text) {
    std::memset(m_Memory, PATTERN, sizeof m_Memory);
    m_pLabel = new (m_Memory) TPolygonLabel(&m_Polygon, text.c_str(), 1, 1);
  }
  LabelInPreparedMemory(LabelInPreparedMemory const&) = delete;
  LabelInPreparedMemory& operator=(LabelInPreparedMemory const&) = delete;
  ~LabelInPreparedMemory() { m_pLabel->~TPolygonLabel(); }

  wchar_t const* Text() const { return m_pLabel->GetText(); }

  static wchar_t Untouched() {
    wchar_t value;
    std::memset(&value, PATTERN, sizeof value);
    return value;
  }

 private:
  static constexpr int PATTERN = 0x5A;

  TPolygon m_Polygon;
  alignas(TPolygonLabel) unsigned char m_Memory[sizeof(TPolygonLabel)];
  TPolygonLabel* m_pLabel;
};

TEST(TPolygonLabelText, UpTo126CharactersIsTerminated) {
  for (std::size_t const size : {0u, 1u, 126u}) {
    std::wstring const text(size, L'x');
    LabelInPreparedMemory const label(text);
    EXPECT_STREQ(label.Text(), text.c_str());
  }
}

TEST(TPolygonLabelText, Of127CharactersLeavesTheLastPlaceAsTheMemoryHadIt) {
  std::wstring const text(127, L'x');
  LabelInPreparedMemory const label(text);
  EXPECT_EQ(std::wstring(label.Text(), 127), text);
  EXPECT_EQ(label.Text()[127], LabelInPreparedMemory::Untouched());
}

TEST(TPolygonLabelText, OfMoreThan127CharactersIsCut) {
  std::wstring const text = std::wstring(127, L'x') + L"yz";
  LabelInPreparedMemory const label(text);
  EXPECT_EQ(std::wstring(label.Text(), 127), std::wstring(127, L'x'));
  EXPECT_EQ(label.Text()[127], LabelInPreparedMemory::Untouched());
}

}  // namespace
