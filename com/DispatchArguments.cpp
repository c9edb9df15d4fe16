#include "com/DispatchArguments.h"

#include <cstddef>
#include <string>

#include <ole2.h>

#include "com/Errors.h"

namespace HLDataSrvc::Com {

DispatchArguments::DispatchArguments(const DISPPARAMS& given, const FUNCDESC& member, UINT& badArgument)
    : m_parameters(given), m_arguments(given.rgvarg, given.rgvarg + given.cArgs) {
  m_standIns.reserve(m_arguments.size());
  m_parameters.rgvarg = m_arguments.data();
  const auto parameterCount = static_cast<UINT>(member.cParams < 0 ? 0 : member.cParams);
  CheckCount(given, member, parameterCount);
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

void DispatchArguments::CheckCount(const DISPPARAMS& given, const FUNCDESC& member, UINT parameterCount) {
  UINT needed = 0;
  UINT most = 0;
  for (UINT i = 0; i < parameterCount; ++i) {
    constexpr USHORT kNotGiven = PARAMFLAG_FRETVAL | PARAMFLAG_FLCID;
    constexpr USHORT kNotAsked = kNotGiven | PARAMFLAG_FOPT;
    if (!(member.lprgelemdescParam[i].paramdesc.wParamFlags & kNotGiven)) ++most;
    if (member.lprgelemdescParam[i].paramdesc.wParamFlags & kNotAsked) continue;
    needed = i + 1;
    if (i >= given.cArgs) continue;
    const VARIANT& argument = given.rgvarg[given.cArgs - 1 - i];
    if (V_VT(&argument) == VT_ERROR && V_ERROR(&argument) == DISP_E_PARAMNOTFOUND && given.cNamedArgs == 0)
      throw ComError(DISP_E_PARAMNOTOPTIONAL, "An argument of the call is left out that the member needs.");
  }
  if (given.cArgs < needed) throw ComError(DISP_E_BADPARAMCOUNT, "The call has too few arguments.");
  // Those behind a property's own are for the default member of the object that it gives.
  if (given.cArgs > most && member.invkind == INVOKE_FUNC)
    throw ComError(DISP_E_BADPARAMCOUNT, "The call has too many arguments.");
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
  if (referred != VT_EMPTY && !isVariable && (V_VT(&argument) & VT_BYREF))
    throw ComError(DISP_E_TYPEMISMATCH, "A variable of the call is of another type than the member fills.");

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
