#include "apps/qeltin/SurfaceInput.h"

#include <chrono>
#include <optional>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Interrupt.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/StoredFile.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/XyzText.h"
#include "qeltin/persistence/TINFile.h"
#include "qeltin/platform/Utf8.h"

namespace qeltin::cli {

namespace {

// Returns why the library loads nothing from a file that looked right from outside.
std::string WhyNotLoaded(std::string const& name, FileKind kind) {
  std::wstring const wide = FromUtf8(name);
  TINFile file;
  TIN tin;
  if (kind == FileKind::NATIVE) {
    file.LoadTIN(wide.c_str(), tin);
  } else {
    file.LoadTrimbleTINModel(wide.c_str(), tin);
  }
  if (file.LastError() != 0) return SystemReason(file.LastError());
  switch (file.LastFault()) {
    case TINFile::Fault::NONE:
    case TINFile::Fault::TRUNCATED:
      return "holds no points";
    case TINFile::Fault::UNSOUND_TABLES:
      return "is damaged: its tables are unsound";
    case TINFile::Fault::WRONG_MAGIC:
    case TINFile::Fault::UNKNOWN_VERSION:
      break;
  }
  return "is of a kind that the library does not read";
}

std::unique_ptr<TIN> LoadStored(std::string const& name, InputOptions const& options) {
  StoredFile const file = LookAt(name);
  std::chrono::duration<double> const guess(file.bytes * 5e-9);
  Progress const progress("load", guess, options.quiet);
  // The library rewrites a file of an older version beside itself.
  std::optional<HoldInterrupts> hold;
  if (file.version >= 0 && file.version < TINFile::m_iCurrentVersion) hold.emplace();
  auto tin = std::make_unique<TIN>();
  if (!tin->Load(FromUtf8(name).c_str())) {
    throw Failure(name, WhyNotLoaded(name, KindByName(name)));
  }
  if (LookAt(name).version > file.version) {
    options.Note(name + ": was of version " + std::to_string(file.version) +
                 " and has been rewritten as version " +
                 std::to_string(TINFile::m_iCurrentVersion));
  }
  return tin;
}

std::unique_ptr<TIN> BuildFromText(std::string const& name, InputOptions const& options) {
  std::vector<IPoint> points;
  AppendPoints(name, options, points);
  std::string const why = WhyNoSurface(points);
  if (!why.empty()) throw Failure(name, why);
  return BuildSurface(points, false, {}, options.quiet);
}

}  // namespace

void InputOptions::AddTo(CLI::App& command) {
  command.add_flag("--lenient", lenient,
                   "Read a text as a stream of triples up to the first\n"
                   "that is none; otherwise each line must be a point");
  CommonOptions::AddTo(command);
}

std::unique_ptr<TIN> OpenSurface(std::string const& name, InputOptions const& options) {
  bool const text = KindByName(name) == FileKind::TEXT;
  return text ? BuildFromText(name, options) : LoadStored(name, options);
}

void AppendPoints(std::string const& name, InputOptions const& options,
                  std::vector<IPoint>& points) {
  if (KindByName(name) == FileKind::TEXT) {
    if (name != "-") LookAt(name);
    ReadXyz(name, options, [&points](IPoint const& p) { points.push_back(p); });
    return;
  }
  std::unique_ptr<TIN> const tin = LoadStored(name, options);
  Box world;
  tin->GetWorldBounds(world.min, world.max);
  for (int i = 0; i < tin->GetNumberOfPoints(); ++i) {
    TPoint const& p = *tin->GetPoint(i);
    if (!IsSeedCorner(p, world)) points.push_back({p.x, p.y, p.z});
  }
}

void SaveSurface(TIN const& tin, std::string const& file, std::string const& told, bool quiet) {
  std::chrono::duration<double> const guess(2.5e-7 * tin.GetNumberOfPoints());
  Progress const progress("write", guess, quiet);
  TINFile writer;
  bool const tried = writer.SaveTIN(FromUtf8(file).c_str(), tin);
  if (writer.LastError() != 0) throw Failure(told, SystemReason(writer.LastError()));
  if (!tried) throw Failure(told, "out of memory");
}

}  // namespace qeltin::cli
