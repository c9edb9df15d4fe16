#pragma once

#include <vector>

#include <oaidl.h>
#include <windows.h>

namespace HLDataSrvc::Com {

/// The arguments of a call by name, in the form that its member takes.
///
/// A script passes its variables by reference and untyped. Where the member takes a typed reference, a value
/// of that type stands in for the variable during the call, and CopyBack hands it back; elsewhere the
/// variable's value takes its place. A plain value is taken where a reference is wanted, and then what comes
/// back is lost; a typed reference to another type, which could not be handed anything back, is refused.
class DispatchArguments {
 public:
  /// Reads what it needs of `given` and `member` at once; `given` is borrowed and must outlive this. Raises
  /// ComError for an argument that cannot become what the member takes; `badArgument` is then its index.
  DispatchArguments(const DISPPARAMS& given, const FUNCDESC& member, UINT& badArgument);
  ~DispatchArguments();
  DispatchArguments(const DispatchArguments&) = delete;
  DispatchArguments& operator=(const DispatchArguments&) = delete;

  DISPPARAMS* Parameters() { return &m_parameters; }

  /// Puts what came back into the caller's variables.
  void CopyBack();

 private:
  struct StandIn {
    VARIANT value;
    VARIANT* variable;  // borrowed; null: not an output
  };

  /// Raises when an argument is missing that the member needs, or a method is given one too many.
  static void CheckCount(const DISPPARAMS& given, const FUNCDESC& member, UINT parameterCount);
  /// The type of value that a parameter refers to; VT_EMPTY for one that is not a typed reference.
  static VARTYPE ReferredType(const TYPEDESC& type);
  void Prepare(VARIANT& argument, VARTYPE referred);

  DISPPARAMS m_parameters;
  std::vector<VARIANT> m_arguments;
  std::vector<StandIn> m_standIns;  // never grows beyond its first capacity: arguments point into it
};

}  // namespace HLDataSrvc::Com
