// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/MemoryEntries.h"
#include "Platform/Mach/mach.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

// One message: this head, then the note. The descriptor of the memory file comes with the first byte.

namespace {

constexpr std::uint32_t kMessageMark = 0x31454D56;  // "VME1"

struct Head {
  std::uint32_t mark = kMessageMark;
  std::uint32_t noteSize = 0;
  std::uint64_t offset = 0;  // of the entry in the memory file, in bytes, whole pages
  std::uint64_t size = 0;
};
static_assert(sizeof(Head) == 24);

class Descriptors {
 public:
  Descriptors() = default;
  Descriptors(const Descriptors&) = delete;
  Descriptors& operator=(const Descriptors&) = delete;
  ~Descriptors() {
    for (const int descriptor : all_) close(descriptor);
  }
  void add(int descriptor) { all_.push_back(descriptor); }
  std::size_t count() const { return all_.size(); }
  int first() const { return all_.front(); }
  int release() {
    const int descriptor = all_.front();
    all_.erase(all_.begin());
    return descriptor;
  }

 private:
  std::vector<int> all_;
};

bool isStream(int socket) {
  int type = 0;
  socklen_t size = sizeof type;
  return getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_STREAM;
}

kern_return_t sendAll(int socket, const std::uint8_t* bytes, std::size_t size, int descriptor) {
  std::size_t done = 0;
  while (done < size) {
    iovec part{const_cast<std::uint8_t*>(bytes) + done, size - done};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof descriptor)] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (done == 0) {
      message.msg_control = control;
      message.msg_controllen = sizeof control;
      cmsghdr* const rights = CMSG_FIRSTHDR(&message);
      rights->cmsg_level = SOL_SOCKET;
      rights->cmsg_type = SCM_RIGHTS;
      rights->cmsg_len = CMSG_LEN(sizeof descriptor);
      std::memcpy(CMSG_DATA(rights), &descriptor, sizeof descriptor);
    }
    const ssize_t count = sendmsg(socket, &message, MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return mach::resultOfErrno(errno);
    done += static_cast<std::size_t>(count);
  }
  return KERN_SUCCESS;
}

void collectDescriptors(msghdr& message, Descriptors& descriptors) {
  for (cmsghdr* part = CMSG_FIRSTHDR(&message); part; part = CMSG_NXTHDR(&message, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
    const std::size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
    for (std::size_t i = 0; i < count; ++i) {
      int descriptor;
      std::memcpy(&descriptor, CMSG_DATA(part) + i * sizeof descriptor, sizeof descriptor);
      descriptors.add(descriptor);
    }
  }
}

kern_return_t receiveAll(int socket, void* bytes, std::size_t size, Descriptors& descriptors) {
  std::size_t done = 0;
  while (done < size) {
    iovec part{static_cast<std::uint8_t*>(bytes) + done, size - done};
    alignas(cmsghdr) char control[CMSG_SPACE(4 * sizeof(int))];  // what does not fit, the kernel closes
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t count = recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return mach::resultOfErrno(errno);
    if (count == 0) return KERN_TERMINATED;
    const std::size_t before = descriptors.count();
    collectDescriptors(message, descriptors);
    // Cut short without a single descriptor: there was none free for it.
    if (message.msg_flags & MSG_CTRUNC)
      return descriptors.count() == before ? KERN_RESOURCE_SHORTAGE : KERN_INVALID_VALUE;
    done += static_cast<std::size_t>(count);
  }
  return KERN_SUCCESS;
}

// The peer is not trusted: what it says is held against what the kernel says of the file.
kern_return_t checkFile(int file, const Head& head) {
  const int seals = fcntl(file, F_GET_SEALS);
  if (seals < 0 || (seals & F_SEAL_SHRINK) == 0 || (seals & (F_SEAL_WRITE | F_SEAL_FUTURE_WRITE)) != 0 ||
      (fcntl(file, F_GETFL) & O_ACCMODE) != O_RDWR)
    return KERN_PROTECTION_FAILURE;
  struct stat status;
  if (fstat(file, &status) != 0 || status.st_size < 0) return KERN_INVALID_ADDRESS;
  const auto fileSize = static_cast<std::uint64_t>(status.st_size);
  if (head.offset > fileSize || head.size > fileSize - head.offset) return KERN_INVALID_ADDRESS;
  return KERN_SUCCESS;
}

bool isWellFormed(const Head& head, std::size_t capacity) {
  return head.mark == kMessageMark && head.noteSize <= capacity && head.size > 0 && head.size % mach::pageSize() == 0 &&
         head.offset % mach::pageSize() == 0;
}

}  // namespace

kern_return_t mach_send_memory_entry(int socket, mach_port_t name, const void* note, std::size_t noteSize) {
  if (noteSize > mach_entry_note_limit || (!note && noteSize > 0) || !isStream(socket)) return KERN_INVALID_ARGUMENT;

  std::uint8_t message[sizeof(Head) + mach_entry_note_limit];
  Head head;
  std::shared_ptr<mach::MemoryObject> object;  // keeps the descriptor open while it is sent
  {
    mach::MemoryEntries& entries = mach::MemoryEntries::shared();
    const std::lock_guard lock(entries.mutex());
    const mach::Entry* const entry = entries.find(name);
    if (!entry) return KERN_INVALID_NAME;
    const kern_return_t result = entry->object->share();
    if (result != KERN_SUCCESS) return result;
    object = entry->object;
    head.noteSize = static_cast<std::uint32_t>(noteSize);
    head.offset = entry->offset;
    head.size = entry->size;
  }
  std::memcpy(message, &head, sizeof head);
  if (noteSize > 0) std::memcpy(message + sizeof head, note, noteSize);
  return sendAll(socket, message, sizeof head + noteSize, object->descriptor());
}

kern_return_t mach_receive_memory_entry(int socket, mach_port_t* name, vm_size_t* size, void* note,
                                        std::size_t capacity, std::size_t* noteSize) {
  if (!name || !size || !noteSize || (!note && capacity > 0) || !isStream(socket)) return KERN_INVALID_ARGUMENT;

  Head head;
  Descriptors descriptors;
  std::uint8_t received[mach_entry_note_limit];
  kern_return_t result = receiveAll(socket, &head, sizeof head, descriptors);
  if (result != KERN_SUCCESS) return result;
  if (!isWellFormed(head, std::min(capacity, sizeof received))) return KERN_INVALID_VALUE;
  result = receiveAll(socket, received, head.noteSize, descriptors);
  if (result != KERN_SUCCESS) return result;
  if (descriptors.count() != 1) return KERN_INVALID_VALUE;
  result = checkFile(descriptors.first(), head);
  if (result != KERN_SUCCESS) return result;

  const auto object = std::make_shared<mach::MemoryObject>(descriptors.release(), head.offset + head.size);
  mach::MemoryEntries& entries = mach::MemoryEntries::shared();
  const std::lock_guard lock(entries.mutex());
  *name = entries.add({object, head.offset, head.size});
  *size = head.size;
  *noteSize = head.noteSize;
  if (head.noteSize > 0) std::memcpy(note, received, head.noteSize);
  return KERN_SUCCESS;
}
