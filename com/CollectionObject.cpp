#include "com/CollectionObject.h"

#include <utility>

#include <ole2.h>

#include "com/Convert.h"
#include "com/Enumeration.h"
#include "com/Identities.h"

namespace HLDataSrvc::Com {
namespace {

void HandOutItem(const ComPtr<IDispatch>& item, VARIANT& element) {
  VariantInit(&element);
  V_VT(&element) = VT_DISPATCH;
  V_DISPATCH(&element) = ComPtr<IDispatch>(item).Detach();
}

using ItemEnumeration = Enumeration<IEnumVARIANT, VARIANT, ComPtr<IDispatch>, &HandOutItem>;

bool IsMissing(const VARIANT& value) {
  return V_VT(&value) == VT_EMPTY || (V_VT(&value) == VT_ERROR && V_ERROR(&value) == DISP_E_PARAMNOTFOUND);
}

/// A variant that the system fills and that is ours to clear.
class OwnVariant {
 public:
  OwnVariant() { VariantInit(&m_value); }
  ~OwnVariant() { VariantClear(&m_value); }
  OwnVariant(const OwnVariant&) = delete;
  OwnVariant& operator=(const OwnVariant&) = delete;

  VARIANT* Get() { return &m_value; }

 private:
  VARIANT m_value;
};

}  // namespace

CollectionObject::CollectionObject(std::unique_ptr<CollectionItems> items) : m_items(std::move(items)) {
  Identities::Keep(m_items->Identity(), this);
}

CollectionObject::~CollectionObject() {
  Identities::Forget(m_items->Identity(), this);
}

HRESULT CollectionObject::get_Item(VARIANT keyOrPosition, IDispatch** value) noexcept {
  return Filled(value, [&] {
    *value =
        std::visit([this](const auto& selector) { return m_items->Item(selector); }, Selected(keyOrPosition))
            .Detach();
  });
}

HRESULT CollectionObject::get_Count(LONG* value) noexcept {
  return Filled(value, [&] { *value = m_items->Count(); });
}

HRESULT CollectionObject::get__NewEnum(IUnknown** value) noexcept {
  return Filled(value, [&] {
    std::vector<ComPtr<IDispatch>> items;
    for (std::int32_t position = 1; position <= m_items->Count(); ++position)
      items.push_back(m_items->Item(position));
    *value = Make<ItemEnumeration>(std::move(items)).Detach();
  });
}

HRESULT CollectionObject::Add(IDispatch* item, VARIANT key, VARIANT before, VARIANT after) noexcept {
  return Guarded([&] {
    std::string keyText;
    if (!IsMissing(key)) {
      const Selector selector = Selected(key);
      if (!std::holds_alternative<std::string>(selector)) throw TypeMismatch("A key has to be a text.");
      keyText = std::get<std::string>(selector);
    }
    if (!IsMissing(before) && !IsMissing(after)) {
      throw ComError(E_INVALIDARG, "An item goes before another or after one, not both.");
    }
    if (!IsMissing(before)) {
      m_items->Add(item, keyText, CollectionItems::Place::Before, PositionOf(before));
    } else if (!IsMissing(after)) {
      m_items->Add(item, keyText, CollectionItems::Place::After, PositionOf(after));
    } else {
      m_items->Add(item, keyText, CollectionItems::Place::AtEnd, 0);
    }
  });
}

HRESULT CollectionObject::Remove(VARIANT keyOrPosition) noexcept {
  return Guarded([&] {
    std::visit([this](const auto& selector) { m_items->Remove(selector); }, Selected(keyOrPosition));
  });
}

bool CollectionObject::View(const std::type_info& wanted, void* reference) {
  CheckApartment();
  return m_items->View(wanted, reference);
}

CollectionObject::Selector CollectionObject::Selected(VARIANT keyOrPosition) {
  OwnVariant plain;
  if (SUCCEEDED(VariantCopyInd(plain.Get(), &keyOrPosition))) {
    switch (V_VT(plain.Get())) {
      case VT_BSTR:
        return TextOf(V_BSTR(plain.Get()));
      case VT_I1:
      case VT_I2:
      case VT_I4:
      case VT_I8:
      case VT_INT:
      case VT_UI1:
      case VT_UI2:
      case VT_UI4:
      case VT_UI8:
      case VT_UINT:
      case VT_R4:
      case VT_R8:
      case VT_CY:
      case VT_DECIMAL: {
        const HRESULT result = VariantChangeType(plain.Get(), plain.Get(), 0, VT_I4);
        if (FAILED(result)) throw ComError(result, "A position is a number of 32 bits.");
        return std::int32_t{V_I4(plain.Get())};
      }
      default:
        break;
    }
  }
  throw TypeMismatch("An item is told by its key, a text, or by its position, a number.");
}

std::int32_t CollectionObject::PositionOf(VARIANT keyOrPosition) const {
  const Selector selector = Selected(keyOrPosition);
  if (const auto* position = std::get_if<std::int32_t>(&selector)) return *position;
  return m_items->PositionOf(std::get<std::string>(selector));
}

}  // namespace HLDataSrvc::Com
