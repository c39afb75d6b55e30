#ifndef CORVANE_EXPORT_H
#define CORVANE_EXPORT_H

// Marks what leaves the library. CORVANE_BUILDING is defined only while libcorvane itself is compiled.
#if defined(_WIN32)
#if defined(CORVANE_BUILDING)
#define CORVANE_API __declspec(dllexport)
#else
#define CORVANE_API __declspec(dllimport)
#endif
#else
#define CORVANE_API __attribute__((visibility("default")))
#endif

#endif
