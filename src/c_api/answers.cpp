#include "c_api/answers.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#include "tov/TOVResponse.h"

namespace tov_c {

const char* const kOutOfMemoryAnswer =
    R"({"Result":"Failure","ResultComment":"Out of memory: tov could not answer"})";

char* copyForHost(const char* text, std::size_t length) noexcept {
    auto* copy = static_cast<char*>(std::malloc(length + 1));
    if (copy != nullptr) {
        std::memcpy(copy, text, length);
        copy[length] = '\0';
    }
    return copy;
}

char* handOverToHost(const std::string& text) {
    char* copy = copyForHost(text.c_str(), text.size());
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
}

std::string failureAnswer(const std::string& comment) {
    TOVResponse response;
    response.setGeneralResult(false);
    response.setGeneralResultComment(comment.c_str());
    return response.turnResponseIntoASingleString();
}

char* answerForCurrentException() noexcept {
    try {
        try {
            throw;
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            return handOverToHost(
                failureAnswer(std::string("tov could not answer: ") + error.what()));
        } catch (...) {
            return handOverToHost(failureAnswer("tov could not answer: unknown error"));
        }
    } catch (...) {
        // Out of memory, or so short of it that the other answers could not be made.
        return copyForHost(kOutOfMemoryAnswer, std::strlen(kOutOfMemoryAnswer));
    }
}

}  // namespace tov_c
