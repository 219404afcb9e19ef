/** @file
 * Export control for the public C interface of liborloHKGeocoder.
 *
 * Everything in the library is compiled with hidden visibility; only the
 * declarations marked ORLO_API are part of the shared library's interface. */
#ifndef ORLO_API_H
#define ORLO_API_H

/** Marks a declaration as exported from liborloHKGeocoder (default
 * visibility with GCC and clang; empty elsewhere). */
#if defined(__GNUC__) || defined(__clang__)
#define ORLO_API __attribute__((visibility("default")))
#else
#define ORLO_API
#endif

#endif /* ORLO_API_H */
