#include "qeltin/tin/HoleFiller.h"
#include "qeltin/tin/Triangulator.h"

bool Triangulator::FillHole(std::vector<TTriangle>& result, std::deque<TPoint*>& ring) {
  std::vector<TPoint*> corners(ring.begin(), ring.end());
  bool const answer = qeltin::detail::HoleFiller().Fill(corners, result);
  ring.assign(corners.begin(), corners.end());
  return answer;
}
