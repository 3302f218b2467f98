// Parsers of the edit request: one top parser for the document and one parser
// per section, each filling the TOVEditController that it is given.
#ifndef TOV_EVALUATORS_TOVTRANSITIONJSONPARSERS_H_
#define TOV_EVALUATORS_TOVTRANSITIONJSONPARSERS_H_

#include <string>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"

class TOVEditController;

// Owns the request document and runs the five section parsers over it.
class TOVTransitionJsonParser : public TOVJsonParser {
public:
    explicit TOVTransitionJsonParser(TOVEditController* controller);
    ~TOVTransitionJsonParser() override;

    // Loads the document from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Every section runs even after a failure, so that one response tells
    // all the faults of a request, joined in the order of the sections.
    bool parseAllSections();

private:
    TOVEditController* controller;
    tovjson::Document document;
};

// What "membersOfFamily" and "manualLinkAncestors" share: a map from server id
// to a member object whose only key is "attributes".
class TOVManualOrHistoryLinkJsonParser : public TOVJsonParser {
protected:
    enum class LinkedObjects { kFamilyMembers, kManualLinkAncestors };

    // An absent section, or one of another JSON type, is no error and leaves
    // the provided flag alone; an object, even an empty one, sets it.
    bool parseLinkedObjectsSection(tovjson::Value& root, const char* keyword, LinkedObjects kind,
                                   TOVEditController* controller);

private:
    bool parseMember(const std::string& serverId, const tovjson::Value& member, LinkedObjects kind,
                     TOVEditController* controller);
    // The rule name, "Member with server id", the quoted id, ":" and `detail`,
    // with no blank between the first three: the messages read so on purpose.
    std::string memberError(const std::string& serverId, const std::string& detail);
};

class TOVMembersOfFamilyJsonParser : public TOVManualOrHistoryLinkJsonParser {
public:
    ~TOVMembersOfFamilyJsonParser() override;
    bool parseSection(tovjson::Value& root, TOVEditController* controller);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

class TOVManualLinkAncestorsJsonParser : public TOVManualOrHistoryLinkJsonParser {
public:
    ~TOVManualLinkAncestorsJsonParser() override;
    bool parseSection(tovjson::Value& root, TOVEditController* controller);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

class TOVEditorObjectTypeJsonParser : public TOVJsonParser {
public:
    ~TOVEditorObjectTypeJsonParser() override;
    // An empty string is a valid object type here.
    bool parseSection(tovjson::Value& root, TOVEditController* controller);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

class TOVInitialAttributesParser : public TOVJsonParser {
public:
    ~TOVInitialAttributesParser() override;
    bool parseSection(tovjson::Value& root, TOVEditController* controller);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Keeps the base's empty keyword list on purpose: a missing "targetAttributes"
// fails the parse without a message of its own.
class TOVTargetAttributesParser : public TOVJsonParser {
public:
    ~TOVTargetAttributesParser() override;
    bool parseSection(tovjson::Value& root, TOVEditController* controller);

protected:
    std::string getRuleName() override;
};

#endif  // TOV_EVALUATORS_TOVTRANSITIONJSONPARSERS_H_
