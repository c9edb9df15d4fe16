#include "com/ForeignPickable.h"

#include <memory>

#include "com/Convert.h"

namespace HLDataSrvc::Com {
namespace {

void Check(HRESULT result) {
  if (FAILED(result)) throw ComError(result, "The program's own object to pick failed to answer.");
}

}  // namespace

HLIData::PickType ForeignPickable::PickType() const {
  LONG value = 0;
  Check(m_object->get_PickType(&value));
  return static_cast<HLIData::PickType>(value);
}

std::string ForeignPickable::PickName() const {
  BSTR value = nullptr;
  Check(m_object->get_PickName(&value));
  const std::unique_ptr<OLECHAR, decltype(&SysFreeString)> owned(value, &SysFreeString);
  return TextOf(value);
}

std::int32_t ForeignPickable::PickID() const {
  LONG value = 0;
  Check(m_object->get_PickID(&value));
  return value;
}

std::shared_ptr<HLIData::IPickable> AdoptPickable(IUnknown* object) {
  ComPtr<::IPickable> pickable;
  if (FAILED(object->QueryInterface(__uuidof(::IPickable), pickable.PutVoid()))) return nullptr;
  return std::make_shared<ForeignPickable>(std::move(pickable));
}

BSTR MakeBstr(const std::string& text) {
  const std::wstring wide = ToWide(text);
  const BSTR made = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (!made) throw std::bad_alloc();
  return made;
}

}  // namespace HLDataSrvc::Com
