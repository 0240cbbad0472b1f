#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/PlaceReader.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/SurfaceInput.h"
#include "apps/qeltin/TextOutput.h"

namespace qeltin::cli {

namespace {

struct HeightOptions : InputOptions {
  std::string surface;
  std::vector<std::string> at;
  std::string points;
  std::string output;
  bool overwrite = false;
  NumberStyle style;
};

// Writes one answer a place, as lines of x,y,z or as the parts of one JSON object.
class Answers {
 public:
  Answers(HeightOptions const& options, TIN const& tin, TextOutput& output)
      : m_Options(options), m_Tin(tin), m_Output(output) {
    if (m_Options.json) m_Output.Buffer() += "{\"heights\": [";
  }

  void Answer(Place const& place) {
    std::string& text = m_Output.Buffer();
    double z = 0.0;
    bool const hit = m_Tin.GetZ(place.x, place.y, z) && std::isfinite(z);
    if (m_Options.json) text += m_iHits + m_iMisses == 0 ? "\n  {\"x\": " : ",\n  {\"x\": ";
    m_Exact.Append(text, place.x);
    text += m_Options.json ? ", \"y\": " : ",";
    m_Exact.Append(text, place.y);
    text += m_Options.json ? ", \"z\": " : ",";
    if (hit) {
      m_Options.style.Append(text, z);
    } else if (m_Options.json) {
      text += "null";
    }
    text += m_Options.json ? "}" : "\n";
    ++(hit ? m_iHits : m_iMisses);
    m_Output.Spill();
  }

  void End() {
    if (m_Options.json) {
      m_Output.Buffer() += "\n],\n\"hits\": " + std::to_string(m_iHits) +
                           ",\n\"misses\": " + std::to_string(m_iMisses) + "\n}\n";
    }
    m_Output.Close();
    m_Options.Note(std::to_string(m_iHits) + " of " + std::to_string(m_iHits + m_iMisses) +
                   " places lie on the surface");
  }

 private:
  HeightOptions const& m_Options;
  TIN const& m_Tin;
  TextOutput& m_Output;
  NumberStyle m_Exact;  // x and y are the caller's own
  long long m_iHits = 0;
  long long m_iMisses = 0;
};

void AnswerStream(PlaceReader& places, TextOutput& output, bool quiet, Answers& answers) {
  LineReader& lines = places.Lines();
  // Whoever feeds the questions by and by gets the answers by and by.
  lines.BeforeWaiting([&output] { output.Flush(); });
  Progress progress("heights", lines.Size(), quiet || output.IsTerminal());
  Place place;
  while (places.Next(place)) {
    answers.Answer(place);
    progress.Done(lines.Position());
  }
}

void Run(HeightOptions const& options) {
  if (options.at.empty() == options.points.empty()) {
    throw UsageFailure("give either --at X,Y or --points FILE");
  }
  if (options.surface == "-" && options.points == "-") {
    throw UsageFailure("standard input cannot be the surface and the places");
  }
  std::optional<PlaceReader> places;
  if (!options.points.empty()) places.emplace(options.points);
  TextOutput output(options.output, options.overwrite);
  HeldSurface const tin = OpenSurface(options.surface, options);

  Answers answers(options, *tin, output);
  if (places) AnswerStream(*places, output, options.quiet, answers);
  for (std::string const& text : options.at) {
    double xy[2];
    ParseNumbers(text, xy, 2);
    answers.Answer({xy[0], xy[1]});
  }
  answers.End();
}

}  // namespace

void AddHeight(CLI::App& application) {
  auto const options = std::make_shared<HeightOptions>();
  CLI::App* const command =
      application.add_subcommand("height", "Tell the heights of a surface at places");
  command
      ->add_option("surface", options->surface,
                   "A .tin or .ttm surface, or points: an XYZ text, a LAS\n"
                   "file or vector data")
      ->required()
      ->type_name("FILE");
  command->add_option("--at", options->at, "A place; may be given many times")
      ->expected(1)
      ->take_all()
      ->allow_extra_args(false)
      ->check(NumberList(2, "X,Y"))
      ->type_name("X,Y");
  command
      ->add_option("--points", options->points,
                   "A text of places, one a line: x and y, separated by\n"
                   "a comma or blanks, further columns ignored; - is\n"
                   "standard input")
      ->type_name("FILE");
  command->add_option("-o,--output", options->output, "Where to write; without it, standard output")
      ->type_name("FILE");
  command->add_flag("--overwrite", options->overwrite, "Replace an output that exists");
  AddPrecision(*command, options->style);
  options->AddTo(*command);
  command->footer(
      "Prints x,y,z for each place in the order asked, z empty where there is no\n"
      "surface. --precision is for z alone.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
