// Threads: start, join by Kill, and the trace lines around them.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "runtime/Event.h"
#include "runtime/Thread.h"
#include "support/CaptureTraceServer.h"

namespace {

struct Worker {
    CEvent stop{false, true};
    std::atomic<int> runs{0};
    static void* Run(void* self) {
        auto* w = static_cast<Worker*>(self);
        ++w->runs;
        w->stop.Wait(CEvent::kWaitForever, false);
        return TraceThreadReturn(reinterpret_cast<void*>(0x2A));
    }
};

TEST(ThreadTest, KillOrDestructionJoinsAJoinableThreadOnce) {
    ScopedTraceLevel level(2);
    Worker worker;
    CThread thread;
    ASSERT_TRUE(thread.Start(Worker::Run, &worker, CThread::Options::Waitable(63)));
    EXPECT_NE(thread.Handle(), 0u);
    while (worker.runs == 0)
        std::this_thread::yield();
    worker.stop.Set();
    EXPECT_TRUE(thread.Kill());
    EXPECT_EQ(thread.Handle(), 0u);
    EXPECT_NE(Debug.Take().find("exited, Return = 0x0000002a##\n"), std::string::npos);
    // Joined once: there is no thread to kill any more.
    EXPECT_FALSE(thread.Kill());
    EXPECT_NE(Debug.Take().find("\nCThread::Kill: Thread = 0x000000000 doesn't exist !"),
              std::string::npos);
    // Destruction joins the thread as well.
    {
        CThread other;
        ASSERT_TRUE(other.Start(Worker::Run, &worker, CThread::Options::Waitable(63)));
    }
    EXPECT_EQ(worker.runs, 2);
}

TEST(ThreadTest, StartWaitsForTheRunningThreadFirst) {
    Worker worker;
    CThread thread;
    ASSERT_TRUE(thread.Start(Worker::Run, &worker, CThread::Options::Waitable(0)));
    while (worker.runs == 0)
        std::this_thread::yield();
    std::thread releaser([&] {
        EXPECT_EQ(worker.runs, 1);  // the second Start waits in Kill for the first thread
        worker.stop.Set();
    });
    ASSERT_TRUE(thread.Start(Worker::Run, &worker, CThread::Options::Waitable(0)));
    releaser.join();
    while (worker.runs < 2)
        std::this_thread::yield();
    EXPECT_TRUE(thread.Kill());
}

}  // namespace
