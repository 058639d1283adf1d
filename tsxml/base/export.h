// TSXML_API marks the classes and functions that the shared library exports;
// everything else has hidden visibility.
#ifndef TSXML_BASE_EXPORT_H
#define TSXML_BASE_EXPORT_H

#if defined(TSXML_STATIC)
#define TSXML_API
#elif defined(_WIN32)
#if defined(TSXML_BUILDING)
#define TSXML_API __declspec(dllexport)
#else
#define TSXML_API __declspec(dllimport)
#endif
#else
#define TSXML_API __attribute__((visibility("default")))
#endif

#endif  // TSXML_BASE_EXPORT_H
