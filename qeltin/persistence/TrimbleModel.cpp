#include "qeltin/persistence/TINFile.h"

unsigned int TINFile::LoadTrimbleTINModel(wchar_t const* file, TIN& tin) {
  m_iLastError = 0;
  m_LastFault = Fault::NONE;
  tin.Clear();
  if (!Open(file, false)) return 0;
  // Trimble models are not read yet: every file is taken as one with a wrong magic.
  m_LastFault = Fault::WRONG_MAGIC;
  Note();
  return 0;
}
