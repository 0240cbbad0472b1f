#include <memory>
#include <string>

#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Report.h"
#include "apps/qeltin/StoredFile.h"
#include "apps/qeltin/SurfaceInput.h"
#include "apps/qeltin/TextOutput.h"

namespace qeltin::cli {

namespace {

using Json = nlohmann::ordered_json;

struct ConvertOptions : InputOptions {
  std::string input;
  std::string output;
  bool overwrite = false;
  NumberStyle style;
};

Json Head(ConvertOptions const& options, FileKind to) {
  return {{"input", options.input},
          {"input_format", KindWord(KindOf(options.input))},
          {"file", options.output},
          {"format", KindWord(to)}};
}

void ToSurface(ConvertOptions const& options) {
  DraftFile draft(options.output, options.overwrite);
  Json json = Head(options, FileKind::NATIVE);
  HeldSurface const tin = OpenSurface(options.input, options);
  SurfaceFacts const facts = FactsOf(*tin);
  SaveSurface(*tin, draft.WorkingName(), options.output, options.quiet);
  draft.Commit();
  if (options.json) {
    AddTo(json, facts, options.style);
    json["unconnected"] = facts.data_points - facts.vertices;
    PrintResult(Dump(json));
  } else if (!options.quiet) {
    Report report(options.style);
    report.Add(facts);
    report.Add("unconnected", facts.data_points - facts.vertices);
    PrintResult(report.Text());
  }
}

void ToText(ConvertOptions const& options) {
  bool const to_file = options.output != "-";
  if (options.json && !to_file) {
    throw UsageFailure(
        "--json needs a file as output: the points themselves go to standard output");
  }
  Json json = Head(options, FileKind::TEXT);
  TextOutput output(options.output, options.overwrite);
  Extent extent;
  ReadPoints(options.input, options, [&](IPoint const& p) {
    std::string& text = output.Buffer();
    options.style.Append(text, p.x);
    text += ',';
    options.style.Append(text, p.y);
    text += ',';
    options.style.Append(text, p.z);
    text += '\n';
    output.Spill();
    extent.Add(p);
  });
  output.Close();
  if (options.json) {
    json["points"] = extent.Count();
    json["bounds"] = ToJson(extent.Bounds(), options.style);
    PrintResult(Dump(json));
  } else if (to_file && !options.quiet) {
    Report report(options.style);
    report.Add("points", extent.Count());
    report.Add("bounds", extent.Bounds());
    PrintResult(report.Text());
  }
}

void Run(ConvertOptions const& options) {
  switch (KindByName(options.output)) {
    case FileKind::NATIVE:
      ToSurface(options);
      break;
    case FileKind::TEXT:
      ToText(options);
      break;
    case FileKind::TRIMBLE:
    case FileKind::LAS:
    case FileKind::VECTOR:
      throw UsageFailure(Quoted(options.output) +
                         ": such files are not written: a surface ends in .tin, a text in .xyz, "
                         ".txt or .csv");
  }
}

}  // namespace

void AddConvert(CLI::App& application) {
  auto const options = std::make_shared<ConvertOptions>();
  CLI::App* const command =
      application.add_subcommand("convert", "Turn a surface or points into a surface or a text");
  command
      ->add_option("input", options->input,
                   "A .tin or .ttm surface, an XYZ text (- is standard\n"
                   "input), a LAS file or vector data")
      ->required()
      ->type_name("IN");
  command
      ->add_option("output", options->output,
                   "A surface where its name ends in .tin, otherwise a\n"
                   "text; - is standard output")
      ->required()
      ->type_name("OUT");
  command->add_flag("--overwrite", options->overwrite, "Replace an output that exists");
  AddPrecision(*command, options->style);
  options->AddTo(*command);
  command->footer(
      "A surface stays as it is when it becomes a surface: points, triangles and marks.\n"
      "Points become the surface that 'build' makes of them; 'build' also takes several\n"
      "files, bounds, and the order of the points. A text has one x,y,z a line, with as\n"
      "many digits as read back to the same number rather than six decimals, and of a\n"
      "surface its data points.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
