#include "jet/table/TableProperties.h"

#include "jet/format/PropertyBlob.h"
#include "jet/format/TextCodec.h"

namespace jet {
namespace {

using format::PropertyBlob;

PropertyBlob::Property Flag(const char* name, bool value) {
  return {name,
          PropertyBlob::kDefinedByEngine,
          static_cast<std::uint8_t>(ColumnType::YesNo),
          {value ? std::byte{1} : std::byte{0}}};
}

}  // namespace

Bytes MakeTableProperties(const TableSpec& table) {
  PropertyBlob blob;
  for (const ColumnSpec& column : table.columns) {
    PropertyBlob::Block block;
    block.owner = column.name;
    if (column.defaultValue) {
      block.properties.push_back({"DefaultValue", PropertyBlob::kDefinedByEngine,
                                  static_cast<std::uint8_t>(ColumnType::Memo),
                                  format::EncodeText(*column.defaultValue, false)});
    }
    if (column.required) block.properties.push_back(Flag("Required", true));
    if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
      block.properties.push_back(Flag("AllowZeroLength", column.allowZeroLength));
    }
    if (!block.properties.empty()) blob.blocks.push_back(std::move(block));
  }
  return blob.blocks.empty() ? Bytes{} : format::EncodeProperties(blob);
}

}  // namespace jet
