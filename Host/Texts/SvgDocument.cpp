// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/SvgDocument.h"

#include "Host/Texts/GradientStops.h"
#include "Host/Texts/TextReader.h"

#include <expat.h>

#include <memory>
#include <new>
#include <optional>

namespace host {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr const char* blanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string_view withoutPrefix(std::string_view name) {
  return name.substr(name.find(':') + 1);  // from the start when there is none
}

// Calls visit(property, value) for every declaration of a style attribute.
template <class Visit>
void visitDeclarations(std::string_view style, Visit visit) {
  while (!style.empty()) {
    const std::size_t end = std::min(style.find(';'), style.size());
    const std::string_view declaration = style.substr(0, end);
    if (const std::size_t colon = declaration.find(':'); colon != std::string_view::npos) {
      visit(trimmed(declaration.substr(0, colon)), trimmed(declaration.substr(colon + 1)));
    }
    style.remove_prefix(std::min(end + 1, style.size()));
  }
}

bool isStopProperty(std::string_view name) {
  return name == "stop-color" || name == "stop-opacity";
}

// Collects what the parser reports, and stops it at the first fault.
class SvgParser {
 public:
  explicit SvgParser(std::string_view text) : text_(text), parser_(XML_ParserCreate("UTF-8"), XML_ParserFree) {
    if (!parser_) throw std::bad_alloc();
  }

  std::vector<SvgGradient> parse() {
    setHandlers();
    const auto status = XML_Parse(parser_.get(), text_.data(), static_cast<int>(text_.size()), XML_TRUE);
    if (fault_) throw TextFault(*fault_);
    if (status != XML_STATUS_OK) {
      throw TextFault(offset(), std::string("no XML: ") + XML_ErrorString(XML_GetErrorCode(parser_.get())));
    }
    return std::move(gradients_);
  }

 private:
  static SvgParser& self(void* data) { return *static_cast<SvgParser*>(data); }

  void setHandlers() {
    const XML_Parser parser = parser_.get();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser, [](void* data, const char* name, const char** attributes) { self(data).start(name, attributes); },
        [](void* data, const char* name) { self(data).end(name); });
    XML_SetXmlDeclHandler(parser, [](void* data, const char*, const char* encoding, int) {
      if (encoding) self(data).checkEncoding(encoding);
    });
    XML_SetStartDoctypeDeclHandler(parser, [](void* data, const char*, const char*, const char*, int hasDeclarations) {
      if (hasDeclarations != 0) self(data).fail("a document type with declarations of its own");
    });
    XML_SetSkippedEntityHandler(parser, [](void* data, const char*, int) { self(data).fail("an unknown entity"); });
  }

  std::size_t offset() const {
    const XML_Index index = XML_GetCurrentByteIndex(parser_.get());
    return index < 0 ? 0 : std::min(static_cast<std::size_t>(index), text_.size());
  }

  // Exceptions must not pass through the parser.
  void fail(const std::string& fault) {
    if (fault_) return;
    fault_.emplace(offset(), fault);
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  void checkEncoding(const char* encoding) {
    const std::string name = lowered(encoding);
    const bool isAscii = text_.find_first_of(nonAscii()) == std::string_view::npos;
    if (name != "utf-8" && name != "utf8" && !isAscii) {
      fail("the encoding " + quotedText(encoding) + ", where only UTF-8 is read");
    }
  }

  static const std::string& nonAscii() {
    static const std::string bytes = [] {
      std::string all;
      for (int byte = 0x80; byte < 0x100; ++byte) all += static_cast<char>(byte);
      return all;
    }();
    return bytes;
  }

  void start(const char* fullName, const char** attributes) {
    if (fault_) return;
    const std::string_view name = withoutPrefix(fullName);
    if (name == "linearGradient" || name == "radialGradient") {
      isInGradient_ = true;
      startGradient(attributes);
    } else if (name == "stop" && isInGradient_) {
      if (++stops_ > kMaximumStops) return fail("more than " + std::to_string(kMaximumStops) + " stops");
      startStop(attributes);
    }
  }

  void end(const char* fullName) {
    const std::string_view name = withoutPrefix(fullName);
    if (name == "linearGradient" || name == "radialGradient") isInGradient_ = false;
  }

  void startGradient(const char** attributes) {
    SvgGradient gradient;
    gradient.at = offset();
    for (; *attributes; attributes += 2) {
      const std::string_view name = attributes[0];
      const std::string_view value = trimmed(attributes[1]);
      if (name == "id") gradient.id = value;
      if (withoutPrefix(name) == "href") gradient.href = value.starts_with('#') ? value.substr(1) : value;
      if (name == "spreadMethod") gradient.spreadMethod = value;
      if (name == "color-interpolation") gradient.colorInterpolation = value;
      if (name == "style") {
        visitDeclarations(value, [&](std::string_view property, std::string_view set) {
          if (property == "color-interpolation") gradient.colorInterpolation = set;
        });
      }
    }
    gradients_.push_back(std::move(gradient));
  }

  void startStop(const char** attributes) {
    SvgStop stop;
    stop.at = offset();
    const char* style = nullptr;
    for (; *attributes; attributes += 2) {
      const std::string_view name = attributes[0];
      if (name == "style") style = attributes[1];
      if (name == "offset" || name == "class" || isStopProperty(name)) {
        stop.values[std::string(name)] = trimmed(attributes[1]);
      }
    }
    if (style) {
      visitDeclarations(style, [&](std::string_view property, std::string_view value) {
        if (isStopProperty(property)) stop.values[std::string(property)] = value;
      });
    }
    gradients_.back().stops.push_back(std::move(stop));
  }

  std::string_view text_;
  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
  std::optional<TextFault> fault_;
  std::vector<SvgGradient> gradients_;
  bool isInGradient_ = false;
  std::size_t stops_ = 0;
};

}  // namespace

std::vector<SvgGradient> svgGradients(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) throw TextFault(text.find('\0'), "a NUL");
  return SvgParser(text).parse();
}

}  // namespace host
