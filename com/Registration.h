#pragma once

/// What the system's registry knows of the library: its classes and its type library.
namespace HLDataSrvc::Com {

/// For whom the library is registered. Everybody takes an administrator.
enum class RegisteredFor { Everybody, User };

/// Registers every class and the type library. Raises ComError; what was registered by then is undone.
void Register(RegisteredFor whom);
/// Takes out all that Register put in; what is not there is no error. Raises ComError when an entry is there
/// and cannot be taken out.
void Unregister(RegisteredFor whom);

}  // namespace HLDataSrvc::Com
