// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Mach/Memory.h"

#include <fcntl.h>
#include <sys/resource.h>

#include <cerrno>
#include <thread>

namespace {

struct Received {
  explicit Received(int socket, std::size_t capacity = mach_entry_note_limit) {
    std::vector<char> bytes(capacity + 1);
    std::size_t noteSize = 0;
    result = mach_receive_memory_entry(socket, &entry, &size, bytes.data(), capacity, &noteSize);
    note.assign(bytes.data(), noteSize);
  }
  kern_return_t result;
  mach_port_t entry = MACH_PORT_NULL;
  vm_size_t size = 0;
  std::string note;
};

// A message as the other side sends it, put together by hand.
std::string message(std::uint64_t size, std::uint64_t offset = 0, const std::string& note = {},
                    std::uint32_t mark = 0x31454D56) {
  std::string bytes(24, '\0');
  const auto noteSize = static_cast<std::uint32_t>(note.size());
  std::memcpy(&bytes[0], &mark, 4);
  std::memcpy(&bytes[4], &noteSize, 4);
  std::memcpy(&bytes[8], &offset, 8);
  std::memcpy(&bytes[16], &size, 8);
  return bytes + note;
}

// A message of these bytes, with room for descriptors.
struct Message {
  Message(std::string& bytes, std::size_t descriptors)
      : part{bytes.data(), bytes.size()}, control(CMSG_SPACE(descriptors * sizeof(int))) {
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = descriptors ? control.data() : nullptr;
    header.msg_controllen = descriptors ? control.size() : 0;
  }
  iovec part;
  std::vector<char> control;
  msghdr header{};
};

void sendBytes(int socket, std::string bytes, const std::vector<int>& descriptors) {
  Message message(bytes, descriptors.size());
  if (cmsghdr* const rights = CMSG_FIRSTHDR(&message.header)) {
    *rights = {CMSG_LEN(descriptors.size() * sizeof(int)), SOL_SOCKET, SCM_RIGHTS};
    std::memcpy(CMSG_DATA(rights), descriptors.data(), descriptors.size() * sizeof(int));
  }
  ASSERT_EQ(sendmsg(socket, &message.header, MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
}

int memoryFile(vm_size_t size, int seals) {
  const int file = memfd_create("test", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  EXPECT_EQ(ftruncate(file, static_cast<off_t>(size)), 0);
  EXPECT_EQ(fcntl(file, F_ADD_SEALS, seals), 0);
  return file;
}

constexpr int goodSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;

TEST(EntrySocket, AnotherProcessReadsAndChangesTheSameMemoryButNotItsSizeNorItsSeals) {
  SocketPair pair;
  const vm_address_t address = allocated(5 * page);
  std::memset(bytesAt(address), 3, 5 * page);
  const mach_port_t entry = entryOf(address, 5 * page);
  for (const vm_size_t noteSize : {4, 0}) {
    ASSERT_EQ(mach_send_memory_entry(pair.ours(), entry, noteSize ? "note" : nullptr, noteSize), KERN_SUCCESS);
  }
  const ChildResult child = RunInChild([&pair] {
    const Received received(pair.theirs());
    if (received.result != KERN_SUCCESS || received.size != 5 * page || received.note != "note") return 1;
    vm_address_t mapped = 0;
    if (mapEntry(received.entry, &mapped, received.size) != KERN_SUCCESS) return 2;
    for (vm_size_t i = 0; i < 5 * page; ++i) {
      if (bytesAt(mapped)[i] != 3) return 3;
    }
    bytesAt(mapped)[4 * page] = 200;
    return 0;
  });
  EXPECT_TRUE(child.exitedWith(0)) << child.status;
  EXPECT_TRUE(bytesAt(address)[4 * page] == 200 && bytesAt(address)[0] == 3);

  std::string bytes(24, '\0');
  Message received(bytes, 1);
  ASSERT_EQ(recvmsg(pair.theirs(), &received.header, 0), 24);
  EXPECT_EQ(bytes, message(5 * page));
  ASSERT_NE(CMSG_FIRSTHDR(&received.header), nullptr);
  int file;
  std::memcpy(&file, CMSG_DATA(CMSG_FIRSTHDR(&received.header)), sizeof file);
  for (const vm_size_t size : {vm_size_t{0}, 8 * page}) EXPECT_EQ(ftruncate(file, static_cast<off_t>(size)), -1);
  EXPECT_EQ(fcntl(file, F_ADD_SEALS, F_SEAL_WRITE), -1);
  close(file);
  std::memset(bytesAt(address), 1, 5 * page);
  release({entry}, {{address, 5 * page}});
}

TEST(EntrySocket, TakesAMessageThatComesInPieces) {
  SocketPair pair;
  const int file = memoryFile(2 * page, goodSeals);
  const std::string bytes = message(page, page, "piecemeal");
  std::thread sender([&] {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      sendBytes(pair.theirs(), bytes.substr(i, 1), i == 0 ? std::vector<int>{file} : std::vector<int>{});
      usleep(200);
    }
  });
  const Received received(pair.ours());
  sender.join();
  close(file);
  ASSERT_EQ(received.result, KERN_SUCCESS);
  EXPECT_TRUE(received.note == "piecemeal" && received.size == page);
  vm_address_t mapped = 0;
  EXPECT_EQ(mapEntry(received.entry, &mapped, page), KERN_SUCCESS);
  EXPECT_EQ(mapEntry(received.entry, &mapped, 2 * page), KERN_INVALID_ARGUMENT);
  mach_port_deallocate(self, received.entry);
}

TEST(EntrySocket, BadMessagesAreRefusedAndLeaveNoDescriptor) {
  const struct {
    const char* name;
    std::string bytes;
    int descriptors;
    vm_size_t fileSize;
    int seals;
    kern_return_t expected;
  } rows[] = {
      {"OtherMark", message(page, 0, {}, 1), 1, page, goodSeals, KERN_INVALID_VALUE},
      {"NoSize", message(0), 1, page, goodSeals, KERN_INVALID_VALUE},
      {"HalfPage", message(100), 1, page, goodSeals, KERN_INVALID_VALUE},
      {"OddOffset", message(page, 8), 1, 2 * page, goodSeals, KERN_INVALID_VALUE},
      {"LongNote", message(page, 0, std::string(17, 'x')), 1, page, goodSeals, KERN_INVALID_VALUE},
      {"NoDescriptor", message(page), 0, 0, 0, KERN_INVALID_VALUE},
      {"TwoDescriptors", message(page), 2, page, goodSeals, KERN_INVALID_VALUE},
      {"ManyDescriptors", message(page), 40, page, goodSeals, KERN_INVALID_VALUE},
      {"CutShort", message(page).substr(0, 20), 1, page, goodSeals, KERN_TERMINATED},
      {"CutNote", message(page, 0, "12345678").substr(0, 30), 1, page, goodSeals, KERN_TERMINATED},
      {"CanShrink", message(page), 1, page, F_SEAL_GROW, KERN_PROTECTION_FAILURE},
      {"CannotBeWritten", message(page), 1, page, goodSeals | F_SEAL_WRITE, KERN_PROTECTION_FAILURE},
      {"Smaller", message(2 * page), 1, page, goodSeals, KERN_INVALID_ADDRESS},
      {"Beyond", message(page, page), 1, page, goodSeals, KERN_INVALID_ADDRESS},
      {"Wraps", message(page, ~std::uint64_t{0} - page + 1), 1, page, goodSeals, KERN_INVALID_ADDRESS},
  };
  for (const auto& row : rows) {
    SocketPair pair;
    std::vector<int> files;
    for (int i = 0; i < row.descriptors; ++i) files.push_back(memoryFile(row.fileSize, row.seals));
    sendBytes(pair.theirs(), row.bytes, files);
    for (const int file : files) close(file);
    pair.closeTheirs();
    const auto before = openDescriptors();
    const Received received(pair.ours(), 16);
    EXPECT_EQ(received.result, row.expected) << row.name;
    EXPECT_EQ(received.entry, MACH_PORT_NULL) << row.name;
    EXPECT_EQ(openDescriptors(), before) << row.name;
  }

  const SocketPair pair;
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const int file = memoryFile(page, goodSeals);
  const int readOnly = open(("/proc/self/fd/" + std::to_string(file)).c_str(), O_RDONLY);
  for (const int other : {ends[0], readOnly}) {
    sendBytes(pair.theirs(), message(page), {other});
    EXPECT_EQ(Received(pair.ours()).result, KERN_PROTECTION_FAILURE) << "no memory of both directions";
  }
  for (const int descriptor : {ends[0], ends[1], file, readOnly}) close(descriptor);
}

TEST(EntrySocket, ClosedPeersSilentPeersAndOtherSocketsGetAResult) {
  const vm_address_t address = allocated(page);
  const mach_port_t entry = entryOf(address, page);
  SocketPair pair;
  EXPECT_EQ(mach_send_memory_entry(pair.ours(), 0x7FFFFFFF, nullptr, 0), KERN_INVALID_NAME);
  EXPECT_EQ(mach_send_memory_entry(pair.ours(), entry, "x", mach_entry_note_limit + 1), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(mach_send_memory_entry(-1, entry, nullptr, 0), KERN_INVALID_ARGUMENT);
  ASSERT_EQ(fcntl(pair.ours(), F_SETFL, O_NONBLOCK), 0);
  EXPECT_EQ(Received(pair.ours()).result, KERN_OPERATION_TIMED_OUT);
  kern_return_t result = KERN_SUCCESS;
  for (int i = 0; i < 100000 && result == KERN_SUCCESS; ++i)
    result = mach_send_memory_entry(pair.ours(), entry, nullptr, 0);  // until the socket is full
  EXPECT_TRUE(result == KERN_OPERATION_TIMED_OUT || result == KERN_RESOURCE_SHORTAGE) << result;

  SocketPair closed;
  closed.closeTheirs();
  EXPECT_EQ(mach_send_memory_entry(closed.ours(), entry, nullptr, 0), KERN_TERMINATED);
  EXPECT_EQ(Received(closed.ours()).result, KERN_TERMINATED);
  bytesAt(address)[0] = 1;
  release({entry}, {{address, page}});
}

TEST(EntrySocket, RunningOutOfDescriptorsIsAResultOnBothSides) {
  SocketPair pair;
  const int file = memoryFile(page, goodSeals);
  sendBytes(pair.theirs(), message(page), {file});
  const vm_address_t address = allocated(page);
  bytesAt(address)[0] = 5;
  const mach_port_t entry = entryOf(address, page);
  rlimit limit;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{3, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const kern_return_t sent = mach_send_memory_entry(pair.ours(), entry, nullptr, 0);
  const Received received(pair.ours());
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(sent, KERN_RESOURCE_SHORTAGE);
  EXPECT_EQ(received.result, KERN_RESOURCE_SHORTAGE);
  EXPECT_EQ(bytesAt(address)[0], 5);
  EXPECT_EQ(mach_send_memory_entry(pair.ours(), entry, nullptr, 0), KERN_SUCCESS);
  close(file);
}

}  // namespace
