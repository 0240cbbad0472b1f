#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"
#include "qeltin/platform/FileStream.h"
#include "qeltin/tin/TIN.h"

class CQelUnitCnv;

namespace qeltin::detail {
class TrimbleTables;
}

// Reads and writes a whole surface in the library's own format, and reads Trimble terrain models.
// The byte layouts stand in docs/file-formats.md. Of the library's own format, version 3 is
// written; 0, 1 and 2 are read too, and such a file is rewritten as version 3 when it is read.
//
// A save replaces the file as a whole, so that a full disk or a crash leaves the old one: see
// FileStream. What a file holds is taken as it stands, except where that would reach outside the
// surface: a corner that the file does not have becomes point slot 0 and hides its triangle with
// TRI_OUTSIDE, a neighbour that it does not have becomes null. Nothing throws.
//
// The location of a loaded surface is not seated: TIN::Load does that.
//
// Threads: no lock on either object. One thread at a time.
class QELTIN_API TINFile {
 public:
  // Changing it breaks files in the field.
  static constexpr int m_iCurrentVersion = 3;

  // The type that GetInfo takes for a native file.
  static constexpr int NATIVE = 32;

  // What GetInfo answers. A count of -1 means that the file could not be identified.
  struct TINInfo {
    TPoint minimum;
    TPoint maximum;
    std::int32_t count = -1;
  };

  // What was wrong with the contents of a file.
  enum class Fault {
    NONE,
    WRONG_MAGIC,  // no file of this format, or none that could be read: see LastError
    UNKNOWN_VERSION,
    UNSOUND_TABLES,  // sizes that are negative or that a file of this length cannot mean; or, in
                     // version 0, live slots that are no slots or appear twice
    TRUNCATED,       // loaded all the same; the last values read were repeated
  };

  TINFile() = default;
  ~TINFile() { Close(); }

  // Copies share the stream that is open, if one is.
  TINFile(TINFile const&) = default;
  TINFile& operator=(TINFile const&) = default;

  // Stores the converter that LoadTrimbleTINModel applies. Not owned; null for none.
  void SetUnitConverter(CQelUnitCnv* converter) { m_pUnitConverter = converter; }

  // Writes version 3. Returns true also where the file could not be written: LastError tells. False
  // where there is no memory for it. A corner or a neighbour that is no longer in the live order of
  // its pool is written as -1.
  bool SaveTIN(wchar_t const* file, TIN const& tin);

  // Clears `tin`, whatever follows, and loads a file of any version. Returns the number of points,
  // except that version 2 answers 1 whatever its number of points; 0, with `tin` empty, where
  // nothing was loaded. So a sound file without points answers 0 or 1, by its version.
  //
  // A file of version 0, 1 or 2 is rewritten, unless its tables were unsound; a rewrite that fails
  // changes nothing. The stream stays open after version 3 and after a failure.
  unsigned int LoadTIN(wchar_t const* file, TIN& tin);

  // Clears `tin`, whatever follows, and loads a Trimble terrain model: its points and triangles as
  // they stand, a list of the triangles along its border and one of places to start a search from.
  // Returns the number of vertices that the file states; 0, with `tin` empty, where nothing was
  // loaded. The lists of an earlier model stay in that case.
  //
  // A table with sizes that the format does not know is passed over, and does not count as a
  // failure: so there may be fewer points than returned. With a converter, what the file says is to
  // be converted is in internal units afterwards. The stream stays open.
  unsigned int LoadTrimbleTINModel(wchar_t const* file, TIN& tin);

  // Looks at the head of a native file (`type` NATIVE) or of a Trimble model (any other type). The
  // stream stays open.
  //
  // Note that the count of a native file is the low half of the first coordinate of its third box,
  // and no number of points; and that a file of version 0 answers with its corners exchanged.
  TINInfo GetInfo(int type, wchar_t const* file);

  // Returns the errno of the first file operation that failed in the latest load, save or look,
  // rewriting included; 0 if none did.
  int LastError() const { return m_iLastError; }

  // Returns what was wrong with the contents of the latest file loaded.
  Fault LastFault() const { return m_LastFault; }

 private:
  bool IsOpen() const { return m_pFile != nullptr; }
  bool Open(wchar_t const* file, bool write);
  void Close();
  void Note();

  bool Save(wchar_t const* file, TIN const& tin);
  bool WriteTables(TIN const& tin);

  unsigned int Load(wchar_t const* file, TIN& tin);
  unsigned int LoadVersion0(TIN& tin);
  unsigned int LoadVersion1(TIN& tin);
  unsigned int LoadVersion2(TIN& tin);
  unsigned int LoadVersion3(TIN& tin);
  bool LoadKeyed(TIN& tin, bool flags);
  void ReadKeyedPoints(TArray<TPoint>& points, std::int32_t count);
  void ReadKeyedTriangles(TIN& tin, std::int32_t count, bool flags);
  void UpdateTrianglePointers(TIN& tin);
  unsigned int LoadTrimble(TIN& tin);
  static void HandOver(qeltin::detail::TrimbleTables& tables, TIN& tin);
  unsigned int Refuse(TIN& tin);

  bool ReadMagic();
  std::int32_t ReadInt(std::int32_t otherwise);
  void ReadBoxes(TIN& tin);
  TINInfo ReadNativeInfo();
  TINInfo ReadTrimbleInfo();

  std::shared_ptr<FileStream> m_pFile;                 // null when closed
  std::map<std::uint64_t, TPoint*> m_mapPoints;        // versions 1 and 2: by the keys of the file
  std::map<std::uint64_t, TTriangle*> m_mapTriangles;  // likewise
  CQelUnitCnv* m_pUnitConverter = nullptr;             // not owned

  std::vector<std::uint64_t> m_AdjacentKeys;  // versions 1 and 2: three to a triangle
  long long m_iMemory = 0;                    // bytes that the load may still ask for
  int m_iLastError = 0;
  Fault m_LastFault = Fault::NONE;
};
