#pragma once

/// What the system's registry knows of the library: its classes and its type library.
namespace HLDataSrvc::Com {

/// For whom the library is registered. Everybody takes an administrator.
enum class RegisteredFor { Everybody, User };

/// Registers every class and the type library. Raises ComError; what was registered by then is undone.
void Register(RegisteredFor whom);
/// Removes the entries that Register wrote, except those that the server for programs of the other bitness
/// shares while that one is registered. Missing entries are no error. Raises ComError if an entry cannot be
/// removed.
void Unregister(RegisteredFor whom);

}  // namespace HLDataSrvc::Com
