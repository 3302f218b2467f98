#ifndef TOV_EVALUATORS_TOVLINKCREATIONPARSER_H_
#define TOV_EVALUATORS_TOVLINKCREATIONPARSER_H_

#include <string>
#include <utility>
#include <vector>

#include "evaluators/request_records.h"
#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "tov/vocabulary.h"

// The top parser of a link creation request: runs the ancestor and the
// descendant section into its record and joins their errors.
class TOVLinkCreationParser : public TOVJsonParser {
public:
    TOVLinkCreationParser();
    ~TOVLinkCreationParser() override;

    // Loads the request from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Both sections always run, so one response tells the faults of both.
    bool parseAllSections();

    // The request as read; a side whose section gave up stays empty.
    const LinkCreationRequest& getRequest() const { return request; }
    LinkCreationRequest takeRequest() { return std::move(request); }

private:
    tovjson::Document document;
    LinkCreationRequest request;
};

// What the two sections share: an optional object that, once present, must
// hold a non-empty "objectType" and a non-empty "attributes" map.
class TOVLinkedObjectJsonParser : public TOVJsonParser {
protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;

    // True when the section is absent, or of another JSON type, or complete.
    // Reads into `type` and `attributes`, which the caller passes empty and
    // stores only on true, so a section that gives up stores nothing.
    bool readLinkedObject(tovjson::Value& root, const char* sectionKeyword, std::string& type,
                          AttributesMap& attributes);

private:
    // The rule name, ":", "Attributes should be a map."
    std::string attributesNotAMapError();
};

// Reads "ancestor" into the request.
class TOVAncestorJsonParser : public TOVLinkedObjectJsonParser {
public:
    ~TOVAncestorJsonParser() override;

    bool parseSection(tovjson::Value& root, LinkCreationRequest& request);

protected:
    std::string getRuleName() override;
};

// Reads "descendant" into the request.
class TOVDescendantJsonParser : public TOVLinkedObjectJsonParser {
public:
    ~TOVDescendantJsonParser() override;

    bool parseSection(tovjson::Value& root, LinkCreationRequest& request);

protected:
    std::string getRuleName() override;
};

#endif  // TOV_EVALUATORS_TOVLINKCREATIONPARSER_H_
