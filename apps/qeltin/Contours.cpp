#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "apps/qeltin/ContourDrawing.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Interrupt.h"
#include "apps/qeltin/LineTally.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/WholeIsolines.h"
#include "qeltin/contour/TINContourCreator.h"

namespace qeltin::cli {

namespace {

struct ContourOptions : LevelLineOptions {
  double min_length = 0.0;
  long long index_every = 5;
  bool as_generated = false;
};

// Hands each line on to the file, or to the picture.
class Sink {
 public:
  explicit Sink(ContourOptions const& options) : m_Options(options) {
    if (ContourDrawing::IsFor(options.vector.output)) {
      m_pDrawing =
          std::make_unique<ContourDrawing>(options.vector.output, options.vector.overwrite);
      return;
    }
    Layer const layer{.name = "contours",
                      .counter = "line",
                      .fields = {{"level", FieldType::REAL},
                                 {"index", FieldType::INTEGER},
                                 {"closed", FieldType::INTEGER},
                                 {"length", FieldType::REAL}}};
    m_pOutput = CreateVectorOutput(options.vector, layer, options);
  }

  void Take(std::vector<TPoint> const& points, bool closed, Level const& level) {
    double const length = PlanLength(points);
    if (length < m_Options.min_length) {
      ++m_Tally.left_out;
      return;
    }
    m_Tally.Add(points, closed, length);
    bool const index = m_Options.index_every > 0 && level.number % m_Options.index_every == 0;
    if (m_pDrawing != nullptr) {
      m_pDrawing->Add(points, index, m_Options.vector.style.Text(level.height));
    } else {
      m_pOutput->Add({points, {}, {level.height, index ? 1LL : 0LL, closed ? 1LL : 0LL, length}});
    }
  }

  LineTally End(std::size_t levels) {
    m_pDrawing != nullptr ? m_pDrawing->Close() : m_pOutput->Close();
    m_Tally.levels = static_cast<long long>(levels);
    return m_Tally;
  }

 private:
  ContourOptions const& m_Options;
  std::unique_ptr<VectorOutput> m_pOutput;
  std::unique_ptr<ContourDrawing> m_pDrawing;
  LineTally m_Tally;
};

void Chart(TIN const& tin, std::vector<Level> const& levels, bool quiet, Sink& sink) {
  Progress progress("contours", static_cast<double>(levels.size()), quiet);
  WholeIsolines whole(tin, HeightsOf(levels));
  for (std::size_t i = 0; i < levels.size(); ++i) {
    for (Isoline const& line : whole.At(i)) {
      if (line.points.size() > 1) sink.Take(line.points, line.closed, levels[i]);
    }
    progress.Done(static_cast<double>(i + 1));
  }
}

// The lines of the library as they are.
void Generate(TIN const& tin, std::vector<Level> const& levels, bool quiet, Sink& sink) {
  constexpr double TRIANGLES_A_SECOND = 1e7;
  Progress const progress(
      "contours",
      std::chrono::duration<double>((1.0 + static_cast<double>(levels.size()) / 20.0) *
                                    tin.GetNumberOfTriangles() / TRIANGLES_A_SECOND),
      quiet);
  std::atomic<bool> running{true};
  UndoOnInterrupt const stop([&running] { running = false; });
  ContourList list;
  TINContourCreator(&tin).AddLevels(HeightsOf(levels), list, running);
  auto level = levels.begin();
  for (int i = 0; i < list.Size(); ++i) {
    while (level->height != list[i].Level()) ++level;
    std::vector<TPoint> points;
    for (int k = 0; k < list[i].NumPoints(); ++k) {
      points.emplace_back(list[i][k].x, list[i][k].y, level->height);
    }
    sink.Take(points, list[i].IsClosed(), *level);
  }
}

void Run(ContourOptions const& options) {
  options.levels.Check();
  Sink sink(options);
  HeldSurface const tin = OpenSurface(options.surface, options);
  SurfaceFacts const facts = FactsOf(*tin);
  if (facts.visible_triangles == 0) {
    throw Failure(options.surface, "no triangle is visible: there is no surface");
  }
  std::vector<Level> const levels = options.levels.LevelsOf(facts, options.surface);
  (options.as_generated ? Generate : Chart)(*tin, levels, options.quiet, sink);
  Tell(options, sink.End(levels.size()), "short line is", "short lines are");
}

}  // namespace

void AddContours(CLI::App& application) {
  auto const options = std::make_shared<ContourOptions>();
  CLI::App* const command =
      application.add_subcommand("contours", "Draw the contours of a surface for a chart");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  options->levels.AddTo(*command);
  command
      ->add_option("--min-length", options->min_length, "Leave out lines that are shorter in plan")
      ->check(CLI::Validator(CLI::NonNegativeNumber).description(""))
      ->type_name("L");
  command
      ->add_option("--index-every", options->index_every,
                   "Mark every N-th level from the base as an index\ncontour: 5 without it, 0 for "
                   "none")
      ->check(CLI::Validator(CLI::NonNegativeNumber).description(""))
      ->type_name("N");
  command->add_flag("--as-generated", options->as_generated,
                    "Write the lines as the library's contour creator\nleaves them");
  options->vector.AddTo(*command);
  options->AddTo(*command);
  command->footer(
      "Writes lines with heights, and the fields line, which counts them, level, index\n"
      "(1 on index contours), closed and length. Each line is whole: closed, or from\n"
      "brim to brim of the surface. Higher ground is to the right, and no two lines\n"
      "cross. A vertex at a level counts as above it.\n"
      "An output in .svg is a picture, with the heights written along index contours.\n"
      "--as-generated writes what programs on the library's contour creator get: closed\n"
      "lines with a doubled last point and a gap, and straight links where a line was\n"
      "started between its ends; vertices at a level are lifted by 1e-8 before.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
