// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/StubFile.h"

#include "Bindings/Frei0r/Out/StubFields.h"
#include "Host/Files/OutputFile.h"
#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"
#include "Platform/Foundation/NSFiles.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <vector>

namespace frei0r {
namespace {

using host::ExitCode;
using host::Failure;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uintmax_t kLargestStub = 1 << 20;

std::string libraryNamed(const std::string& name) {
  for (const std::string& folder : host::libraryFolders()) {
    for (const std::string& path : {folder + "/" + name, folder + "/vorto/" + name}) {
      std::error_code ignored;
      if (std::filesystem::is_regular_file(path, ignored)) return path;
    }
  }
  throw Failure(ExitCode::Input, name + " is not installed, which frei0r plug-ins need");
}

// Where the record begins; the end where there is not exactly one.
Bytes::iterator recordIn(Bytes& bytes) {
  const auto mark = [&](Bytes::iterator from) {
    return std::search(from, bytes.end(), std::begin(kStubMark), std::end(kStubMark));
  };
  const auto first = mark(bytes.begin());
  if (first == bytes.end() || static_cast<std::size_t>(bytes.end() - first) < sizeof(StubFields)) return bytes.end();
  return mark(first + sizeof kStubMark) == bytes.end() ? first : bytes.end();
}

Bytes bytesOf(const std::string& path) {
  std::string reason;
  auto bytes = NSReadFile(path, &reason);
  if (!bytes) throw Failure(ExitCode::Input, "cannot read " + path + ": " + reason);
  return std::move(*bytes);
}

void checkOwn(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) return;
  if (std::filesystem::is_regular_file(status)) {
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!error && size <= kLargestStub) {
      Bytes bytes = bytesOf(path);
      if (recordIn(bytes) != bytes.end()) return;
    }
  }
  throw Failure(ExitCode::Output, "cannot write " + path + ": what is there is no plug-in that vorto frei0r wrote");
}

template <std::size_t size>
void fill(char (&field)[size], const std::string& text, const char* what) {
  if (text.size() >= size) throw Failure(ExitCode::Usage, std::string(what) + " is too long for a plug-in: " + text);
  std::ranges::fill(field, '\0');
  std::ranges::copy(text, field);
}

}  // namespace

void writeStub(const std::string& path, const StubContents& contents) {
  const std::string original = libraryNamed("vorto-frei0r-stub.so");
  Bytes bytes = bytesOf(original);
  const auto record = recordIn(bytes);
  if (record == bytes.end()) throw Failure(ExitCode::Input, original + " is no template of a plug-in");
  StubFields fields;
  std::ranges::copy(kStubMark, fields.mark);
  fields.inputs = contents.inputs;
  fill(fields.effect, contents.effect, "the effect's name");
  fill(fields.module, contents.module, "the module's path");
  std::memcpy(&*record, &fields, sizeof fields);
  checkOwn(path);
  host::checkOutput(path);
  host::replaceFile(path, bytes);
}

std::string modulePath() {
  return std::filesystem::absolute(libraryNamed("vorto-frei0r.so")).lexically_normal().string();
}

}  // namespace frei0r
