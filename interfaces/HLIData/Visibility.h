#pragma once

/// Marks a type whose run-time type information has to be the same on both sides of the library's edge: one
/// that is caught as an exception or cast between its interfaces. Needed where the linker hides symbols by
/// default.
#ifdef __ELF__
#define HLIDATA_TYPE [[gnu::visibility("default")]]
#else
#define HLIDATA_TYPE
#endif
