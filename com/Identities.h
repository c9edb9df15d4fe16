#pragma once

#include "com/ComPtr.h"
#include "com/RecordAccess.h"

/// Which COM object stands for which record, so that a record always has the same object while anybody
/// holds that object. Borrows both: objects take themselves out when they go.
namespace HLDataSrvc::Com::Identities {

/// The object that stands for a record, found by the address of the whole record; empty when there is none.
ComPtr<IUnknown> Find(const void* record);

void Keep(const void* record, IRecordAccess* object);
/// Does nothing when the record has another object by now.
void Forget(const void* record, const IRecordAccess* object);

}  // namespace HLDataSrvc::Com::Identities
