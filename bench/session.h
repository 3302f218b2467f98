// A private core data that logs nowhere: how a host that wants no log keeps
// the library's state, and the state every measurement runs against.
#ifndef TOV_BENCH_SESSION_H_
#define TOV_BENCH_SESSION_H_

#include <string>

#include "tov/TOVCoreDataControllers.h"
#include "tov/TOVResponse.h"

namespace tovbench {

class Session {
public:
    Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    TOVCoreDataControllers* coreData() { return &data; }

    // Loads a rules document of the workload as text, and checks that the
    // store then holds its `ruleCount` rules; on failure `error` tells why.
    bool loadRules(const std::string& document, int ruleCount, std::string& error);
    bool loadDataModel(const std::string& document, std::string& error);
    // Empty when the store holds `ruleCount` rules over ruleCount / 20 object
    // types, as a rules document of the workload gives; otherwise what it holds.
    std::string unexpectedRules(int ruleCount);

private:
    TOVCoreDataControllers data;
};

// Empty when the response is `expected` in its single-string form, otherwise
// a sentence that tells both.
std::string unexpectedAnswer(const TOVResponse& response, const char* expected);

}  // namespace tovbench

#endif  // TOV_BENCH_SESSION_H_
