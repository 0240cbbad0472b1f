#pragma once

#include <sstream>
#include <string>
#include <vector>

// For tests of the order of virtual operations. An interface is implemented by an object that logs
// which of its operations were called, and called by a source in testing/models/frozen/, which was
// compiled against a copy of the interface that hosts rest on and knows nothing of the real one.
// Whatever moves in the real one, the log shows it.
namespace qeltin::testing {

class CallLog {
 public:
  // Adds "name(a, b, ...)".
  template <typename... Arguments>
  void Add(char const* name, Arguments const&... arguments) {
    std::ostringstream call;
    [[maybe_unused]] char const* separator = "";
    call << name << "(";
    ((call << separator << arguments, separator = ", "), ...);
    call << ")";
    m_Calls.push_back(call.str());
  }

  std::vector<std::string> const& Calls() const { return m_Calls; }

 private:
  std::vector<std::string> m_Calls;
};

}  // namespace qeltin::testing
