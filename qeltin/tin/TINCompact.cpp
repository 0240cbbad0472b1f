#include "qeltin/tin/Compaction.h"
#include "qeltin/tin/TIN.h"

bool TIN::Compact() {
  if (m_pPoints == nullptr || m_pTriangles == nullptr) return false;
  return qeltin::detail::Compaction(*this).Run();
}
