#include "qeltin/tin/LastFan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using qeltin::detail::LastFan;

// A fan of `count` triangles about the origin, clockwise from the east.
class Fan {
 public:
  explicit Fan(int count) {
    for (int i = 0; i < count; ++i) {
      double const angle = -6.283185307179586 * i / count;
      m_Rim.emplace_back(10 * std::cos(angle), 10 * std::sin(angle));
    }
    for (std::size_t i = 0; i < m_Rim.size(); ++i) {
      m_Triangles.emplace_back(&m_Apex, &m_Rim[i], &m_Rim[(i + 1) % m_Rim.size()]);
    }
  }

  TTriangle* At(int i) { return &m_Triangles[static_cast<std::size_t>(i)]; }
  void NoteIn(LastFan& fan) {
    fan.Note(&m_Apex, static_cast<int>(m_Triangles.size()), [this](int i) { return At(i); });
  }

 private:
  TPoint m_Apex;
  std::vector<TPoint> m_Rim;
  std::vector<TTriangle> m_Triangles;
};

TEST(LastFan, LeadsIntoTheDirectionOfAPoint) {
  Fan around(400);
  LastFan fan;
  around.NoteIn(fan);
  for (int direction = 0; direction < 400; direction += 7) {
    double const angle = -6.283185307179586 * direction / 400;
    TPoint const p(3 * std::cos(angle), 3 * std::sin(angle));
    TTriangle const* const t = fan.Toward(p, around.At(200));
    double const dot = t->m_pVertex[1]->x * p.x + t->m_pVertex[1]->y * p.y;
    EXPECT_GT(dot / 30, std::cos(0.3)) << direction;
  }
}

TEST(LastFan, HasNothingToSayOfSmallFansAndOtherTriangles) {
  TPoint const p(3, 0);
  Fan small(10);
  LastFan fan;
  small.NoteIn(fan);
  EXPECT_EQ(fan.Toward(p, small.At(5)), small.At(5));

  Fan large(100);
  large.NoteIn(fan);
  EXPECT_NE(fan.Toward(p, large.At(50)), large.At(50));
  EXPECT_EQ(fan.Toward(p, small.At(5)), small.At(5));
  fan.Forget();
  EXPECT_EQ(fan.Toward(p, large.At(50)), large.At(50));
}

}  // namespace
