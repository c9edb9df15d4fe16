// The kinds of collections that cross the edge of the library.

#include <utility>

#include "HLIData/KeyedCollection.h"
#include "com/CollectionObject.h"
#include "com/References.h"

namespace HLDataSrvc::Com {
namespace {

using HLIData::KeyedCollection;

template <typename T>
class ItemsOf final : public CollectionItems {
 public:
  explicit ItemsOf(std::shared_ptr<KeyedCollection<T>> collection) : m_collection(std::move(collection)) {}

  std::int32_t Count() const override { return m_collection->Count(); }
  ComPtr<IDispatch> Item(std::int32_t position) const override {
    return Object(m_collection->Item(position));
  }
  ComPtr<IDispatch> Item(const std::string& key) const override { return Object(m_collection->Item(key)); }
  std::int32_t PositionOf(const std::string& key) const override {
    if (key.empty()) m_collection->Item(key);  // no item is known by it: raises
    std::int32_t position = 1;
    while (position < Count() && m_collection->KeyAt(position) != key)
      ++position;
    if (position > Count() || m_collection->KeyAt(position) != key) m_collection->Item(key);  // raises
    return position;
  }
  void Add(IDispatch* item, const std::string& key, Place place, std::int32_t position) override {
    const auto record = Unwrap<T>(item);
    if (place == Place::Before) {
      m_collection->InsertBefore(position, record, key);
    } else if (place == Place::After) {
      m_collection->InsertAfter(position, record, key);
    } else {
      m_collection->Add(record, key);
    }
  }
  void Remove(std::int32_t position) override { m_collection->Remove(position); }
  void Remove(const std::string& key) override { m_collection->Remove(std::string_view(key)); }

  bool View(const std::type_info& wanted, void* reference) const override {
    if (wanted != typeid(KeyedCollection<T>)) return false;
    *static_cast<std::shared_ptr<KeyedCollection<T>>*>(reference) = m_collection;
    return true;
  }
  const void* Identity() const override { return m_collection.get(); }

 private:
  static ComPtr<IDispatch> Object(const std::shared_ptr<T>& record) {
    ComPtr<IDispatch> object;
    *object.Put() = Wrap(record).Detach();
    return object;
  }

  std::shared_ptr<KeyedCollection<T>> m_collection;
};

}  // namespace

template <typename T>
ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<T>>& collection) {
  return Make<CollectionObject>(std::make_unique<ItemsOf<T>>(collection)).template As<IUnknown>();
}

template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::IDraftInfo>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::IManagerInfo>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::IPickable>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::IPositionInfo>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::IPrizeInfo>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::IPrizeTmplInfo>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::IPrizeTypeInfo>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::ISeasonInfo>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::ITeamInfo>>&);
template ComPtr<IUnknown> MakeObject(const std::shared_ptr<KeyedCollection<HLIData::IWinningInfo>>&);

}  // namespace HLDataSrvc::Com
