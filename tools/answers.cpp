#include "answers.h"

#include <unistd.h>

#include <iostream>
#include <streambuf>

namespace tovcli {

namespace {

std::FILE* answers = nullptr;

// std::cout over a C stream, so that both kinds of write share one buffer.
class FileStreamBuffer : public std::streambuf {
public:
    explicit FileStreamBuffer(std::FILE* file) : file(file) {}

protected:
    int_type overflow(int_type character) override {
        if (traits_type::eq_int_type(character, traits_type::eof())) {
            return traits_type::not_eof(character);
        }
        return std::fputc(character, file) == EOF ? traits_type::eof() : character;
    }
    std::streamsize xsputn(const char* text, std::streamsize count) override {
        return static_cast<std::streamsize>(
            std::fwrite(text, 1, static_cast<std::size_t>(count), file));
    }
    int sync() override { return std::fflush(file) == 0 ? 0 : -1; }

private:
    std::FILE* file;
};

}  // namespace

bool separateAnswersFromLibraryOutput() {
    std::fflush(stdout);
    const int kept = ::dup(STDOUT_FILENO);
    if (kept < 0) {
        return false;
    }
    std::FILE* stream = ::fdopen(kept, "w");
    if (stream == nullptr || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        if (stream != nullptr) {
            std::fclose(stream);
        } else {
            ::close(kept);
        }
        return false;
    }
    answers = stream;
    // Lines of the library's log then reach standard error in the order in
    // which they were printed among the program's own messages.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    static FileStreamBuffer buffer(answers);
    std::cout.rdbuf(&buffer);
    return true;
}

std::FILE* answerStream() {
    return answers == nullptr ? stdout : answers;
}

}  // namespace tovcli
