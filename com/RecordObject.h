#pragma once

#include <memory>
#include <tuple>
#include <typeinfo>
#include <utility>

#include "com/ComObject.h"
#include "com/Convert.h"
#include "com/Identities.h"

namespace HLDataSrvc::Com {

/// The COM object that stands for one record of the component. It holds the record, and every member goes
/// straight on to it; there is one such object a record at any time.
template <typename RecordType, typename... Interfaces>
class RecordObject : public ComObject<Interfaces...> {
 public:
  using Record = RecordType;

  explicit RecordObject(std::shared_ptr<Record> record) : m_record(std::move(record)) {
    Identities::Keep(IdentityOf(*m_record), this);
  }
  ~RecordObject() override { Identities::Forget(IdentityOf(*m_record), this); }

  bool STDMETHODCALLTYPE View(const std::type_info& wanted, void* reference) override {
    this->CheckApartment();
    if (wanted != typeid(Record)) return false;
    *static_cast<std::shared_ptr<Record>*>(reference) = m_record;
    return true;
  }

 protected:
  /// Returns the result of a getter of `object`.
  template <typename Out, typename Object, typename Owner, typename Value>
  HRESULT Read(Out* out, const Object& object, Value (Owner::*getter)() const) noexcept {
    return this->Filled(out, [&] { ToCom((object.*getter)(), out); });
  }
  template <typename Out, typename Value>
  HRESULT Get(Out* out, Value (Record::*getter)() const) noexcept {
    return Read(out, *m_record, getter);
  }
  template <typename In, typename Value>
  HRESULT Put(In value, void (Record::*setter)(Value)) noexcept {
    return Run(setter, value);
  }
  /// Calls a member and returns its result.
  template <typename Out, typename Value, typename... Parameters, typename... Given>
  HRESULT Call(Out* out, Value (Record::*member)(Parameters...), Given... given) noexcept {
    return this->Filled(out, [&] {
      std::tuple<Argument<Parameters, Given>...> arguments(given...);
      std::apply(
          [&](auto&... argument) {
            const Value value = (m_record.get()->*member)(argument.Get()...);
            (argument.CopyBack(), ...);
            ToCom(value, out);
          },
          arguments);
    });
  }
  /// Calls a member without a result.
  template <typename... Parameters, typename... Given>
  HRESULT Run(void (Record::*member)(Parameters...), Given... given) noexcept {
    return this->Guarded([&] {
      std::tuple<Argument<Parameters, Given>...> arguments(given...);
      std::apply([&](auto&... argument) { (m_record.get()->*member)(argument.Get()...); }, arguments);
    });
  }

 private:
  std::shared_ptr<Record> m_record;
};

/// That of a record that can be picked.
template <typename Record, typename Interface>
class PickableObject : public RecordObject<Record, Interface, ::IPickable> {
 public:
  PickableObject(std::shared_ptr<Record> record, std::shared_ptr<HLIData::IPickable> pickable)
      : RecordObject<Record, Interface, ::IPickable>(std::move(record)), m_pickable(std::move(pickable)) {}

  STDMETHODIMP get_PickType(LONG* value) noexcept override {
    return this->Read(value, *m_pickable, &HLIData::IPickable::PickType);
  }
  STDMETHODIMP get_PickName(BSTR* value) noexcept override {
    return this->Read(value, *m_pickable, &HLIData::IPickable::PickName);
  }
  STDMETHODIMP get_PickID(LONG* value) noexcept override {
    return this->Read(value, *m_pickable, &HLIData::IPickable::PickID);
  }

  bool STDMETHODCALLTYPE View(const std::type_info& wanted, void* reference) override {
    if (wanted != typeid(HLIData::IPickable)) {
      return RecordObject<Record, Interface, ::IPickable>::View(wanted, reference);
    }
    this->CheckApartment();
    *static_cast<std::shared_ptr<HLIData::IPickable>*>(reference) = m_pickable;
    return true;
  }

 private:
  std::shared_ptr<HLIData::IPickable> m_pickable;
};

}  // namespace HLDataSrvc::Com
