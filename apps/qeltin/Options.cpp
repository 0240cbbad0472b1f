#include "apps/qeltin/Options.h"

#include <cstdio>
#include <string_view>
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

void AddCrs(CLI::App& command, std::string& crs, std::string const& help) {
  auto const check = [](std::string const& text) {
    constexpr std::string_view AUTHORITY = "EPSG:";
    std::string const digits = text.starts_with(AUTHORITY) ? text.substr(AUTHORITY.size()) : "";
    bool const good = !digits.empty() && digits.size() < 10 &&
                      digits.find_first_not_of("0123456789") == std::string::npos;
    return good ? std::string() : '"' + text + "\" is not EPSG:nnnn";
  };
  command.add_option("--crs", crs, help)->check(CLI::Validator(check, ""))->type_name("EPSG:nnnn");
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
