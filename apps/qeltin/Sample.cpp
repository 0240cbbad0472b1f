#include <charconv>
#include <cmath>
#include <map>
#include <memory>
#include <string>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Options.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Survey.h"
#include "apps/qeltin/TextOutput.h"

namespace qeltin::cli {

namespace {

std::map<std::string, SurveyPattern> const PATTERNS = {{"swaths", SurveyPattern::SWATHS},
                                                       {"lines", SurveyPattern::LINES},
                                                       {"grid", SurveyPattern::GRID},
                                                       {"random", SurveyPattern::RANDOM}};

struct SampleOptions : CommonOptions {
  long long points = 20000;
  std::uint64_t seed = 1;
  std::string pattern = "swaths";
  std::string output;
  bool overwrite = false;
};

// Appends `thousandths` / 1000 with three decimals.
void AppendThousandths(std::string& text, long long thousandths) {
  if (thousandths < 0) {
    text += '-';
    thousandths = -thousandths;
  }
  char digits[24];
  auto const end = std::to_chars(digits, digits + sizeof digits, thousandths / 1000).ptr;
  text.append(digits, end);
  auto const rest = static_cast<int>(thousandths % 1000);
  text += {'.', static_cast<char>('0' + rest / 100), static_cast<char>('0' + rest / 10 % 10),
           static_cast<char>('0' + rest % 10)};
}

void Run(SampleOptions const& options) {
  bool const to_file = !options.output.empty() && options.output != "-";
  if (options.json && !to_file) {
    throw UsageFailure("--json needs -o FILE: the points themselves go to standard output");
  }
  TextOutput output(options.output, options.overwrite);
  {
    Progress progress("sample", static_cast<double>(options.points), options.quiet);
    double done = 0.0;
    MakeSurvey(PATTERNS.at(options.pattern), options.points, options.seed, [&](IPoint const& p) {
      std::string& text = output.Buffer();
      AppendThousandths(text, std::llround(p.x * 1000.0));
      text += ' ';
      AppendThousandths(text, std::llround(p.y * 1000.0));
      text += ' ';
      AppendThousandths(text, std::llround(p.z * 1000.0));
      text += '\n';
      output.Spill();
      progress.Done(done += 1.0);
    });
    output.Close();
  }
  if (options.json) {
    nlohmann::ordered_json const result = {{"file", options.output},
                                           {"points", options.points},
                                           {"pattern", options.pattern},
                                           {"seed", options.seed}};
    PrintResult(result.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
  } else if (to_file) {
    options.Note(options.output + ": " + std::to_string(options.points) + " points");
  }
}

}  // namespace

void AddSample(CLI::App& application) {
  auto const options = std::make_shared<SampleOptions>();
  CLI::App* const command = application.add_subcommand("sample", "Make a survey to try things on");
  command->add_option("--points", options->points, "How many points (default 20000)")
      ->check(CLI::Range(1LL, 1'000'000'000LL).description(""))
      ->type_name("N");
  command->add_option("--seed", options->seed, "Equal seeds make equal surveys (default 1)")
      ->type_name("S");
  command
      ->add_option("--pattern", options->pattern,
                   "How the points lie: swaths (default), lines, grid\nor random")
      ->check(CLI::IsMember({"swaths", "lines", "grid", "random"}).description(""))
      ->type_name("NAME");
  command
      ->add_option("-o,--output", options->output, "The text to write; without it, standard output")
      ->type_name("FILE");
  command->add_flag("--overwrite", options->overwrite, "Replace an output that exists");
  options->AddTo(*command);
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
