// What each request says, as its parser reads it: plain records that the
// request parsers fill and the controllers take over through their setters,
// so that a parser needs no controller and can be tested without one.
#ifndef TOV_EVALUATORS_REQUEST_RECORDS_H_
#define TOV_EVALUATORS_REQUEST_RECORDS_H_

#include <optional>
#include <string>
#include <vector>

#include "tov/vocabulary.h"

// An edit or save attempt.
struct EditRequest {
    std::string objectType;
    AttributesMap initialAttributes;
    AttributesMap targetAttributes;
    // Empty when the request leaves the section out, which says nothing of
    // those objects; a list, even an empty one, says that these are all.
    // Each packet holds its server id under "ServerId".
    std::optional<std::vector<AttributesMap>> familyMembers;
    std::optional<std::vector<AttributesMap>> manualLinkAncestors;
};

// A manual link creation; a side that the request leaves out stays empty.
struct LinkCreationRequest {
    std::string ancestorType;
    AttributesMap ancestorAttributes;
    std::string descendantType;
    AttributesMap descendantAttributes;
};

// A query for the proper conflict resolutions.
struct OptionsQuery {
    std::string objectType;
    AttributesMap initialAttributes;
    AttributesMap targetAttributes;
    // Empty when the query leaves it out or gives no bool.
    std::optional<bool> uploadsRepresentationFile;
};

#endif  // TOV_EVALUATORS_REQUEST_RECORDS_H_
