// Writes the files that fuzzing starts from: write_seeds FOLDER makes FOLDER/<target>/<seed>.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"
#include "testing/TrimbleFileWriter.h"

namespace {

using namespace qeltin::testing;

class Seeds {
 public:
  Seeds(std::filesystem::path const& folder, std::string const& target)
      : m_Folder(folder / target) {
    std::filesystem::create_directories(m_Folder);
  }
  void Put(std::string const& name, std::string const& bytes) const {
    std::ofstream(m_Folder / name, std::ios::binary) << bytes;
  }

 private:
  std::filesystem::path m_Folder;
};

void Build(TIN& tin, Survey survey, int points) {
  std::vector<TPoint> const places = MakeSurvey(survey, points, 11);
  Extent const extent = ExtentOf(places);
  tin.Init(points, extent.min, extent.max);
  for (TPoint const& p : places) tin.AddPoint(p);
}

std::string Text(std::vector<TPoint> const& points, char const* format) {
  std::string text;
  for (TPoint const& p : points) {
    char line[100];
    std::snprintf(line, sizeof line, format, p.x, p.y, p.z);
    text += line;
  }
  return text;
}

void WriteNative(Seeds const& seeds) {
  TIN uniform;
  Build(uniform, Survey::Uniform, 12);
  TIN grid;
  Build(grid, Survey::ExactGrid, 9);
  TIN swaths;
  Build(swaths, Survey::Swaths, 140);
  seeds.Put("swaths_version_3", NativeVersion3(ModelOf(swaths)));
  NativeModel const models[] = {NativeModel(), SquareModel(), ModelOf(uniform), ModelOf(grid)};
  for (int i = 0; i < 4; ++i) {
    for (int version = 0; version <= 3; ++version) {
      std::string const bytes = NativeFile(version, models[i]);
      std::string const name = std::to_string(i) + "_version_" + std::to_string(version);
      seeds.Put(name, bytes);
      seeds.Put(name + "_cut_off", bytes.substr(0, bytes.size() * 2 / 3));
    }
  }
}

void WriteTrimble(Seeds const& seeds) {
  TIN uniform;
  Build(uniform, Survey::Uniform, 20);
  int number = 0;
  for (TrimbleLayout const& layout : AllTrimbleLayouts()) {
    std::string const name = std::to_string(number++);
    seeds.Put("square_" + name, TrimbleFile(TrimbleSquare(), layout));
    if (layout.padding == 0)
      seeds.Put("survey_" + name, TrimbleFile(TrimbleModelOf(uniform, 5), layout));
  }
  TIN swaths;
  Build(swaths, Survey::Swaths, 140);
  seeds.Put("swaths", TrimbleFile(TrimbleModelOf(swaths, 2), {8, 4, 2, 2, 0}));
  std::string const bytes = TrimbleFile(TrimbleModelOf(uniform, 3));
  seeds.Put("cut_off", bytes.substr(0, bytes.size() * 2 / 3));
}

void WriteXyz(Seeds const& seeds) {
  for (Survey survey : {Survey::Uniform, Survey::ExactGrid, Survey::Swaths}) {
    std::vector<TPoint> const points = MakeSurvey(survey, 16, 3);
    std::string const name = std::to_string(static_cast<int>(survey));
    seeds.Put("comma_" + name, Text(points, "%.3f,%.3f,%.3f\n"));
    seeds.Put("blank_" + name, Text(points, "%g %g %g\r\n"));
    seeds.Put("hexadecimal_" + name, Text(points, "%a,%a,%a "));
  }
  seeds.Put("line", "0 0 1\n1 1 2\n2 2 3\n3 3 4\n");
  seeds.Put("one_place", "5,5,1 5,5,2 5,5,3");
  seeds.Put("no_numbers", "0 0 0 1 0 inf 0 1 nan 1 1 -inf");
  seeds.Put("leniencies", "1-2+3 1e 0x. .5 1.2.3.4");
  seeds.Put("huge", "1e308,1e308,0 -1e308,1e308,0 0,-1e308,0 0,0,1e-320");
  seeds.Put("header", "x,y,z\n1,2,3\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: write_seeds FOLDER\n", stderr);
    return 2;
  }
  WriteNative(Seeds(argv[1], "native_file"));
  WriteTrimble(Seeds(argv[1], "trimble_file"));
  WriteXyz(Seeds(argv[1], "xyz_text"));
  return 0;
}
