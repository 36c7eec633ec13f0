// The export macro of the sample description's classes.
#ifndef TESTS_MODELC_ACME_EXPORT_H
#define TESTS_MODELC_ACME_EXPORT_H

#define ACME_EXPORT __attribute__((visibility("default")))

#endif
