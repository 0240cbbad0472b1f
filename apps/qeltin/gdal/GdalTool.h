#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "testing/TemporaryFolder.h"

namespace qeltin::cli::testing {

// Runs one of GDAL's own commands, as "gdalinfo -json x.tif", in the folder and returns what it
// prints.
inline std::string GdalTool(qeltin::testing::TemporaryFolder const& folder,
                            std::string const& command) {
  std::string const line = "cd '" + folder.Path().string() + "' && " + command + " 2>&1";
  std::FILE* const pipe = popen(line.c_str(), "r");
  std::string text;
  std::array<char, 4096> block;
  for (std::size_t got = 1; got > 0;) {
    got = std::fread(block.data(), 1, block.size(), pipe);
    text.append(block.data(), got);
  }
  EXPECT_EQ(pclose(pipe), 0) << command << '\n' << text;
  return text;
}

}  // namespace qeltin::cli::testing
