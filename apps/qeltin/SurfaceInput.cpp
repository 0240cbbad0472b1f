#include "apps/qeltin/SurfaceInput.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Interrupt.h"
#include "apps/qeltin/LasInput.h"
#include "apps/qeltin/Memory.h"
#include "apps/qeltin/PointLayer.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/StoredFile.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/Sweep.h"
#include "apps/qeltin/XyzText.h"
#include "qeltin/persistence/TINFile.h"
#include "qeltin/platform/Utf8.h"

namespace qeltin::cli {

namespace {

// Returns how much memory a surface takes, in words that follow others, where that is known.
std::string WantedToLoad(std::string const& name) {
  StoredFile const file = LookAt(name);
  if (file.version != TINFile::m_iCurrentVersion) return {};
  constexpr double BYTES_A_BYTE = 2.6;  // two pools of full records against points and ordinals
  return ": that takes about " + SizeText(BYTES_A_BYTE * file.bytes);
}

// Returns why the library loads nothing from a file that looked right from outside.
std::string WhyNotLoaded(std::string const& name, FileKind kind) {
  std::wstring const wide = FromUtf8(name);
  TINFile file;
  HeldSurface const scratch = MakeEmpty(1, {}, {});
  if (kind == FileKind::NATIVE) {
    file.LoadTIN(wide.c_str(), *scratch);
  } else {
    file.LoadTrimbleTINModel(wide.c_str(), *scratch);
  }
  if (file.LastError() == ENOMEM) return "not enough memory to load it" + WantedToLoad(name);
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

HeldSurface LoadStored(std::string const& name, InputOptions const& options) {
  StoredFile const file = LookAt(name);
  std::chrono::duration<double> const guess(file.bytes * 5e-9);
  Progress const progress("load", guess, options.quiet);
  // The library rewrites a file of an older version beside itself.
  std::optional<HoldInterrupts> hold;
  if (file.version >= 0 && file.version < TINFile::m_iCurrentVersion) hold.emplace();
  HeldSurface tin = OpenStored(FromUtf8(name).c_str());
  if (tin == nullptr) throw Failure(name, WhyNotLoaded(name, KindByName(name)));
  if (LookAt(name).version > file.version) {
    options.Note(name + ": was of version " + std::to_string(file.version) +
                 " and has been rewritten as version " +
                 std::to_string(TINFile::m_iCurrentVersion));
  }
  return tin;
}

HeldSurface BuildFromPoints(std::string const& name, InputOptions const& options) {
  std::vector<IPoint> points;
  AppendPoints(name, options, points);
  std::string const why = WhyNoSurface(points);
  if (!why.empty()) throw Failure(name, why);
  HeldSurface tin = BuildSurface(std::move(points), false, {}, options.quiet);
  RequireVisible(*tin, name);
  return tin;
}

void ReadStoredPoints(std::string const& name, InputOptions const& options, TakePoint const& take,
                      ExpectPoints const& expect) {
  HeldSurface const tin = LoadStored(name, options);
  Box world;
  tin->GetWorldBounds(world.min, world.max);
  if (expect) expect(tin->GetNumberOfPoints());
  ForEachPoint(*tin, [&](TPoint const& p) {
    if (!IsSeedCorner(p, world)) take({p.x, p.y, p.z});
  });
}

void NoteMemory(std::string const& name, double points, CommonOptions const& options) {
  double const wanted = MemoryFor(points);
  double const free = FreeMemory();
  if (wanted <= free) return;
  options.Note(name + ": a surface of its points takes about " + SizeText(wanted) +
               " of memory, and " + SizeText(free) + " are free");
}

// Reads a list like 2,9. Returns nothing where `text` is none.
std::optional<std::bitset<CLASS_COUNT>> ParseClasses(std::string_view text) {
  std::bitset<CLASS_COUNT> classes;
  for (;;) {
    unsigned number = CLASS_COUNT;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || number >= CLASS_COUNT) return {};
    classes.set(number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (text.empty()) return classes;
    if (!text.starts_with(',')) return {};
    text.remove_prefix(1);
  }
}

// What was asked for and this kind of file does not have is told.
void NoteUnused(std::string const& name, FileKind kind, InputOptions const& options) {
  if (options.classes && kind != FileKind::LAS) {
    options.Note(name + ": its points have no classes: all are taken");
  }
}

}  // namespace

void InputOptions::AddTo(CLI::App& command) {
  command.add_flag("--lenient", lenient,
                   "Read a text as a stream of triples up to the first\n"
                   "that is none; otherwise each line must be a point");
  auto const check = [](std::string& text) {
    return ParseClasses(text) ? std::string()
                              : '"' + text + "\" is not a list of classes from 0 to 255, as in 2,9";
  };
  command
      .add_option_function<std::string>(
          "--class", [this](std::string const& text) { classes = ParseClasses(text); },
          "Of a LAS file, take the points of these classes alone")
      ->check(CLI::Validator(check, ""))
      ->type_name("N[,N]");
  command
      .add_option("--layer", layer,
                  "Of vector data, the layer of points to read; needed\n"
                  "where there are several")
      ->type_name("NAME");
  command
      .add_option("--z-field", z_field,
                  "Of vector data, the field that holds the heights;\n"
                  "without it they are the z of the points")
      ->type_name("NAME");
  CommonOptions::AddTo(command);
}

HeldSurface OpenSurface(std::string const& name, InputOptions const& options) {
  return IsStoredSurface(KindOf(name)) ? LoadStored(name, options) : BuildFromPoints(name, options);
}

void ReadPoints(std::string const& name, InputOptions const& options, TakePoint const& take,
                ExpectPoints const& expect) {
  FileKind const kind = KindOf(name);
  NoteUnused(name, kind, options);
  if (kind != FileKind::TEXT || name != "-") LookAt(name);
  switch (kind) {
    case FileKind::NATIVE:
    case FileKind::TRIMBLE:
      ReadStoredPoints(name, options, take, expect);
      break;
    case FileKind::TEXT:
      ReadXyz(name, options, take, expect);
      break;
    case FileKind::LAS:
      ReadLas(name, options, take, expect);
      break;
    case FileKind::VECTOR:
      ReadPointLayer(name, options, take);
      break;
  }
}

void AppendPoints(std::string const& name, InputOptions const& options, std::vector<IPoint>& points,
                  std::function<bool(IPoint const&)> const& keep) {
  double expected = 0.0;
  auto const take = [&](IPoint const& p) {
    if (!keep || keep(p)) points.push_back(p);
  };
  auto const expect = [&](double count) {
    if (keep) return;
    constexpr double MARGIN = 1.03;  // what is reserved and not used costs nothing
    expected = static_cast<double>(points.size()) + count;
    NoteMemory(name, expected, options);
    ReserveTable(points, static_cast<std::size_t>(MARGIN * expected));
  };
  try {
    ReadPoints(name, options, take, expect);
  } catch (std::bad_alloc const&) {
    throw OutOfMemory(std::max(expected, static_cast<double>(points.size())));
  }
}

void SaveSurface(TIN const& tin, std::string const& file, std::string const& told, bool quiet) {
  std::chrono::duration<double> const guess(2.5e-7 * tin.GetNumberOfPoints());
  Progress const progress("write", guess, quiet);
  TINFile writer;
  bool const tried = writer.SaveTIN(FromUtf8(file).c_str(), tin);
  if (!tried || writer.LastError() == ENOMEM) throw OutOfMemory(tin.GetNumberOfPoints());
  if (writer.LastError() != 0) throw Failure(told, SystemReason(writer.LastError()));
}

}  // namespace qeltin::cli
