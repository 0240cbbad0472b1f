#include <algorithm>
#include <memory>
#include <string>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/LasInput.h"
#include "apps/qeltin/PointLayer.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Report.h"
#include "apps/qeltin/Soundness.h"
#include "apps/qeltin/StoredFile.h"
#include "apps/qeltin/SurfaceInput.h"
#include "apps/qeltin/XyzText.h"

namespace qeltin::cli {

namespace {

using Json = nlohmann::ordered_json;

struct InfoOptions : InputOptions {
  std::string file;
  bool check = false;
  NumberStyle style;
};

// What is told about a file, for people and for scripts.
class Answer {
 public:
  Answer(InfoOptions const& options, FileKind kind) : m_Options(options), m_Report(options.style) {
    m_Json["format"] = KindWord(kind);
  }

  void Add(std::string const& label, char const* key, std::string const& text, Json const& json) {
    if (!label.empty()) m_Report.Add(label, text);
    if (key != nullptr) m_Json[key] = json;
  }

  void Add(SurfaceFacts const& facts) {
    m_Report.Add(facts);
    AddTo(m_Json, facts, m_Options.style);
  }

  void Add(Extent const& extent) {
    NumberStyle const& style = m_Options.style;
    Box const& box = extent.Bounds();
    m_Report.Add("points", extent.Count());
    m_Report.Add("bounds", box);
    m_Report.Add("heights", style.Text(box.min.z) + " to " + style.Text(box.max.z));
    m_Json["points"] = extent.Count();
    m_Json["bounds"] = ToJson(box, style);
    m_Json["height_range"] = {style.Rounded(box.min.z), style.Rounded(box.max.z)};
  }

  void AddBytes(StoredFile const& file) {
    auto const bytes = static_cast<long long>(file.bytes);
    Add("bytes", "bytes", std::to_string(bytes), bytes);
  }

  void Print() const { PrintResult(m_Options.json ? Dump(m_Json) : m_Report.Text()); }

 private:
  InfoOptions const& m_Options;
  Report m_Report;
  Json m_Json;
};

void AddFormat(Answer& answer, FileKind kind, StoredFile const& file) {
  std::string text = kind == FileKind::NATIVE ? "native surface" : "Trimble terrain model";
  if (file.version >= 0) text += ", version " + std::to_string(file.version);
  answer.Add("format", "version", text, file.version < 0 ? Json(nullptr) : Json(file.version));
}

// --- The check -----------------------------------------------------------------------------------

// Returns "triangle 5 at 10 20", or nothing.
std::string PlaceOf(Finding const& finding, NumberStyle style) {
  static constexpr char const* ELEMENTS[] = {"", "point", "triangle", "entry"};
  if (finding.element == Finding::Element::NONE) return finding.detail;
  std::string text = ELEMENTS[static_cast<int>(finding.element)];
  text += ' ' + std::to_string(finding.position);
  if (finding.placed) {
    text += " at " + style.Text(finding.place.x) + ' ' + style.Text(finding.place.y);
  }
  return text;
}

Json ToJson(Finding const& finding, NumberStyle style) {
  Json json = {{"kind", WordFor(finding.flaw)}, {"count", finding.count}};
  if (finding.element == Finding::Element::POINT) json["point"] = finding.position;
  if (finding.element == Finding::Element::TRIANGLE) json["triangle"] = finding.position;
  if (finding.element == Finding::Element::ENTRY) json["entry"] = finding.position;
  if (finding.placed) {
    json["place"] = {style.Rounded(finding.place.x), style.Rounded(finding.place.y)};
  }
  if (!finding.detail.empty()) json["first"] = finding.detail;
  return json;
}

bool IsDelaunay(std::vector<Finding> const& findings) {
  return std::none_of(findings.begin(), findings.end(),
                      [](Finding const& finding) { return finding.flaw == Flaw::NOT_DELAUNAY; });
}

// Adds what was found. Returns how many kinds of fault there are.
int AddFindings(Answer& answer, std::vector<Finding> const& findings, FileKind kind,
                NumberStyle style) {
  Json faults = Json::array();
  Json remarks = Json::array();
  for (Finding const& finding : findings) {
    (IsFault(finding.flaw, kind) ? faults : remarks).push_back(ToJson(finding, style));
  }
  int const count = static_cast<int>(faults.size());
  std::string text = count == 0 ? "sound" : "not sound";
  Json json = {{"sound", count == 0}, {"faults", faults}, {"remarks", remarks}};
  if (IsStoredSurface(kind)) {
    bool const delaunay = IsDelaunay(findings);
    if (!delaunay) text += ", not Delaunay everywhere";
    json["delaunay"] = delaunay;
  }
  answer.Add("check", "check", text, json);
  for (bool const wanted : {true, false}) {
    for (Finding const& finding : findings) {
      if (IsFault(finding.flaw, kind) != wanted) continue;
      std::string const place = PlaceOf(finding, style);
      answer.Add((wanted ? "fault: " : "remark: ") + std::string(MeaningOf(finding.flaw)), nullptr,
                 std::to_string(finding.count) + (place.empty() ? "" : ", first " + place),
                 nullptr);
    }
  }
  return count;
}

void CheckSurface(InfoOptions const& options, FileKind kind) {
  StoredFile const file = LookAt(options.file, Wholeness::HEADER);
  Mesh mesh;
  std::vector<Finding> findings;
  {
    std::chrono::duration<double> const guess(file.bytes * 3e-8);
    Progress const progress("check", guess, options.quiet);
    mesh = kind == FileKind::NATIVE ? ReadNativeMesh(options.file, file.version)
                                    : ReadTrimbleMesh(options.file);
    findings = CheckMesh(mesh);
  }
  Answer answer(options, kind);
  AddFormat(answer, kind, file);
  answer.Add(FactsOf(mesh));
  answer.AddBytes(file);
  int const faults = AddFindings(answer, findings, kind, options.style);
  answer.Print();
  if (faults == 0) return;
  throw Failure(options.file, "is not sound: " + std::to_string(faults) +
                                  (faults == 1 ? " kind of fault" : " kinds of faults"));
}

// --- What a file holds ---------------------------------------------------------------------------

void TellSurface(InfoOptions const& options, FileKind kind) {
  // Before the surface is loaded: loading writes a native file of an older version anew.
  StoredFile const file = LookAt(options.file);
  HeldSurface const tin = OpenSurface(options.file, options);
  Answer answer(options, kind);
  AddFormat(answer, kind, file);
  answer.Add(FactsOf(*tin));
  answer.AddBytes(file);
  answer.Print();
}

void AddText(InfoOptions const& options, Answer& answer, Extent& extent) {
  XyzSummary const text =
      ReadXyz(options.file, options, [&extent](IPoint const& p) { extent.Add(p); });
  std::string const form = text.comma ? "comma" : "blank";
  answer.Add("format", "form", "XYZ text, separated by " + form + 's', form);
}

void AddLas(InfoOptions const& options, Answer& answer, Extent& extent) {
  LasSummary const las =
      ReadLas(options.file, options, [&extent](IPoint const& p) { extent.Add(p); });
  std::string const version = "1." + std::to_string(las.header.minor_version);
  std::string const format = std::to_string(las.header.point_format);
  answer.Add("format", "version", "LAS " + version + ", point format " + format, version);
  answer.Add("", "point_format", "", las.header.point_format);
  std::string text;
  Json json = Json::object();
  for (std::size_t i = 0; i < CLASS_COUNT; ++i) {
    if (las.classes[i] == 0) continue;
    if (!text.empty()) text += ", ";
    text += std::to_string(i) + " (" + std::to_string(las.classes[i]) + ')';
    json[std::to_string(i)] = las.classes[i];
  }
  answer.Add("withheld", "withheld", std::to_string(las.withheld), las.withheld);
  answer.Add("classes", "classes", text, json);
}

void AddVector(InfoOptions const& options, Answer& answer, Extent& extent) {
  PointLayer const vector =
      ReadPointLayer(options.file, options, [&extent](IPoint const& p) { extent.Add(p); });
  answer.Add("format", "driver", "vector data, " + vector.driver, vector.driver);
  answer.Add("layer", "layer", vector.layer, vector.layer);
}

void TellPoints(InfoOptions const& options, FileKind kind) {
  StoredFile const file = LookAt(options.file);
  Answer answer(options, kind);
  Extent extent;
  if (kind == FileKind::LAS) {
    AddLas(options, answer, extent);
  } else if (kind == FileKind::VECTOR) {
    AddVector(options, answer, extent);
  } else {
    AddText(options, answer, extent);
  }
  answer.Add(extent);
  answer.AddBytes(file);
  // To get here, every point has been read.
  if (options.check) AddFindings(answer, {}, kind, options.style);
  answer.Print();
}

void Run(InfoOptions const& options) {
  FileKind const kind = KindOf(options.file);
  if (!IsStoredSurface(kind)) {
    TellPoints(options, kind);
  } else if (options.check) {
    CheckSurface(options, kind);
  } else {
    TellSurface(options, kind);
  }
}

}  // namespace

void AddInfo(CLI::App& application) {
  auto const options = std::make_shared<InfoOptions>();
  CLI::App* const command =
      application.add_subcommand("info", "Tell what a surface or a file of points holds");
  command
      ->add_option("file", options->file,
                   "A .tin or .ttm surface, an XYZ text, a LAS file or\n"
                   "vector data")
      ->required()
      ->type_name("FILE");
  command->add_flag("--check", options->check,
                    "Also check the structure of a surface as its file has\n"
                    "it; the file is not rewritten");
  AddPrecision(*command, options->style);
  options->AddTo(*command);
  command->footer(
      "With --check the exit status is 1 where the structure is not sound; each kind of\n"
      "fault is told with its number and its first place, counted from 0: the file cut\n"
      "short; corners or neighbours that the file does not have; neighbours that do not\n"
      "lead back or share no side; triangles that run counter-clockwise, except in a\n"
      "Trimble model. Duplicate and unconnected points and flat triangles are remarks. So\n"
      "are sides that are not Delaunay, as thinning and breaklines leave them: a point\n"
      "inside the circle of the triangle beside it, beyond rounding.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
