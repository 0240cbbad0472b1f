#include "apps/qeltin/StoredFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/LasReader.h"
#include "apps/qeltin/Numbers.h"
#include "apps/qeltin/PointLayer.h"

namespace qeltin::cli {

namespace {

constexpr int NEWEST_VERSION = 3;
constexpr char NATIVE_MAGIC[] = "QEL2000 TIN";
constexpr char TRIMBLE_MAGIC[] = "TNL TIN DTM FILE";
constexpr std::size_t TRIMBLE_MAGIC_OFFSET = 2;
constexpr std::size_t TRIMBLE_HEADER = 149;

class Bytes {
 public:
  Bytes(std::string const& name, double size)
      : m_Name(name), m_Stream(name, std::ios::binary), m_dSize(size) {
    if (!m_Stream) throw Failure(name, SystemReason(errno));
  }

  // Returns the little-endian value at `offset`, or 0 past the end.
  template <typename T>
  double At(double offset) {
    T value{};
    std::array<char, sizeof(T)> bytes;
    m_Stream.clear();
    m_Stream.seekg(static_cast<std::streamoff>(offset));
    if (offset <= m_dSize && m_Stream.read(bytes.data(), bytes.size())) {
      std::memcpy(&value, bytes.data(), bytes.size());
    }
    return static_cast<double>(value);
  }

  bool HasText(std::size_t offset, char const* text, std::size_t length) {
    std::string found(length, '\0');
    m_Stream.clear();
    m_Stream.seekg(static_cast<std::streamoff>(offset));
    return m_Stream.read(found.data(), static_cast<std::streamsize>(length)) &&
           found.compare(0, length, text, length) == 0;
  }

  void CheckSize(double expected) const {
    if (m_dSize >= expected) return;
    NumberStyle const style;
    throw Failure(m_Name, "is cut short: its counts ask for " + style.Text(expected) +
                              " bytes, and it has " + style.Text(m_dSize));
  }

  double Count(double offset) {
    double const count = At<std::int32_t>(offset);
    if (count < 0) throw Failure(m_Name, "is damaged: a count below 0");
    return count;
  }

 private:
  std::string m_Name;
  std::ifstream m_Stream;
  double m_dSize;
};

// Returns the size that the counts of a native file ask for.
double NativeSize(Bytes& file, int version) {
  constexpr double COUNTS = 112.0;
  if (version == 0) {
    double const triangle_counts = COUNTS + 16.0 + 28.0 * file.Count(COUNTS + 4.0);
    file.CheckSize(triangle_counts + 8.0);
    return triangle_counts + 8.0 + 84.0 * file.Count(triangle_counts + 4.0);
  }
  double const per_point = version == NEWEST_VERSION ? 24.0 : 28.0;
  double const per_triangle = version == NEWEST_VERSION ? 26.0 : version == 2 ? 54.0 : 52.0;
  double const triangle_count = COUNTS + 4.0 + per_point * file.Count(COUNTS);
  file.CheckSize(triangle_count + 4.0);
  return triangle_count + 4.0 + per_triangle * file.Count(triangle_count);
}

int CheckNative(Bytes& file, std::string const& name, Wholeness wholeness) {
  if (!file.HasText(0, NATIVE_MAGIC, sizeof NATIVE_MAGIC)) {
    throw Failure(name, "is not a surface file, although its name ends like one");
  }
  int const version = static_cast<int>(file.At<std::int32_t>(12));
  file.CheckSize(16);
  if (version < 0 || version > NEWEST_VERSION) {
    throw Failure(name, "is of version " + std::to_string(version) + ", and 0 to 3 are known");
  }
  if (wholeness == Wholeness::WHOLE) file.CheckSize(NativeSize(file, version));
  return version;
}

void CheckTrimble(Bytes& file, std::string const& name, Wholeness wholeness) {
  if (!file.HasText(TRIMBLE_MAGIC_OFFSET, TRIMBLE_MAGIC, sizeof TRIMBLE_MAGIC - 1)) {
    throw Failure(name, "is not a Trimble terrain model, although its name ends like one");
  }
  file.CheckSize(TRIMBLE_HEADER);
  if (wholeness == Wholeness::HEADER) return;
  constexpr double TABLES[] = {109, 119, 129, 139};
  for (double const table : TABLES) {
    double const count = file.At<std::uint32_t>(table + 4);
    double const record = file.At<std::int16_t>(table + 8);
    if (count > 0) file.CheckSize(file.At<std::int32_t>(table) + count * std::max(record, 0.0));
  }
}

void CheckText(Bytes& file, std::string const& name) {
  if (file.HasText(0, NATIVE_MAGIC, sizeof NATIVE_MAGIC)) {
    throw Failure(name, "is a stored surface: its name must end in .tin");
  }
  if (file.HasText(TRIMBLE_MAGIC_OFFSET, TRIMBLE_MAGIC, sizeof TRIMBLE_MAGIC - 1)) {
    throw Failure(name, "is a Trimble terrain model: its name must end in .ttm");
  }
}

std::string InLowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

// Returns what follows the last point of the file's name, in lower case.
std::string ExtensionOf(std::string const& name) {
  std::string const extension = std::filesystem::path(name).extension().string();
  return extension.empty() ? extension : InLowerCase(extension.substr(1));
}

// These are texts whatever else may be kept in files of that name.
bool IsTextExtension(std::string const& extension) {
  constexpr std::array TEXTS = {"", "xyz", "txt", "csv", "dat", "asc", "pts"};
  return std::find(TEXTS.begin(), TEXTS.end(), extension) != TEXTS.end();
}

}  // namespace

FileKind KindByName(std::string const& name) {
  std::string const ending = InLowerCase(name.size() < 3 ? name : name.substr(name.size() - 3));
  if (ending == "tin") return FileKind::NATIVE;
  if (ending == "ttm") return FileKind::TRIMBLE;
  std::string const extension = ExtensionOf(name);
  if (extension == "las" || extension == "laz") return FileKind::LAS;
  if (IsTextExtension(extension)) return FileKind::TEXT;
  return IsVectorExtension(extension) ? FileKind::VECTOR : FileKind::TEXT;
}

FileKind KindOf(std::string const& name) {
  FileKind const kind = KindByName(name);
  return kind == FileKind::TEXT && HasLasSignature(name) ? FileKind::LAS : kind;
}

bool IsStoredSurface(FileKind kind) {
  return kind == FileKind::NATIVE || kind == FileKind::TRIMBLE;
}

char const* KindWord(FileKind kind) {
  constexpr char const* WORDS[] = {"tin", "ttm", "xyz", "las", "vector"};
  return WORDS[static_cast<int>(kind)];
}

StoredFile LookAt(std::string const& name, Wholeness wholeness) {
  FileKind const kind = KindOf(name);
  StoredFile result;
  struct stat status {};
  if (stat(name.c_str(), &status) != 0) throw Failure(name, SystemReason(errno));
  if (S_ISDIR(status.st_mode)) {
    if (kind == FileKind::VECTOR) return result;
    throw Failure(name, "is a folder");
  }
  if (!S_ISREG(status.st_mode)) {
    if (kind == FileKind::TEXT) return result;
    throw Failure(name, "is not an ordinary file");
  }
  result.bytes = static_cast<double>(status.st_size);
  Bytes file(name, result.bytes);
  if (status.st_size == 0) throw Failure(name, "is empty");
  switch (kind) {
    case FileKind::NATIVE:
      result.version = CheckNative(file, name, wholeness);
      break;
    case FileKind::TRIMBLE:
      CheckTrimble(file, name, wholeness);
      break;
    case FileKind::TEXT:
      CheckText(file, name);
      break;
    case FileKind::LAS:
    case FileKind::VECTOR:
      break;
  }
  return result;
}

}  // namespace qeltin::cli
