// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Foundation/Cases.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

namespace {

std::string unescaped(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char next = text[i] == '\\' ? text[++i] : '\0';
    plain += next == '\0'  ? text[i]
             : next == 'n' ? '\n'
             : next == 'r' ? '\r'
             : next == 't' ? '\t'
                           : static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
    i += next == 'x' ? 2 : 0;
  }
  return plain;
}

PropertyList::Bytes bytesOfHex(const std::string& digits) {
  PropertyList::Bytes bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

}  // namespace

std::vector<Case> casesOf(const std::string& table) {
  std::ifstream file(std::string(VORTO_TEST_LISTS) + "/" + table);
  EXPECT_TRUE(file) << table;
  std::vector<Case> cases;
  for (std::string line; std::getline(file, line);) {
    const std::size_t bar = line.find(" | ");
    if (!line.starts_with("# ") && bar != std::string::npos) {
      cases.push_back({table, unescaped(line.substr(0, bar)), unescaped(line.substr(bar + 3))});
    }
  }
  EXPECT_GT(cases.size(), 3u) << table;
  return cases;
}

std::ostream& operator<<(std::ostream& stream, const Case& each) {
  return stream << each.table << ": " << each.input;
}

PropertyList::Bytes bytesOf(std::string_view text) {
  return PropertyList::Bytes(text.begin(), text.end());
}

PropertyList::Bytes fileOf(const std::string& name) {
  std::ifstream file(VORTO_TEST_LISTS + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

PropertyList::Bytes xmlList(const std::string& input) {
  const std::string mark = "document:";
  return bytesOf(input.starts_with(mark) ? input.substr(mark.size())
                                         : "<plist version=\"1.0\">" + input + "</plist>\n");
}

void appendNumber(PropertyList::Bytes& out, std::uint64_t value, unsigned size) {
  for (unsigned i = size; i-- > 0;) {
    out.push_back(i >= 8 ? 0 : static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

PropertyList::Bytes binaryList(const std::vector<PropertyList::Bytes>& objects, unsigned referenceSize,
                               unsigned offsetSize) {
  PropertyList::Bytes out = bytesOf("bplist00");
  PropertyList::Bytes offsets;
  for (const PropertyList::Bytes& each : objects) {
    appendNumber(offsets, out.size(), offsetSize);
    out.insert(out.end(), each.begin(), each.end());
  }
  const std::size_t table = out.size();
  out.insert(out.end(), offsets.begin(), offsets.end());
  for (const auto& [value, size] : std::initializer_list<std::pair<std::uint64_t, unsigned>>{
           {0, 6}, {offsetSize, 1}, {referenceSize, 1}, {objects.size(), 8}, {0, 8}, {table, 8}}) {
    appendNumber(out, value, size);
  }
  return out;
}

PropertyList::Bytes binaryList(const std::string& notation) {
  std::vector<PropertyList::Bytes> objects(1);
  std::vector<std::pair<int, PropertyList::Bytes>> changes;
  std::istringstream words(notation);
  for (std::string word; words >> word;) {
    if (const std::size_t sign = word.find('='); sign != std::string::npos) {
      changes.emplace_back(std::stoi(word), bytesOfHex(word.substr(sign + 1)));
      continue;
    }
    objects.back().push_back(bytesOfHex(word.substr(0, 2))[0]);
    if (word.ends_with(';')) {
      objects.emplace_back();
    }
  }
  objects.pop_back();
  PropertyList::Bytes out = binaryList(objects);
  for (const auto& [place, bytes] : changes) {
    std::copy(bytes.begin(), bytes.end(), out.end() - 32 + place);
  }
  return out;
}

PropertyList::Bytes keyedArchive(const std::string& notation) {
  if (notation.starts_with("list:")) {
    return listInNotation(notation.substr(5));
  }
  const std::size_t semicolon = std::min(notation.find(" ;"), notation.size());
  return listInNotation("{$version=#100000 $archiver=\"NSKeyedArchiver\" $top={" + notation.substr(0, semicolon) +
                        "} $objects=[\"$null\" " + notation.substr(std::min(semicolon + 2, notation.size())) + "]}");
}

PropertyList::Bytes listInNotation(std::string text) {
  const std::pair<const char*, const char*> rules[] = {
      {"%(\\w+)", "{$$classname=\"$1\" $$classes=[\"$1\"]}"},
      {"\"([^\"]*)\"", "<string>$1</string>"},
      {"([$.\\w]+)=(?!=|</)", "<key>$1</key>"},
      {"@(\\d+)", "<dict><key>CF$$UID</key><integer>$1</integer></dict>"},
      {"#(\\d+)", "<integer>$1</integer>"},
      {"\\{", "<dict>"},
      {"\\}", "</dict>"},
      {"\\[", "<array>"},
      {"\\]", "</array>"},
  };
  for (const auto& [pattern, replacement] : rules) {
    text = std::regex_replace(text, std::regex(pattern), replacement);
  }
  return xmlList(text);
}

std::string compactXml(const PropertyList& list) {
  const auto bytes = PropertyListToBytes(list, PropertyListFormat::Xml, nullptr).value_or(PropertyList::Bytes());
  const std::string text(bytes.begin(), bytes.end());
  const std::string opening = "<plist version=\"1.0\">\n";
  const std::size_t start = text.find(opening) + opening.size();
  const std::string body = text.substr(start, text.rfind("</plist>") - start);
  return std::regex_replace(std::regex_replace(body, std::regex(">\n\t*"), ">"), std::regex("\n\t*<"), "<");
}
