#include "qeltin/platform/OutputFile.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace qeltin::detail {

namespace {

constexpr int MAX_LINKS = 40;
constexpr int MAX_NAMES_TRIED = 100;

// The name of a file, split where its folder ends.
struct Place {
  explicit Place(std::string const& path) {
    std::size_t const slash = path.rfind('/');
    bool const bare = slash == std::string::npos;
    folder = bare ? "." : path.substr(0, slash + 1);
    name = bare ? path : path.substr(slash + 1);
  }
  std::string folder;
  std::string name;
};

// A link under /proc leads to an open file, which the text of the link need not name.
bool IsProcLink(std::string const& path) {
  int const link = open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
  if (link < 0) return false;
  struct statfs system = {};
  bool const is = fstatfs(link, &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
  close(link);
  return is;
}

// Replaces `path` by the name that the symbolic links it ends in lead to. Returns false where only
// the system can follow them.
bool FollowLinks(std::string& path) {
  for (int i = 0; i < MAX_LINKS; ++i) {
    char text[PATH_MAX];
    ssize_t const length = readlink(path.c_str(), text, sizeof text);
    if (length < 0) return true;
    if (length == ssize_t{sizeof text} || IsProcLink(path)) return false;
    std::string const target(text, static_cast<std::size_t>(length));
    path = target.starts_with('/') ? target : Place(path).folder + "/" + target;
  }
  return false;
}

std::string TemporaryName() {
  static std::atomic<unsigned> calls =
      0;  // tells names apart where there are no random numbers yet
  std::uint64_t number = 0;
  if (getrandom(&number, sizeof number, GRND_NONBLOCK) != ssize_t{sizeof number}) {
    number = static_cast<std::uint64_t>(getpid()) << 32 | ++calls;
  }
  char name[32];
  std::snprintf(name, sizeof name, ".qeltin-%016llx", static_cast<unsigned long long>(number));
  return name;
}

}  // namespace

int OutputFile::Open(std::string const& path) {
  struct stat status = {};
  std::string target = path;
  bool const direct =
      (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) || !FollowLinks(target);
  int const error = direct ? OpenDirectly(path) : OpenTemporary(target);
  if (error != 0) Abandon();
  return error;
}

int OutputFile::OpenDirectly(std::string const& path) {
  m_iDescriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  return m_iDescriptor < 0 ? errno : 0;
}

int OutputFile::OpenTemporary(std::string const& target) {
  Place const place(target);
  if (place.name.empty()) return target.empty() ? ENOENT : EISDIR;
  m_iFolder = open(place.folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (m_iFolder < 0) return errno;
  m_strTarget = place.name;

  struct stat old = {};
  if (fstatat(m_iFolder, m_strTarget.c_str(), &old, 0) != 0) {
    return errno == ENOENT ? MakeTemporary(0666) : errno;
  }
  if (faccessat(m_iFolder, m_strTarget.c_str(), W_OK, AT_EACCESS) != 0) return errno;
  int const error = MakeTemporary(0600);
  if (error != 0) return error;
  // The owner first: a change of owner may clear mode bits.
  if (fchown(m_iDescriptor, old.st_uid, old.st_gid) != 0) {
    static_cast<void>(fchown(m_iDescriptor, static_cast<uid_t>(-1), old.st_gid) == 0);
  }
  return fchmod(m_iDescriptor, old.st_mode & 0777) == 0 ? 0 : errno;
}

int OutputFile::MakeTemporary(unsigned mode) {
  for (int i = 0; i < MAX_NAMES_TRIED; ++i) {
    std::string name = TemporaryName();
    m_iDescriptor = openat(m_iFolder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (m_iDescriptor >= 0) {
      m_strTemporary = std::move(name);
      return 0;
    }
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

int OutputFile::Publish() {
  int error = 0;
  // A pipe or a terminal cannot be synced, and need not be.
  if (fsync(m_iDescriptor) != 0 && errno != EINVAL && errno != EROFS) error = errno;
  // A network file system may tell of a full disk only now. EINTR: closed all the same.
  if (close(m_iDescriptor) != 0 && error == 0 && errno != EINTR) error = errno;
  m_iDescriptor = -1;
  if (error == 0 && m_iFolder >= 0) error = Rename();
  Abandon();
  return error;
}

int OutputFile::Rename() {
  if (renameat(m_iFolder, m_strTemporary.c_str(), m_iFolder, m_strTarget.c_str()) != 0) {
    return errno;
  }
  m_strTemporary.clear();
  // The file stands whole under its name by now. Syncing the folder makes the name survive a loss
  // of power; a folder that may not be read cannot be synced.
  int const folder = openat(m_iFolder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder >= 0) {
    fsync(folder);
    close(folder);
  }
  return 0;
}

void OutputFile::Abandon() {
  if (m_iDescriptor >= 0) close(m_iDescriptor);
  if (!m_strTemporary.empty()) unlinkat(m_iFolder, m_strTemporary.c_str(), 0);
  if (m_iFolder >= 0) close(m_iFolder);
  m_iDescriptor = -1;
  m_iFolder = -1;
  m_strTemporary.clear();
}

}  // namespace qeltin::detail
