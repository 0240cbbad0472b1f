#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"
#include "qeltin/products/TPolygon.h"

// The stretch of one edge that a text occupies, centred on the edge.
//
// Points at the edge's two vertices, which it does not own and which must outlive it. Lengths are
// plan lengths in the unit of the survey; the label's ends carry heights between those of the edge.
//
// Threads: a value. Concurrent reads are safe.
class QELTIN_API TLabeledSegment {
 public:
  TLabeledSegment() = default;

  // Centres a label of `labelWidth` on the edge. It reaches past both ends where it is longer than
  // the edge. On an edge without plan length both ends of the label stand on it in plan, and their
  // heights are off by the height difference times -labelWidth/2 and +labelWidth/2.
  TLabeledSegment(TPoint const* begin, TPoint const* end, double labelWidth);

  // Compare the addresses of the two objects, not what they hold.
  bool operator==(TLabeledSegment const& other) const;
  bool operator<(TLabeledSegment const& other) const;

  TPoint const* GetBeginSegmentPoint() const { return m_pBeginSegment; }
  TPoint const* GetEndSegmentPoint() const { return m_pEndSegment; }
  TPoint const* GetBeginLabelPoint() const { return &m_BeginLabel; }
  TPoint const* GetEndLabelPoint() const { return &m_EndLabel; }

  // Returns the direction of the edge as TPoint::XY_Angle tells it.
  double GetAngle() const;

  // Returns the middle of the edge.
  TPoint GetCenter() const;

 private:
  TPoint const* m_pBeginSegment = nullptr;  // not owned
  TPoint const* m_pEndSegment = nullptr;    // not owned
  TPoint m_BeginLabel;
  TPoint m_EndLabel;
};

// Decides on which edges of a polygon a text is to be written, and where. Draws nothing.
//
// Going round the closed figure, a label stands on the first edge longer than the label once the
// run since the middle of the last labelled edge exceeds the spacing. An edge too short for a label
// that is due adds nothing to the run.
//
// The polygon is not owned. It must outlive this object, and its vertices must stay where they are:
// the segments hold their addresses. Later changes to it do not show here.
//
// Threads: no state after construction. Concurrent reads are safe.
class QELTIN_API TPolygonLabel {
 public:
  // Places the labels. `text` is copied up to 127 characters; one of 127 or more leaves the 128th
  // place as this object's memory had it, without a terminator. REQUIRES: `polygon` and `text` are
  // not null.
  TPolygonLabel(TPolygon const* polygon, wchar_t const* text, double labelWidth,
                double spaceBetweenLabels);
  TPolygonLabel(TPolygonLabel const&) = delete;
  TPolygonLabel& operator=(TPolygonLabel const&) = delete;
  virtual ~TPolygonLabel();

  TPolygon const* GetPolygon() const { return m_pPolygon; }
  wchar_t const* GetText() const { return m_szText; }
  double GetSpaceBetweenLabels() const { return m_dSpaceBetweenLabels; }
  double GetLabelWidth() const { return m_dLabelWidth; }

  // Returns the segment that starts at vertex `index` of the polygon, owned by this object; null
  // where the index is out of range or no label stands there.
  TLabeledSegment* GetLabeledSegment(int index) const;

 private:
  static constexpr int TEXT_PLACES = 128;

  TPolygon const* m_pPolygon;  // not owned
  wchar_t m_szText[TEXT_PLACES];
  double m_dSpaceBetweenLabels;
  double m_dLabelWidth;
  std::vector<TLabeledSegment>* m_pSegments;  // owned, in the order of the polygon
};
