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

PropertyBlob::Property Text(const char* name, const std::string& text) {
  return {name, PropertyBlob::kDefinedByEngine, static_cast<std::uint8_t>(ColumnType::Memo),
          format::EncodeText(text, false)};
}

void AddValidation(const std::optional<ValidationRule>& rule, PropertyBlob::Block& block) {
  if (!rule) return;
  block.properties.push_back(Text("ValidationRule", rule->expression));
  if (!rule->message.empty()) block.properties.push_back(Text("ValidationText", rule->message));
}

}  // namespace

Bytes MakeTableProperties(const TableSpec& table) {
  PropertyBlob blob;
  PropertyBlob::Block own;
  own.kind = PropertyBlob::kObjectBlock;
  AddValidation(table.validation, own);
  if (!own.properties.empty()) blob.blocks.push_back(std::move(own));
  for (const ColumnSpec& column : table.columns) {
    PropertyBlob::Block block;
    block.owner = column.name;
    if (column.defaultValue) block.properties.push_back(Text("DefaultValue", *column.defaultValue));
    AddValidation(column.validation, block);
    if (column.required) block.properties.push_back(Flag("Required", true));
    if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
      block.properties.push_back(Flag("AllowZeroLength", column.allowZeroLength));
    }
    if (!block.properties.empty()) blob.blocks.push_back(std::move(block));
  }
  return blob.blocks.empty() ? Bytes{} : format::EncodeProperties(blob);
}

}  // namespace jet
