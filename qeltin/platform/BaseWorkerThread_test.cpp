#include "qeltin/platform/BaseWorkerThread.h"

#include <gtest/gtest.h>

#include <atomic>

#include "qeltin/platform/Event.h"

namespace {

using namespace std::chrono_literals;

constexpr auto LONG_ENOUGH = 30s;

// Makes a round of steps for each start.
class Worker : public BaseWorkerThread {
 public:
  explicit Worker(int steps) : m_iSteps(steps) {}
  ~Worker() override { WaitForEnd(); }

  int ThreadFunction() override {
    thread = std::this_thread::get_id();
    go.Wait(LONG_ENOUGH);
    int const done = ++calls;
    if (restarts > 0 && done % m_iSteps == 0) {
      --restarts;
      started_from_within = StartBaseWorkerThread(0, nullptr);
      WaitForEnd();
    }
    return done % m_iSteps == 0 ? 0 : 1;
  }

  using BaseWorkerThread::WaitForEnd;

  Event go;
  std::atomic<int> calls = 0;
  int restarts = 0;
  bool started_from_within = false;
  std::thread::id thread;

 private:
  int m_iSteps;
};

TEST(BaseWorkerThread, CallsUntilTheAnswerIsZero) {
  Worker worker(7);
  worker.go.Set();
  EXPECT_TRUE(worker.StartBaseWorkerThread(0, nullptr));
  worker.WaitForEnd();
  EXPECT_EQ(worker.calls, 7);
  EXPECT_NE(worker.thread, std::this_thread::get_id());
}

TEST(BaseWorkerThread, StartsAnewAfterItsEnd) {
  Worker worker(3);
  worker.go.Set();
  for (int round = 1; round <= 5; ++round) {
    EXPECT_TRUE(worker.StartBaseWorkerThread(0, L"worker"));
    worker.WaitForEnd();
    EXPECT_EQ(worker.calls, 3 * round);
  }
}

TEST(BaseWorkerThread, AStartDuringTheWorkMakesAnotherRound) {
  Worker worker(3);
  EXPECT_TRUE(worker.StartBaseWorkerThread(0, nullptr));
  EXPECT_TRUE(worker.StartBaseWorkerThread(0, nullptr));
  worker.go.Set();
  worker.WaitForEnd();
  EXPECT_EQ(worker.calls, 6);
}

TEST(BaseWorkerThread, TheWorkerStartsItselfAnewAndDoesNotWaitForItself) {
  Worker worker(3);
  worker.restarts = 2;
  worker.go.Set();
  EXPECT_TRUE(worker.StartBaseWorkerThread(0, nullptr));
  worker.WaitForEnd();
  EXPECT_EQ(worker.calls, 9);
  EXPECT_TRUE(worker.started_from_within);
}

TEST(BaseWorkerThread, WithoutAStartThereIsNothingToWaitFor) {
  Worker worker(3);
  worker.WaitForEnd();
  EXPECT_EQ(worker.calls, 0);
}

TEST(BaseWorkerThread, DestructionWaitsForTheEnd) {
  Event go;
  std::thread helper;
  std::atomic<int> calls = 0;
  {
    class Counter : public BaseWorkerThread {
     public:
      Counter(Event const& event, std::atomic<int>& count) : m_Event(event), m_iCount(count) {}
      ~Counter() override { WaitForEnd(); }
      int ThreadFunction() override {
        m_Event.Wait(LONG_ENOUGH);
        return ++m_iCount < 4 ? 1 : 0;
      }

     private:
      Event const& m_Event;
      std::atomic<int>& m_iCount;
    };
    Counter counter(go, calls);
    EXPECT_TRUE(counter.StartBaseWorkerThread(0, nullptr));
    helper = std::thread([&go] { go.Set(); });
  }
  EXPECT_EQ(calls, 4);
  helper.join();
}

}  // namespace
