#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

#include "HLIDataCom.h"
#include "com/ComObject.h"

namespace HLDataSrvc::Com {

/// A collection of the component under one face for all kinds of items.
class CollectionItems {
 public:
  enum class Place { AtEnd, Before, After };

  virtual ~CollectionItems() = default;

  virtual std::int32_t Count() const = 0;
  virtual ComPtr<IDispatch> Item(std::int32_t position) const = 0;
  virtual ComPtr<IDispatch> Item(const std::string& key) const = 0;
  /// The position of an item that has this key; raises what Item raises when there is none.
  virtual std::int32_t PositionOf(const std::string& key) const = 0;
  /// `position` counts unless the place is the end.
  virtual void Add(IDispatch* item, const std::string& key, Place place, std::int32_t position) = 0;
  virtual void Remove(std::int32_t position) = 0;
  virtual void Remove(const std::string& key) = 0;
  /// As IRecordAccess::View.
  virtual bool View(const std::type_info& wanted, void* reference) const = 0;
  /// The address by which the collection is known.
  virtual const void* Identity() const = 0;
};

/// The COM object of a collection: the component's own collection, not a copy.
class CollectionObject final : public ComObject<::IKeyedCollection> {
 public:
  explicit CollectionObject(std::unique_ptr<CollectionItems> items);
  ~CollectionObject() override;

  STDMETHODIMP get_Item(VARIANT keyOrPosition, IDispatch** value) noexcept override;
  STDMETHODIMP get_Count(LONG* value) noexcept override;
  /// Walks over the items as they stand now, so that a walk may change the collection.
  STDMETHODIMP get__NewEnum(IUnknown** value) noexcept override;
  STDMETHODIMP Add(IDispatch* item, VARIANT key, VARIANT before, VARIANT after) noexcept override;
  STDMETHODIMP Remove(VARIANT keyOrPosition) noexcept override;

  bool STDMETHODCALLTYPE View(const std::type_info& wanted, void* reference) override;

 private:
  using Selector = std::variant<std::int32_t, std::string>;

  /// A text is a key, a number a position. Raises a type mismatch for anything else.
  static Selector Selected(VARIANT keyOrPosition);
  std::int32_t PositionOf(VARIANT keyOrPosition) const;

  std::unique_ptr<CollectionItems> m_items;
};

}  // namespace HLDataSrvc::Com
