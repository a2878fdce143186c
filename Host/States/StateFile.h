// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/ParameterText.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/PropertyList.h"
#include "Ports/VRTObjects.h"

#include <memory>
#include <optional>
#include <string>

namespace host {

enum class StateForm { Dictionary, Archive, Text };

// A parameter as a document keeps it. What counts as one, as a property list, XML or binary:
//   - a dictionary with one of the arrays of a gradient's samples: a gradient;
//   - a dictionary with any of the values of levels: levels;
//   - {}, and {selectedChannel: ...} of levels, where the kind is known beforehand;
//   - data that holds a keyed archive: opaque data (of the form Dictionary too: it is what the port stores);
//   - a keyed archive of a gradient, levels or opaque data, under their present or older class names, or of one of
//     those dictionaries, whose other entries may be of any class;
//   - any other keyed archive: opaque data whose value is what the archive holds.
// Of the form Text:
//   - what stateAsJson() wrote, and JSON of one of those dictionaries;
//   - a gradient or levels as text, and gradients of other programs (Host/Texts).
struct StateFile {
  StateKind kind = StateKind::Gradient;
  StateForm form = StateForm::Dictionary;
  PropertyListFormat format = PropertyListFormat::Xml;  // of dictionaries and archives
  std::string textFormat;                               // of texts: "JSON", or ParameterText::format
  Notes notes;                                          // what is to be said of the reading
  PropertyList list;                                    // the file as it was read; of texts, the state in it
  std::shared_ptr<VRTObject> object;                    // the value that it holds
  PropertyList state;                                   // what a port takes: object->stateValue()
};

// The same from the bytes of such a file. Nothing, with the cause, when they are none of these, or the numbers are not
// finite or not complete. Where a kind is given and the file does not tell, it is of that kind.
std::optional<StateFile> stateFileFromBytes(PropertyList::Bytes bytes, std::string* reason,
                                            std::optional<StateKind> kind = std::nullopt);
// The same of a text on a command line. Throws TextFault.
StateFile stateOfInlineText(std::string_view text, StateKind kind);
StateFile readStateFile(const std::string& path, std::optional<StateKind> kind = std::nullopt);  // throws Failure

// The bytes of the same state in a format and form, dictionary or archive. In the form that the file has, everything in
// it is kept; another form is made anew.
PropertyList::Bytes convertedState(const StateFile& file, const std::string& path, PropertyListFormat format,
                                   StateForm form);
// The same as a text; what is to be said of it is added to the notes. Throws Failure where it cannot be said.
PropertyList::Bytes convertedState(const StateFile& file, const std::string& path, TextFormat format, Notes& notes);

}  // namespace host
