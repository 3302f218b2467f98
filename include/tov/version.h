// The version of the library, for hosts that decide at compile time; at run
// time GetTOVVersion() tells the same.
#ifndef TOV_VERSION_H_
#define TOV_VERSION_H_

#define TOV_VERSION_MAJOR 1
#define TOV_VERSION_MINOR 1
#define TOV_VERSION_STRING "1.1"

#endif  // TOV_VERSION_H_
