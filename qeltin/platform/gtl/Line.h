#pragma once

namespace GTL {

// A straight line between two points. A plain value.
template <typename P>
class Line {
 public:
  Line() = default;
  Line(P const& begin, P const& end) : m_Begin(begin), m_End(end) {}

  P const& GetBegin() const { return m_Begin; }
  P const& GetEnd() const { return m_End; }

 private:
  P m_Begin;
  P m_End;
};

}  // namespace GTL
