#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace qeltin::testing {

// Runs `act` in a child process, which ends with what it returns, and returns how the child ended,
// as waitpid tells it.
template <typename Act>
int InAChild(Act act) {
  pid_t const child = fork();
  if (child == 0) _exit(act());
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

}  // namespace qeltin::testing
