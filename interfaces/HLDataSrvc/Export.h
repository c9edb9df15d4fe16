#pragma once

/// Marks what the shared library offers. HLDATASRVC_BUILD is defined while the library's own sources are
/// compiled, HLDATASRVC_STATIC where they are linked into a program directly.
#if defined(__ELF__)
#define HLDATASRVC_API [[gnu::visibility("default")]]
#elif defined(HLDATASRVC_STATIC)
#define HLDATASRVC_API
#elif defined(HLDATASRVC_BUILD)
#define HLDATASRVC_API __declspec(dllexport)
#else
#define HLDATASRVC_API __declspec(dllimport)
#endif
