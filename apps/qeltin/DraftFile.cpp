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

fs::path WithEnding(fs::path const& path, std::string const& ending) {
  return fs::path(path).replace_extension(ending);
}

void KeepPermissions(fs::path const& from, fs::path const& to) {
  struct stat old {};
  if (stat(from.c_str(), &old) == 0) chmod(to.c_str(), old.st_mode & 0777);
}

// Renames, and returns the system's error number, or 0.
int Move(fs::path const& from, fs::path const& to) {
  return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int MoveWithoutReplacing(fs::path const& from, fs::path const& to) {
  unsigned const no_replace = RENAME_NOREPLACE;
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), no_replace) == 0) return 0;
  bool const unsupported = errno == EINVAL || errno == ENOSYS;  // a matter of the file system
  return unsupported ? Move(from, to) : errno;
}

// A step that can be taken back: the side file `target` becomes `working`, or nothing where there
// is no such file, and what stood there waits in `kept`.
class SideStep {
 public:
  SideStep(fs::path target, fs::path working, fs::path kept)
      : m_Target(std::move(target)), m_Working(std::move(working)), m_Kept(std::move(kept)) {}

  // Returns the system's error number, or 0.
  int Take(bool overwrite) {
    std::error_code error;
    if (overwrite && fs::exists(fs::symlink_status(m_Target, error))) {
      KeepPermissions(m_Target, m_Working);
      int const reason = Move(m_Target, m_Kept);
      if (reason != 0) return reason;
      m_bKept = true;
    }
    if (!fs::exists(m_Working, error)) return 0;
    int const reason = MoveWithoutReplacing(m_Working, m_Target);
    m_bPlaced = reason == 0;
    return reason;
  }

  void TakeBack() {
    if (m_bPlaced) unlink(m_Target.c_str());
    if (m_bKept) Move(m_Kept, m_Target);
  }

 private:
  fs::path m_Target;
  fs::path m_Working;
  fs::path m_Kept;
  bool m_bKept = false;
  bool m_bPlaced = false;
};

}  // namespace

DraftFile::DraftFile(std::string name, bool overwrite, std::vector<std::string> sides)
    : m_Name(std::move(name)), m_bOverwrite(overwrite), m_Sides(std::move(sides)) {
  fs::path const target = FollowLinks(m_Name);
  CheckPlace(m_Name, target, overwrite);
  for (std::string const& ending : m_Sides) {
    CheckPlace(WithEnding(m_Name, ending).string(), WithEnding(target, ending), overwrite);
  }
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

std::string DraftFile::WorkingSide(std::string const& ending) const {
  return WithEnding(m_WorkingName, ending).string();
}

int DraftFile::MoveMain() const {
  if (!m_bOverwrite) return MoveWithoutReplacing(m_WorkingName, m_Target);
  KeepPermissions(m_Target, m_WorkingName);
  return Move(m_WorkingName, m_Target);
}

void DraftFile::Commit() {
  HoldInterrupts const hold;
  std::vector<SideStep> steps;
  int reason = 0;
  for (std::string const& ending : m_Sides) {
    steps.emplace_back(WithEnding(m_Target, ending), WorkingSide(ending),
                       WorkingSide(ending) + "~");
    reason = steps.back().Take(m_bOverwrite);
    if (reason != 0) break;
  }
  if (reason == 0) reason = MoveMain();
  if (reason == 0) return;
  for (SideStep& step : steps) step.TakeBack();
  throw Failure(m_Name, SystemReason(reason));
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
