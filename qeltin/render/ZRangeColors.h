#pragma once

#include "qeltin/render/GlColor.h"

namespace qeltin::detail {

// Two colours that GlTIN and GlGrid carry for their hosts. Nothing is drawn in them: colours come
// from the colour table of the context.
class ZRangeColors {
 public:
  void SetZRangeColor(GlColor const& low, GlColor const& high) {
    m_ZLowColor = low;
    m_ZHighColor = high;
  }

  void GetZRangeColor(GlColor& low, GlColor& high) const {
    low = m_ZLowColor;
    high = m_ZHighColor;
  }

 private:
  GlColor m_ZLowColor{1.0f, 0.5f, 0.0f, 1.0f};
  GlColor m_ZHighColor{0.0f, 0.0f, 1.0f, 1.0f};
};

}  // namespace qeltin::detail
