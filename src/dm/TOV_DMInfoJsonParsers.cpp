#include "dm/TOV_DMInfoJsonParsers.h"

#include <cstddef>
#include <string>
#include <vector>

#include "json/document_walk.h"

#include "tov/TOV_DMStructure.h"
#include "tov/TOV_DMStructureObject.h"

namespace {

const char* const kStructureObjects = "structureObjects";
const char* const kOverwriteLabel = "OverwriteLabel";
const char* const kName = "name";
const char* const kDMObjectType = "dmObjectType";
const char* const kAttributes = "attributes";
const char* const kType = "type";
const char* const kPrimary = "primary";

}  // namespace

// Walks the root's two members and the list's elements; every other member
// is read past.
class TOV_DMInfoJsonParser::Walker : public tovjson::DocumentWalker {
public:
    // An object of the list is read to the members of its attributes, and of
    // those only the type: three levels of containers.
    explicit Walker(TOV_DMInfoJsonParser& parser) : tovjson::DocumentWalker(3), parser(parser) {}

    tovjson::Step value(rapidjson::Type type) override {
        if (level == Level::kOutside) {
            level = type == rapidjson::kObjectType ? Level::kRoot : Level::kOutside;
            return level == Level::kRoot ? tovjson::Step::kEnter : tovjson::Step::kSkip;
        }
        if (level == Level::kList) {
            return element(type);
        }
        const Member member = pending;
        pending = Member::kOther;
        if (member == Member::kList) {
            parser.listFound = type == rapidjson::kArrayType;
            level = parser.listFound ? Level::kList : Level::kRoot;
            return parser.listFound ? tovjson::Step::kEnter : tovjson::Step::kSkip;
        }
        if (member == Member::kLabel) {
            parser.labelFound = type == rapidjson::kStringType;
            return parser.labelFound ? tovjson::Step::kCapture : tovjson::Step::kSkip;
        }
        return tovjson::Step::kSkip;
    }

    void key(const char* name, std::size_t length) override {
        if (level != Level::kRoot || parser.structure == nullptr) {
            return;
        }
        // The first member of each name counts, as a lookup by name finds it;
        // the whole name, so that one with a zero byte inside is no keyword.
        const std::string keyword(name, length);
        if (keyword == kStructureObjects && !listSeen) {
            listSeen = true;
            pending = Member::kList;
        } else if (keyword == kOverwriteLabel && !labelSeen) {
            labelSeen = true;
            pending = Member::kLabel;
        }
    }

    void leave() override { level = level == Level::kList ? Level::kRoot : Level::kOutside; }

    void captured(tovjson::Value& value) override {
        if (level == Level::kList) {
            read(value);
        } else {
            parser.label = value.GetString();  // up to the first zero byte, on purpose
        }
    }

private:
    enum class Level { kOutside, kRoot, kList };
    enum class Member { kOther, kList, kLabel };

    tovjson::Step element(rapidjson::Type type) {
        if (parser.listFailed) {
            return tovjson::Step::kSkip;
        }
        if (type == rapidjson::kObjectType) {
            return tovjson::Step::kCapture;
        }
        // Of an element that is no object the reader reads only the type.
        tovjson::Value standIn(type);
        read(standIn);
        return tovjson::Step::kSkip;
    }

    void read(const tovjson::Value& element) {
        if (parser.objectParser.parseStructureObject(element, index, parser.structure)) {
            ++index;
        } else {
            parser.listFailed = true;
        }
    }

    TOV_DMInfoJsonParser& parser;
    Level level = Level::kOutside;
    Member pending = Member::kOther;
    bool listSeen = false;
    bool labelSeen = false;
    int index = 0;
};

TOV_DMInfoJsonParser::TOV_DMInfoJsonParser(TOV_DMStructure* structure) : structure(structure) {}

TOV_DMInfoJsonParser::~TOV_DMInfoJsonParser() = default;

bool TOV_DMInfoJsonParser::load(const std::string& input, bool inputIsFilePath) {
    Walker walker(*this);
    return walkJsonInput(input, inputIsFilePath, walker);
}

bool TOV_DMInfoJsonParser::parseAllSections() {
    const bool objectsParsed = parseStructureObjects();
    return parseOverwriteLabel() && objectsParsed;
}

bool TOV_DMInfoJsonParser::parseStructureObjects() {
    if (structure == nullptr) {
        return false;
    }
    if (!listFound) {
        return failForDocument(notAllNecessaryKeywordsFoundParsingError(""));
    }
    if (listFailed) {
        const std::string comment = objectParser.getParsingErrorComment();
        if (!comment.empty()) {
            sectionFaults.emplace_back(kStructureObjects, comment);
        }
        appendToParsingErrorComment(comment.c_str());
        updateParsingResult(objectParser.getParsingResult());
        return false;
    }
    return true;
}

bool TOV_DMInfoJsonParser::parseOverwriteLabel() {
    if (structure == nullptr) {
        return false;
    }
    if (!labelFound) {
        return failForDocument(notAllNecessaryKeywordsFoundParsingError(""));
    }
    structure->setOverwriteLabel(label);
    return true;
}

bool TOV_DMInfoJsonParser::failForDocument(const std::string& message) {
    if (!message.empty()) {
        sectionFaults.emplace_back(std::string(), message);
    }
    return failWith(message);
}

std::string TOV_DMInfoJsonParser::getRuleName() {
    return "DM Structure Information";
}

void TOV_DMInfoJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kStructureObjects);
    keywords.emplace_back(kOverwriteLabel);
}

TOV_DMStructureObjectJsonParser::TOV_DMStructureObjectJsonParser() = default;

TOV_DMStructureObjectJsonParser::~TOV_DMStructureObjectJsonParser() = default;

bool TOV_DMStructureObjectJsonParser::parseStructureObject(const tovjson::Value& element, int index,
                                                           TOV_DMStructure* structure) {
    const std::string indexText = "index=" + std::to_string(index);
    if (!element.IsObject()) {
        return failWith(objectListedRuleNotAMapError(indexText));
    }
    std::string name;
    std::string categoryWord;
    std::vector<TOV_DMAttribute> attributes;
    for (const auto& member : element.GetObject()) {
        const std::string keyword = getMemberName(member.name);
        if (keyword == kName) {
            if (!collectStringFromValue(member.value, name)) {
                return failWith(attributeValueStringParsingError(indexText, kName));
            }
            objectName = name;
        } else if (keyword == kDMObjectType) {
            if (!collectStringFromValue(member.value, categoryWord)) {
                // Once a name is known the rule name tells the object.
                return failWith(attributeValueStringParsingError(
                    name.empty() ? indexText : std::string(), kDMObjectType));
            }
        } else if (keyword == kAttributes) {
            if (!parseAttributes(member.value, name, attributes)) {
                return false;
            }
        }
    }
    if (name.empty()) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(indexText));
    }
    if (categoryWord.empty() || attributes.empty()) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(""));
    }
    structure->appendDMStructureObject(TOV_DMStructureObject(name, categoryWord, attributes));
    return true;
}

bool TOV_DMStructureObjectJsonParser::parseAttributes(const tovjson::Value& value,
                                                      const std::string& localName,
                                                      std::vector<TOV_DMAttribute>& attributes) {
    TOV_DMAttributeJsonParser attributeParser;
    if (!value.IsArray()) {
        return failWith(jsonSectionNotAListError(kAttributes));
    }
    for (const tovjson::Value& element : value.GetArray()) {
        if (!attributeParser.parseAttribute(element, localName, attributes)) {
            appendToParsingErrorComment(attributeParser.getParsingErrorComment().c_str());
            updateParsingResult(attributeParser.getParsingResult());
            return false;
        }
    }
    return true;
}

std::string TOV_DMStructureObjectJsonParser::getRuleName() {
    if (objectName.empty()) {
        return "Structure object";
    }
    return "Structure object with name " + objectName + ":";
}

void TOV_DMStructureObjectJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kName);
    keywords.emplace_back(kDMObjectType);
    keywords.emplace_back(kAttributes);
}

TOV_DMAttributeJsonParser::~TOV_DMAttributeJsonParser() = default;

bool TOV_DMAttributeJsonParser::parseAttribute(const tovjson::Value& element,
                                               const std::string& objectName,
                                               std::vector<TOV_DMAttribute>& attributes) {
    if (!element.IsObject()) {
        return failWith(objectListedRuleNotAMapError(objectName));
    }
    std::string name;
    std::string typeWord;
    bool primary = false;
    bool primarySeen = false;
    for (const auto& member : element.GetObject()) {
        const std::string keyword = getMemberName(member.name);
        if (keyword == kName || keyword == kType) {
            std::string& target = keyword == kName ? name : typeWord;
            if (!collectStringFromValue(member.value, target)) {
                return failWith(attributeValueStringParsingError(objectName, keyword));
            }
        } else if (keyword == kPrimary) {
            primarySeen = true;
            if (!collectBoolFromValue(member.value, primary)) {
                return failWith(attributeValueBoolParsingError(objectName, kPrimary));
            }
        }
    }
    if (name.empty() || typeWord.empty() || !primarySeen) {
        return failWith(notAllNecessaryKeywordsFoundParsingError(objectName));
    }
    attributes.emplace_back(name, typeWord, primary);
    return true;
}

std::string TOV_DMAttributeJsonParser::getRuleName() {
    return "DM Attribute";
}

void TOV_DMAttributeJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kName);
    keywords.emplace_back(kType);
    keywords.emplace_back(kPrimary);
}
