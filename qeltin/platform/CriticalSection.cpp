#include "qeltin/platform/CriticalSection.h"

CriticalSection::CriticalSection() = default;

CriticalSection::~CriticalSection() {
  while (m_iDepth > 0) unlock();  // to destroy a mutex that is held is undefined
}

void CriticalSection::lock() {
  m_Mutex.lock();
  ++m_iDepth;
}

void CriticalSection::unlock() {
  --m_iDepth;
  m_Mutex.unlock();
}
