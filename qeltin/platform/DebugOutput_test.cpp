#include "qeltin/platform/DebugOutput.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

class DebugOutput : public ::testing::Test {
 protected:
  ~DebugOutput() override { SetDebugSink({}); }
};

TEST_F(DebugOutput, IsSilentUnlessAsked) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  OutputDebugStringW(L"hidden");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(DebugOutput, GoesToTheSinkAsItStands) {
  std::vector<std::wstring> told;
  SetDebugSink([&](wchar_t const* text) { told.emplace_back(text); });
  OutputDebugStringW(L"\n one");
  OutputDebugStringW(L"");
  SetDebugSink({});
  OutputDebugStringW(L"three");
  EXPECT_EQ(told, (std::vector<std::wstring>{L"\n one", L""}));
}

TEST_F(DebugOutput, GoesToStderrInUtf8WhereAsked) {
  SetDebugSink(WriteDebugToStderr);
  ::testing::internal::CaptureStderr();
  OutputDebugStringW(L"\n \u00e9\u6d77");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "\n \xc3\xa9\xe6\xb5\xb7");
}

TEST_F(DebugOutput, SinkMayReplaceItself) {
  int calls = 0;
  SetDebugSink([&](wchar_t const*) {
    ++calls;
    SetDebugSink({});
    OutputDebugStringW(L"into the void");
  });
  OutputDebugStringW(L"once");
  OutputDebugStringW(L"twice");
  EXPECT_EQ(calls, 1);
}

TEST_F(DebugOutput, CanBeUsedFromManyThreads) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([] {
      for (int i = 0; i < 1000; ++i) {
        SetDebugSink([](wchar_t const* text) { EXPECT_EQ(*text, L'x'); });
        OutputDebugStringW(L"x");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
