// The C interface: plain C types in and out, and no exception crosses it.
#include "tov/tov_c.h"

#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "c_api/answers.h"
#include "tov/TOVEngine.h"
#include "tov/entry_points.h"

struct tov_engine {
    TOVEngine engine;
};

namespace {

char* evaluate(tov_engine* engine, const char* kind, const char* input, bool inputIsPath) noexcept {
    return tov_c::answerForHost([&]() -> char* {
        if (engine == nullptr) {
            return tov_c::handOverToHost(tov_c::failureAnswer("No engine given (NULL)"));
        }
        if (kind == nullptr) {
            return tov_c::handOverToHost(tov_c::failureAnswer("No request kind given (NULL)"));
        }
        if (input == nullptr) {
            return tov_c::handOverToHost(
                tov_c::failureAnswer(inputIsPath ? "No request file path given (NULL)"
                                                 : "No request text given (NULL)"));
        }
        // The answer is copied out before a load is published: a host told
        // that memory ran out is never served from the document it loaded.
        char* answer = nullptr;
        engine->engine.evaluateAndHandOn(kind, input, inputIsPath, [&](const TOVResponse& given) {
            answer = tov_c::handOverToHost(given.turnResponseIntoASingleString());
        });
        return answer;
    });
}

}  // namespace

tov_engine* tov_engine_new(void) {
    try {
        return std::make_unique<tov_engine>().release();
    } catch (...) {
        return nullptr;
    }
}

void tov_engine_free(tov_engine* engine) {
    delete engine;
}

char* tov_evaluate(tov_engine* engine, const char* kind, const char* json_text) {
    return evaluate(engine, kind, json_text, false);
}

char* tov_evaluate_file(tov_engine* engine, const char* kind, const char* path) {
    return evaluate(engine, kind, path, true);
}

void tov_string_free(char* text) {
    std::free(text);
}

int tov_set_log(tov_engine* engine, const char* where) {
    if (engine == nullptr || where == nullptr) {
        return TOV_LOG_NULL_ARGUMENT;
    }
    try {
        std::string unused;  // the status code tells the host enough
        return engine->engine.setLog(where, unused) ? TOV_LOG_OK : TOV_LOG_UNUSABLE_FOLDER;
    } catch (...) {
        return TOV_LOG_OUT_OF_MEMORY;
    }
}

const char* tov_version(void) {
    try {
        static const std::string version = GetTOVVersion();
        return version.c_str();
    } catch (...) {
        return "";  // only if the first call ran out of memory; a later one tries again
    }
}
