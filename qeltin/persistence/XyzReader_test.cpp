#include "qeltin/persistence/XyzReader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "testing/Formula.h"
#include "testing/TemporaryFolder.h"
#include "testing/reference/ScanXyz.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;
using qeltin::testing::ScannedXyz;
using qeltin::testing::ScanXyz;
using qeltin::testing::TemporaryFolder;
using Form = XyzReader::Form;
using End = XyzReader::End;

constexpr std::size_t BUFFER = std::size_t{256} << 10;

std::vector<TPoint> ReadAll(XyzReader& reader) {
  std::vector<TPoint> points;
  for (TPoint p; reader.Next(p);) points.push_back(p);
  EXPECT_EQ(reader.GetCount(), static_cast<long long>(points.size()));
  return points;
}

// The reader and the C runtime's own scanning find the same triples in `text`.
void ExpectAsScanned(TemporaryFolder const& folder, std::string const& text) {
  folder.Put("xyz", text);
  ScannedXyz const expected = ScanXyz(folder.Path("xyz"));
  XyzReader reader(folder.Wide("xyz").c_str());
  std::vector<TPoint> const points = ReadAll(reader);
  ASSERT_EQ(points.size(), expected.points.size()) << ::testing::PrintToString(text);
  if (!points.empty()) {
    ASSERT_EQ(reader.GetForm(), expected.comma ? Form::COMMA : Form::BLANK);
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    ASSERT_TRUE(SameBits(points[i], expected.points[i])) << ::testing::PrintToString(text);
  }
}

struct Outcome {
  std::vector<TPoint> points;
  Form form;
  End end;
  long long tripleLine;
  long long line;
};

Outcome Read(std::string const& text) {
  TemporaryFolder folder;
  folder.Put("xyz", text);
  XyzReader reader(folder.Wide("xyz").c_str());
  std::vector<TPoint> points = ReadAll(reader);
  return {std::move(points), reader.GetForm(), reader.GetEnd(), reader.GetTripleLine(),
          reader.GetLine()};
}

// --- The two forms
// --------------------------------------------------------------------------------

TEST(XyzReader, CommaForm) {
  Outcome const o = Read("1.5,2.25,-3\n4, 5,\n6\n");
  ASSERT_EQ(o.points.size(), 2U);
  EXPECT_EQ(o.points[0], TPoint(1.5, 2.25, -3));
  EXPECT_EQ(o.points[1], TPoint(4, 5, 6));
  EXPECT_EQ(o.form, Form::COMMA);
  EXPECT_EQ(o.end, End::END_OF_FILE);
}

TEST(XyzReader, BlankForm) {
  Outcome const o = Read("1.5 2.25 -3\r\n\r\n\t4\v5\f6");
  ASSERT_EQ(o.points.size(), 2U);
  EXPECT_EQ(o.points[0], TPoint(1.5, 2.25, -3));
  EXPECT_EQ(o.points[1], TPoint(4, 5, 6));
  EXPECT_EQ(o.form, Form::BLANK);
  EXPECT_EQ(o.end, End::END_OF_FILE);
}

TEST(XyzReader, TheFormOfTheFirstTripleHoldsForAll) {
  EXPECT_EQ(Read("1,2,3\n4 5 6\n7,8,9\n").points.size(), 1U);
  EXPECT_EQ(Read("1 2 3\n4,5,6\n7 8 9\n").points.size(), 1U);
}

TEST(XyzReader, BlanksBeforeACommaEndTheReading) {
  EXPECT_EQ(Read("1,2,3\n4 ,5,6\n").points.size(), 1U);
  EXPECT_EQ(Read("1 ,2,3\n").points.size(), 0U);
}

TEST(XyzReader, NumbersMayFollowEachOtherWithoutBlanks) {
  Outcome const o = Read("1-2+3 1.2.3.4");
  ASSERT_EQ(o.points.size(), 2U);
  EXPECT_EQ(o.points[0], TPoint(1, -2, 3));
  EXPECT_EQ(o.points[1], TPoint(1.2, 0.3, 0.4));
}

TEST(XyzReader, AHeaderLineEndsTheReadingAtOnce) {
  Outcome const o = Read("x,y,z\n1,2,3\n");
  EXPECT_EQ(o.points.size(), 0U);
  EXPECT_EQ(o.form, Form::UNKNOWN);
  EXPECT_EQ(o.end, End::NO_TRIPLE);
  EXPECT_EQ(o.tripleLine, 1);
  EXPECT_EQ(o.line, 1);
}

TEST(XyzReader, AByteOrderMarkEndsTheReadingAtOnce) {
  EXPECT_EQ(Read("\xEF\xBB\xBF"
                 "1,2,3\n")
                .points.size(),
            0U);
}

// --- What ends the reading
// ------------------------------------------------------------------------

TEST(XyzReader, AnEmptyTextEndsAtItsEnd) {
  EXPECT_EQ(Read("").end, End::END_OF_FILE);
  EXPECT_EQ(Read(" \n\n ").end, End::END_OF_FILE);
  EXPECT_EQ(Read(" \n\n ").tripleLine, 3);
}

TEST(XyzReader, ATripleThatIsCutOffIsNoTriple) {
  EXPECT_EQ(Read("1,2,3\n4").end, End::NO_TRIPLE);
  EXPECT_EQ(Read("1,2,3\n4,").end, End::NO_TRIPLE);
  EXPECT_EQ(Read("1,2,3\n4,5,").end, End::NO_TRIPLE);
  EXPECT_EQ(Read("1 2 3\n4 5 ").end, End::NO_TRIPLE);
  EXPECT_EQ(Read("1,2,3\n4,5,6").end, End::END_OF_FILE);
}

TEST(XyzReader, LinesAreCountedFromOne) {
  Outcome o = Read("1,2,3\n\n4,5,\n\nsix\n");
  EXPECT_EQ(o.points.size(), 1U);
  EXPECT_EQ(o.tripleLine, 3);
  EXPECT_EQ(o.line, 5);
  o = Read("\n\n1 2 3\n");
  EXPECT_EQ(o.tripleLine, 4);  // where the next one would begin
  EXPECT_EQ(o.line, 4);
}

TEST(XyzReader, LinesCanBeAskedForAtAnyTime) {
  TemporaryFolder folder;
  std::string text;
  long long constexpr TRIPLES = 60'000;  // several buffers
  for (int i = 0; i < TRIPLES; ++i) text += i % 2 == 0 ? "1,2,\n3\n" : "1000,2000,3000\n";
  folder.Put("xyz", text);
  XyzReader reader(folder.Wide("xyz").c_str());
  EXPECT_EQ(reader.GetLine(), 1);
  EXPECT_EQ(reader.GetTripleLine(), 1);
  TPoint p;
  for (long long i = 0; i < TRIPLES; ++i) {
    ASSERT_TRUE(reader.Next(p));
    if (i % 7 > 3) continue;
    long long const first = 1 + i / 2 * 3 + i % 2 * 2;
    ASSERT_EQ(reader.GetTripleLine(), first) << i;
    ASSERT_EQ(reader.GetLine(), first + (i % 2 == 0 ? 1 : 0)) << i;
    ASSERT_EQ(reader.GetTripleLine(), first) << i;
  }
  EXPECT_FALSE(reader.Next(p));
  EXPECT_EQ(reader.GetLine(), 1 + TRIPLES / 2 * 3);
}

TEST(XyzReader, ATripleLongerThanTheBufferKnowsItsLines) {
  std::string const lines(BUFFER, '\n');
  Outcome const o = Read("\n\n1," + lines + "2," + lines + "x");
  EXPECT_EQ(o.points.size(), 0U);
  EXPECT_EQ(o.tripleLine, 3);
  EXPECT_EQ(o.line, 3 + 2 * static_cast<long long>(BUFFER));
}

TEST(XyzReader, AFailedTripleLeavesThePoint) {
  TemporaryFolder folder;
  folder.Put("xyz", "1,2,x");
  XyzReader reader(folder.Wide("xyz").c_str());
  TPoint p(7, 8, 9);
  EXPECT_FALSE(reader.Next(p));
  EXPECT_EQ(p, TPoint(7, 8, 9));
  EXPECT_FALSE(reader.Next(p));
}

TEST(XyzReader, AMissingFileIsNotOpen) {
  TemporaryFolder folder;
  XyzReader reader(folder.Wide("missing").c_str());
  TPoint p;
  EXPECT_FALSE(reader.IsOpen());
  EXPECT_EQ(reader.Error(), ENOENT);
  EXPECT_FALSE(reader.Next(p));
  EXPECT_EQ(reader.GetEnd(), End::READ_ERROR);
  EXPECT_EQ(reader.GetLine(), 1);
}

TEST(XyzReader, AFolderCannotBeRead) {
  TemporaryFolder folder;
  XyzReader reader(folder.Path().wstring().c_str());
  TPoint p;
  EXPECT_FALSE(reader.Next(p));
  EXPECT_EQ(reader.Error(), EISDIR);
  EXPECT_EQ(reader.GetEnd(), End::READ_ERROR);
}

TEST(XyzReader, PositionAndSizeTellHowFarItIs) {
  TemporaryFolder folder;
  folder.Put("xyz", "1,2,3\n4,5,6\n");
  XyzReader reader(folder.Wide("xyz").c_str());
  TPoint p;
  EXPECT_EQ(reader.GetSize(), 12);
  EXPECT_EQ(reader.GetPosition(), 0);
  EXPECT_TRUE(reader.Next(p));
  EXPECT_EQ(reader.GetPosition(), 5);
  EXPECT_TRUE(reader.Next(p));
  EXPECT_EQ(reader.GetPosition(), 11);
}

// --- Against the C runtime
// ------------------------------------------------------------------------

TEST(XyzReader, OddNumbersAreThoseOfTheCRuntime) {
  TemporaryFolder folder;
  for (char const* text : {"1-2+3",
                           "1.2.3.4",
                           "1e,2,3",
                           "1e 2 3",
                           "1e+,2,3",
                           "1e-5,2,3",
                           "1e+-5,2,3",
                           "1E5,2,3",
                           "1e5e5 2 3",
                           "1e5.5 2",
                           "e5,2,3",
                           ".e5,2,3",
                           "0x,1,2",
                           "0x1,1,2",
                           "0x1p3,0X.8P1,-0xAp-1",
                           "0x.,1,2",
                           "-0x.,1,2",
                           "0x.p3,1,2",
                           "0xp3,1,2",
                           "0x1p,1,2",
                           "0x1p+,1,2",
                           "0x1.8.8 2",
                           "0x1g 2 3",
                           "0x1e5,0xe+5,1",
                           "00x1 2 3",
                           "0 x1 2",
                           "0,0,0",
                           "-0,-0.0,+0",
                           "0e,0e5,0e400",
                           "inf,2,3",
                           "infi,2,3",
                           "infinity,2,3",
                           "infinit,2,3",
                           "infinityx 2 3",
                           "INF -Inf +iNfInItY",
                           "nan,2,3",
                           "nan(1),2,3",
                           "-nan,2,3",
                           "na,2,3",
                           "nan nan nan",
                           "infnan1",
                           "inf inf inf",
                           "+-1,2,3",
                           "-+1,2,3",
                           "--1,2,3",
                           "+,2,3",
                           "-,2,3",
                           "+.5,-.5,.5",
                           ".,1,2",
                           "+.,1,2",
                           "1.,2.,3.",
                           "1..2.3",
                           "1,2,3,4,5,6",
                           "1,,2",
                           ",1,2",
                           "1, 2, 3",
                           "1 ,2,3",
                           "1,2 ,3",
                           "1;2;3",
                           "1\t2\t3",
                           "1\v2\f3\r\n",
                           "1\n2\n3",
                           "1,\n2,\n\n3",
                           "1e400,-1e400,1e-400",
                           "1e99999999999999999999,1e-99999999999999999999,0e99999999999999999999",
                           "5e-324,2e-324,3e-324",
                           "1.7976931348623157e308,1.7976931348623159e308,2.2250738585072011e-308",
                           "9007199254740993,9007199254740992.999999999999999999999,0.1",
                           "1_000 2 3",
                           "1'000 2 3",
                           "1d5,2,3",
                           "1f,2,3",
                           "1 2 3 #",
                           "# 1 2 3",
                           "0b1 2 3",
                           "\xC2\xA0"
                           "1 2 3",
                           "1 2 3\xC2\x85"
                           "4 5 6",
                           "1,2,3\xFF",
                           "\xFF",
                           "1 2\x1A 3",
                           "1,2,3\n\n\n",
                           "  \n 1,2,3",
                           "+ 1,2,3",
                           "- 1 2"}) {
    ExpectAsScanned(folder, text);
    ExpectAsScanned(folder, std::string("1,2,3\n") + text);
    ExpectAsScanned(folder, std::string("1 2 3\n") + text);
    ExpectAsScanned(folder, std::string(text) + "\n1,2,3\n");
    ExpectAsScanned(folder, std::string(text) + "\n1 2 3\n");
    ExpectAsScanned(folder, std::string("9,") + text + ",9,9,9");
  }
}

TEST(XyzReader, EveryByteAfterAnumberIsTakenAsByTheCRuntime) {
  TemporaryFolder folder;
  for (int byte = 0; byte < 256; ++byte) {
    std::string const c(1, static_cast<char>(byte));
    for (char const* before : {"", "1", "-", "1.", "1e", "1e5", "0", "0x", "0x1", "0x1p", "in",
                               "inf", "infin", "na", "nan"}) {
      ExpectAsScanned(folder, before + c + "2,3,4,5");
      ExpectAsScanned(folder, before + c + "2 3 4 5");
    }
  }
}

std::string DigitRun(FormulaInputs& in, int longest) {
  std::string digits;
  for (int n = in.Whole(1, longest); n > 0; --n) digits += static_cast<char>('0' + in.Whole(0, 9));
  return digits;
}

// A number of the kind that surveys hold, or one of any length and size.
std::string SomeNumber(FormulaInputs& in) {
  std::string const sign = in.Whole(0, 2) == 0 ? "-" : in.Whole(0, 9) == 0 ? "+" : "";
  switch (in.Whole(0, 5)) {
    case 0:
      return sign + DigitRun(in, 500) + "." + DigitRun(in, 500);
    case 1:
      return sign + std::string(in.Whole(0, 900), '0') + DigitRun(in, 20) +
             std::string(in.Whole(0, 330), '0');
    case 2:
      return sign + "0." + std::string(in.Whole(0, 330), '0') + DigitRun(in, 900);
    case 3:
      return sign + DigitRun(in, 20) + "." + DigitRun(in, 20) + "e" +
             std::to_string(in.Whole(-340, 330));
    default:
      return sign + DigitRun(in, 7) + "." + DigitRun(in, 6);
  }
}

std::string SomePiece(FormulaInputs& in) {
  static constexpr char const* PIECES[] = {
      "1",   "2.5",   "-3",       "+4",    ".5",          "7.",  "1e5",   "1e",
      "1e+", "2E-3",  "0x",       "0x1p3", "0xA.8",       "0",   "-0",    "0x.",
      "inf", "infi",  "infinity", "nan",   "nan(1)",      "+-1", "-",     "+",
      ".",   "e",     "x",        "p2",    "#",           "\"",  "1-2+3", "1.2.3.4",
      "00",  "1e400", "1e-400",   ";",     "\xE2\x82\xAC"};
  switch (in.Whole(0, 9)) {
    case 0:
    case 1:
    case 2:
      return SomeNumber(in);
    case 3:
      return std::string(1, static_cast<char>(in.Whole(0, 255)));
    default:
      return PIECES[in.Whole(0, static_cast<int>(std::size(PIECES)) - 1)];
  }
}

std::string SomeSeparator(FormulaInputs& in, bool comma) {
  static constexpr char const* OTHERS[] = {"",   " ",    ",",    "\n", " ,", ", ",
                                           "\t", "\r\n", "\v\f", "  ", ",,"};
  if (in.Whole(0, 9) == 0) return OTHERS[in.Whole(0, static_cast<int>(std::size(OTHERS)) - 1)];
  return comma ? "," : " ";
}

// A text of triples that goes wrong somewhere, or does not.
std::string Soup(FormulaInputs& in) {
  bool const comma = in.Whole(0, 1) == 0;
  bool const tame = in.Whole(0, 2) != 0;
  std::string text;
  for (int triples = in.Whole(0, 6); triples > 0; --triples) {
    for (int k = 0; k < 3; ++k) {
      text += tame && in.Whole(0, 20) != 0 ? SomeNumber(in) : SomePiece(in);
      if (k < 2) text += SomeSeparator(in, comma);
    }
    if (in.Whole(0, 20) != 0) text += "\n";
  }
  if (in.Whole(0, 3) == 0)
    text.resize(static_cast<std::size_t>(in.Whole(0, static_cast<int>(text.size()))));
  return text;
}

TEST(XyzReader, TokenSoupIsReadAsByTheCRuntime) {
  FormulaInputs in;
  TemporaryFolder folder;
  for (int i = 0; i < 8000; ++i) {
    ASSERT_NO_FATAL_FAILURE(ExpectAsScanned(folder, Soup(in)));
  }
}

TEST(XyzReader, PlainTextOfManyBuffersIsReadAsByTheCRuntime) {
  FormulaInputs in;
  TemporaryFolder const folder;
  for (char const* separator : {",", ", ", " ", "\t"}) {
    std::string text;
    while (text.size() < 3 * BUFFER) {
      for (int k = 0; k < 3; ++k) {
        char number[40];
        double const largest = std::pow(10.0, in.Whole(0, 9));
        std::snprintf(number, sizeof number, "%.*f", in.Whole(0, 8), in.Between(-largest, largest));
        text += std::string(number) + (k < 2 ? separator : in.Whole(0, 8) == 0 ? " \r\n" : "\n");
      }
    }
    ASSERT_NO_FATAL_FAILURE(ExpectAsScanned(folder, text));
  }
}

TEST(XyzReader, RealSurveysAreReadAsByTheCRuntime) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  TemporaryFolder const copies;
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".xyz") continue;
    SCOPED_TRACE(entry.path());
    std::ifstream file(entry.path(), std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    ASSERT_NO_FATAL_FAILURE(ExpectAsScanned(copies, text));
  }
}

TEST(XyzReader, TheBufferMayEndInAnyPlace) {
  FormulaInputs in;
  TemporaryFolder folder;
  for (int i = 0; i < 300; ++i) {
    std::string const soup = Soup(in);
    std::size_t const cut = static_cast<std::size_t>(in.Whole(0, static_cast<int>(soup.size())));
    ASSERT_NO_FATAL_FAILURE(ExpectAsScanned(folder, std::string(BUFFER - cut, ' ') + soup));
  }
}

TEST(XyzReader, APipeMayDeliverAnyPiece) {
  FormulaInputs in;
  TemporaryFolder folder;
  for (int i = 0; i < 1000; ++i) {
    std::string const text = Soup(in);
    folder.Put("xyz", text);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::thread writer([&, step = static_cast<std::size_t>(in.Whole(1, 40))] {
      for (std::size_t at = 0; at < text.size(); at += step) {
        std::string const piece = text.substr(at, step);
        if (write(ends[1], piece.data(), piece.size()) < 0) break;
      }
      close(ends[1]);
    });
    XyzReader reader(ends[0]);
    std::vector<TPoint> const points = ReadAll(reader);
    writer.join();
    close(ends[0]);
    ScannedXyz const expected = ScanXyz(folder.Path("xyz"));
    ASSERT_EQ(points.size(), expected.points.size()) << ::testing::PrintToString(text);
    for (std::size_t k = 0; k < points.size(); ++k) {
      ASSERT_TRUE(SameBits(points[k], expected.points[k])) << ::testing::PrintToString(text);
    }
  }
}

// Half way between two neighbouring doubles, a single digit far behind decides.
TEST(XyzReader, HalfwayNumbersAreRoundedByTheirLastDigit) {
  FormulaInputs in;
  TemporaryFolder folder;
  for (int i = 0; i < 300; ++i) {
    double const low = in.Whole(0, 1) == 0 ? std::fabs(in.Number())
                                           : std::ldexp(in.Between(0.5, 1), in.Whole(-1020, 1000));
    double const high = std::nextafter(low, 1e300);
    char text[2500];
    std::snprintf(text, sizeof text, "%.1100Lf", (static_cast<long double>(low) + high) / 2);
    std::string const middle = text;
    std::string const above = middle + std::string(in.Whole(0, 2000), '0') + "1";
    folder.Put("xyz", middle + " " + above + " -" + above);
    ScannedXyz const expected = ScanXyz(folder.Path("xyz"));
    XyzReader reader(folder.Wide("xyz").c_str());
    TPoint p;
    ASSERT_TRUE(reader.Next(p));
    ASSERT_TRUE(SameBits(p, expected.points.at(0))) << text;
    ASSERT_EQ(p.y, high);
    ASSERT_EQ(p.z, -high);
  }
}

TEST(XyzReader, NumbersLongerThanTheBuffer) {
  TemporaryFolder folder;
  std::string const zeros(2 * BUFFER, '0');
  std::string const length = std::to_string(zeros.size());
  ExpectAsScanned(folder, zeros + "1.5 2." + zeros + "5 3");
  ExpectAsScanned(folder, "1" + zeros + "e-" + length + ",0." + zeros + "1e" + length + ",7");
  ExpectAsScanned(folder, "0x1" + zeros + "p-" + std::to_string(4 * zeros.size()) + " 0x0." +
                              zeros + "8p" + std::to_string(4 * zeros.size()) + " 1e" + zeros +
                              "1");
  ExpectAsScanned(folder, "0x1." + std::string(600'000, 'f') + " 1" + std::string(900, '9') + " 3");
}

TEST(XyzReader, TheLocaleOfTheHostDoesNotMatter) {
  // Without this locale on the machine, the test still runs in the locale that there is.
  char const* const german = setlocale(LC_ALL, "de_DE.UTF-8");
  Outcome const o = Read("1.5,2.5,3e400\n");
  setlocale(LC_ALL, "C");
  SCOPED_TRACE(german == nullptr ? "no German locale here" : german);
  ASSERT_EQ(o.points.size(), 1U);
  EXPECT_EQ(o.points[0].x, 1.5);
  EXPECT_EQ(o.points[0].y, 2.5);
  EXPECT_TRUE(std::isinf(o.points[0].z));
}

}  // namespace
