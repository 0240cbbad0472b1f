#include "qeltin/persistence/TINFile.h"

#include <cerrno>
#include <cstring>
#include <new>

#include "qeltin/persistence/LoadedPools.h"
#include "qeltin/persistence/NativeFormat.h"
#include "qeltin/persistence/TrimbleFormat.h"

using qeltin::detail::NATIVE_MAGIC;

bool TINFile::Open(wchar_t const* file, bool write) {
  Close();
  try {
    m_pFile = std::make_shared<FileStream>(file, write, true);
  } catch (std::bad_alloc const&) {
    m_iLastError = ENOMEM;
  }
  return IsOpen();
}

void TINFile::Close() {
  if (!IsOpen()) return;
  m_pFile->Sync();
  m_pFile->Commit();
  Note();
  m_pFile.reset();
}

// Keeps what the stream knows of its failures.
void TINFile::Note() {
  if (!IsOpen()) return;
  if (m_iLastError == 0) m_iLastError = m_pFile->Error();
  if (m_LastFault == Fault::NONE && m_pFile->RanOut()) m_LastFault = Fault::TRUNCATED;
}

unsigned int TINFile::LoadTIN(wchar_t const* file, TIN& tin) {
  Close();
  m_iLastError = 0;
  m_LastFault = Fault::NONE;
  tin.Clear();
  unsigned int result = 0;
  try {
    result = Load(file, tin);
  } catch (std::bad_alloc const&) {
    tin.Clear();
    m_iLastError = ENOMEM;
  }
  Note();
  m_mapPoints.clear();
  m_mapTriangles.clear();
  m_AdjacentKeys = {};
  return result;
}

unsigned int TINFile::Load(wchar_t const* file, TIN& tin) {
  if (!Open(file, false)) return 0;
  if (!ReadMagic()) {
    m_LastFault = Fault::WRONG_MAGIC;
    return 0;
  }
  m_iMemory = qeltin::detail::MemoryFor(m_pFile->Size());
  // A pipe cannot be rewritten.
  bool const rewritable = m_pFile->IsRegular();
  unsigned int result = 0;
  switch (ReadInt(-1)) {
    case 0:
      result = LoadVersion0(tin);
      break;
    case 1:
      result = LoadVersion1(tin);
      break;
    case 2:
      result = LoadVersion2(tin);
      break;
    case m_iCurrentVersion:
      return LoadVersion3(tin);
    default:
      m_LastFault = Fault::UNKNOWN_VERSION;
      return 0;
  }
  Close();
  if (rewritable && m_LastFault != Fault::UNSOUND_TABLES) Save(file, tin);
  return result;
}

TINFile::TINInfo TINFile::GetInfo(int type, wchar_t const* file) {
  Close();
  m_iLastError = 0;
  if (!Open(file, false)) return {};
  TINInfo const info = type == NATIVE ? ReadNativeInfo() : ReadTrimbleInfo();
  m_iLastError = m_pFile->Error();
  return info;
}

TINFile::TINInfo TINFile::ReadNativeInfo() {
  TINInfo info;
  if (!ReadMagic()) return info;
  ReadInt(0);  // the version is not looked at
  m_pFile->Read(&info.minimum, sizeof info.minimum);
  m_pFile->Read(&info.maximum, sizeof info.maximum);
  info.count = ReadInt(info.count);  // the third box stands here, not a count
  return info;
}

TINFile::TINInfo TINFile::ReadTrimbleInfo() {
  qeltin::detail::TrimbleHeader header;
  if (!header.Read(*m_pFile)) return {};
  return {header.min, header.max, static_cast<std::int32_t>(header.vertices.records)};
}

bool TINFile::ReadMagic() {
  char magic[sizeof NATIVE_MAGIC] = {};
  m_pFile->Read(magic, sizeof magic);
  return std::memcmp(magic, NATIVE_MAGIC, sizeof magic) == 0;
}

// Returns the next number of the file, or `otherwise` where it has run out.
std::int32_t TINFile::ReadInt(std::int32_t otherwise) {
  m_pFile->Read(&otherwise, sizeof otherwise);
  return otherwise;
}

// The order of version 1 and later.
void TINFile::ReadBoxes(TIN& tin) {
  for (TPoint* corner : {&tin.m_Min, &tin.m_Max, &tin.m_WorldMin, &tin.m_WorldMax}) {
    m_pFile->Read(corner, sizeof *corner);
  }
}

unsigned int TINFile::Refuse(TIN& tin) {
  tin.Clear();
  m_LastFault = Fault::UNSOUND_TABLES;
  return 0;
}
