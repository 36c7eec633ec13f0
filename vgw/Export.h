// The export mark of libVgwStatemart.
#ifndef VGW_EXPORT_H
#define VGW_EXPORT_H

#define VGW_EXPORT __attribute__((visibility("default")))

#endif
