// The export mark of libqor: classes and functions that other libraries may use carry it; all else
// stays hidden inside the library (the build sets hidden visibility).
#ifndef QOR_CORE_EXPORT_H
#define QOR_CORE_EXPORT_H

#define QOR_EXPORT __attribute__((visibility("default")))

#endif
