#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/SurfaceOutput.h"

namespace qeltin::cli {

namespace {

struct MergeOptions : SurfaceOutputOptions {
  std::vector<std::string> surfaces;
};

struct Input {
  std::string name;
  SurfaceFacts facts;
  std::vector<IPoint> points;  // those that are vertices
};

Input ReadInput(std::string const& name, MergeOptions const& options) {
  Input input{name, {}, {}};
  HeldSurface const tin = OpenSurface(name, options);
  input.facts = FactsOf(*tin);
  AppendVertices(*tin, input.points);
  if (input.facts.triangles == 0) throw Failure(name, "holds no triangles");
  std::string const why = WhyNoSurface(input.points);
  if (!why.empty()) throw Failure(name, why);
  return input;
}

Extent ExtentOf(std::vector<Input> const& inputs) {
  Extent extent;
  for (Input const& input : inputs) {
    for (IPoint const& p : input.points) extent.Add(p);
  }
  return extent;
}

// A surface into which points of several others go one after the other.
class MergedSurface {
 public:
  // For the points of this extent.
  explicit MergedSurface(Extent const& extent)
      : m_pTin(MakeEmpty(static_cast<int>(extent.Count()), extent.Bounds().min,
                         extent.Bounds().max)) {}

  // Takes the points of the first input in random order, which is the fast way.
  void Begin(std::vector<IPoint> const& points) {
    for (IPoint const& p : points) m_pTin->LoadPoint(p.x, p.y, p.z);
    m_pTin->Triangulate();
  }

  // Adds a point, unless a vertex stands there: then nothing is left behind, where AddPoint would
  // leave a point without triangles.
  void Add(IPoint const& point) {
    TPoint const p(point);
    TTriangle const* const triangle = m_pTin->GetTriangleWithPoint(p);
    if (triangle != nullptr && triangle->XY_FindVertex(p) != nullptr) return;
    // All points lie within the bounds: only a pool that memory was refused to says no.
    if (m_pTin->AddPoint(p) == nullptr) throw std::bad_alloc();
  }

  TIN const& Surface() const { return *m_pTin; }

 private:
  HeldSurface m_pTin;
};

void Fill(MergedSurface& merged, std::vector<Input> const& inputs, bool quiet) {
  double total = 0.0;
  for (Input const& input : inputs) total += static_cast<double>(input.points.size());
  Progress progress("merge", total, quiet);
  merged.Begin(inputs.front().points);
  auto done = static_cast<double>(inputs.front().points.size());
  progress.Done(done);
  for (std::size_t i = 1; i < inputs.size(); ++i) {
    for (IPoint const& p : inputs[i].points) {
      merged.Add(p);
      progress.Done(done += 1.0);
    }
  }
}

void Tell(MergeOptions const& options, std::vector<Input> const& inputs,
          SurfaceFacts const& merged) {
  long long duplicates = -merged.vertices;
  for (Input const& input : inputs) duplicates += static_cast<long long>(input.points.size());
  if (options.json) {
    nlohmann::ordered_json before = nlohmann::ordered_json::array();
    for (Input const& input : inputs) {
      before.push_back({{"file", input.name}});
      before.back().update(Summary(input.facts, options.style));
    }
    PrintResult(Dump({{"file", options.output},
                      {"before", before},
                      {"after", Summary(merged, options.style)},
                      {"duplicates", duplicates},
                      {"bounds", ToJson(merged.bounds, options.style)}}));
    return;
  }
  if (options.quiet) return;
  std::vector<SurfaceFacts> before;
  for (Input const& input : inputs) before.push_back(input.facts);
  Report report(options.style);
  AddChange(report, before, merged, options.style);
  report.Add("duplicates", duplicates);
  PrintResult(report.Text());
}

void Run(MergeOptions const& options) {
  options.CheckOutput();
  DraftFile draft(options.output, options.overwrite);
  std::vector<Input> inputs;
  for (std::string const& name : options.surfaces) inputs.push_back(ReadInput(name, options));

  Extent const extent = ExtentOf(inputs);
  if (extent.Count() > static_cast<long long>(MOST_POINTS)) {
    throw Failure(options.output, "there are more than 1000000000 points");
  }
  MergedSurface merged(extent);
  Fill(merged, inputs, options.quiet);
  RequireVisible(merged.Surface(), options.output);
  SaveSurface(merged.Surface(), draft.WorkingName(), options.output, options.quiet);
  draft.Commit();
  Tell(options, inputs, FactsOf(merged.Surface()));
}

}  // namespace

void AddMerge(CLI::App& application) {
  auto const options = std::make_shared<MergeOptions>();
  CLI::App* const command =
      application.add_subcommand("merge", "Make one surface of the points of several");
  command
      ->add_option("surfaces", options->surfaces, "Two or more .tin or .ttm surfaces, or XYZ texts")
      ->required()
      ->expected(2, CLI::detail::expected_max_vector_size)
      ->type_name("FILE");
  options->AddTo(*command);
  command->footer(
      "The triangles are made anew from the points of all. Where points of two surfaces\n"
      "are less than 0.001 apart in both x and y, that of the surface named first stays.\n"
      "What a filter has hidden is visible again, and gaps between the surfaces are\n"
      "spanned: filter the result.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
