#include "qeltin/platform/FileStream.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <numeric>
#include <string>
#include <thread>

#include "testing/TemporaryFolder.h"

namespace {

using qeltin::testing::TemporaryFolder;

constexpr std::size_t LARGE = 700'000;  // more than two buffers

std::string LargeText() {
  std::string text(LARGE, '\0');
  std::iota(text.begin(), text.end(), '\0');
  for (std::size_t i = 0; i < LARGE; i += 1000) text[i] = static_cast<char>(i / 1000);
  return text;
}

std::string ReadString(FileStream& stream, std::size_t size) {
  std::string text(size, '?');
  return stream.Read(text.data(), size) ? text : "(nothing)";
}

bool WriteString(FileStream& stream, std::string const& text) {
  return stream.Write(text.data(), text.size());
}

// A pipe whose reading end is `ends[0]`; `text` arrives in small pieces.
class SlowPipe {
 public:
  explicit SlowPipe(std::string text) {
    if (pipe(m_Ends) != 0) std::abort();
    m_Writer = std::thread([this, text = std::move(text)] {
      for (std::size_t at = 0; at < text.size(); at += 4093) {
        std::size_t const size = std::min<std::size_t>(4093, text.size() - at);
        if (write(m_Ends[1], text.data() + at, size) < 0) break;
      }
      close(m_Ends[1]);
    });
  }
  ~SlowPipe() {
    m_Writer.join();
    close(m_Ends[0]);
  }
  int Reader() const { return m_Ends[0]; }

 private:
  int m_Ends[2];
  std::thread m_Writer;
};

// --- Reading
// --------------------------------------------------------------------------------------

TEST(FileStream, ReadsWhatIsThereInOrder) {
  TemporaryFolder folder;
  folder.Put("a", "abcdefgh");
  FileStream stream(folder.Wide("a").c_str(), false, true);
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_TRUE(stream.IsRegular());
  EXPECT_EQ(stream.Size(), 8);
  EXPECT_EQ(ReadString(stream, 3), "abc");
  EXPECT_EQ(stream.Position(), 3);
  EXPECT_EQ(ReadString(stream, 5), "defgh");
  EXPECT_EQ(stream.Position(), 8);
  EXPECT_FALSE(stream.RanOut());
  EXPECT_EQ(stream.Error(), 0);
}

TEST(FileStream, AReadThatRunsOutKeepsTheBufferAndMovesToTheEnd) {
  TemporaryFolder folder;
  folder.Put("a", "abcdefgh");
  FileStream stream(folder.Wide("a").c_str(), false, true);
  EXPECT_EQ(ReadString(stream, 6), "abcdef");
  char buffer[] = "12345";
  EXPECT_FALSE(stream.Read(buffer, 3));
  EXPECT_STREQ(buffer, "12345");
  EXPECT_EQ(stream.Position(), 8);
  EXPECT_FALSE(stream.Read(buffer, 1));  // one byte was there before
  EXPECT_STREQ(buffer, "12345");
  EXPECT_TRUE(stream.RanOut());
  EXPECT_EQ(stream.Error(), 0);
  EXPECT_TRUE(stream.Seek(7, 0));
  EXPECT_EQ(ReadString(stream, 1), "h");
}

TEST(FileStream, AReadOfNothingSucceeds) {
  TemporaryFolder folder;
  folder.Put("a", "");
  FileStream stream(folder.Wide("a").c_str(), false, true);
  EXPECT_TRUE(stream.Read(nullptr, 0));
  EXPECT_FALSE(stream.RanOut());
}

TEST(FileStream, ReadsAcrossBuffers) {
  TemporaryFolder folder;
  std::string const text = LargeText();
  folder.Put("a", text);
  for (std::size_t step : {1UL, 24UL, 262'144UL, 262'145UL, 333'333UL, 700'000UL}) {
    FileStream stream(folder.Wide("a").c_str(), false, true);
    std::size_t at = 0;
    for (; at + step <= LARGE; at += step) {
      ASSERT_EQ(ReadString(stream, step), text.substr(at, step)) << step << " at " << at;
    }
    if (at == LARGE) continue;
    EXPECT_EQ(ReadString(stream, step), "(nothing)") << step;
    EXPECT_EQ(stream.Position(), static_cast<long long>(LARGE));
  }
}

TEST(FileStream, ALargeReadThatRunsOutKeepsTheBuffer) {
  TemporaryFolder folder;
  folder.Put("a", LargeText());
  FileStream stream(folder.Wide("a").c_str(), false, true);
  EXPECT_NE(ReadString(stream, 10), "(nothing)");
  std::string buffer(LARGE, '?');
  EXPECT_FALSE(stream.Read(buffer.data(), LARGE - 9));
  EXPECT_EQ(buffer, std::string(LARGE, '?'));
  EXPECT_EQ(stream.Position(), static_cast<long long>(LARGE));
  EXPECT_TRUE(stream.Seek(10, 0));
  EXPECT_TRUE(stream.Read(buffer.data(), LARGE - 10));
  EXPECT_EQ(buffer, LargeText().substr(10) + std::string(10, '?'));
}

TEST(FileStream, AReadOfAnAbsurdSizeDeliversNothing) {
  TemporaryFolder folder;
  folder.Put("a", "abc");
  FileStream stream(folder.Wide("a").c_str(), false, true);
  char buffer = '?';
  EXPECT_FALSE(stream.Read(&buffer, std::stoull("18446744073709551615")));
  EXPECT_EQ(buffer, '?');
}

TEST(FileStream, SeekCountsFromStartPositionAndEnd) {
  TemporaryFolder folder;
  folder.Put("a", "abcdefgh");
  FileStream stream(folder.Wide("a").c_str(), false, true);
  EXPECT_TRUE(stream.Seek(2, 0));
  EXPECT_EQ(ReadString(stream, 1), "c");
  EXPECT_TRUE(stream.Seek(2, 1));
  EXPECT_EQ(ReadString(stream, 1), "f");
  EXPECT_TRUE(stream.Seek(-1, 2));
  EXPECT_EQ(ReadString(stream, 1), "h");
  EXPECT_FALSE(stream.Seek(-1, 0));
  EXPECT_EQ(stream.Position(), 8);
  EXPECT_FALSE(stream.Seek(0x7FFFFFFFFFFFFFFF, 1));
  EXPECT_TRUE(stream.Seek(0, 0));
  EXPECT_EQ(ReadString(stream, 8), "abcdefgh");
  EXPECT_EQ(stream.Error(), 0);
}

TEST(FileStream, OffsetsPastFourGibibytes) {
  TemporaryFolder folder;
  folder.Put("a", "");
  std::filesystem::resize_file(folder.Path("a"), (5LL << 30) + 3);  // sparse
  FileStream stream(folder.Wide("a").c_str(), false, true);
  EXPECT_EQ(stream.Size(), (5LL << 30) + 3);
  EXPECT_TRUE(stream.Seek(5LL << 30, 0));
  EXPECT_EQ(ReadString(stream, 3), std::string(3, '\0'));
  EXPECT_EQ(stream.Position(), (5LL << 30) + 3);
}

TEST(FileStream, AMissingFileDeliversNothing) {
  TemporaryFolder folder;
  FileStream stream(folder.Wide("missing").c_str(), false, true);
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(stream.Error(), ENOENT);
  char buffer[] = "12345";
  EXPECT_FALSE(stream.Read(buffer, 2));
  EXPECT_EQ(stream.ReadSome(buffer, 2), 0U);
  EXPECT_FALSE(stream.Seek(0, 0));
  EXPECT_STREQ(buffer, "12345");
  EXPECT_EQ(folder.Entries(), 0);
}

TEST(FileStream, ANullNameIsAMissingFile) {
  EXPECT_EQ(FileStream(nullptr, false, true).Error(), ENOENT);
  EXPECT_EQ(FileStream(nullptr, true, true).Error(), ENOENT);
}

TEST(FileStream, AFolderCannotBeRead) {
  TemporaryFolder folder;
  FileStream stream(folder.Path().wstring().c_str(), false, true);
  char buffer = '?';
  EXPECT_FALSE(stream.Read(&buffer, 1));
  EXPECT_EQ(stream.Error(), EISDIR);
  EXPECT_FALSE(stream.RanOut());
}

TEST(FileStream, ReadsFromAPipe) {
  std::string const text = LargeText();
  SlowPipe pipe(text);
  FileStream stream(pipe.Reader());
  EXPECT_FALSE(stream.IsRegular());
  EXPECT_EQ(stream.Size(), -1);
  EXPECT_EQ(ReadString(stream, 5), text.substr(0, 5));
  EXPECT_EQ(ReadString(stream, 600'000), text.substr(5, 600'000));  // more than a buffer
  EXPECT_EQ(stream.Position(), 600'005);
  EXPECT_FALSE(stream.Seek(0, 0));
  EXPECT_EQ(ReadString(stream, 100'000), "(nothing)");
  EXPECT_EQ(stream.Position(), static_cast<long long>(LARGE));
  EXPECT_EQ(ReadString(stream, 1), "(nothing)");
}

TEST(FileStream, ADescriptorStaysOpen) {
  TemporaryFolder folder;
  folder.Put("a", "abcdef");
  int const descriptor = open(folder.Path("a").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(lseek(descriptor, 2, SEEK_SET), 2);
  {
    FileStream stream(descriptor);
    EXPECT_EQ(stream.Position(), 2);
    EXPECT_EQ(ReadString(stream, 3), "cde");
  }
  EXPECT_EQ(close(descriptor), 0);
}

TEST(FileStream, ReadSomeReadsWhatIsLeft) {
  TemporaryFolder folder;
  folder.Put("a", "abcdef");
  FileStream stream(folder.Wide("a").c_str(), false, true);
  char buffer[16] = {};
  EXPECT_EQ(ReadString(stream, 2), "ab");
  EXPECT_EQ(stream.ReadSome(buffer, 3), 3U);
  EXPECT_EQ(std::string(buffer, 3), "cde");
  EXPECT_EQ(stream.ReadSome(buffer, 16), 1U);
  EXPECT_EQ(stream.ReadSome(buffer, 16), 0U);
  EXPECT_EQ(stream.Position(), 6);
}

// --- Writing
// --------------------------------------------------------------------------------------

TEST(FileStream, SyncAndDeleteReplaceTheFile) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  {
    FileStream stream(folder.Wide("a").c_str(), true, true);
    EXPECT_TRUE(WriteString(stream, "new "));
    EXPECT_TRUE(WriteString(stream, LargeText()));
    EXPECT_EQ(stream.Position(), 4 + static_cast<long long>(LARGE));
    EXPECT_TRUE(stream.Sync());
    EXPECT_EQ(folder.Get("a"), "old");  // not yet
  }
  EXPECT_EQ(folder.Get("a"), "new " + LargeText());
  EXPECT_EQ(folder.Entries(), 1);
}

TEST(FileStream, AWriteWithoutSyncLeavesTheOldFile) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  {
    FileStream stream(folder.Wide("a").c_str(), true, true);
    WriteString(stream, "half");
    stream.Sync();
    WriteString(stream, " and");
  }
  EXPECT_EQ(folder.Get("a"), "old");
  EXPECT_EQ(folder.Entries(), 1);
}

TEST(FileStream, CommitPublishesAndCloses) {
  TemporaryFolder folder;
  FileStream stream(folder.Wide("a").c_str(), true, true);
  WriteString(stream, "new");
  EXPECT_FALSE(folder.Has("a"));
  EXPECT_TRUE(stream.Commit());
  EXPECT_EQ(folder.Get("a"), "new");
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_TRUE(stream.Commit());
  EXPECT_FALSE(WriteString(stream, "more"));
  EXPECT_EQ(stream.Error(), EBADF);
}

TEST(FileStream, WritesInPiecesOfAnySize) {
  TemporaryFolder folder;
  std::string const text = LargeText();
  for (std::size_t step : {1UL, 26UL, 262'143UL, 262'144UL, 262'145UL, 700'000UL}) {
    FileStream stream(folder.Wide("a").c_str(), true, true);
    for (std::size_t at = 0; at < LARGE; at += step) WriteString(stream, text.substr(at, step));
    ASSERT_TRUE(stream.Commit());
    ASSERT_EQ(folder.Get("a"), text) << step;
  }
}

TEST(FileStream, SeekAndSetSizeWhileWriting) {
  TemporaryFolder folder;
  FileStream stream(folder.Wide("a").c_str(), true, true);
  WriteString(stream, "0123456789");
  EXPECT_TRUE(stream.Seek(2, 0));
  WriteString(stream, "ab");
  EXPECT_TRUE(stream.Seek(1, 1));
  WriteString(stream, "c");
  EXPECT_EQ(stream.Position(), 6);
  EXPECT_TRUE(stream.SetSize(8));
  EXPECT_TRUE(stream.Commit());
  EXPECT_EQ(folder.Get("a"), "01ab4c67");
}

TEST(FileStream, AStreamForWritingDoesNotReadAndTheOtherWayRound) {
  TemporaryFolder folder;
  folder.Put("a", "abc");
  char buffer = '?';
  FileStream out(folder.Wide("b").c_str(), true, true);
  EXPECT_FALSE(out.Read(&buffer, 1));
  EXPECT_EQ(out.ReadSome(&buffer, 1), 0U);
  FileStream in(folder.Wide("a").c_str(), false, true);
  EXPECT_FALSE(WriteString(in, "x"));
  EXPECT_FALSE(in.SetSize(0));
  EXPECT_EQ(ReadString(in, 3), "abc");
}

TEST(FileStream, ANewFileHasTheUsualPermissions) {
  TemporaryFolder folder;
  mode_t const mask = umask(027);
  {
    FileStream stream(folder.Wide("a").c_str(), true, true);
    stream.Commit();
  }
  umask(mask);
  struct stat status = {};
  ASSERT_EQ(stat(folder.Path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST(FileStream, AnExistingFileHandsItsPermissionsOn) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  ASSERT_EQ(chmod(folder.Path("a").c_str(), 0664), 0);
  FileStream stream(folder.Wide("a").c_str(), true, true);
  EXPECT_TRUE(stream.Commit());
  struct stat status = {};
  ASSERT_EQ(stat(folder.Path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0664U);
}

TEST(FileStream, ALinkStaysAndItsTargetIsReplaced) {
  TemporaryFolder folder;
  std::filesystem::create_directory(folder.Path("real"));
  folder.Put("real/a", "old");
  std::filesystem::create_symlink("real/a", folder.Path("relative"));
  std::filesystem::create_symlink(folder.Path("relative"), folder.Path("absolute"));
  FileStream stream(folder.Wide("absolute").c_str(), true, true);
  WriteString(stream, "new");
  EXPECT_TRUE(stream.Commit());
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("absolute")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("relative")));
  EXPECT_EQ(folder.Get("real/a"), "new");
  EXPECT_EQ(folder.Entries(), 3);
}

TEST(FileStream, ALinkToNothingYetMakesItsTarget) {
  TemporaryFolder folder;
  std::filesystem::create_symlink("a", folder.Path("link"));
  FileStream stream(folder.Wide("link").c_str(), true, true);
  WriteString(stream, "new");
  EXPECT_TRUE(stream.Commit());
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link")));
  EXPECT_EQ(folder.Get("a"), "new");
}

TEST(FileStream, LinksInACircleAreAnError) {
  TemporaryFolder folder;
  std::filesystem::create_symlink("b", folder.Path("a"));
  std::filesystem::create_symlink("a", folder.Path("b"));
  FileStream stream(folder.Wide("a").c_str(), true, true);
  EXPECT_EQ(stream.Error(), ELOOP);
}

TEST(FileStream, ARelativeNameStaysWhereItWasOpened) {
  TemporaryFolder folder;
  std::filesystem::path const before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  FileStream stream(L"a", true, true);
  std::filesystem::current_path(before);
  WriteString(stream, "new");
  EXPECT_TRUE(stream.Commit());
  EXPECT_EQ(folder.Get("a"), "new");
}

TEST(FileStream, NamesAreUtf8OnDisk) {
  TemporaryFolder folder;
  std::wstring const name = folder.Path().wstring() + L"/tiefe \u00e9\u20ac\U0001F30A";
  FileStream out(name.c_str(), true, true);
  WriteString(out, "new");
  EXPECT_TRUE(out.Commit());
  EXPECT_EQ(folder.Get("tiefe \xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\x8A"), "new");
  FileStream in(name.c_str(), false, true);
  EXPECT_EQ(ReadString(in, 3), "new");
}

TEST(FileStream, AnInvalidWideCharacterDoesNotThrow) {
  TemporaryFolder folder;
  std::wstring const name = folder.Path().wstring() + L"/" + static_cast<wchar_t>(0x7FFFFFFF);
  FileStream stream(name.c_str(), true, true);
  EXPECT_TRUE(stream.Commit());
  EXPECT_TRUE(folder.Has("\xEF\xBF\xBD"));
}

TEST(FileStream, TheLongestNameCanBeWritten) {
  TemporaryFolder folder;
  std::string const name(255, 'n');
  FileStream stream(folder.Wide(name).c_str(), true, true);
  EXPECT_TRUE(stream.Commit());
  EXPECT_TRUE(folder.Has(name));
}

// --- Failures
// -------------------------------------------------------------------------------------

TEST(FileStream, AMissingFolderIsRemembered) {
  TemporaryFolder folder;
  FileStream stream(folder.Wide("missing/a").c_str(), true, true);
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(stream.Error(), ENOENT);
  EXPECT_FALSE(WriteString(stream, "x"));
  EXPECT_FALSE(stream.Sync());
  EXPECT_FALSE(stream.Commit());
  EXPECT_EQ(stream.Error(), ENOENT);
}

TEST(FileStream, AFolderCannotBeWritten) {
  TemporaryFolder folder;
  EXPECT_EQ(FileStream(folder.Path().wstring().c_str(), true, true).Error(), EISDIR);
  EXPECT_EQ(FileStream((folder.Path().wstring() + L"/").c_str(), true, true).Error(), EISDIR);
}

TEST(FileStream, AFullDeviceIsRemembered) {
  FileStream stream(L"/dev/full", true, true);
  ASSERT_TRUE(stream.IsOpen());
  EXPECT_TRUE(WriteString(stream, "x"));  // still buffered
  EXPECT_FALSE(stream.Sync());
  EXPECT_EQ(stream.Error(), ENOSPC);
  EXPECT_FALSE(WriteString(stream, "x"));
  EXPECT_FALSE(stream.Commit());
  EXPECT_EQ(stream.Error(), ENOSPC);
}

TEST(FileStream, ADeviceIsWrittenDirectly) {
  FileStream stream(L"/dev/null", true, true);
  EXPECT_TRUE(WriteString(stream, LargeText()));
  EXPECT_TRUE(stream.Commit());
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(FileStream, APipeIsWrittenDirectly) {
  TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
  std::string received;
  std::thread reader([&] { received = folder.Get("pipe"); });
  {
    FileStream stream(folder.Wide("pipe").c_str(), true, true);
    WriteString(stream, LargeText());
    EXPECT_FALSE(stream.Seek(0, 0));  // what follows would be in the wrong place
    EXPECT_FALSE(stream.Commit());
    EXPECT_EQ(stream.Error(), ESPIPE);
  }
  reader.join();
  EXPECT_EQ(received, LargeText());
  EXPECT_TRUE(std::filesystem::is_fifo(folder.Path("pipe")));
}

TEST(FileStream, AnOpenFileUnderProcIsWrittenDirectly) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  int const descriptor = open(folder.Path("a").c_str(), O_RDWR | O_CLOEXEC);
  std::wstring const name = L"/proc/self/fd/" + std::to_wstring(descriptor);
  FileStream stream(name.c_str(), true, true);
  WriteString(stream, "new text");
  EXPECT_TRUE(stream.Commit());
  char buffer[8] = {};
  EXPECT_EQ(pread(descriptor, buffer, 8, 0), 8);  // the same file, not another of its name
  EXPECT_EQ(std::string(buffer, 8), "new text");
  close(descriptor);
}

}  // namespace
