// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/ClipWriter.h"

#include "Host/Clips/WriterMessages.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"

#include <csignal>

namespace host {
namespace {

const char* const kProgram = "vorto-clips";

MessageWriter order(WriterOrder kind) {
  MessageWriter message;
  message.value(kind);
  return message;
}

[[noreturn]] void refuseEnding(const std::string& path, ChildProcess& process) {
  throw Failure(ExitCode::Output, "cannot write " + path + ": the process that writes it failed: " + process.ending());
}

void receive(const std::string& path, ChildProcess& process, std::chrono::seconds patience, Bytes* message) {
  switch (process.socket().receive(message, patience)) {
    case MessageSocket::Received::Message:
      return;
    case MessageSocket::Received::End:
      refuseEnding(path, process);
    case MessageSocket::Received::Nothing:
      process.stop();
      throw Failure(ExitCode::Output, "cannot write " + path + ": the process that writes it has made no progress in " +
                                          std::to_string(patience.count()) + " s");
  }
}

// The process's next report that is no sign of life, whose kind is taken already. Throws Failure for one of a failure,
// and for none.
struct Report {
  Bytes bytes;
  WriterReport kind = WriterReport::Ready;
  std::size_t slot = 0;
  std::string remark;
};

Report nextReport(const std::string& path, ChildProcess& process, std::chrono::seconds patience) {
  Report report;
  do {
    receive(path, process, patience, &report.bytes);
    report.kind = MessageReader(report.bytes).value<WriterReport>();
  } while (report.kind == WriterReport::Working);
  MessageReader reader(report.bytes);
  report.kind = reader.value<WriterReport>();
  if (report.kind == WriterReport::Failed) {
    const auto code = reader.value<ExitCode>();
    throw Failure(code, reader.text());
  }
  if (report.kind == WriterReport::Written) report.slot = reader.value<std::uint64_t>();
  if (report.kind == WriterReport::Finished) report.remark = reader.text();
  return report;
}

// A process that is gone may have said why before: that is found behind what else it reported.
void send(const std::string& path, ChildProcess& process, std::chrono::seconds patience, const MessageWriter& message) {
  if (process.socket().send(message.message())) return;
  for (;;) nextReport(path, process, patience);
}

}  // namespace

ClipWriter::ClipWriter(const ClipTarget& target, FrameSlots& slots, std::chrono::seconds patience)
    : path_(target.path), patience_(patience), process_(helperProgram(kProgram), {"write"}, slots.descriptors()) {
  MessageWriter message = order(WriterOrder::Open);
  put(message, target);
  message.value<std::uint64_t>(slots.count());
  send(path_, process_, patience_, message);
  nextReport(path_, process_, patience_);
}

// At this signal it removes what it has begun.
ClipWriter::~ClipWriter() {
  if (process_.id() < 0) return;
  ::kill(process_.id(), SIGTERM);
  process_.ending();
}

void ClipWriter::checkAudio(const ClipTarget& target, std::chrono::seconds patience) {
  if (!target.audio) return;
  ChildProcess process(helperProgram(kProgram), {"write"}, {});
  MessageWriter message = order(WriterOrder::CheckAudio);
  put(message, target);
  send(target.path, process, patience, message);
  nextReport(target.path, process, patience);
}

void ClipWriter::write(std::size_t slot, std::int64_t time) {
  MessageWriter message = order(WriterOrder::Write);
  message.value<std::uint64_t>(slot);
  message.value(time);
  send(path_, process_, patience_, message);
}

std::size_t ClipWriter::written() {
  return nextReport(path_, process_, patience_).slot;
}

void ClipWriter::finish(std::int64_t end) {
  MessageWriter message = order(WriterOrder::Finish);
  message.value(end);
  send(path_, process_, patience_, message);
  Report report;
  do {
    report = nextReport(path_, process_, patience_);
  } while (report.kind != WriterReport::Finished);
  if (!report.remark.empty()) remark(report.remark);
}

}  // namespace host
