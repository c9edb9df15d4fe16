#include "jet/format/LongValueReference.h"

#include "jet/Error.h"
#include "jet/format/Bytes.h"

namespace jet::format {
namespace {
constexpr std::uint32_t kInlineBit = 0x80000000;
constexpr std::uint32_t kOnePieceBit = 0x40000000;
constexpr std::size_t kPointerAt = 4;
constexpr std::size_t kTagAt = 8;
}  // namespace

LongValueReference LongValueReference::Decode(std::span<const std::byte> stored,
                                              const std::string& columnName) {
  const auto damaged = [&](const char* why) {
    return Error(ErrorNumber::DamagedFile,
                 "A long value of the column '" + columnName + "' is damaged: " + why + ".");
  };
  if (stored.size() < kSize) throw damaged("its head is too short");
  const std::uint32_t lengthAndMode = LoadU32(stored.data());
  LongValueReference reference;
  reference.length = lengthAndMode & kLongest;
  reference.pointer = LoadU32(stored.data() + kPointerAt);
  reference.tag = LoadU32(stored.data() + kTagAt);
  switch (lengthAndMode & (kInlineBit | kOnePieceBit)) {
    case kInlineBit:
      if (stored.size() - kSize != reference.length) throw damaged("its length is not that of its bytes");
      reference.mode = Mode::Inline;
      break;
    case kOnePieceBit:
      reference.mode = Mode::OnePiece;
      break;
    case 0:
      reference.mode = Mode::Chained;
      break;
    default:
      throw damaged("it lies in two places");
  }
  return reference;
}

void LongValueReference::AppendTo(Bytes& into) const {
  const std::uint32_t modeBits = mode == Mode::Inline     ? kInlineBit
                                 : mode == Mode::OnePiece ? kOnePieceBit
                                                          : 0;
  const std::size_t at = into.size();
  into.resize(at + kSize);
  StoreU32(into.data() + at, length | modeBits);
  StoreU32(into.data() + at + kPointerAt, pointer);
  StoreU32(into.data() + at + kTagAt, tag);
}

}  // namespace jet::format
