#include "apps/qeltin/TextOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace {

int OpenForWriting(std::string const& path, int flags, std::string const& name) {
  int const descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC | flags, 0666);
  if (descriptor < 0) throw Failure(name, SystemReason(errno));
  return descriptor;
}

}  // namespace

TextOutput::TextOutput(std::string const& name, bool overwrite) : m_Name(name) {
  if (name.empty() || name == "-") {
    m_Name = "standard output";
    m_iDescriptor = STDOUT_FILENO;
  } else if (IsDevice(name)) {
    m_iDescriptor = OpenForWriting(name, O_NOCTTY, name);
  } else {
    m_File.emplace(name, overwrite);
    m_iDescriptor = OpenForWriting(m_File->WorkingName(), O_CREAT | O_EXCL, name);
  }
  m_Buffer.reserve(LARGE + 4096);
}

TextOutput::~TextOutput() {
  if (m_iDescriptor > STDOUT_FILENO) close(m_iDescriptor);
}

void TextOutput::Flush() {
  std::string_view rest = m_Buffer;
  while (!rest.empty()) {
    ssize_t const written = write(m_iDescriptor, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EPIPE) {
      throw ReaderGone();
    } else if (errno != EINTR) {
      throw Failure(m_Name, SystemReason(errno));
    }
  }
  m_Buffer.clear();
}

bool TextOutput::IsTerminal() const { return isatty(m_iDescriptor) == 1; }

void TextOutput::Close() {
  Flush();
  if (!m_File) return;
  bool const whole = fsync(m_iDescriptor) == 0;
  int const reason = errno;
  bool const closed = close(m_iDescriptor) == 0;
  m_iDescriptor = -1;
  if (!whole || !closed) throw Failure(m_Name, SystemReason(whole ? errno : reason));
  m_File->Commit();
}

}  // namespace qeltin::cli
