#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "apps/qeltin/Numbers.h"

namespace qeltin::cli {

// What every command knows.
struct CommonOptions {
  bool json = false;
  bool quiet = false;

  void AddTo(CLI::App& command);

  // Writes a line to standard error unless --quiet.
  void Note(std::string const& line) const;
};

// Adds --precision.
void AddPrecision(CLI::App& command, NumberStyle& style);

// Adds --crs, which takes EPSG:nnnn; `help` tells what it is for.
void AddCrs(CLI::App& command, std::string& crs, std::string const& help);

// Accepts `count` numbers separated by commas, e.g. 1.5,-2; `form` names them in help and messages.
CLI::Validator NumberList(int count, std::string const& form);

// Prints `text` and a line end on standard output. Throws Failure where that fails.
void PrintResult(std::string const& text);

// The commands. Each adds itself to the application and runs from its callback.
void AddSample(CLI::App& application);
void AddBuild(CLI::App& application);
void AddInfo(CLI::App& application);
void AddHeight(CLI::App& application);
void AddConvert(CLI::App& application);
void AddGrid(CLI::App& application);
void AddVolume(CLI::App& application);
void AddFilter(CLI::App& application);
void AddSmooth(CLI::App& application);
void AddMerge(CLI::App& application);
void AddDecimate(CLI::App& application);
void AddIsolines(CLI::App& application);
void AddContours(CLI::App& application);
void AddProfile(CLI::App& application);
void AddRender(CLI::App& application);
void AddView(CLI::App& application);

}  // namespace qeltin::cli
