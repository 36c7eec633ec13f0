#ifndef KELP_EXPORT_H
#define KELP_EXPORT_H

// Marks what libKelp gives to its users; all else stays hidden inside it.
#define KELP_EXPORT __attribute__((visibility("default")))

#endif
