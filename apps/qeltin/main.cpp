#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <new>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Interrupt.h"
#include "apps/qeltin/Options.h"

namespace {

enum ExitStatus { SUCCESS = 0, FAILURE = 1, WRONG_USAGE = 2 };

int Complain(char const* what, ExitStatus status) {
  std::fprintf(stderr, "qeltin: error: %s\n", what);
  if (status == WRONG_USAGE) std::fprintf(stderr, "--help tells what is possible\n");
  return status;
}

// A standard stream that came closed must not be taken by the first file that is opened.
void HoldStandardStreams() {
  while (true) {
    int const descriptor = open("/dev/null", O_RDONLY);
    if (descriptor > STDERR_FILENO) close(descriptor);
    if (descriptor < 0 || descriptor > STDERR_FILENO) return;
  }
}

std::string Names(CLI::App const& application) {
  std::string names;
  for (CLI::App const* command : application.get_subcommands({})) {
    names += (names.empty() ? "" : ", ") + command->get_name();
  }
  return names;
}

int Run(CLI::App& application, int argc, char** argv) {
  using namespace qeltin::cli;
  AddSample(application);
  AddBuild(application);
  AddInfo(application);
  AddHeight(application);
  AddConvert(application);
  AddGrid(application);
  AddVolume(application);
  AddFilter(application);
  AddSmooth(application);
  AddMerge(application);
  AddDecimate(application);
  AddIsolines(application);
  AddContours(application);
  AddProfile(application);
  AddRender(application);
  AddView(application);
  for (CLI::App* command : application.get_subcommands({})) command->group("Commands");
  application.footer("'qeltin COMMAND --help' tells the options of a command.");
  try {
    application.parse(argc, argv);
    if (application.get_subcommands().empty()) {
      throw UsageFailure("which command? " + Names(application));
    }
  } catch (CLI::Success const& e) {
    return application.exit(e);
  } catch (CLI::ParseError const& e) {
    return Complain(e.what(), WRONG_USAGE);
  } catch (UsageFailure const& e) {
    return Complain(e.what(), WRONG_USAGE);
  } catch (ReaderGone const&) {
    signal(SIGPIPE, SIG_DFL);
    raise(SIGPIPE);
  } catch (std::bad_alloc const&) {
    return Complain("out of memory", FAILURE);
  } catch (std::exception const& e) {
    return Complain(e.what(), FAILURE);
  }
  return SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  HoldStandardStreams();
  // Both are then ordinary failures to write, and leave time to tidy up.
  signal(SIGXFSZ, SIG_IGN);
  signal(SIGPIPE, SIG_IGN);
  qeltin::cli::WatchForInterrupts();

  CLI::App application(
      "Triangulated surfaces of terrain and seabed. Heights are up; units are the "
      "input's own.",
      "qeltin");
  application.set_version_flag("--version", "qeltin " QELTIN_VERSION);
  application.require_subcommand(0, 1);
  auto const formatter = application.get_formatter();
  formatter->column_width(28);
  formatter->label("SUBCOMMAND", "COMMAND");
  formatter->label("Positionals", "Arguments");
  formatter->label("REQUIRED", "");
  return Run(application, argc, argv);
}
