// How answers cross the C interface: as texts that the host frees with
// tov_string_free, and never as exceptions.
#ifndef TOV_C_API_ANSWERS_H_
#define TOV_C_API_ANSWERS_H_

#include <cstddef>
#include <string>

namespace tov_c {

// The answer when memory runs out, written out in full so that handing it
// over needs no more than one small allocation.
extern const char* const kOutOfMemoryAnswer;

// A copy in memory from malloc, which tov_string_free releases; null when
// that memory cannot be had.
char* copyForHost(const char* text, std::size_t length) noexcept;

// The same, throwing std::bad_alloc instead of giving null.
char* handOverToHost(const std::string& text);

// The single-string form of a failed response with this comment.
std::string failureAnswer(const std::string& comment);

// The answer for the exception in flight; call it only inside a catch block.
char* answerForCurrentException() noexcept;

// Runs `produce`, which returns an answer handed over to the host (see
// handOverToHost); any exception it throws becomes a failure answer instead,
// the out-of-memory answer when memory ran out.
template <typename Produce>
char* answerForHost(Produce&& produce) noexcept {
    try {
        return produce();
    } catch (...) {
        return answerForCurrentException();
    }
}

}  // namespace tov_c

#endif  // TOV_C_API_ANSWERS_H_
