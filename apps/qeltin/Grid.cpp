#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/FileName.h"
#include "apps/qeltin/Lattice.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Raster.h"
#include "apps/qeltin/Report.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/SurfaceInput.h"

namespace qeltin::cli {

namespace {

constexpr double MOST_A_SIDE = 1e6;
constexpr double MOST_CELLS = 1e9;

struct GridOptions : InputOptions {
  std::string surface;
  std::string cell;
  RasterOptions raster;
  NumberStyle style;
};

struct Cell {
  double dx = 0.0;
  double dy = 0.0;
};

struct GridResult {
  RasterFrame frame;
  long long heights = 0;
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -std::numeric_limits<double>::infinity();

  void Count(double height) {
    if (std::isnan(height)) return;
    ++heights;
    lowest = std::min(lowest, height);
    highest = std::max(highest, height);
  }
};

// Accepts DX or DX,DY.
CLI::Validator CellSize() {
  auto const check = [](std::string const& text) {
    double values[2];
    bool const good = ParseNumbers(text, values, 1) || ParseNumbers(text, values, 2);
    return good ? std::string() : '"' + text + "\" is not DX or DX,DY";
  };
  return CLI::Validator(check, "");
}

Cell ParseCell(GridOptions const& options) {
  Cell cell;
  double values[2];
  if (ParseNumbers(options.cell, values, 2)) {
    cell = {values[0], values[1]};
  } else if (ParseNumbers(options.cell, values, 1)) {
    cell = {values[0], values[0]};
  }
  if (cell.dx > 0.0 && cell.dy > 0.0) return cell;
  throw Failure(options.surface, "cells of " + options.cell + " have no size: --cell is above 0");
}

// A value that no height comes near.
double NoDataFor(SurfaceFacts const& facts) {
  double const margin = 1.0 + facts.highest - facts.lowest;
  for (double value = -9999.0; std::isfinite(value); value = value * 10.0 - 9.0) {
    if (value < facts.lowest - margin || value > facts.highest + margin) return value;
  }
  return std::numeric_limits<double>::lowest();
}

void CheckSize(LatticeAxis const& x, LatticeAxis const& y, GridOptions const& options) {
  bool const sound = x.extent > 0.0 && y.extent > 0.0 && std::isfinite(x.extent + y.extent);
  if (!sound) throw Failure(options.surface, "its bounds have no extent");
  double const columns = x.Intervals() + 1.0;
  double const rows = y.Intervals() + 1.0;
  if (columns <= MOST_A_SIDE && rows <= MOST_A_SIDE && columns * rows <= MOST_CELLS) return;
  NumberStyle const style;
  throw Failure(options.surface, "cells of " + options.cell + " make a grid of " +
                                     style.Text(columns) + " by " + style.Text(rows) +
                                     ": at most 1000000 a side and 1000000000 in all");
}

void NoteSpacing(Cell const& cell, RasterFrame const& frame, GridOptions const& options) {
  NumberStyle const style;
  if (frame.dx < cell.dx || frame.dy < cell.dy) {
    options.Note("a cell is never larger than the surface: " + style.Text(frame.dx) + " by " +
                 style.Text(frame.dy) + " is used");
  }
}

GridResult Write(TIN const& tin, LatticeAxis const& x, LatticeAxis const& y, double no_data,
                 GridOptions const& options, Raster& raster) {
  double const cells = (x.Intervals() + 1.0) * (y.Intervals() + 1.0);
  Progress const progress("grid", std::chrono::duration<double>(cells * 1e-6), options.quiet);
  Lattice const lattice(tin, x, y);
  GridResult result;
  result.frame = {lattice.Columns(), lattice.Rows(), x.begin, y.begin,
                  x.spacing,         y.spacing,      no_data};
  raster.Begin(result.frame);
  std::vector<double> row;
  for (int j = lattice.Rows() - 1; j >= 0; --j) {
    lattice.Row(j, row);
    for (double& height : row) {
      result.Count(height);
      if (std::isnan(height)) height = no_data;
    }
    raster.Add(row);
  }
  raster.End();
  return result;
}

// Files that programs read together with a raster, and that tell of the one before.
void NoteOldCompanions(GridOptions const& options) {
  std::filesystem::path const file = options.raster.output;
  std::vector<std::string> companions = {file.string() + ".aux.xml", file.string() + ".ovr"};
  if (options.raster.crs.empty() && EndingOf(file.string()) == ".asc") {
    companions.push_back(std::filesystem::path(file).replace_extension(".prj").string());
  }
  for (std::string const& name : companions) {
    std::error_code error;
    if (!std::filesystem::exists(name, error)) continue;
    options.Note(name + ": stands beside the grid from before, and programs will heed it");
  }
}

void TellJson(GridOptions const& options, GridResult const& result) {
  RasterFrame const& frame = result.frame;
  nlohmann::ordered_json json = {
      {"file", options.raster.output},
      {"columns", frame.columns},
      {"rows", frame.rows},
      {"cell", {frame.dx, frame.dy}},
      {"min", {frame.Left(), frame.Bottom()}},
      {"max", {frame.Left() + frame.columns * frame.dx, frame.Top()}},
      {"crs", options.raster.crs.empty() ? nlohmann::json() : nlohmann::json(options.raster.crs)},
      {"nodata", frame.no_data},
      {"heights", result.heights}};
  if (result.heights > 0) {
    json["lowest"] = options.style.Rounded(result.lowest);
    json["highest"] = options.style.Rounded(result.highest);
  }
  PrintResult(Dump(json));
}

void TellPeople(GridOptions const& options, GridResult const& result) {
  NumberStyle const exact;
  RasterFrame const& frame = result.frame;
  Report report(options.style);
  report.Add("columns", static_cast<long long>(frame.columns));
  report.Add("rows", static_cast<long long>(frame.rows));
  report.Add("cell", exact.Text(frame.dx) + " by " + exact.Text(frame.dy));
  report.Add("cells with a height", result.heights);
  if (result.heights > 0) {
    report.Add("lowest", options.style.Text(result.lowest));
    report.Add("highest", options.style.Text(result.highest));
  }
  PrintResult(report.Text());
}

void Run(GridOptions const& options) {
  Cell const cell = ParseCell(options);
  std::unique_ptr<Raster> const raster = NewRaster(options.raster);
  HeldSurface const tin = OpenSurface(options.surface, options);
  SurfaceFacts const facts = FactsOf(*tin);
  if (facts.visible_triangles == 0) throw Failure(options.surface, "has no visible triangle");
  LatticeAxis const x(facts.bounds.min.x, facts.bounds.max.x, cell.dx);
  LatticeAxis const y(facts.bounds.min.y, facts.bounds.max.y, cell.dy);
  CheckSize(x, y, options);
  GridResult const result = Write(*tin, x, y, NoDataFor(facts), options, *raster);
  NoteSpacing(cell, result.frame, options);
  NoteOldCompanions(options);
  if (options.json) {
    TellJson(options, result);
  } else if (!options.quiet) {
    TellPeople(options, result);
  }
}

}  // namespace

void AddGrid(CLI::App& application) {
  auto const options = std::make_shared<GridOptions>();
  CLI::App* const command =
      application.add_subcommand("grid", "Write the heights of a surface as a raster");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  command->add_option("--cell", options->cell, "Size of a cell; DY is DX where it is not given")
      ->required()
      ->check(CellSize())
      ->type_name("DX[,DY]");
  command
      ->add_option("-o,--output", options->raster.output,
                   "The raster to write: .tif or .tiff is a GeoTIFF of\n"
                   "64-bit numbers, .asc an ESRI ASCII grid")
      ->required()
      ->type_name("FILE");
  command->add_flag("--overwrite", options->raster.overwrite, "Replace an output that exists");
  AddCrs(*command, options->raster.crs,
         "Reference system to note in the raster; of an .asc in\n"
         "a .prj beside it. Nothing is converted");
  command->add_flag("--deflate", options->raster.deflate, "Compress a GeoTIFF without loss");
  AddPrecision(*command, options->style);
  options->AddTo(*command);
  command->footer(
      "The centre of the lower left cell is the lower corner of the bounds of the\n"
      "data, and the cells cover the bounds, so that a last row or column may reach\n"
      "beyond them. A cell has the height of the surface at its centre, as 'qeltin\n"
      "height' tells it, or the value for no data where there is no surface. There\n"
      "are at most 1000000 cells a side and 1000000000 in all. --precision is for\n"
      "the summary alone: the raster has every digit.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
