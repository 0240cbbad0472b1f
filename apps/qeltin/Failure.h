#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace qeltin::cli {

// What ends a command with status 1. main prints it as "qeltin: error: FILE: what, and where".
class Failure : public std::runtime_error {
 public:
  Failure(std::string const& file, std::string const& what);

  // The same with the number of the line, from 1, where it went wrong.
  Failure(std::string const& file, long long line, std::string const& what);
};

// A mistake in the command line that only shows once options are seen together: status 2.
class UsageFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The reader of standard output has gone: the command ends without a word, as SIGPIPE would end it.
class ReaderGone {};

// Returns `text` in double quotes, cut short where it is long and without what would upset a
// terminal: fit to stand in a message.
std::string Quoted(std::string_view text);

// Returns what the system calls error number `code`.
std::string SystemReason(int code);

}  // namespace qeltin::cli
