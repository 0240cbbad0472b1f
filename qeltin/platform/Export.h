#pragma once

// QELTIN_API marks what libqeltin.so shows to hosts. The library is compiled with hidden
// visibility, so a class or function without the mark cannot be reached from outside. Inline
// members stay hidden also in marked classes: every host compiles its own.

#if defined(__GNUC__) || defined(__clang__)
#define QELTIN_API __attribute__((visibility("default")))
#else
#define QELTIN_API
#endif
