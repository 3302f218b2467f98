#include "evaluators/TOVTransitionJsonParsers.h"

#include <cstring>
#include <utility>

#include "tov/attribute_packets.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace {

// Plain constants: initialised before any call, so concurrent first use is safe.
constexpr const char* kMembersOfFamily = "membersOfFamily";
constexpr const char* kManualLinkAncestors = "manualLinkAncestors";
// RapidJSON's own sizes: a pool chunk, and the first size of its parse stack.
constexpr std::size_t kPoolChunkBytes = std::size_t{64} * 1024;
constexpr std::size_t kParseStackBytes = 1024;

}  // namespace

// --- TOVTransitionJsonParser ---

TOVTransitionJsonParser::TOVTransitionJsonParser()
    : pool(poolBuffer.data(), kPoolBytes, kPoolChunkBytes, &heap),
      document(&pool, kParseStackBytes, &heap) {}

TOVTransitionJsonParser::~TOVTransitionJsonParser() = default;

bool TOVTransitionJsonParser::load(const std::string& input, bool inputIsFilePath) {
    if (inputIsFilePath) {
        return fillJsonDocumentFromInput(input, inputIsFilePath, document);
    }
    // Most of a parse is copying strings, a character at a time: parsed in
    // place, a copy of the text in the document's own pool holds them instead.
    auto* const text = static_cast<char*>(pool.Malloc(input.size() + 1));
    std::memcpy(text, input.c_str(), input.size() + 1);
    return fillJsonDocumentFromJsonTextInPlace(text, document);
}

bool TOVTransitionJsonParser::parseAllSections() {
    // The order of the sections is the order of their messages.
    return runSectionParsers<TOVMembersOfFamilyJsonParser, TOVManualLinkAncestorsJsonParser,
                             TOVEditorObjectTypeJsonParser, TOVInitialAttributesParser,
                             TOVTargetAttributesParser>(document, request);
}

// --- TOVManualOrHistoryLinkJsonParser ---

bool TOVManualOrHistoryLinkJsonParser::parseLinkedObjectsSection(
    tovjson::Value& root, const char* keyword, std::optional<std::vector<AttributesMap>>& linked) {
    tovjson::Value section;
    if (!getJsonSection(root, keyword, section)) {
        return true;
    }
    // An empty object is a statement too: the object has no such links.
    linked.emplace();
    for (const auto& member : section.GetObject()) {
        if (!parseMember(getMemberName(member.name), member.value, *linked)) {
            return false;
        }
    }
    return true;
}

bool TOVManualOrHistoryLinkJsonParser::parseMember(const std::string& serverId,
                                                   const tovjson::Value& member,
                                                   std::vector<AttributesMap>& linked) {
    if (!member.IsObject()) {
        return failWith(memberError(serverId, "Data should be a map"));
    }
    for (const auto& entry : member.GetObject()) {
        const std::string keyword = getMemberName(entry.name);
        if (keyword != TOVManualLinksJson_Attributes) {
            return failWith(
                memberError(serverId, "Unknown keyword " + createStringInQuotes(keyword.c_str())));
        }
        if (!entry.value.IsObject()) {
            return failWith(memberError(serverId, "Attributes should be a map."));
        }
        AttributesMap attributes;
        if (!collectKeyValuesPairsFromSection(entry.value, attributes)) {
            return failWith(errorParsingTheKeysValuesMapOfAttribute(
                std::string(TOVManualLinksJson_Attributes) + " of " + serverId));
        }
        // The id goes in last, so that it wins over an attribute of that name.
        setTOVServerIdIntoAttributesMap(serverId, attributes);
        linked.push_back(std::move(attributes));
    }
    return true;
}

std::string TOVManualOrHistoryLinkJsonParser::memberError(const std::string& serverId,
                                                          const std::string& detail) {
    return getRuleName() + "Member with server id" + createStringInQuotes(serverId.c_str()) + ":" +
           detail;
}

// --- TOVMembersOfFamilyJsonParser ---

TOVMembersOfFamilyJsonParser::~TOVMembersOfFamilyJsonParser() = default;

bool TOVMembersOfFamilyJsonParser::parseSection(tovjson::Value& root, EditRequest& request) {
    return parseLinkedObjectsSection(root, kMembersOfFamily, request.familyMembers);
}

std::string TOVMembersOfFamilyJsonParser::getRuleName() {
    return "Members of family";
}

void TOVMembersOfFamilyJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kMembersOfFamily);
}

// --- TOVManualLinkAncestorsJsonParser ---

TOVManualLinkAncestorsJsonParser::~TOVManualLinkAncestorsJsonParser() = default;

bool TOVManualLinkAncestorsJsonParser::parseSection(tovjson::Value& root, EditRequest& request) {
    return parseLinkedObjectsSection(root, kManualLinkAncestors, request.manualLinkAncestors);
}

std::string TOVManualLinkAncestorsJsonParser::getRuleName() {
    return "Manual Link Ancestors";
}

void TOVManualLinkAncestorsJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(kManualLinkAncestors);
}

// --- TOVEditorObjectTypeJsonParser ---

TOVEditorObjectTypeJsonParser::~TOVEditorObjectTypeJsonParser() = default;

bool TOVEditorObjectTypeJsonParser::parseSection(tovjson::Value& root, EditRequest& request) {
    std::string objectType;
    if (!readNecessaryStringSection(root, TOVTransitionJson_ObjectType, objectType)) {
        return false;
    }
    request.objectType = std::move(objectType);
    return true;
}

std::string TOVEditorObjectTypeJsonParser::getRuleName() {
    return "Object Type";
}

void TOVEditorObjectTypeJsonParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(TOVTransitionJson_ObjectType);
}

// --- TOVInitialAttributesParser ---

TOVInitialAttributesParser::~TOVInitialAttributesParser() = default;

bool TOVInitialAttributesParser::parseSection(tovjson::Value& root, EditRequest& request) {
    // A fresh map, dropped on failure, so that a half-read packet never lands.
    AttributesMap values;
    if (!readNecessaryAttributesSection(root, TOVTransitionJson_InitialAttributes, values)) {
        return false;
    }
    request.initialAttributes = std::move(values);
    return true;
}

std::string TOVInitialAttributesParser::getRuleName() {
    return "Initial Attributes";
}

void TOVInitialAttributesParser::getAllNecessaryKeywords(std::vector<std::string>& keywords) {
    keywords.emplace_back(TOVTransitionJson_InitialAttributes);
}

// --- TOVTargetAttributesParser ---

TOVTargetAttributesParser::~TOVTargetAttributesParser() = default;

bool TOVTargetAttributesParser::parseSection(tovjson::Value& root, EditRequest& request) {
    // When the section is missing the keyword error appends nothing: this
    // parser names no necessary keyword.
    AttributesMap values;
    if (!readNecessaryAttributesSection(root, TOVTransitionJson_TargetAttributes, values)) {
        return false;
    }
    request.targetAttributes = std::move(values);
    return true;
}

std::string TOVTargetAttributesParser::getRuleName() {
    return "Target Attributes";
}
