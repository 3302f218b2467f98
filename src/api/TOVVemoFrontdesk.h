#ifndef TOV_API_TOVVEMOFRONTDESK_H_
#define TOV_API_TOVVEMOFRONTDESK_H_

#include <utility>

#include "tov/TOVFrontdesk.h"
#include "tov/TOVResponse.h"

// The one concrete front desk: serves its labelled input through a transaction
// and keeps the response.
class TOVVemoFrontdesk : public TOVFrontdesk {
public:
    explicit TOVVemoFrontdesk(TOVFunctionality functionality);
    ~TOVVemoFrontdesk();

    // Hands the labelled input over to the controller it serves it with,
    // unless no controller serves the functionality.
    void serveLabeledInput() override;

    // Points the front desk at the caller's core data without owning it.
    void borrowData(TOVCoreDataControllers* coreData);
    const TOVResponse& getResponse() const { return response; }
    // Moves the response out, for a caller that is done with the front desk.
    TOVResponse takeResponse() { return std::move(response); }
    // Logs the title followed by the response's single string in quotes.
    void printResponseToLog(const char* title, const TOVResponse& response);

private:
    TOVResponse response;
};

#endif  // TOV_API_TOVVEMOFRONTDESK_H_
