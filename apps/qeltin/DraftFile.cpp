#include "apps/qeltin/DraftFile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace fs = std::filesystem;

namespace {

fs::path FollowLinks(fs::path path) {
  constexpr int MOST_LINKS = 40;
  std::error_code error;
  for (int i = 0; i < MOST_LINKS && fs::is_symlink(fs::symlink_status(path, error)); ++i) {
    fs::path const to = fs::read_symlink(path, error);
    if (error) break;
    path = to.is_absolute() ? to : path.parent_path() / to;
  }
  return path;
}

fs::path FolderOf(fs::path const& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

void CheckPlace(std::string const& name, fs::path const& target, bool overwrite) {
  if (!target.has_filename()) throw Failure(Quoted(name), "is not the name of a file");
  std::error_code error;
  fs::file_status const status = fs::status(target, error);
  if (fs::is_directory(status)) throw Failure(name, "is a folder");
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw Failure(name, "is not an ordinary file");
  }
  if (fs::exists(status) && !overwrite) {
    throw Failure(name, "exists already (--overwrite replaces it)");
  }
  if (fs::exists(status) && access(target.c_str(), W_OK) != 0) {
    throw Failure(name, SystemReason(errno));
  }
  fs::path const folder = FolderOf(target);
  if (!fs::is_directory(folder, error)) {
    throw Failure(name, "the folder " + Quoted(folder.string()) + " does not exist");
  }
}

}  // namespace

DraftFile::DraftFile(std::string name, bool overwrite)
    : m_Name(std::move(name)), m_bOverwrite(overwrite) {
  fs::path const target = FollowLinks(m_Name);
  CheckPlace(m_Name, target, overwrite);
  m_Target = target.string();
  std::string folder = (FolderOf(target) / ".qeltin-XXXXXX").string();
  HoldInterrupts const hold;
  if (mkdtemp(folder.data()) == nullptr) {
    throw Failure(m_Name, "cannot write in its folder: " + SystemReason(errno));
  }
  m_pFolder = std::make_unique<Folder>(folder);
  m_WorkingName = (fs::path(folder) / target.filename()).string();
}

void DraftFile::Sync() const {
  int const descriptor = open(m_WorkingName.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw Failure(m_Name, SystemReason(errno));
  bool const whole = fsync(descriptor) == 0;
  int const reason = errno;
  close(descriptor);
  if (!whole) throw Failure(m_Name, SystemReason(reason));
}

void DraftFile::Commit() {
  if (m_bOverwrite) {
    struct stat old {};
    if (stat(m_Target.c_str(), &old) == 0) chmod(m_WorkingName.c_str(), old.st_mode & 0777);
    if (std::rename(m_WorkingName.c_str(), m_Target.c_str()) == 0) return;
    throw Failure(m_Name, SystemReason(errno));
  }
  unsigned const no_replace = RENAME_NOREPLACE;
  if (renameat2(AT_FDCWD, m_WorkingName.c_str(), AT_FDCWD, m_Target.c_str(), no_replace) == 0) {
    return;
  }
  int const reason = errno;
  bool const unsupported = reason == EINVAL || reason == ENOSYS;  // a matter of the file system
  if (unsupported && std::rename(m_WorkingName.c_str(), m_Target.c_str()) == 0) return;
  throw Failure(m_Name, SystemReason(unsupported ? errno : reason));
}

void DraftFile::Folder::Remove() const {
  std::error_code error;
  // On a signal the work still goes on beside this, and may put another file in.
  for (int i = 0; i < 1000; ++i) {
    fs::remove_all(m_Name, error);
    if (!fs::exists(m_Name, error)) return;
  }
}

bool IsDevice(std::string const& name) {
  std::error_code error;
  fs::file_status const status = fs::status(name, error);
  return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

}  // namespace qeltin::cli
