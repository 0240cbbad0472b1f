#include "qeltin/products/TPolygonLabel.h"

#include <algorithm>
#include <cwchar>
#include <functional>

TLabeledSegment::TLabeledSegment(TPoint const* begin, TPoint const* end, double labelWidth)
    : m_pBeginSegment(begin), m_pEndSegment(end) {
  TPoint const along = *end - *begin;
  double const d = begin->XY_Distance(*end);
  double const h = (d - labelWidth) * 0.5;
  m_BeginLabel = *begin + along * h / d;  // a division by 0 leaves a point as it is
  m_EndLabel = *begin + along * (h + labelWidth) / d;
}

bool TLabeledSegment::operator==(TLabeledSegment const& other) const { return this == &other; }

bool TLabeledSegment::operator<(TLabeledSegment const& other) const {
  return std::less<TLabeledSegment const*>()(this, &other);
}

double TLabeledSegment::GetAngle() const { return (*m_pEndSegment - *m_pBeginSegment).XY_Angle(); }

TPoint TLabeledSegment::GetCenter() const { return (*m_pBeginSegment + *m_pEndSegment) / 2.0; }

// The last place of the text is left alone: a longer text has no terminator there.
TPolygonLabel::TPolygonLabel(TPolygon const* polygon, wchar_t const* text, double labelWidth,
                             double spaceBetweenLabels)
    : m_pPolygon(polygon),
      m_dSpaceBetweenLabels(spaceBetweenLabels),
      m_dLabelWidth(labelWidth),
      m_pSegments(new std::vector<TLabeledSegment>) {
  std::wcsncpy(m_szText, text, TEXT_PLACES - 1);
  double run = 0.0;
  int const n = polygon->GetSize();
  for (int i = 0; i < n; ++i) {
    TPoint const* const p = polygon->Get(i);
    TPoint const* const q = polygon->Get(i + 1 < n ? i + 1 : 0);
    double const d = p->XY_Distance(*q);
    if (!(d + run > spaceBetweenLabels)) {
      run = d + run;
    } else if (d > labelWidth) {
      m_pSegments->emplace_back(p, q, labelWidth);
      run = d * 0.5;
    }
  }
}

TPolygonLabel::~TPolygonLabel() { delete m_pSegments; }

TLabeledSegment* TPolygonLabel::GetLabeledSegment(int index) const {
  if (index < 0 || index >= m_pPolygon->GetSize()) return nullptr;
  TPoint const* const vertex = m_pPolygon->Get(index);
  auto const found = std::find_if(
      m_pSegments->begin(), m_pSegments->end(),
      [=](TLabeledSegment const& segment) { return segment.GetBeginSegmentPoint() == vertex; });
  return found == m_pSegments->end() ? nullptr : &*found;
}
