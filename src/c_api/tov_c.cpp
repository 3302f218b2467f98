// The C interface: plain C types in and out, and no exception crosses it.
#include "tov/tov_c.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "c_api/answers.h"
#include "tov/TOVDecisionTrace.h"
#include "tov/TOVEngine.h"
#include "tov/entry_points.h"

struct tov_engine {
    TOVEngine engine;
};

namespace {

// `trace`, when not null, receives the decision trace of the call as JSON.
char* evaluate(tov_engine* engine, const char* kind, const char* input, bool inputIsPath,
               char** trace) noexcept {
    if (trace != nullptr) {
        *trace = nullptr;
    }
    char* answer = tov_c::answerForHost([&]() -> char* {
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
        TOVDecisionTrace steps;
        // The answer is copied out before a load is published: a host told
        // that memory ran out is never served from the document it loaded.
        // The trace is made before it too, so that both come or neither.
        char* given = nullptr;
        engine->engine.evaluateAndHandOn(
            kind, input, inputIsPath,
            [&](const TOVResponse& response) {
                std::unique_ptr<char, void (*)(char*)> stepsText(
                    trace == nullptr
                        ? nullptr
                        : tov_c::handOverToHost(ComposeTOVDecisionTraceJson(steps.steps())),
                    tov_string_free);
                given = tov_c::handOverToHost(response.turnResponseIntoASingleString());
                if (trace != nullptr) {
                    *trace = stepsText.release();
                }
            },
            trace == nullptr ? nullptr : &steps);
        return given;
    });
    return answer;
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
    return evaluate(engine, kind, json_text, false, nullptr);
}

char* tov_evaluate_file(tov_engine* engine, const char* kind, const char* path) {
    return evaluate(engine, kind, path, true, nullptr);
}

char* tov_evaluate_traced(tov_engine* engine, const char* kind, const char* json_text,
                          char** trace) {
    char* answer = evaluate(engine, kind, json_text, false, trace);
    if (trace != nullptr && *trace == nullptr && answer != nullptr &&
        std::strcmp(answer, tov_c::kOutOfMemoryAnswer) != 0) {
        // A refusal before any judging (a NULL argument) judged no rule.
        *trace = tov_c::copyForHost("[]", 2);
        if (*trace == nullptr) {
            tov_string_free(answer);
            return tov_c::copyForHost(tov_c::kOutOfMemoryAnswer,
                                      std::strlen(tov_c::kOutOfMemoryAnswer));
        }
    }
    return answer;
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
