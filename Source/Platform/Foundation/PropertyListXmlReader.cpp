// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSReason.h"
#include "Platform/Foundation/NSUnicode.h"
#include "Platform/Foundation/PropertyListCoding.h"

#include <expat.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace propertylist {
namespace {

enum class Element { None, Plist, Dictionary, Array, Key, String, Integer, Real, Date, Data, True, False, Unknown };

struct Name {
  const char* text;
  Element element;
};
constexpr Name kNames[] = {
    {"key", Element::Key},   {"string", Element::String},   {"integer", Element::Integer},
    {"real", Element::Real}, {"dict", Element::Dictionary}, {"array", Element::Array},
    {"true", Element::True}, {"false", Element::False},     {"data", Element::Data},
    {"date", Element::Date}, {"plist", Element::Plist},
};

Element elementOf(const char* name) {
  for (const Name& each : kNames) {
    if (*each.text == *name && std::strcmp(each.text, name) == 0) {
      return each.element;
    }
  }
  return Element::Unknown;
}

// As faults name it: a stranger's name may be as long as the file.
std::string tagOf(const char* name) {
  constexpr std::size_t most = 40;
  const std::string_view whole(name);
  const std::size_t shown = whole.size() <= most ? whole.size() : NSValidUTF8Length(whole.substr(0, most));
  return "<" + std::string(whole.substr(0, shown)) + (shown < whole.size() ? "...>" : ">");
}

bool isBlank(char each) {
  return each == ' ' || each == '\t' || each == '\n';
}

bool isWhiteSpace(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char each) { return isBlank(each); });
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char each) { return (each & 0x80) == 0; });
}

// What the parser says of a document that is no XML, in the words of this reader where it has some.
std::string faultOf(XML_Error error) {
  switch (error) {
    case XML_ERROR_NO_ELEMENTS:
    case XML_ERROR_UNCLOSED_TOKEN:
    case XML_ERROR_UNCLOSED_CDATA_SECTION:
      return "the file ends too early";
    case XML_ERROR_SYNTAX:
      return "text where a tag should be";
    case XML_ERROR_UNDEFINED_ENTITY:
    case XML_ERROR_BAD_CHAR_REF:
      return "an unknown entity";
    case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
      return "something follows the list";
    default:
      return XML_ErrorString(error);
  }
}

// Builds the list from what the parser reports, and stops it at the first fault.
class XmlReader {
 public:
  explicit XmlReader(std::string_view document)
      : document_(document), parser_(XML_ParserCreate("UTF-8"), XML_ParserFree) {}

  std::optional<PropertyList> read(std::string* reason) {
    if (!parser_) {
      NSRefuse(reason, "there is not enough memory");
      return std::nullopt;
    }
    setHandlers();
    if (!parse()) {
      NSRefuse(reason, isText() ? faultAndLine() : "is no property list: it is no text in UTF-8");
      return std::nullopt;
    }
    return std::move(root_);
  }

 private:
  // A dictionary or an array that is not closed yet.
  struct Container {
    bool isDictionary;
    bool hasKey = false;  // a key was read, its value was not
    std::string key;
    PropertyList::Array items;
    PropertyList::Dictionary entries;
  };

  static XmlReader& self(void* data) { return *static_cast<XmlReader*>(data); }

  void setHandlers() {
    const XML_Parser parser = parser_.get();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser, [](void* data, const char* name, const char**) { self(data).start(name); },
        [](void* data, const char*) { self(data).end(); });
    XML_SetCharacterDataHandler(parser, [](void* data, const char* text, int size) {
      self(data).text({text, static_cast<std::size_t>(size)});
    });
    XML_SetXmlDeclHandler(parser, [](void* data, const char*, const char* encoding, int) {
      self(data).checkEncoding(encoding == nullptr ? "utf-8" : encoding);
    });
    XML_SetStartDoctypeDeclHandler(parser, [](void* data, const char*, const char*, const char*, int hasDeclarations) {
      if (hasDeclarations != 0) {
        self(data).fail("a document type with declarations of its own");
      }
    });
    XML_SetSkippedEntityHandler(parser, [](void* data, const char*, int) { self(data).fail("an unknown entity"); });
  }

  // In one piece: after each piece but the last the parser would go through all of it again, to count its lines.
  bool parse() {
    return XML_Parse(parser_.get(), document_.data(), static_cast<int>(document_.size()), XML_TRUE) == XML_STATUS_OK;
  }

  void fail(std::string fault) {
    if (fault_.empty()) {
      fault_ = std::move(fault);
      XML_StopParser(parser_.get(), XML_FALSE);
    }
  }

  bool failed() const { return !fault_.empty(); }

  bool isText() const { return faultOfText(document_) == nullptr; }

  std::string faultAndLine() const {
    const std::string fault = fault_.empty() ? faultOf(XML_GetErrorCode(parser_.get())) : fault_;
    return "line " + std::to_string(XML_GetCurrentLineNumber(parser_.get())) + ": " + fault;
  }

  // Text that is ASCII is UTF-8 whatever it says of itself.
  void checkEncoding(std::string encoding) {
    std::transform(encoding.begin(), encoding.end(), encoding.begin(),
                   [](char each) { return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each; });
    if (encoding != "utf-8" && encoding != "utf8" && !isAscii(document_)) {
      fail("the encoding \"" + encoding + "\", where only UTF-8 is read");
    }
  }

  void start(const char* name) {
    const Element element = elementOf(name);
    if (failed()) {
      return;
    }
    if (leaf_ != Element::None) {
      return fail(tagOf(name) + " within another value");
    }
    if (element == Element::Plist && !isOpen_) {
      isOpen_ = true;
      return;
    }
    isOpen_ = true;
    if (element == Element::Plist || element == Element::Unknown) {
      return fail(tagOf(name) + " is unknown");
    }
    if (mayStandHere(element == Element::Key) && isWithinLimits()) {
      begin(element);
    }
  }

  bool mayStandHere(bool isKey) {
    if (containers_.empty() && root_) {
      fail("more than one value");
    } else if (containers_.empty() || !containers_.back().isDictionary) {
      if (isKey) {
        fail("a key outside a dictionary");
      }
    } else if (isKey == containers_.back().hasKey) {
      fail(isKey ? "a key without a value" : "a value without a key");
    }
    return !failed();
  }

  bool isWithinLimits() {
    if (containers_.size() >= static_cast<std::size_t>(PropertyListMaximumDepth)) {
      fail("nested too deeply");
    } else if (++values_ > PropertyListMaximumValues) {
      fail("too many values");
    }
    return !failed();
  }

  void begin(Element element) {
    if (element == Element::Dictionary || element == Element::Array) {
      containers_.emplace_back().isDictionary = element == Element::Dictionary;
    } else {
      leaf_ = element;
      text_.clear();
    }
  }

  void text(std::string_view text) {
    if (leaf_ != Element::None) {
      text_ += text;
    } else if (!isWhiteSpace(text)) {
      fail("text where a tag should be");
    }
  }

  // The parser has seen to it that the tags match.
  void end() {
    if (failed()) {
      return;
    }
    if (leaf_ != Element::None) {
      endLeaf(std::exchange(leaf_, Element::None));
    } else if (!containers_.empty()) {
      endContainer();
    } else if (!root_) {
      fail("no value");
    }
  }

  void endLeaf(Element element) {
    switch (element) {
      case Element::Key:
        containers_.back().key.swap(text_);
        containers_.back().hasKey = true;
        return;
      case Element::String:
        return put(PropertyList::string(text_));
      case Element::Integer:
        return putIfAny(integerFromXml(trimmed(text_)), element, [](PropertyList&& value) { return std::move(value); });
      case Element::Real:
        return putIfAny(realFromXml(trimmed(text_)), element, PropertyList::real);
      case Element::Date:
        return putIfAny(dateFromXml(trimmed(text_)), element, PropertyList::date);
      case Element::Data:
        return putIfAny(dataFromXml(text_), element, PropertyList::data);
      default:
        return isWhiteSpace(text_) ? put(PropertyList::boolean(element == Element::True)) : failAt(element);
    }
  }

  template <typename Value, typename Make>
  void putIfAny(std::optional<Value> value, Element element, Make make) {
    return value ? put(make(*std::move(value))) : failAt(element);
  }

  void failAt(Element element) {
    const Name* name =
        std::find_if(std::begin(kNames), std::end(kNames), [&](const Name& each) { return each.element == element; });
    fail(std::string("a malformed <") + name->text + ">");
  }

  void endContainer() {
    if (containers_.back().hasKey) {
      return fail("a key without a value");
    }
    Container closed = std::move(containers_.back());
    containers_.pop_back();
    put(closed.isDictionary ? dictionaryOf(std::move(closed.entries)) : PropertyList::array(std::move(closed.items)));
  }

  static PropertyList dictionaryOf(PropertyList::Dictionary entries) {
    const PropertyList* uid = entries.size() == 1 ? entries.find(kXmlUidKey) : nullptr;
    const bool isUid = uid != nullptr && uid->type() == PropertyList::Type::Integer && uid->integerValue() >= 0 &&
                       uid->unsignedValue() <= kXmlUidMaximum;
    return isUid ? PropertyList::uid(uid->unsignedValue()) : PropertyList::dictionary(std::move(entries));
  }

  void put(PropertyList&& value) {
    if (containers_.empty()) {
      root_ = std::move(value);
    } else if (Container& container = containers_.back(); container.isDictionary) {
      container.entries.set(container.key, std::move(value));
      container.hasKey = false;
    } else {
      container.items.push_back(std::move(value));
    }
  }

  std::string_view document_;
  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
  std::string fault_;
  bool isOpen_ = false;  // the first tag was read
  Element leaf_ = Element::None;
  std::string text_;  // of the leaf
  std::uint64_t values_ = 0;
  std::vector<Container> containers_;
  std::optional<PropertyList> root_;
};

}  // namespace

std::optional<PropertyList> readXml(std::string_view document, std::string* reason) {
  const std::string_view start = document.substr(0, 2);
  if (start == "\xFF\xFE" || start == "\xFE\xFF" || start.find('\0') != std::string_view::npos) {
    NSRefuse(reason, "is not UTF-8");  // the parser would take it for UTF-16
    return std::nullopt;
  }
  return XmlReader(document).read(reason);
}

}  // namespace propertylist
