// Marks the declarations that the shared library exports. Everything else in
// libtov.so is hidden, so hosts can only reach what the public headers show.
#ifndef TOV_EXPORT_H_
#define TOV_EXPORT_H_

#if defined(_WIN32)
#define TOV_API
#else
#define TOV_API __attribute__((visibility("default")))
#endif

#endif  // TOV_EXPORT_H_
