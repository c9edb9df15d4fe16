#include "com/DispatchArguments.h"

#include <cstddef>
#include <string>

#include <oleauto.h>

#include "com/Errors.h"

namespace HLDataSrvc::Com {

DispatchArguments::DispatchArguments(const DISPPARAMS& given, const FUNCDESC& member, UINT& badArgument)
    : m_parameters(given), m_arguments(given.rgvarg, given.rgvarg + given.cArgs) {
  m_standIns.reserve(m_arguments.size());
  m_parameters.rgvarg = m_arguments.data();
  const auto parameterCount = static_cast<UINT>(member.cParams < 0 ? 0 : member.cParams);
  try {
    // Named arguments come first; the others stand in reverse order behind them.
    for (UINT i = 0; i < given.cArgs; ++i) {
      UINT position = given.cArgs - 1 - i;
      if (i < given.cNamedArgs && given.rgdispidNamedArgs[i] >= 0)
        position = static_cast<UINT>(given.rgdispidNamedArgs[i]);
      badArgument = i;
      Prepare(m_arguments[i], position < parameterCount
                                  ? ReferredType(member.lprgelemdescParam[position].tdesc)
                                  : static_cast<VARTYPE>(VT_EMPTY));
    }
  } catch (...) {
    for (StandIn& standIn : m_standIns)
      VariantClear(&standIn.value);
    throw;
  }
}

DispatchArguments::~DispatchArguments() {
  for (StandIn& standIn : m_standIns)
    VariantClear(&standIn.value);
}

VARTYPE DispatchArguments::ReferredType(const TYPEDESC& type) {
  if (type.vt != VT_PTR) return VT_EMPTY;
  switch (type.lptdesc->vt) {
    case VT_I4:
    case VT_BOOL:
    case VT_BSTR:
      return type.lptdesc->vt;
    case VT_PTR:
      return VT_DISPATCH;
    default:
      return VT_EMPTY;
  }
}

void DispatchArguments::Prepare(VARIANT& argument, VARTYPE referred) {
  const bool isVariable = V_VT(&argument) == (VT_BYREF | VT_VARIANT);
  if (referred == VT_EMPTY ? !isVariable : V_VT(&argument) == (VT_BYREF | referred)) return;

  StandIn& standIn = m_standIns.emplace_back();
  VariantInit(&standIn.value);
  standIn.variable = isVariable ? V_VARIANTREF(&argument) : nullptr;
  HRESULT result = VariantCopyInd(&standIn.value, &argument);
  if (SUCCEEDED(result) && referred != VT_EMPTY) {
    const VARTYPE type = V_VT(&standIn.value);
    if (referred == VT_DISPATCH && (type == VT_EMPTY || type == VT_NULL)) {
      V_VT(&standIn.value) = VT_DISPATCH;
      V_DISPATCH(&standIn.value) = nullptr;
    } else {
      result = VariantChangeType(&standIn.value, &standIn.value, 0, referred);
    }
  }
  if (FAILED(result))
    throw ComError(result, "An argument of the call is of another type than the member takes.");
  if (referred == VT_EMPTY) {
    standIn.variable = nullptr;
    argument = standIn.value;  // borrowed for the call: the stand-in owns it
    return;
  }
  V_VT(&argument) = static_cast<VARTYPE>(VT_BYREF | referred);
  V_BYREF(&argument) = &V_NONE(&standIn.value);
}

void DispatchArguments::CopyBack() {
  for (StandIn& standIn : m_standIns) {
    if (standIn.variable) VariantCopy(standIn.variable, &standIn.value);
  }
}

}  // namespace HLDataSrvc::Com
