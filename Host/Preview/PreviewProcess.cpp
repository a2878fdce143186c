// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/PreviewProcess.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace host {
namespace {

// States of thousands of stops, many times over.
constexpr std::size_t kMostUnsent = std::size_t{1} << 28;

constexpr std::chrono::milliseconds kNoPatience{0};

std::array<MessageSocket, 2> connection() {
  std::array<int, 2> ends;
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw Failure(ExitCode::Unexpected, std::string("no connection could be made: ") + std::strerror(errno));
  }
  return {MessageSocket(ends[0]), MessageSocket(ends[1])};
}

ChildProcess started(MessageSocket* entries) {
  std::array<MessageSocket, 2> ends = connection();
  ::fcntl(ends[0].descriptor(), F_SETFL, O_NONBLOCK);
  *entries = std::move(ends[0]);
  const std::string program = hostProgram();
  if (program.empty()) throw Failure(ExitCode::Unexpected, "the program vorto is not installed beside this one");
  return {program, {"preview"}, {ends[1].descriptor()}, -1, ChildProcess::Start::Unwatched};
}

}  // namespace

PreviewProcess::PreviewProcess(const PreviewHello& hello, std::shared_ptr<BitmapReleases> releases)
    : releases_(std::move(releases)), process_(started(&entries_)) {
  send(hello);
}

void PreviewProcess::send(const PreviewOrder& order) {
  if (isDead_) return;
  try {
    unsent_.push_back(MessageSocket::framed(messageOf(order, entries_.descriptor())));
    unsentBytes_ += unsent_.back().size();
  } catch (const Failure&) {  // no bitmap could be handed over
    return kill();
  }
  if (unsentBytes_ > kMostUnsent) return kill();
  write();
}

void PreviewProcess::write() {
  while (!unsent_.empty()) {
    const Bytes& first = unsent_.front();
    const ssize_t sent =
        ::send(descriptor(), first.data() + written_, first.size() - written_, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return;
    if (sent < 0) {  // it is gone, as next() finds out
      unsent_.clear();
      unsentBytes_ = written_ = 0;
      return;
    }
    written_ += static_cast<std::size_t>(sent);
    if (written_ < first.size()) continue;
    unsentBytes_ -= first.size();
    unsent_.pop_front();
    written_ = 0;
  }
}

std::optional<PreviewReport> PreviewProcess::next() {
  if (isDead_) return std::nullopt;
  Bytes message;
  switch (process_.socket().receive(&message, kNoPatience)) {
    case MessageSocket::Received::Nothing:
      return std::nullopt;
    case MessageSocket::Received::End:
      return died();
    case MessageSocket::Received::Message:
      break;
  }
  try {
    PictureParts parts;
    PreviewReport report = takePreviewReport(message, entries_.descriptor(), &parts);
    if (auto* rendered = std::get_if<PreviewRendered>(&report)) complete(&rendered->picture, parts);
    return report;
  } catch (const std::exception&) {
    kill();
    isDead_ = true;
    return PreviewDied{caughtFailure().what()};
  }
}

// What is the same as last time comes from there.
void PreviewProcess::complete(PreviewPicture* picture, const PictureParts& parts) {
  for (BitmapRef* bitmap : {&picture->result, &picture->before, &picture->fileBefore}) {
    *bitmap = releases_->adopted(std::move(*bitmap));
  }
  using Part = PictureParts::Part;
  const auto take = [](Part part, auto& kept, auto& own) {
    if (part == Part::New) kept = own;
    if (part == Part::Same) own = kept;
  };
  take(parts.before, before_, picture->before);
  take(parts.fileBefore, fileBefore_, picture->fileBefore);
  take(parts.fileInfo, fileInfo_, picture->fileInfo);
}

// The connection ends with the process, which then takes a moment to be gone.
std::optional<PreviewReport> PreviewProcess::died() {
  isDead_ = true;
  process_.hasEnded(std::chrono::milliseconds(20));
  kill();
  return PreviewDied{process_.causeIfEnded().value_or("silence")};
}

void PreviewProcess::kill() {
  process_.kill();
}

}  // namespace host
