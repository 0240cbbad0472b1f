#include "apps/qeltin/Options.h"

#include <cstdio>
#include <vector>

#include "apps/qeltin/TextOutput.h"

namespace qeltin::cli {

void CommonOptions::AddTo(CLI::App& command) {
  command.add_flag("--json", json, "Print one JSON object on standard output");
  command.add_flag("-q,--quiet", quiet, "Keep notes and progress to yourself");
}

void CommonOptions::Note(std::string const& line) const {
  if (!quiet) std::fprintf(stderr, "qeltin: %s\n", line.c_str());
}

void AddPrecision(CLI::App& command, NumberStyle& style) {
  command
      .add_option("--precision", style.decimals,
                  "Decimals to print (0 to 17); without it, as many\n"
                  "as read back to the same number")
      ->check(CLI::Range(0, 17).description(""))
      ->type_name("N");
}

CLI::Validator NumberList(int count, std::string const& form) {
  auto const check = [count, form](std::string& text) {
    std::vector<double> values(count);
    return ParseNumbers(text, values.data(), count) ? std::string()
                                                    : '"' + text + "\" is not " + form;
  };
  return CLI::Validator(check, "");
}

void PrintResult(std::string const& text) {
  TextOutput output;
  output.Buffer() += text;
  output.Buffer() += '\n';
  output.Close();
}

}  // namespace qeltin::cli
