#ifndef TOV_EVALUATORS_TOVCONFLICTSRESOLUTIONOPTIONSFINDERPARSER_H_
#define TOV_EVALUATORS_TOVCONFLICTSRESOLUTIONOPTIONSFINDERPARSER_H_

#include <string>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "tov/vocabulary.h"

class TOVConflictsResolutionOptionsFinder;

// The top parser of an options query: runs the four sections in a fixed order
// and joins their errors.
class TOVConflictsResolutionOptionsFinderParser : public TOVJsonParser {
public:
    explicit TOVConflictsResolutionOptionsFinderParser(TOVConflictsResolutionOptionsFinder* finder);
    ~TOVConflictsResolutionOptionsFinderParser() override;

    // Loads the query from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // All four sections run, whatever happened to those before. The upload flag
    // comes last, since it adds to the target attributes that replace the map.
    bool parseAllSections();

private:
    TOVConflictsResolutionOptionsFinder* finder;
    tovjson::Document document;
};

// Reads the necessary "objectType" string.
class TOVVersionerObjectTypeJsonParser : public TOVJsonParser {
public:
    ~TOVVersionerObjectTypeJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVConflictsResolutionOptionsFinder* finder);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the necessary "initialAttributes" packet.
class TOVVersionerInitialAttributesParser : public TOVJsonParser {
public:
    ~TOVVersionerInitialAttributesParser() override;

    bool parseSection(tovjson::Value& root, TOVConflictsResolutionOptionsFinder* finder);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the necessary "targetAttributes" packet.
class TOVVersionerTargetAttributesParser : public TOVJsonParser {
public:
    ~TOVVersionerTargetAttributesParser() override;

    bool parseSection(tovjson::Value& root, TOVConflictsResolutionOptionsFinder* finder);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the optional "uploadsRepresentationFile" bool into "_file_upload_" of
// the target attributes; anything but a bool counts as absent.
class TOVUploadsReprFileParser : public TOVJsonParser {
public:
    ~TOVUploadsReprFileParser() override;

    bool parseSection(tovjson::Value& root, TOVConflictsResolutionOptionsFinder* finder);

protected:
    std::string getRuleName() override;
};

#endif  // TOV_EVALUATORS_TOVCONFLICTSRESOLUTIONOPTIONSFINDERPARSER_H_
