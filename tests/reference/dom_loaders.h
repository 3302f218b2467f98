// The readers of the two documents as they were before documents were read
// as a stream: each document parsed whole into RapidJSON's tree, then read
// section by section. Kept only for the tests, as the reference that the
// streamed readers must answer alike (loader_differential_test.cpp); the
// code is the old code, moved into a namespace of its own.
#ifndef TOV_TESTS_REFERENCE_DOM_LOADERS_H_
#define TOV_TESTS_REFERENCE_DOM_LOADERS_H_

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "rules/rule_kinds.h"
#include "tov/TOV_DMAttribute.h"

class TOVLifecycleBusinessRules;
class TOV_DMStructure;

namespace tovreference {

// The frame of a rules section over the document's tree.
class ReferenceSectionBase : public TOVJsonParser {
protected:
    // The frame shared by the sections of the rules document: an object that
    // maps object types to lists of rule objects. `readRule(ruleObject,
    // objectType)` reads one rule, appends it to the store and may rewrite the
    // object type in place; it reports its own errors and returns false on one.
    // An absent section, or one that is not an object, is fine. The first error
    // ends the section. Before the first rule, `makeRoom(count)` hears how many
    // rule entries the section lists, so that the store can make room at once.
    template <typename ReadRule, typename MakeRoom>
    bool parseRulesSection(tovjson::Value& root, const char* sectionKeyword, ReadRule&& readRule,
                           MakeRoom&& makeRoom);

    // The same for a kind whose rules hold strings only: reads the values of
    // `keywords` in their order (see collectRuleKeywordsFromMap), turns an
    // object type "ALL" into "<any>" and hands both to
    // `appendRule(objectType, values)`; `makeRoom` as above.
    template <typename AppendRule, typename MakeRoom>
    bool parseStringRulesSection(tovjson::Value& root, const char* sectionKeyword,
                                 const std::vector<const char*>& keywords, AppendRule&& appendRule,
                                 MakeRoom&& makeRoom);
};

template <typename ReadRule, typename MakeRoom>
bool ReferenceSectionBase::parseRulesSection(tovjson::Value& root, const char* sectionKeyword,
                                             ReadRule&& readRule, MakeRoom&& makeRoom) {
    tovjson::Value section;
    if (!getJsonSection(root, sectionKeyword, section)) {
        return true;
    }
    std::size_t listed = 0;
    for (const auto& member : section.GetObject()) {
        listed += member.value.IsArray() ? member.value.Size() : 0;
    }
    makeRoom(listed);
    for (auto& member : section.GetObject()) {
        std::string objectType = getMemberName(member.name);
        if (!member.value.IsArray()) {
            return failWith(objectRulesNotAListError(objectType));
        }
        for (auto& ruleObject : member.value.GetArray()) {
            if (!ruleObject.IsObject()) {
                return failWith(objectListedRuleNotAMapError(objectType));
            }
            if (!readRule(ruleObject, objectType)) {
                return false;
            }
        }
    }
    return true;
}

template <typename AppendRule, typename MakeRoom>
bool ReferenceSectionBase::parseStringRulesSection(tovjson::Value& root, const char* sectionKeyword,
                                                   const std::vector<const char*>& keywords,
                                                   AppendRule&& appendRule, MakeRoom&& makeRoom) {
    return parseRulesSection(
        root, sectionKeyword,
        [&](tovjson::Value& ruleObject, std::string& objectType) {
            std::vector<std::string> values;
            if (!collectRuleKeywordsFromMap(ruleObject, objectType, keywords, values)) {
                return false;
            }
            changeAllToAny(objectType);
            appendRule(objectType, values);
            return true;
        },
        std::forward<MakeRoom>(makeRoom));
}

// What the eight section parsers of the rules document share: their kind,
// which decides the key of the section they read and the name that their
// messages give a rule.

template <TOVRuleKind Kind>
class RuleSectionParser : public ReferenceSectionBase {
public:
    static constexpr TOVRuleKind kKind = Kind;

    static constexpr const char* sectionKeyword() { return rulekinds::wordsOf(Kind).section; }

protected:
    std::string getRuleName() override { return rulekinds::wordsOf(Kind).ruleName; }
};

// Reads the "transitionsFreeze" section of the rules document into the store.
class TOVTransitionFreezeRulesJsonParser : public RuleSectionParser<TOVRuleKind_TransitionFreeze> {
public:
    ~TOVTransitionFreezeRulesJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store);

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the "transitions" section of the rules document into the store.
class TOVTransitionRulesJsonParser : public RuleSectionParser<TOVRuleKind_Transition> {
public:
    ~TOVTransitionRulesJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store);

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the "fileConstraints" section of the rules document into the store.
class TOVFileConstraintsRulesJsonParser : public RuleSectionParser<TOVRuleKind_FileConstraint> {
public:
    ~TOVFileConstraintsRulesJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store);

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the "triggers" section of the rules document into the store.
class TOVTriggersRulesJsonParser : public RuleSectionParser<TOVRuleKind_Trigger> {
public:
    ~TOVTriggersRulesJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store);

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the "conflictResolutions" section of the rules document into the store.
class TOVConflictResolutionRulesJsonParser
    : public RuleSectionParser<TOVRuleKind_ConflictResolution> {
public:
    ~TOVConflictResolutionRulesJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store);

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the "versioningSelections" section of the rules document into the store.
class TOVVersioningSelectionRulesJsonParser
    : public RuleSectionParser<TOVRuleKind_VersioningSelection> {
public:
    ~TOVVersioningSelectionRulesJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store);

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads one rule object of either link section; shared by the two parsers.
template <typename Parser>
struct LinkRuleReader;

// Reads the "historyLinks" section of the rules document into the store.
class TOVHistoryLinkRulesJsonParser : public RuleSectionParser<TOVRuleKind_HistoryLink> {
    friend struct LinkRuleReader<TOVHistoryLinkRulesJsonParser>;

public:
    ~TOVHistoryLinkRulesJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store);

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Reads the "manualLinks" section of the rules document into the store.
class TOVManualLinkRulesJsonParser : public RuleSectionParser<TOVRuleKind_ManualLink> {
    friend struct LinkRuleReader<TOVManualLinkRulesJsonParser>;

public:
    ~TOVManualLinkRulesJsonParser() override;

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store);

protected:
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// The top parser of the rules document: runs the eight section parsers and
// joins their errors.
class TOVInitializationJsonParser : public TOVJsonParser {
public:
    // Each section's key and what its parser said, for a section that failed.
    using SectionFaults = std::vector<std::pair<std::string, std::string>>;

    explicit TOVInitializationJsonParser(TOVLifecycleBusinessRules* store);
    ~TOVInitializationJsonParser() override;

    // Loads the document from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Every section runs, whatever happened to those before, so one response
    // tells the first error of each.
    bool parseAllSections();

    // The comment of each section that failed, in the order of the comment,
    // with the section's key: so that a tool can tell where a fault lies
    // without reading the message.
    const SectionFaults& getSectionFaults() const { return sectionFaults; }

private:
    // Runs the section parsers, which must come in the table's reading order.
    template <typename... SectionParsers>
    bool parseSections();

    TOVLifecycleBusinessRules* store;
    tovjson::Document document;
    SectionFaults sectionFaults;
};

// The top parser of the data-model document.
class TOV_DMInfoJsonParser : public TOVJsonParser {
public:
    // A section's key and what was said about it; the key is empty for a
    // fault of the document as a whole, such as a missing member.
    using SectionFaults = std::vector<std::pair<std::string, std::string>>;

    explicit TOV_DMInfoJsonParser(TOV_DMStructure* structure);
    ~TOV_DMInfoJsonParser() override;

    // Loads the document from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Both root members, the label even when the list failed, so that one
    // answer tells both.
    bool parseAllSections();
    bool parseStructureObjects();
    bool parseOverwriteLabel();

    // Each message of the comment with the section it concerns, in the order
    // of the comment: so that a tool can tell where a fault lies without
    // reading the message.
    const SectionFaults& getSectionFaults() const { return sectionFaults; }

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;

private:
    // failWith, keeping the message as the document's.
    bool failForDocument(const std::string& message);

    TOV_DMStructure* structure;
    tovjson::Document document;
    SectionFaults sectionFaults;
};

// Reads the elements of "structureObjects"; one instance serves the whole list.
class TOV_DMStructureObjectJsonParser : public TOVJsonParser {
public:
    TOV_DMStructureObjectJsonParser();
    ~TOV_DMStructureObjectJsonParser() override;

    bool parseStructureObject(const tovjson::Value& element, int index, TOV_DMStructure* structure);
    // `localName` is the name read so far in this element, the owner in the
    // attributes' messages.
    bool parseAttributes(const tovjson::Value& value, const std::string& localName,
                         std::vector<TOV_DMAttribute>& attributes);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;

private:
    // The last name read; kept from one element to the next.
    std::string objectName;
};

// Reads one element of an object's "attributes".
class TOV_DMAttributeJsonParser : public TOVJsonParser {
public:
    ~TOV_DMAttributeJsonParser() override;

    bool parseAttribute(const tovjson::Value& element, const std::string& objectName,
                        std::vector<TOV_DMAttribute>& attributes);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

}  // namespace tovreference

#endif  // TOV_TESTS_REFERENCE_DOM_LOADERS_H_
