#pragma once

// KES_API marks the symbols that the shared library exports; all others stay hidden.
// KES_PRINTF lets the compiler check the arguments of a printf-like function.
#if defined(_WIN32)
#if defined(KES_BUILDING_LIBRARY)
#define KES_API __declspec(dllexport)
#else
#define KES_API __declspec(dllimport)
#endif
#define KES_PRINTF(text, first)
#else
#define KES_API __attribute__((visibility("default")))
#define KES_PRINTF(text, first) __attribute__((format(printf, text, first)))
#endif
