#pragma once

#include <cstdint>
#include <string>

#include "HLIData/IPickable.h"
#include "HLIDataCom.h"
#include "com/ComPtr.h"

namespace HLDataSrvc::Com {

/// An IPickable that a client implements, as the component sees it: every question goes to the client.
/// Raises ComError with the client's result when it fails to answer.
class ForeignPickable final : public HLIData::IPickable {
 public:
  explicit ForeignPickable(ComPtr<::IPickable> object) : m_object(std::move(object)) {}

  HLIData::PickType PickType() const override;
  std::string PickName() const override;
  std::int32_t PickID() const override;

  const ComPtr<::IPickable>& Object() const { return m_object; }

 private:
  ComPtr<::IPickable> m_object;
};

}  // namespace HLDataSrvc::Com
