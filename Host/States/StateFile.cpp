// SPDX-License-Identifier: BSD-3-Clause
#include "Host/States/StateFile.h"

#include "Host/Messages/Failure.h"
#include "Host/States/StateChecks.h"
#include "Host/Texts/JsonReader.h"
#include "Platform/Foundation/NSFiles.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Ports/VRTStateKeys.h"

#include <exception>
#include <optional>
#include <utility>
#include <vector>

namespace host {
namespace {

class Refusal : public std::exception {
 public:
  explicit Refusal(std::string reason) : reason_(std::move(reason)) {}
  const char* what() const noexcept override { return reason_.c_str(); }

 private:
  std::string reason_;
};

bool isKeyedArchive(const PropertyList& list) {
  return list.find("$archiver") || list.find("$objects");
}

NSObjectRef unarchivedRoot(const PropertyList& archive) {
  NSKeyedUnarchiver coder;
  if (!coder.initForReadingWithPropertyList(archive)) throw Refusal(coder.error());
  NSObjectRef root = coder.decodeObject();
  coder.finishDecoding();
  if (!root) throw Refusal(coder.error().empty() ? "the archive holds nothing" : coder.error());
  return root;
}

std::shared_ptr<VRTObject> newObject(StateKind kind) {
  switch (kind) {
    case StateKind::Gradient:
      return VRTGradient::gradient();
    case StateKind::Levels:
      return VRTHistogram::histogram();
    case StateKind::Opaque:
      break;
  }
  return VRTOpaqueData::data();
}

std::shared_ptr<VRTObject> objectOfState(StateKind kind, const PropertyList& state) {
  if (const std::string fault = faultOfState(kind, state); !fault.empty()) throw Refusal(fault);
  auto object = newObject(kind);
  std::string reason;
  if (!object->initWithStateValue(state, &reason)) {
    throw Refusal(std::string("it is no state of a ") + stateKindName(kind) + (reason.empty() ? "" : ": " + reason));
  }
  return object;
}

// What a dictionary holds under the keys of states.
std::optional<PropertyList> stateEntries(const NSDictionary& dictionary) {
  std::vector<std::string> keys(VRTStateKeys::levelsKeys().begin(), VRTStateKeys::levelsKeys().end());
  keys.insert(keys.end(), {VRTStateKeys::kRGBSamples.key, VRTStateKeys::kAlphaSamples.key});
  return NSPropertyListFromEntries(dictionary, keys);
}

std::optional<StateKind> kindOfObject(const NSObject& object) {
  if (dynamic_cast<const VRTGradient*>(&object)) return StateKind::Gradient;
  if (dynamic_cast<const VRTHistogram*>(&object)) return StateKind::Levels;
  if (dynamic_cast<const VRTOpaqueData*>(&object)) return StateKind::Opaque;
  return std::nullopt;
}

void interpretArchive(StateFile& file, PropertyList::Bytes bytes, std::optional<StateKind> wanted) {
  file.form = StateForm::Archive;
  const NSObjectRef root = unarchivedRoot(file.list);
  if (const auto kind = kindOfObject(*root)) {
    file.kind = *kind;
    file.object = std::dynamic_pointer_cast<VRTObject>(root);
    return;
  }
  if (const auto* dictionary = dynamic_cast<const NSDictionary*>(root.get())) {
    const auto list = stateEntries(*dictionary);
    const bool isWhole = list && list->entries().size() == dictionary->entries().size();
    if (const auto kind = list ? kindOfDictionary(*list, isWhole ? wanted : std::nullopt) : std::nullopt) {
      file.kind = *kind;
      file.object = objectOfState(*kind, *list);
      return;
    }
  }
  file.kind = StateKind::Opaque;
  file.object = objectOfState(StateKind::Opaque, PropertyList::mutableData(std::move(bytes)));
}

// The state in what stateAsJson() wrote, or the whole where it is a state itself.
PropertyList stateOfJson(PropertyList json, std::optional<StateKind>& wanted) {
  const PropertyList* kind = json.find("kind");
  const PropertyList* state = json.find("state");
  if (!kind || !state) return json;
  for (const StateKind each : {StateKind::Gradient, StateKind::Levels, StateKind::Opaque}) {
    if (kind->stringValue() == stateKindName(each)) wanted = each;
  }
  const PropertyList* data = wanted == StateKind::Opaque ? state->find("data") : nullptr;
  return data ? PropertyList::mutableData(bytesOfHexadecimal(data->stringValue())) : *state;
}

void interpretList(StateFile& file, std::optional<StateKind> wanted) {
  if (file.list.isData()) {
    file.kind = StateKind::Opaque;
  } else if (const auto kind = kindOfDictionary(file.list, wanted)) {
    file.kind = *kind;
  } else {
    throw Refusal("it holds neither a gradient, nor levels, nor opaque data");
  }
  file.object = objectOfState(file.kind, file.list);
}

void interpretText(StateFile& file, std::string_view text, std::optional<StateKind> wanted) {
  ParameterText parameter = parameterOfText(text, wanted);
  file.form = StateForm::Text;
  file.kind = parameter.kind;
  file.textFormat = parameter.format;
  file.notes = std::move(parameter.notes);
  file.list = std::move(parameter.state);
  file.object = objectOfState(file.kind, file.list);
}

void interpret(StateFile& file, PropertyList::Bytes bytes, std::optional<StateKind> wanted) {
  if (isKeyedArchive(file.list)) return interpretArchive(file, std::move(bytes), wanted);
  file.form = StateForm::Dictionary;
  interpretList(file, wanted);
}

void interpretJson(StateFile& file, std::string_view text, std::optional<StateKind> wanted) {
  file.form = StateForm::Text;
  file.textFormat = "JSON";
  file.list = stateOfJson(propertyListOfJson(text), wanted);
  interpretList(file, wanted);
}
bool looksLikeJson(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '{';
}

void completeState(StateFile& file) {
  auto state = file.object->stateValue();
  if (!state) throw Refusal("its value has no state");
  if (const std::string fault = faultOfState(file.kind, *state); !fault.empty()) throw Refusal(fault);
  file.state = std::move(*state);
}

}  // namespace

std::optional<StateFile> stateFileFromBytes(PropertyList::Bytes bytes, std::string* reason,
                                            std::optional<StateKind> kind) {
  const std::string_view text = withoutByteOrderMark({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  StateFile file;
  try {
    if (isParameterText(text)) {
      interpretText(file, text, kind);
    } else if (looksLikeJson(text)) {
      interpretJson(file, text, kind);
    } else {
      auto list = PropertyListFromBytes(bytes, reason, &file.format);
      if (!list) return std::nullopt;
      file.list = std::move(*list);
      interpret(file, std::move(bytes), kind);
    }
    completeState(file);
    return file;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const TextFault& fault) {
    if (reason) *reason = faultWithPlace(text, fault, false);
  } catch (const std::exception& error) {
    if (reason) *reason = error.what();
  }
  return std::nullopt;
}

StateFile stateOfInlineText(std::string_view text, StateKind kind) {
  StateFile file;
  interpretText(file, text, kind);
  completeState(file);
  return file;
}

StateFile readStateFile(const std::string& path, std::optional<StateKind> kind) {
  std::string reason;
  auto bytes = NSReadFile(path, &reason);
  auto file = bytes ? stateFileFromBytes(std::move(*bytes), &reason, kind) : std::nullopt;
  if (!file) throw Failure(ExitCode::Input, "cannot read " + path + ": " + reason);
  return std::move(*file);
}

PropertyList::Bytes convertedState(const StateFile& file, const std::string& path, PropertyListFormat format,
                                   StateForm form) {
  std::string reason;
  std::optional<PropertyList::Bytes> bytes;
  if (form == file.form) {
    bytes = PropertyListToBytes(file.list, format, &reason);
  } else if (form == StateForm::Archive) {
    bytes = NSKeyedArchiver::archivedData(file.object, format, &reason);
  } else {
    bytes = PropertyListToBytes(file.state, format, &reason);
  }
  if (!bytes) throw Failure(ExitCode::Output, "cannot convert " + path + ": " + reason);
  return std::move(*bytes);
}

PropertyList::Bytes convertedState(const StateFile& file, const std::string& path, TextFormat format, Notes& notes) {
  std::string reason;
  const auto text = textOfParameter(file.kind, file.state, format, notes, &reason);
  if (!text) throw Failure(ExitCode::Output, "cannot convert " + path + ": " + reason);
  return {text->begin(), text->end()};
}

}  // namespace host
