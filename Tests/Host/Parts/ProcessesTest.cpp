// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/Task.h"
#include "Host/Messages/Failure.h"
#include "Host/Processes/ChildProcess.h"
#include "Host/Processes/FrameSlots.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>
#include <poll.h>

using namespace host;

namespace {

FrameTask someTask() {
  FrameTask task;
  task.frame = {7, 12, {3, 0, 9}, 0.25, -40};
  task.slots = {1, 0, 2};
  task.outputSlot = 5;
  task.channels = Channels::RGB;
  task.isFirst = true;
  return task;
}

FrameResult someResult() {
  FrameResult result;
  result.index = 7;
  result.remarks = {{"one", "about one"}, {"two", "about two"}};
  result.clippedPixels = 3;
  result.clippedSpace = "sRGB";
  result.stored.stream = {4, 2, true};
  result.stored.depth = Depth::Bits16;
  result.stored.metadata.color.codePoints = CodePoints{9, 16, 0, true};
  result.failure = FailureReport{ExitCode::Input, "cannot read it"};
  return result;
}

bool isReadable(const MessageSocket& socket) {
  pollfd waiting{socket.descriptor(), POLLIN, 0};
  return ::poll(&waiting, 1, 0) == 1;
}

// What a shell's command says through its connection.
std::string said(ChildProcess& child) {
  std::string text;
  std::array<char, 256> part;
  for (ssize_t size; (size = ::read(child.socket().descriptor(), part.data(), part.size())) > 0;) {
    text.append(part.data(), static_cast<std::size_t>(size));
  }
  return text;
}

ChildProcess shell(const std::string& command, const std::vector<int>& inherited = {}, int input = -1) {
  return {"/bin/sh", {"-c", command}, inherited, input};
}

}  // namespace

TEST(Messages, TasksAndResultsArriveAsTheyWereSent) {
  const WorkerOrder order = takeOrder(messageOf(WorkerOrder(someTask())));
  const FrameTask& task = std::get<FrameTask>(order);
  EXPECT_EQ(messageOf(WorkerOrder(task)), messageOf(WorkerOrder(someTask())));
  EXPECT_EQ(task.frame.sources, someTask().frame.sources);
  EXPECT_EQ(task.frame.shown, -40);
  EXPECT_EQ(task.channels, Channels::RGB);
  const FrameResult result = takeResult(messageOf(someResult()));
  EXPECT_EQ(messageOf(result), messageOf(someResult()));
  EXPECT_EQ(result.remarks, someResult().remarks);
  EXPECT_EQ(result.stored.metadata, someResult().stored.metadata);
  EXPECT_EQ(result.failure->message, "cannot read it");
}

TEST(Messages, ThoseThatEndEarlyAreRefused) {
  const Bytes task = messageOf(WorkerOrder(someTask()));
  for (std::size_t size = 0; size < task.size(); ++size) {
    EXPECT_THROW(takeOrder(Bytes(task.begin(), task.begin() + static_cast<std::ptrdiff_t>(size))), Failure) << size;
  }
  const Bytes result = messageOf(someResult());
  for (std::size_t size = 0; size < result.size(); ++size) {
    EXPECT_THROW(takeResult(Bytes(result.begin(), result.begin() + static_cast<std::ptrdiff_t>(size))), Failure)
        << size;
  }
}

TEST(Messages, SocketsKeepThemApart) {
  SocketPair pair;
  MessageSocket ours(::dup(pair.ours()));
  MessageSocket theirs(::dup(pair.theirs()));
  const Bytes large(150000, 7);
  Bytes message;
  using enum MessageSocket::Received;
  EXPECT_EQ(ours.receive(&message, std::chrono::milliseconds(0)), Nothing);
  ASSERT_TRUE(theirs.send(Bytes{1, 2}) && theirs.send({}) && theirs.send(large));
  ASSERT_EQ(ours.receive(&message, std::chrono::milliseconds(0)), Message);
  EXPECT_EQ(message, (Bytes{1, 2}));
  EXPECT_TRUE(isReadable(ours)) << "nothing of the next one has been taken";
  ASSERT_TRUE(ours.receive(&message));
  EXPECT_TRUE(message.empty());
  ASSERT_TRUE(ours.receive(&message));
  EXPECT_EQ(message, large);
  EXPECT_FALSE(isReadable(ours));
  // One that stops in the middle, and one that cannot be.
  const std::uint32_t length = 10;
  ASSERT_EQ(::write(pair.theirs(), &length, sizeof length), 4);
  EXPECT_EQ(ours.receive(&message, std::chrono::milliseconds(1)), Nothing);
  theirs = MessageSocket();
  pair.closeTheirs();
  EXPECT_EQ(ours.receive(&message, std::chrono::milliseconds(0)), End);
  SocketPair broken;
  MessageSocket other(::dup(broken.ours()));
  const std::uint32_t immense = 0xffffffff;
  ASSERT_EQ(::write(broken.theirs(), &immense, sizeof immense), 4);
  EXPECT_EQ(other.receive(&message, std::chrono::milliseconds(0)), End);
}

TEST(FrameSlots, GrowAndAreSeenByChildren) {
  FrameSlots slots(2);
  const FrameKind small{2, 1, SampleType::UInt8, Channels::RGB, AlphaKind::None};
  const FrameKind large{300, 200, SampleType::UInt16, Channels::RGBA, AlphaKind::Straight};
  for (const FrameKind& kind : {small, large, small}) {
    const ChildResult child = RunInChild([&] {
      FrameSlots theirs(slots.descriptors()[1], 1);
      std::memset(theirs.fill(0, kind), 9, kind.bytes());
      return 0;
    });
    ASSERT_TRUE(child.exitedWith(0)) << child.errors;
    ASSERT_EQ(slots.kind(1), kind);
    EXPECT_EQ(slots.pixels(1)[0], std::byte{9});
    EXPECT_EQ(slots.pixels(1)[kind.bytes() - 1], std::byte{9});
  }
  EXPECT_THROW(slots.kind(0), Failure) << "nothing was put there";
  slots.put(0, Bytes{1, 2, 3});
  EXPECT_EQ(slots.bytes(0).size(), 3u);
  EXPECT_THROW(slots.kind(0), Failure) << "bytes are no frame";
  EXPECT_NE(::ftruncate(slots.descriptors()[1], 10), 0) << "what is mapped stays";
}

// A process that has gone mad may leave anything in front of its pixels.
TEST(FrameSlots, AreNotBelievedWhatCannotBe) {
  FrameSlots slots(1);
  const FrameKind kind{2, 1, SampleType::UInt8, Channels::RGBA, AlphaKind::Straight};
  const auto changed = [&](std::size_t at, std::uint32_t value) {
    slots.fill(0, kind);
    EXPECT_EQ(::pwrite(slots.descriptors()[0], &value, sizeof value, static_cast<off_t>(at)), 4);
  };
  for (const auto& [at, value] :
       std::initializer_list<std::pair<std::size_t, std::uint32_t>>{{offsetof(FrameKind, width), 3},
                                                                    {offsetof(FrameKind, width), 0},
                                                                    {offsetof(FrameKind, height), 0x80000000},
                                                                    {offsetof(FrameKind, sample), 17},
                                                                    {offsetof(FrameKind, channels), 17},
                                                                    {offsetof(FrameKind, alpha), 17}}) {
    changed(at, value);
    EXPECT_THROW(slots.kind(0), Failure) << at << ": " << value;
  }
  changed(sizeof(FrameKind) + 4 + 4, 0xffff);
  EXPECT_THROW(slots.bytes(0), Failure);
}

TEST(ChildProcess, TellsHowItEnded) {
  EXPECT_EQ(shell("exit 0").ending(), "it ended with exit code 0");
  EXPECT_EQ(shell("exit 3").ending(), "it ended with exit code 3");
  EXPECT_EQ(shell("kill -SEGV $$").ending(), "it was ended by signal 11 (Segmentation fault)");
  EXPECT_EQ(shell("kill -SEGV $$").cause(), "signal 11 (Segmentation fault)");
  EXPECT_EQ(shell("exec sleep 1000").ending(), "it did not end");
  ChildProcess stubborn = shell("trap '' TERM; echo >&3; exec sleep 1000");
  Bytes start(1);
  ASSERT_EQ(::read(stubborn.socket().descriptor(), start.data(), 1), 1);
  stubborn.stop();
  EXPECT_EQ(stubborn.ending(), "it was ended by signal 9 (Killed)");
}

TEST(ChildProcess, HasWhatItWasGivenAndNothingElse) {
  FrameSlots slots(2);
  slots.put(1, Bytes{'x'});
  ASSERT_EQ(::dup2(STDIN_FILENO, 200), 200);  // open across exec
  ChildProcess listing =
      shell("for n in 4 5 6 200; do [ -e /proc/$$/fd/$n ] && echo $n >&3; done", slots.descriptors());
  ::close(200);
  EXPECT_EQ(said(listing), "4\n5\n");
  ChildProcess reading = shell("cat >&3");
  EXPECT_EQ(said(reading), "") << "an empty standard input";
  const int input = slots.descriptors()[1];
  ::lseek(input, 0, SEEK_END);
  ASSERT_EQ(::pwrite(input, "given", 5, 64), 5);
  ::lseek(input, 64, SEEK_SET);
  ChildProcess given = shell("cat >&3", {}, input);
  EXPECT_EQ(said(given), "given");
}

TEST(ChildProcess, WhatIsNoProgramSaysWhy) {
  const std::ptrdiff_t before = openDescriptors();
  try {
    const ChildProcess child("/no/such/program", {}, {});
    ADD_FAILURE();
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(), "/no/such/program could not be started: No such file or directory");
  }
  EXPECT_EQ(openDescriptors(), before);
}
