#include "evaluators/TOVConflictsResolutionOptionsFinderParser.h"

#include <utility>

TOVConflictsResolutionOptionsFinderParser::TOVConflictsResolutionOptionsFinderParser() = default;

TOVConflictsResolutionOptionsFinderParser::~TOVConflictsResolutionOptionsFinderParser() = default;

bool TOVConflictsResolutionOptionsFinderParser::load(const std::string& input,
                                                     bool inputIsFilePath) {
    return fillJsonDocumentFromInput(input, inputIsFilePath, document);
}

bool TOVConflictsResolutionOptionsFinderParser::parseAllSections() {
    return runSectionParsers<TOVVersionerObjectTypeJsonParser, TOVVersionerInitialAttributesParser,
                             TOVVersionerTargetAttributesParser, TOVUploadsReprFileParser>(document,
                                                                                           query);
}

TOVVersionerObjectTypeJsonParser::~TOVVersionerObjectTypeJsonParser() = default;

std::string TOVVersionerObjectTypeJsonParser::getRuleName() {
    return "Object Type";
}

void TOVVersionerObjectTypeJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(TOVTransitionJson_ObjectType);
}

bool TOVVersionerObjectTypeJsonParser::parseSection(tovjson::Value& root, OptionsQuery& query) {
    std::string objectType;
    if (!readNecessaryStringSection(root, TOVTransitionJson_ObjectType, objectType)) {
        return false;
    }
    query.objectType = std::move(objectType);
    return true;
}

TOVVersionerInitialAttributesParser::~TOVVersionerInitialAttributesParser() = default;

std::string TOVVersionerInitialAttributesParser::getRuleName() {
    return "Initial Attributes";
}

void TOVVersionerInitialAttributesParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(TOVTransitionJson_InitialAttributes);
}

bool TOVVersionerInitialAttributesParser::parseSection(tovjson::Value& root, OptionsQuery& query) {
    AttributesMap attributes;
    if (!readNecessaryAttributesSection(root, TOVTransitionJson_InitialAttributes, attributes)) {
        return false;
    }
    query.initialAttributes = std::move(attributes);
    return true;
}

TOVVersionerTargetAttributesParser::~TOVVersionerTargetAttributesParser() = default;

std::string TOVVersionerTargetAttributesParser::getRuleName() {
    return "Target Attributes";
}

void TOVVersionerTargetAttributesParser::getAllNecessaryKeywords(
    std::vector<std::string>& keywords) {
    keywords.emplace_back(TOVTransitionJson_TargetAttributes);
}

bool TOVVersionerTargetAttributesParser::parseSection(tovjson::Value& root, OptionsQuery& query) {
    AttributesMap attributes;
    if (!readNecessaryAttributesSection(root, TOVTransitionJson_TargetAttributes, attributes)) {
        return false;
    }
    query.targetAttributes = std::move(attributes);
    return true;
}

TOVUploadsReprFileParser::~TOVUploadsReprFileParser() = default;

std::string TOVUploadsReprFileParser::getRuleName() {
    return "Uploads Representation File";
}

bool TOVUploadsReprFileParser::parseSection(tovjson::Value& root, OptionsQuery& query) {
    tovjson::Value section;
    // Without the flag the rules read the file update as not applicable.
    if (!getJsonBoolSection(root, TOVConflictJson_UploadsRepresentationFile, section)) {
        return true;
    }
    bool uploads = false;
    collectBoolFromValue(section, uploads);
    query.uploadsRepresentationFile = uploads;
    return true;
}
