// Where the program's answers go. The library prints its console log and its
// notices on file descriptor 1; so that they can never mix with the answers,
// the program keeps its own copy of standard output for the answers and points
// descriptor 1 at standard error.
#ifndef TOV_TOOLS_ANSWERS_H_
#define TOV_TOOLS_ANSWERS_H_

#include <cstdio>

namespace tovcli {

// Done once, before any command runs: afterwards std::cout and answerStream()
// write to the original standard output, and the C stdout to standard error.
// False when the descriptors could not be rearranged; everything then stays
// on standard output as it was.
bool separateAnswersFromLibraryOutput();

// The stream that carries the answers: the original standard output.
std::FILE* answerStream();

}  // namespace tovcli

#endif  // TOV_TOOLS_ANSWERS_H_
