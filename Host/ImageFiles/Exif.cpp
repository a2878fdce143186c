// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exif.h"

#include "Host/ImageFiles/FileBytes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <tuple>

namespace host {
namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kEntrySize = 12;
constexpr std::size_t kInlineSize = 4;  // values of no more bytes stand in their entry

constexpr std::uint16_t kOrientationTag = 0x0112;
constexpr std::uint16_t kColorSpaceTag = 0xA001;
constexpr std::uint16_t kSRgbColors = 1;
constexpr std::uint16_t kUncalibratedColors = 0xFFFF;

constexpr std::uint16_t kResolutionTags[] = {0x011A, 0x011B};
constexpr std::uint16_t kResolutionUnitTag = 0x0128;
constexpr double kNoUnit = 1;
constexpr double kInchUnit = 2;
constexpr double kCentimeterUnit = 3;

struct SizeTags {
  ExifDirectory directory;
  std::uint16_t width;
  std::uint16_t height;
};
constexpr std::array<SizeTags, 2> kSizeTags{
    {{ExifDirectory::Image, 0x0100, 0x0101}, {ExifDirectory::Photo, 0xA002, 0xA003}}};

// The entry that says where a directory lies, and the directory that it stands in.
struct Pointer {
  ExifDirectory from;
  std::uint16_t tag;
  ExifDirectory to;
};
constexpr std::array<Pointer, 3> kPointers{{{ExifDirectory::Image, 0x8769, ExifDirectory::Photo},
                                            {ExifDirectory::Image, 0x8825, ExifDirectory::Gps},
                                            {ExifDirectory::Photo, 0xA005, ExifDirectory::Interoperability}}};

const Pointer* pointerAt(ExifDirectory directory, std::uint16_t tag) {
  for (const Pointer& pointer : kPointers) {
    if (pointer.from == directory && pointer.tag == tag) return &pointer;
  }
  return nullptr;
}

// The type of a place of a directory, which takes as many bytes as a Long. Only pointers of the above are read as one.
constexpr ExifType kPlaceType{13};

bool isPointer(std::uint16_t tag) {
  return std::any_of(kPointers.begin(), kPointers.end(), [tag](const Pointer& pointer) { return pointer.tag == tag; });
}

// A rational's two numbers turn on their own.
std::size_t wordSize(ExifType type) {
  return type == ExifType::Rational || type == ExifType::SignedRational ? 4 : exifTypeSize(type);
}

// Between the block's byte order and the machine's, both ways.
void turnValues(std::span<std::uint8_t> bytes, ExifType type, bool isBigEndian) {
  if (isBigEndian == (std::endian::native == std::endian::big)) return;
  const std::size_t size = wordSize(type);
  for (std::size_t at = 0; at + size <= bytes.size(); at += size) {
    std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                 bytes.begin() + static_cast<std::ptrdiff_t>(at + size));
  }
}

struct Range {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;
  std::uint64_t end() const { return offset + size; }
};

// An entry as it lies in a block.
struct Field {
  std::uint16_t tag = 0;
  ExifType type = ExifType::Undefined;
  Range value;
};

struct Directory {
  std::vector<Field> fields;  // of known types
  Range range;
  std::uint64_t next = 0;  // where the next of the chain lies; 0: nowhere
};

class BlockReader {
 public:
  explicit BlockReader(std::span<const std::uint8_t> block)
      : isBigEndian_(!block.empty() && block[0] == 'M'), bytes_(block, isBigEndian_) {}

  bool isBigEndian() const { return isBigEndian_; }
  bool isWhole() const { return bytes_.isWhole(); }
  std::uint64_t size() const { return bytes_.size(); }
  std::uint64_t number(std::uint64_t offset, unsigned size) { return bytes_.number(offset, size); }

  void require(const Range& range) { bytes_.range(range.offset, range.size); }

  // In the machine's byte order; empty when it is not all inside.
  Bytes value(const Field& field) {
    const auto stored = bytes_.range(field.value.offset, field.value.size);
    Bytes value(stored.begin(), stored.end());
    turnValues(value, field.type, isBigEndian_);
    return value;
  }

  // Where the first directory lies; nothing when this is no such block.
  std::optional<std::uint64_t> firstDirectory() {
    const std::uint8_t mark = isBigEndian_ ? 'M' : 'I';
    if (number(0, 1) != mark || number(1, 1) != mark || number(2, 2) != 42) return std::nullopt;
    return number(4, 4);
  }

  Directory directory(std::uint64_t at) {
    Directory directory;
    const std::uint64_t count = number(at, 2);
    directory.range = {at, 2 + count * kEntrySize + 4};
    if (bytes_.range(at, directory.range.size).empty()) return directory;
    for (std::uint64_t i = 0; i < count; ++i) addField(at + 2 + i * kEntrySize, &directory.fields);
    directory.next = number(directory.range.end() - 4, 4);
    return directory;
  }

 private:
  void addField(std::uint64_t at, std::vector<Field>* fields) {
    Field field;
    field.tag = static_cast<std::uint16_t>(number(at, 2));
    field.type = static_cast<ExifType>(number(at + 2, 2));
    if (field.type == kPlaceType && isPointer(field.tag)) field.type = ExifType::Long;
    if (exifTypeSize(field.type) == 0) return;
    field.value.size = number(at + 4, 4) * exifTypeSize(field.type);
    field.value.offset = field.value.size <= kInlineSize ? at + 8 : number(at + 8, 4);
    fields->push_back(field);
  }

  bool isBigEndian_;
  FileBytes bytes_;
};

// The directories that are kept, and what of the block belongs to them.
class Layout {
 public:
  explicit Layout(std::span<const std::uint8_t> block) : reader_(block) {}

  // False for a block that is damaged.
  bool read() {
    const auto first = reader_.firstDirectory();
    if (!first) return false;
    used_.push_back({0, kHeaderSize});
    add(ExifDirectory::Image, *first);
    thumbnailDirectory_ = directories_[0].next;
    for (const Pointer& pointer : kPointers) {
      if (const auto at = place(pointer)) add(pointer.to, *at);
    }
    return reader_.isWhole() && !hasCircle_ && valueBytes_ <= reader_.size();
  }

  BlockReader& reader() { return reader_; }
  const Directory& directory(ExifDirectory which) const { return directories_[static_cast<std::size_t>(which)]; }
  const std::vector<Range>& used() const { return used_; }
  std::uint64_t thumbnailDirectory() const { return thumbnailDirectory_; }  // 0: there is none

 private:
  std::optional<std::uint64_t> place(const Pointer& pointer) {
    for (const Field& field : directory(pointer.from).fields) {
      if (field.tag == pointer.tag && field.value.size == kInlineSize) return reader_.number(field.value.offset, 4);
    }
    return std::nullopt;
  }

  void add(ExifDirectory which, std::uint64_t at) {
    for (const Directory& other : directories_) hasCircle_ |= other.range.size > 0 && other.range.offset == at;
    Directory& directory = directories_[static_cast<std::size_t>(which)];
    directory = reader_.directory(at);
    used_.push_back(directory.range);
    for (const Field& field : directory.fields) {
      valueBytes_ += field.value.size;
      if (field.value.size > kInlineSize) used_.push_back(field.value);
      reader_.require(field.value);
    }
  }

  BlockReader reader_;
  std::array<Directory, 4> directories_;
  std::vector<Range> used_;
  std::uint64_t valueBytes_ = 0;
  std::uint64_t thumbnailDirectory_ = 0;
  bool hasCircle_ = false;
};

int validOrientation(std::uint64_t value) {
  return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
}

const Field* orientationField(const Directory& image) {
  for (const Field& field : image.fields) {
    const bool isNumber = field.type == ExifType::Short || field.type == ExifType::Long || field.type == ExifType::Byte;
    if (field.tag == kOrientationTag && isNumber && field.value.size == exifTypeSize(field.type)) return &field;
  }
  return nullptr;
}

template <class Number>
double firstAs(const Bytes& value) {
  Number number;
  std::memcpy(&number, value.data(), sizeof number);
  return static_cast<double>(number);
}

template <class Number>
double firstRatio(const Bytes& value) {
  Number numbers[2];
  std::memcpy(numbers, value.data(), sizeof numbers);
  return static_cast<double>(numbers[0]) / static_cast<double>(numbers[1]);
}

// What only the thumbnail takes: its directory and its samples, as far as they are inside.
std::vector<Range> thumbnailRanges(BlockReader& reader, std::uint64_t at) {
  constexpr std::array<std::array<std::uint16_t, 2>, 2> kPlaceAndSize{{{0x0201, 0x0202}, {0x0111, 0x0117}}};
  if (at == 0) return {};
  const Directory thumbnail = reader.directory(at);
  std::vector<Range> ranges{thumbnail.range};
  for (const auto& [placeTag, sizeTag] : kPlaceAndSize) {
    Range samples;
    for (const Field& field : thumbnail.fields) {
      if (field.value.size > kInlineSize) continue;
      const auto value = reader.number(field.value.offset, static_cast<unsigned>(exifTypeSize(field.type)));
      if (field.tag == placeTag) samples.offset = value;
      if (field.tag == sizeTag) samples.size = value;
    }
    ranges.push_back(samples);
  }
  std::erase_if(ranges, [&](const Range& range) {
    return range.offset > reader.size() || range.size > reader.size() - range.offset;
  });
  return ranges;
}

// Where a directory's entries of a tag lie. Programs differ in which of several counts.
std::vector<std::uint64_t> entriesAt(BlockReader& reader, const Directory& directory, std::uint16_t tag) {
  std::vector<std::uint64_t> places;
  const std::uint64_t end = directory.range.end();
  for (std::uint64_t at = directory.range.offset + 2; at + kEntrySize < end; at += kEntrySize) {
    if (reader.number(at, 2) == tag) places.push_back(at);
  }
  return places;
}

void putNumber(std::uint8_t* at, std::uint64_t value, unsigned size, bool isBigEndian) {
  for (unsigned i = 0; i < size; ++i) {
    const unsigned significance = isBigEndian ? size - 1 - i : i;
    at[i] = static_cast<std::uint8_t>(value >> (8 * significance));
  }
}

// Makes an entry hold one number, of Short or Long.
void putEntry(std::uint64_t entry, ExifType type, std::uint32_t number, bool isBigEndian, Bytes* block) {
  std::uint8_t* const at = &(*block)[entry];
  putNumber(at + 2, static_cast<std::uint64_t>(type), 2, isBigEndian);
  putNumber(at + 4, 1, 4, isBigEndian);
  putNumber(at + 8, 0, 4, isBigEndian);
  putNumber(at + 8, number, static_cast<unsigned>(exifTypeSize(type)), isBigEndian);
}

// What an entry says of colors holds for one space only: TransferFunction, WhitePoint, PrimaryChromaticities, an ICC
// profile, Gamma, InteroperabilityIndex.
bool isOfOneSpace(ExifDirectory directory, std::uint64_t tag) {
  switch (directory) {
    case ExifDirectory::Image:
      return tag == 0x012D || tag == 0x013E || tag == 0x013F || tag == 0x8773;
    case ExifDirectory::Photo:
      return tag == 0xA500;
    case ExifDirectory::Interoperability:
      return tag == 0x0001;
    case ExifDirectory::Gps:
      break;
  }
  return false;
}

// Entries behind one that goes move up; the place of the next directory follows them.
void recolorDirectory(BlockReader& reader, ExifDirectory which, const Range& range, std::uint16_t colors,
                      Bytes* block) {
  std::uint64_t kept = 0;
  auto to = block->begin() + static_cast<std::ptrdiff_t>(range.offset + 2);
  for (std::uint64_t from = range.offset + 2; from + kEntrySize < range.end(); from += kEntrySize) {
    const std::uint64_t tag = reader.number(from, 2);
    if (isOfOneSpace(which, tag)) continue;
    const auto entry = static_cast<std::uint64_t>(to - block->begin());
    to = std::copy_n(block->begin() + static_cast<std::ptrdiff_t>(from), kEntrySize, to);
    ++kept;
    if (which != ExifDirectory::Photo || tag != kColorSpaceTag) continue;
    putEntry(entry, ExifType::Short, colors, reader.isBigEndian(), block);
  }
  const auto end = block->begin() + static_cast<std::ptrdiff_t>(range.end());
  to = std::copy_n(end - 4, 4, to);
  std::fill(to, end, std::uint8_t{0});
  putNumber(&(*block)[range.offset], kept, 2, reader.isBigEndian());
}

bool isBefore(const ExifEntry& left, const ExifEntry& right) {
  return std::tie(left.directory, left.tag) < std::tie(right.directory, right.tag);
}

// Lays the directories out: each with the values behind it that do not fit into its entries.
class BlockWriter {
 public:
  explicit BlockWriter(bool isBigEndian) : isBigEndian_(isBigEndian) {
    block_ = isBigEndian ? Bytes{'M', 'M'} : Bytes{'I', 'I'};
    append(42, 2);
    append(kHeaderSize, 4);
  }

  void add(ExifDirectory which, std::vector<ExifEntry> entries) {
    const std::size_t start = block_.size();
    append(entries.size(), 2);
    block_.resize(start + 2 + entries.size() * kEntrySize + 4);
    for (std::size_t i = 0; i < entries.size(); ++i) {
      ExifEntry& entry = entries[i];
      const std::size_t at = start + 2 + i * kEntrySize;
      put(at, entry.tag, 2);
      put(at + 2, static_cast<std::uint64_t>(entry.type), 2);
      put(at + 4, entry.count(), 4);
      if (pointerAt(which, entry.tag) != nullptr) {
        pointers_.push_back({entry.tag, at + 8});
        continue;
      }
      turnValues(entry.value, entry.type, isBigEndian_);
      if (entry.value.size() <= kInlineSize) {
        std::copy(entry.value.begin(), entry.value.end(), block_.begin() + static_cast<std::ptrdiff_t>(at + 8));
      } else {
        put(at + 8, block_.size(), 4);
        block_.insert(block_.end(), entry.value.begin(), entry.value.end());
        if (block_.size() % 2 != 0) block_.push_back(0);  // values start at even places
      }
    }
  }

  // The next directory that is added is the one that this entry points to.
  void pointHere(std::uint16_t tag) {
    for (const auto& [pointer, at] : pointers_) {
      if (pointer == tag) put(at, block_.size(), 4);
    }
  }

  Bytes take() { return std::move(block_); }

 private:
  void put(std::size_t at, std::uint64_t value, unsigned size) { putNumber(&block_[at], value, size, isBigEndian_); }
  void append(std::uint64_t value, unsigned size) {
    block_.resize(block_.size() + size);
    put(block_.size() - size, value, size);
  }

  bool isBigEndian_;
  Bytes block_;
  std::vector<std::pair<std::uint16_t, std::size_t>> pointers_;
};

}  // namespace

std::size_t exifTypeSize(ExifType type) {
  constexpr std::size_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
  const auto number = static_cast<std::size_t>(type);
  return number < std::size(kSizes) ? kSizes[number] : 0;
}

std::optional<ExifBlock> ExifBlock::parse(std::span<const std::uint8_t> bytes) {
  Layout layout(bytes);
  if (!layout.read()) return std::nullopt;
  ExifBlock block;
  block.isBigEndian_ = layout.reader().isBigEndian();
  for (const ExifDirectory which :
       {ExifDirectory::Image, ExifDirectory::Photo, ExifDirectory::Gps, ExifDirectory::Interoperability}) {
    for (const Field& field : layout.directory(which).fields) {
      if (pointerAt(which, field.tag) == nullptr) {
        block.entries_.push_back({which, field.tag, field.type, layout.reader().value(field)});
      }
    }
  }
  std::stable_sort(block.entries_.begin(), block.entries_.end(), isBefore);
  const auto isSame = [](const ExifEntry& a, const ExifEntry& b) {
    return a.directory == b.directory && a.tag == b.tag;
  };
  block.entries_.erase(std::unique(block.entries_.begin(), block.entries_.end(), isSame), block.entries_.end());
  return block;
}

const ExifEntry* ExifBlock::find(ExifDirectory directory, std::uint16_t tag) const {
  for (const ExifEntry& entry : entries_) {
    if (entry.directory == directory && entry.tag == tag) return &entry;
  }
  return nullptr;
}

std::optional<double> ExifBlock::number(ExifDirectory directory, std::uint16_t tag) const {
  const ExifEntry* entry = find(directory, tag);
  if (entry == nullptr || entry->count() == 0) return std::nullopt;
  switch (entry->type) {
    case ExifType::Byte:
      return firstAs<std::uint8_t>(entry->value);
    case ExifType::SignedByte:
      return firstAs<std::int8_t>(entry->value);
    case ExifType::Short:
      return firstAs<std::uint16_t>(entry->value);
    case ExifType::SignedShort:
      return firstAs<std::int16_t>(entry->value);
    case ExifType::Long:
      return firstAs<std::uint32_t>(entry->value);
    case ExifType::SignedLong:
      return firstAs<std::int32_t>(entry->value);
    case ExifType::Float:
      return firstAs<float>(entry->value);
    case ExifType::Double:
      return firstAs<double>(entry->value);
    case ExifType::Rational:
      return firstRatio<std::uint32_t>(entry->value);
    case ExifType::SignedRational:
      return firstRatio<std::int32_t>(entry->value);
    case ExifType::Ascii:
    case ExifType::Undefined:
      break;
  }
  return std::nullopt;
}

void ExifBlock::set(ExifEntry entry) {
  const std::size_t size = exifTypeSize(entry.type);
  if (size == 0 || entry.value.size() % size != 0 || pointerAt(entry.directory, entry.tag) != nullptr) return;
  const auto at = std::lower_bound(entries_.begin(), entries_.end(), entry, isBefore);
  if (at != entries_.end() && at->directory == entry.directory && at->tag == entry.tag) {
    *at = std::move(entry);
  } else {
    entries_.insert(at, std::move(entry));
  }
}

void ExifBlock::remove(ExifDirectory directory, std::uint16_t tag) {
  std::erase_if(entries_, [&](const ExifEntry& entry) { return entry.directory == directory && entry.tag == tag; });
}

int ExifBlock::orientation() const {
  const double value = number(ExifDirectory::Image, kOrientationTag).value_or(1);
  return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
}

void ExifBlock::setOrientation(int orientation) {
  const auto value = static_cast<std::uint16_t>(orientation);
  ExifEntry entry{ExifDirectory::Image, kOrientationTag, ExifType::Short, Bytes(sizeof value)};
  std::memcpy(entry.value.data(), &value, sizeof value);
  set(std::move(entry));
}

Bytes ExifBlock::serialized() const {
  if (entries_.empty()) return {};
  std::array<std::vector<ExifEntry>, 4> directories;
  for (const ExifEntry& entry : entries_) directories[static_cast<std::size_t>(entry.directory)].push_back(entry);
  // From the last, since the one that points may be there for that alone.
  for (auto pointer = kPointers.rbegin(); pointer != kPointers.rend(); ++pointer) {
    if (directories[static_cast<std::size_t>(pointer->to)].empty()) continue;
    auto& from = directories[static_cast<std::size_t>(pointer->from)];
    ExifEntry entry{pointer->from, pointer->tag, ExifType::Long, Bytes(kInlineSize)};
    from.insert(std::lower_bound(from.begin(), from.end(), entry, isBefore), std::move(entry));
  }
  BlockWriter writer(isBigEndian_);
  writer.add(ExifDirectory::Image, std::move(directories[0]));
  for (const Pointer& pointer : kPointers) {
    auto& entries = directories[static_cast<std::size_t>(pointer.to)];
    if (entries.empty()) continue;
    writer.pointHere(pointer.tag);
    writer.add(pointer.to, std::move(entries));
  }
  return writer.take();
}

int exifOrientation(std::span<const std::uint8_t> block) {
  BlockReader reader(block);
  const auto first = reader.firstDirectory();
  if (!first) return 1;
  const Directory image = reader.directory(*first);
  const Field* field = orientationField(image);
  if (field == nullptr) return 1;
  return validOrientation(reader.number(field->value.offset, static_cast<unsigned>(field->value.size)));
}

void takeExifResolution(std::span<const std::uint8_t> bytes, FileMetadata* metadata) {
  if (metadata->resolution || metadata->pixelAspect) return;
  const auto block = ExifBlock::parse(bytes);
  if (!block) return;
  const double x = block->number(ExifDirectory::Image, kResolutionTags[0]).value_or(0);
  const double y = block->number(ExifDirectory::Image, kResolutionTags[1]).value_or(0);
  const double unit = block->number(ExifDirectory::Image, kResolutionUnitTag).value_or(kInchUnit);
  if (!std::isfinite(x) || !std::isfinite(y) || x <= 0 || y <= 0) return;
  if (unit == kInchUnit) metadata->resolution = Resolution{x, y, Resolution::Unit::Inch};
  if (unit == kCentimeterUnit) metadata->resolution = Resolution{x, y, Resolution::Unit::Centimeter};
  const bool isKnown = unit == kNoUnit || metadata->resolution;
  if (isKnown && x != y) metadata->pixelAspect = y / x;
}

Bytes uprightExif(std::span<const std::uint8_t> block) {
  Layout layout(block);
  if (!layout.read()) return {};
  Bytes upright(block.begin(), block.end());
  const auto at = [&](std::uint64_t offset) { return upright.begin() + static_cast<std::ptrdiff_t>(offset); };
  for (const Range& range : thumbnailRanges(layout.reader(), layout.thumbnailDirectory())) {
    std::fill(at(range.offset), at(range.end()), std::uint8_t{0});
  }
  std::uint64_t end = 0;
  for (const Range& range : layout.used()) {
    std::copy_n(block.begin() + static_cast<std::ptrdiff_t>(range.offset), range.size, at(range.offset));
    end = std::max(end, range.end());
  }
  while (upright.size() > end && upright.back() == 0) upright.pop_back();

  const Directory& image = layout.directory(ExifDirectory::Image);
  std::fill_n(at(image.range.end() - 4), 4, std::uint8_t{0});
  for (const std::uint64_t entry : entriesAt(layout.reader(), image, kOrientationTag)) {
    putEntry(entry, ExifType::Short, 1, layout.reader().isBigEndian(), &upright);
  }
  return upright;
}

Bytes exifOfSize(std::span<const std::uint8_t> block, std::uint32_t width, std::uint32_t height) {
  Layout layout(block);
  if (!layout.read()) return {};
  Bytes sized(block.begin(), block.end());
  for (const SizeTags& tags : kSizeTags) {
    for (const auto& [tag, size] : {std::pair(tags.width, width), std::pair(tags.height, height)}) {
      for (const std::uint64_t entry : entriesAt(layout.reader(), layout.directory(tags.directory), tag)) {
        putEntry(entry, ExifType::Long, size, layout.reader().isBigEndian(), &sized);
      }
    }
  }
  return sized;
}

Bytes recoloredExif(std::span<const std::uint8_t> block, bool isSRgb) {
  Layout layout(block);
  if (!layout.read()) return {};
  Bytes recolored(block.begin(), block.end());
  const std::uint16_t colors = isSRgb ? kSRgbColors : kUncalibratedColors;
  for (const ExifDirectory which : {ExifDirectory::Image, ExifDirectory::Photo, ExifDirectory::Interoperability}) {
    const Range& range = layout.directory(which).range;
    if (range.size > 0) recolorDirectory(layout.reader(), which, range, colors, &recolored);
  }
  // Directories that lie across each other may not have stood it.
  return Layout(recolored).read() ? recolored : Bytes();
}

}  // namespace host
