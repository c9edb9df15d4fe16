#include "jet/format/PropertyBlob.h"

#include <algorithm>
#include <limits>
#include <map>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/NameOrder.h"
#include "jet/format/TextCodec.h"

namespace jet::format {
namespace {

// Properties:  | "MR2" 00 | chunks |
//
//   chunk:       | its length, 4 | kind, 2 | content |
//   names, 0x80: each name | bytes, 2 | UTF-16 |; properties refer to them by number
//   owner, 0, 1: | length of this head, 4 | owner's name: bytes, 2, UTF-16 | properties |
//   property:    | its length, 2 | flag, 1 | type, 1 | number of its name, 2 | bytes, 2 | value |
constexpr std::uint32_t kSignature = 0x0032524D;
constexpr std::uint16_t kNamesChunk = 0x80;
constexpr std::size_t kChunkHead = 6;
constexpr std::size_t kPropertyHead = 8;

Error Damaged(const char* why) {
  return Error(ErrorNumber::DamagedFile, "The properties of a table are damaged: " + std::string(why) + ".");
}

std::string ReadName(ByteReader& reader) {
  const std::size_t size = reader.U16();
  return DecodePlainText(reader.Take(size));
}

std::uint16_t Fits16(std::size_t size) {
  if (size > std::numeric_limits<std::uint16_t>::max()) {
    throw Error(ErrorNumber::InvalidDefinition, "A property of a table is too long.");
  }
  return static_cast<std::uint16_t>(size);
}

PropertyBlob::Property ReadProperty(ByteReader& reader, const std::vector<std::string>& names) {
  PropertyBlob::Property property;
  const std::size_t length = reader.U16();
  property.flag = reader.U8();
  property.type = reader.U8();
  const std::size_t name = reader.U16();
  const std::size_t size = reader.U16();
  if (length != kPropertyHead + size) throw Damaged("the lengths of a property contradict each other");
  if (name >= names.size()) throw Damaged("a property has no name");
  property.name = names[name];
  const auto value = reader.Take(size);
  property.value.assign(value.begin(), value.end());
  return property;
}

PropertyBlob::Block ReadBlock(std::uint16_t kind, std::span<const std::byte> content,
                              const std::vector<std::string>& names) {
  PropertyBlob::Block block;
  block.kind = kind;
  if (kind != PropertyBlob::kObjectBlock && kind != PropertyBlob::kColumnBlock) {
    block.unknown.assign(content.begin(), content.end());
    return block;
  }
  ByteReader reader(content, "properties of a table");
  const std::size_t head = reader.U32();
  block.owner = ReadName(reader);
  if (head != reader.Position()) throw Damaged("the length of an owner's name contradicts its bytes");
  while (reader.Remaining() != 0)
    block.properties.push_back(ReadProperty(reader, names));
  return block;
}

/// Appends integers and names to bytes.
class Writer {
 public:
  void U8(std::uint8_t value) { m_bytes.push_back(std::byte{value}); }
  void U16(std::uint16_t value) { StoreU16(Grow(2), value); }
  void U32(std::uint32_t value) { StoreU32(Grow(4), value); }
  void Raw(std::span<const std::byte> bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }
  void Name(const std::string& name) {
    const std::u16string units = Utf8ToUtf16(name);
    U16(Fits16(2 * units.size()));
    for (const char16_t unit : units)
      U16(unit);
  }
  std::size_t Size() const { return m_bytes.size(); }
  const Bytes& Result() const { return m_bytes; }

 private:
  std::byte* Grow(std::size_t size) {
    m_bytes.resize(m_bytes.size() + size);
    return m_bytes.data() + m_bytes.size() - size;
  }
  Bytes m_bytes;
};

void WriteChunk(Writer& into, std::uint16_t kind, const Bytes& content) {
  into.U32(static_cast<std::uint32_t>(kChunkHead + content.size()));
  into.U16(kind);
  into.Raw(content);
}

Bytes BlockContent(const PropertyBlob::Block& block, const std::map<std::string, std::size_t>& numbers) {
  if (block.kind != PropertyBlob::kObjectBlock && block.kind != PropertyBlob::kColumnBlock)
    return block.unknown;
  Writer owner;
  owner.Name(block.owner);
  Writer writer;
  writer.U32(static_cast<std::uint32_t>(4 + owner.Size()));
  writer.Raw(owner.Result());
  for (const PropertyBlob::Property& property : block.properties) {
    writer.U16(Fits16(kPropertyHead + property.value.size()));
    writer.U8(property.flag);
    writer.U8(property.type);
    writer.U16(Fits16(numbers.at(property.name)));
    writer.U16(Fits16(property.value.size()));
    writer.Raw(property.value);
  }
  return writer.Result();
}

}  // namespace

const PropertyBlob::Block* PropertyBlob::FindColumn(std::string_view column) const {
  const auto found = std::find_if(blocks.begin(), blocks.end(), [&](const Block& block) {
    return block.kind == kColumnBlock && SameName(block.owner, column);
  });
  return found == blocks.end() ? nullptr : &*found;
}

const PropertyBlob::Block* PropertyBlob::FindObject() const {
  const auto found = std::ranges::find(blocks, kObjectBlock, &Block::kind);
  return found == blocks.end() ? nullptr : &*found;
}

const PropertyBlob::Property* FindProperty(const PropertyBlob::Block& block, std::string_view name) {
  const auto found = std::find_if(block.properties.begin(), block.properties.end(),
                                  [&](const PropertyBlob::Property& p) { return SameName(p.name, name); });
  return found == block.properties.end() ? nullptr : &*found;
}

PropertyBlob DecodeProperties(std::span<const std::byte> blob) {
  PropertyBlob result;
  if (blob.empty()) return result;
  ByteReader reader(blob, "properties of a table");
  if (reader.U32() != kSignature) throw Damaged("they do not begin as properties do");
  while (reader.Remaining() != 0) {
    const std::size_t length = reader.U32();
    const std::uint16_t kind = reader.U16();
    if (length < kChunkHead) throw Damaged("a part is shorter than its head");
    const auto content = reader.Take(length - kChunkHead);
    if (kind != kNamesChunk) {
      result.blocks.push_back(ReadBlock(kind, content, result.names));
      continue;
    }
    if (!result.names.empty() || !result.blocks.empty()) throw Damaged("the names do not come first");
    ByteReader names(content, "properties of a table");
    while (names.Remaining() != 0)
      result.names.push_back(ReadName(names));
  }
  return result;
}

Bytes EncodeProperties(const PropertyBlob& properties) {
  std::map<std::string, std::size_t> numbers;
  Writer names;
  std::size_t count = 0;
  const auto add = [&](const std::string& name) {
    names.Name(name);
    numbers.emplace(name, count++);
  };
  for (const std::string& name : properties.names)
    add(name);
  for (const PropertyBlob::Block& block : properties.blocks) {
    for (const PropertyBlob::Property& property : block.properties) {
      if (!numbers.contains(property.name)) add(property.name);
    }
  }
  Writer writer;
  writer.U32(kSignature);
  WriteChunk(writer, kNamesChunk, names.Result());
  for (const PropertyBlob::Block& block : properties.blocks)
    WriteChunk(writer, block.kind, BlockContent(block, numbers));
  return writer.Result();
}

}  // namespace jet::format
