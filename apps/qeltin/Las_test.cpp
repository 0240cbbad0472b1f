#include <algorithm>
#include <limits>

#include "apps/qeltin/CommandTest.h"
#include "testing/LasFileWriter.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"

namespace qeltin::cli::testing {
namespace {

using qeltin::testing::Dice;
using qeltin::testing::LasFile;
using qeltin::testing::LasHeaderSize;
using qeltin::testing::LasModel;
using qeltin::testing::LasRecord;
using qeltin::testing::LasRecordSize;
using qeltin::testing::Patch;
using qeltin::testing::TestSeed;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Json = nlohmann::json;

LasModel Square() {
  LasModel model;
  model.scale = {0.001, 0.01, 0.25};
  model.offset = {482000.1, 5931000.0, -0.3};
  model.points = {
      {{0, 0, -41}, 2}, {{10007, 0, -42}, 2}, {{10007, 1000, 43}, 9}, {{3, 1001, 0}, 1}};
  return model;
}

class Las : public CommandTest {
 protected:
  // Returns the numbers of a text, one after the other.
  static std::vector<double> Numbers(std::string text) {
    std::vector<double> numbers;
    for (char& c : text) {
      if (c == ',' || c == '\n') c = ' ';
    }
    char const* at = text.c_str();
    for (char* end = nullptr;; at = end) {
      double const number = std::strtod(at, &end);
      if (end == at) return numbers;
      numbers.push_back(number);
    }
  }

  std::vector<double> Read(LasModel const& model, std::vector<std::string> options = {}) const {
    m_Folder.Put("in.las", LasFile(model));
    options.insert(options.begin(), {"convert", "in.las", "-"});
    return Numbers(MustRun(options).out);
  }

  static std::vector<double> Expected(LasModel const& model) {
    std::vector<double> numbers;
    for (LasRecord const& record : model.points) {
      for (std::size_t axis = 0; axis < 3; ++axis) {
        numbers.push_back(record.stored[axis] * model.scale[axis] + model.offset[axis]);
      }
    }
    return numbers;
  }
};

TEST_F(Las, EveryVersionAndPointFormatGivesTheSameBits) {
  LasModel model = Square();
  for (model.minor_version = 0; model.minor_version <= 4; ++model.minor_version) {
    // The records are alike in every version.
    int const step = model.minor_version == 4 ? 1 : 5;
    for (model.point_format = 0; model.point_format <= 10; model.point_format += step) {
      EXPECT_EQ(Read(model), Expected(model))
          << "1." << model.minor_version << ", format " << model.point_format;
    }
  }
}

TEST_F(Las, CoordinatesAreStoredTimesScalePlusOffsetInDouble) {
  LasModel model;
  model.scale = {0.1, 1e-7, -3.0};
  model.offset = {0.2, 1e9, 1.0 / 3.0};
  constexpr std::int32_t LEAST = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t MOST = std::numeric_limits<std::int32_t>::max();
  model.points = {{{1, 1, 1}}, {{3, 3, 3}}, {{LEAST, LEAST, LEAST}}, {{MOST, MOST, MOST}}};
  std::vector<double> const read = Read(model);
  EXPECT_EQ(read, Expected(model));
  EXPECT_EQ(read[0], 1 * 0.1 + 0.2);
  EXPECT_EQ(read[4], 3 * 1e-7 + 1e9);
}

TEST_F(Las, ExtraBytesLongHeadersAndGapsArePassedOver) {
  LasModel model = Square();
  model.extra_bytes = 7;
  model.extra_header = 11;
  model.padding = 2;
  model.variable_records = {"LASF_Projection", "LASF_Spec"};
  for (int const format : {0, 3, 6, 10}) {
    model.point_format = format;
    model.minor_version = format < 6 ? 2 : 4;
    EXPECT_EQ(Read(model), Expected(model));
  }
  model.extra_bytes = 65535 - LasRecordSize(model.point_format);
  EXPECT_EQ(Read(model), Expected(model));
}

TEST_F(Las, ManyPointsAreReadInTheirOrder) {
  LasModel model;
  model.point_format = 1;
  for (std::int32_t i = 0; i < 100000; ++i) model.points.push_back({{i, -i, 2 * i}});
  EXPECT_EQ(Read(model), Expected(model));
}

TEST_F(Las, InVersion14EitherCountWillDo) {
  LasModel model = Square();
  model.minor_version = 4;
  model.point_format = 6;
  model.legacy_count = false;
  EXPECT_EQ(Read(model), Expected(model));
  std::string bytes = LasFile(model);
  Patch(bytes, 107, std::uint32_t{4});
  Patch(bytes, 247, std::uint64_t{0});
  m_Folder.Put("in.las", bytes);
  Ran const ran = MustRun({"info", "in.las", "--json"});
  EXPECT_EQ(ran.Json()["points"], 4);
  EXPECT_EQ(ran.err,
            "qeltin: in.las: its header has two counts of points that differ: the one for readers "
            "of older versions, 4, is taken\n");
}

TEST_F(Las, WithheldPointsAreLeftOutAndCounted) {
  LasModel model = Square();
  model.points[1].withheld = true;
  std::vector<double> expected = Expected(model);
  expected.erase(expected.begin() + 3, expected.begin() + 6);
  for (int const format : {0, 5, 6, 10}) {
    model.point_format = format;
    EXPECT_EQ(Read(model), expected);
    Ran const ran = MustRun({"info", "in.las", "--json"});
    EXPECT_EQ(ran.Json()["points"], 3);
    EXPECT_EQ(ran.Json()["withheld"], 1);
    EXPECT_EQ(ran.err, "qeltin: in.las: 1 withheld points are left out\n");
  }
  for (LasRecord& record : model.points) record.withheld = true;
  m_Folder.Put("in.las", LasFile(model));
  ExpectError(Run({"info", "in.las"}), "in.las: holds nothing but 4 withheld points");
}

TEST_F(Las, ClassesAreChosen) {
  LasModel model = Square();
  auto const heights = [&](std::string const& classes) {
    std::vector<double> const read = Read(model, {"--class", classes, "-q"});
    std::vector<double> z;
    for (std::size_t i = 2; i < read.size(); i += 3) z.push_back(read[i]);
    return z;
  };
  for (int const format : {0, 5, 6, 10}) {
    model.point_format = format;
    EXPECT_EQ(heights("2").size(), 2);
    EXPECT_EQ(heights("9"), std::vector<double>{43 * 0.25 - 0.3});
    EXPECT_EQ(heights("1,9").size(), 2);
  }
  Ran const ran = MustRun({"info", "in.las", "--class", "9,200"});
  EXPECT_EQ(ran.err, "qeltin: in.las: 3 points of other classes are left out\n");
  ExpectError(Run({"info", "in.las", "--class", "3"}),
              "in.las: holds nothing but 4 points of other classes");
}

TEST_F(Las, AClassIsFiveBitsInTheOldFormatsAndAByteInTheNew) {
  LasModel model = Square();
  model.points[3].classification = 31;
  EXPECT_EQ(Read(model, {"--class", "31"}).size(), 3);
  model.point_format = 7;
  model.points[3].classification = 255;
  EXPECT_EQ(Read(model, {"--class", "255"}).size(), 3);
}

TEST_F(Las, InfoTellsWhatThereIs) {
  LasModel model = Square();
  model.minor_version = 4;
  model.point_format = 6;
  model.scale = {0.5, 0.5, 0.5};
  model.offset = {100, 200, 300};
  m_Folder.Put("in.las", LasFile(model));
  Json const expected = {{"format", "las"},
                         {"version", "1.4"},
                         {"point_format", 6},
                         {"withheld", 0},
                         {"classes", {{"1", 1}, {"2", 2}, {"9", 1}}},
                         {"points", 4},
                         {"bounds", {{"min", {100, 200, 279}}, {"max", {5103.5, 700.5, 321.5}}}},
                         {"height_range", {279, 321.5}},
                         {"bytes", 375 + 4 * 30}};
  EXPECT_EQ(MustRun({"info", "in.las", "--json"}).Json(), expected);
  EXPECT_EQ(MustRun({"info", "in.las"}).out,
            "format       LAS 1.4, point format 6\n"
            "withheld     0\n"
            "classes      1 (1), 2 (2), 9 (1)\n"
            "points       4\n"
            "bounds from  100 200 279\n"
            "bounds to    5103.5 700.5 321.5\n"
            "heights      279 to 321.5\n"
            "bytes        495\n");
  Json const check = MustRun({"info", "in.las", "--check", "--json"}).Json()["check"];
  EXPECT_EQ(check, (Json{{"sound", true}, {"faults", Json::array()}, {"remarks", Json::array()}}));
}

TEST_F(Las, PointsGoWhereverTextsGo) {
  LasModel model = Square();
  m_Folder.Put("in.LAS", LasFile(model));
  m_Folder.Put("in.xyz", LasFile(model));  // known by how it begins
  m_Folder.Put("more.xyz", "482020 5931020 7\n");
  for (std::string const name : {"in.LAS", "in.xyz"}) {
    EXPECT_EQ(MustRun({"build", name, "more.xyz", "-o", "s.tin", "--json", "--overwrite"})
                  .Json()["points_in_surface"],
              5);
    EXPECT_THAT(MustRun({"height", name, "--at", "482005,5931005"}).out,
                StartsWith("482005,5931005,"));
  }
  Ran const ran =
      MustRun({"build", "in.LAS", "more.xyz", "-o", "s.tin", "--overwrite", "--class", "1,2,9"});
  EXPECT_EQ(ran.err, "qeltin: more.xyz: its points have no classes: all are taken\n");
}

TEST_F(Las, CompressedFilesAreRefusedWithAdvice) {
  std::string const advice =
      " file, which is not read: decompress it to a .las file first, with laszip or PDAL say";
  LasModel model = Square();
  std::string bytes = LasFile(model);
  Patch(bytes, 104, static_cast<unsigned char>(0x80 | 3));
  m_Folder.Put("in.laz", bytes);
  ExpectError(Run({"info", "in.laz"}), "in.laz: is a compressed LAZ" + advice);
  ExpectError(Run({"build", "in.laz", "-o", "s.tin"}), "in.laz: is a compressed LAZ" + advice);

  model.variable_records = {"LASF_Projection", "laszip encoded"};
  m_Folder.Put("vlr.las", LasFile(model));
  ExpectError(Run({"info", "vlr.las"}), "vlr.las: is a compressed LAZ" + advice);

  model.minor_version = 4;
  model.variable_records = {"copc", "laszip encoded"};
  m_Folder.Put("in.copc.laz", LasFile(model));
  ExpectError(Run({"info", "in.copc.laz"}), "in.copc.laz: is a compressed COPC" + advice);

  model.variable_records = {"copc"};  // what decompression may leave
  m_Folder.Put("plain.laz", LasFile(model));
  EXPECT_EQ(MustRun({"info", "plain.laz", "--json"}).Json()["points"], 4);
}

TEST_F(Las, SaysWhatIsWrongWithAFile) {
  std::string const sound = LasFile(Square());
  LasModel four = Square();
  four.minor_version = 4;
  four.point_format = 6;
  std::string const newest = LasFile(four);
  auto const patched = [](std::string bytes, std::size_t offset, auto value) {
    Patch(bytes, offset, value);
    return bytes;
  };
  std::string const far = patched(patched(sound, 131, 1e308), 227, std::int32_t{1000});
  double const none = std::numeric_limits<double>::quiet_NaN();
  double const endless = std::numeric_limits<double>::infinity();
  struct Case {
    std::string bytes;
    std::string error;
  };
  std::vector<Case> const cases = {
      {"", "is empty"},
      {"LAS", "is not a LAS file, although its name ends like one"},
      {"1 2 3\n", "is not a LAS file, although its name ends like one"},
      {"LASF", "is cut short: its header is not whole"},
      {sound.substr(0, 226), "is cut short: its header is not whole"},
      {newest.substr(0, 374), "is cut short: its header is not whole"},
      {patched(sound, 24, '\2'), "is of LAS version 2.2, and 1.0 to 1.4 are known"},
      {patched(sound, 25, '\5'), "is of LAS version 1.5, and 1.0 to 1.4 are known"},
      {patched(sound, 94, std::uint16_t{226}),
       "is damaged: a header of 226 bytes, where version 1.2 has 227"},
      {patched(sound, 25, '\3'), "is damaged: a header of 227 bytes, where version 1.3 has 235"},
      {patched(sound, 96, std::uint32_t{226}), "is damaged: its points begin inside its header"},
      {patched(sound, 104, '\13'), "has point format 11, and 0 to 10 are known"},
      {patched(sound, 105, std::uint16_t{19}),
       "is damaged: points of 19 bytes, where point format 0 has 20"},
      {patched(sound, 105, std::uint16_t{0}),
       "is damaged: points of 0 bytes, where point format 0 has 20"},
      {patched(sound, 107, std::uint32_t{0}), "holds no points"},
      {patched(sound, 107, std::uint32_t{5}),
       "is cut short: its header tells of 5 points, and it has room for 4"},
      {patched(sound, 107, std::uint32_t{0xFFFFFFFF}),
       "is cut short: its header tells of 4294967295 points, and it has room for 4"},
      {patched(sound, 96, std::uint32_t{0xFFFFFFFF}),
       "is cut short: its header tells of 4 points, and it has room for 0"},
      {patched(patched(newest, 107, std::uint32_t{0}), 247, ~std::uint64_t{0}),
       "is cut short: its header tells of 18446744073709551615 points, and it has room for 4"},
      {sound.substr(0, sound.size() - 1),
       "is cut short: its header tells of 4 points, and it has room for 3"},
      {patched(sound, 131, 0.0), "is damaged: a scale or offset that cannot be"},
      {patched(sound, 139, none), "is damaged: a scale or offset that cannot be"},
      {far, "is damaged: point 0 is no ordinary number"},
      {patched(sound, 171, endless), "is damaged: a scale or offset that cannot be"},
  };
  for (Case const& c : cases) {
    m_Folder.Put("in.las", c.bytes);
    ExpectError(Run({"info", "in.las"}), "in.las: " + c.error);
  }
  ExpectError(Run({"info", "missing.las"}), "missing.las: No such file or directory");
}

TEST_F(Las, AnyDamageToTheHeaderEndsInAnAnswerOrOneLine) {
  Dice dice(TestSeed());
  LasModel model = Square();
  model.variable_records = {"LASF_Projection"};
  for (int i = 0; i < 25; ++i) {
    model.minor_version = i % 5;
    model.point_format = dice.Below(11);
    std::string bytes = LasFile(model);
    int const header = static_cast<int>(LasHeaderSize(model.minor_version)) + 54;
    for (int k = dice.Below(4); k >= 0; --k) {
      bytes[static_cast<std::size_t>(24 + dice.Below(header - 24))] =
          static_cast<char>(dice.Below(256));
    }
    if (dice.OneIn(4)) {
      bytes.resize(static_cast<std::size_t>(dice.Below(static_cast<int>(bytes.size()))));
    }
    m_Folder.Put("in.las", bytes);
    Ran const ran = Run({"info", "in.las", "-q"});
    EXPECT_TRUE(ran.status == 0 || ran.status == 1) << ran.status;
    if (ran.status == 1) {
      EXPECT_THAT(ran.err, StartsWith("qeltin: error: in.las: "));
      EXPECT_EQ(std::count(ran.err.begin(), ran.err.end(), '\n'), 1) << ran.err;
    }
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
