#ifndef TOV_EVALUATORS_TOVCONFLICTSRESOLUTIONOPTIONSFINDERPARSER_H_
#define TOV_EVALUATORS_TOVCONFLICTSRESOLUTIONOPTIONSFINDERPARSER_H_

#include <string>
#include <utility>
#include <vector>

#include "evaluators/request_records.h"
#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "tov/vocabulary.h"

// The top parser of an options query: runs the four sections in a fixed order
// into its record and joins their errors.
class TOVConflictsResolutionOptionsFinderParser : public TOVJsonParser {
public:
    TOVConflictsResolutionOptionsFinderParser();
    ~TOVConflictsResolutionOptionsFinderParser() override;

    // Loads the query from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // All four sections run, whatever happened to those before.
    bool parseAllSections();

    // The query as read; a section that gave up leaves its part empty.
    const OptionsQuery& getQuery() const { return query; }
    OptionsQuery takeQuery() { return std::move(query); }

private:
    tovjson::Document document;
    OptionsQuery query;
};

// Reads the necessary "objectType" string.
class TOVVersionerObjectTypeJsonParser : public TOVJsonParser {
public:
    ~TOVVersionerObjectTypeJsonParser() override;

    bool parseSection(tovjson::Value& root, OptionsQuery& query);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the necessary "initialAttributes" packet.
class TOVVersionerInitialAttributesParser : public TOVJsonParser {
public:
    ~TOVVersionerInitialAttributesParser() override;

    bool parseSection(tovjson::Value& root, OptionsQuery& query);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the necessary "targetAttributes" packet.
class TOVVersionerTargetAttributesParser : public TOVJsonParser {
public:
    ~TOVVersionerTargetAttributesParser() override;

    bool parseSection(tovjson::Value& root, OptionsQuery& query);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the optional "uploadsRepresentationFile" bool; anything but a bool
// counts as absent.
class TOVUploadsReprFileParser : public TOVJsonParser {
public:
    ~TOVUploadsReprFileParser() override;

    bool parseSection(tovjson::Value& root, OptionsQuery& query);

protected:
    std::string getRuleName() override;
};

#endif  // TOV_EVALUATORS_TOVCONFLICTSRESOLUTIONOPTIONSFINDERPARSER_H_
