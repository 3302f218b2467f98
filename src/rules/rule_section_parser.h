// What the eight section parsers of the rules document share: their kind,
// which decides the key of the section they read and the name that their
// messages give a rule, and what the reader of the document asks of each
// section while the document streams by (rules/rules_document_walker.h).
#ifndef TOV_RULES_RULE_SECTION_PARSER_H_
#define TOV_RULES_RULE_SECTION_PARSER_H_

#include <string>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/document_walk.h"
#include "json/json_types.h"
#include "rules/rule_kinds.h"

class TOVLifecycleBusinessRules;

// Reads one rule object from its events (tovjson::ValueReader), each rule
// from the open of its object to its close, then `finish` does with what it
// read what readRule does with a rule object.
class RuleEventReader : public tovjson::ValueReader {
public:
    virtual bool finish(std::string& objectType, TOVLifecycleBusinessRules* store) = 0;
};

// A section maps object types to lists of rule objects. The first error ends
// the section: after a false the reader hands it nothing more.
class RuleSectionReader : public TOVJsonParser {
public:
    // Reads one rule object, listed under `objectType`, and appends the rule
    // to the store. May rewrite the object type in place ("ALL" becomes
    // "<any>"), which the rules after it under the same type then see.
    virtual bool readRule(tovjson::Value& ruleObject, std::string& objectType,
                          TOVLifecycleBusinessRules* store) = 0;
    // The reader of a section that reads its rules from the document's
    // events as they stream by, without a tree of each rule; null for one
    // that reads trees.
    virtual RuleEventReader* ruleEvents() { return nullptr; }

    // The faults of the section's frame: what an object type lists is no
    // list; an entry of its list is no object.
    bool refuseRulesNotInAList(const std::string& objectType) {
        return failWith(objectRulesNotAListError(objectType));
    }
    bool refuseRuleNotAMap(const std::string& objectType) {
        return failWith(objectListedRuleNotAMapError(objectType));
    }

    // Reads the section `sectionKeyword` of a document already parsed into a
    // tree, rule by rule as above, printing what reading says at once: for a
    // caller that holds the tree. An absent section, or one that is no
    // object, is fine.
    bool readSectionOfTree(tovjson::Value& root, const char* sectionKeyword,
                           TOVLifecycleBusinessRules* store);

    // What reading said on standard output, held back until the document is
    // known to be JSON: a document that turns out not to be prints nothing.
    const std::string& getNotices() const { return notices; }

protected:
    void notice(const char* text) { notices += text; }

    // The reading of a kind whose rules hold strings only: takes the values
    // of `keywords` in their order (see collectRuleKeywordsFromMap), turns an
    // object type "ALL" into "<any>" and hands both to
    // `appendRule(objectType, values)`.
    template <typename AppendRule>
    bool readStringRule(const tovjson::Value& ruleObject, std::string& objectType,
                        const std::vector<const char*>& keywords, AppendRule&& appendRule) {
        std::vector<std::string> values;
        if (!collectRuleKeywordsFromMap(ruleObject, objectType, keywords, values)) {
            return false;
        }
        changeAllToAny(objectType);
        appendRule(objectType, values);
        return true;
    }

private:
    std::string notices;
};

template <TOVRuleKind Kind>
class RuleSectionParser : public RuleSectionReader {
public:
    static constexpr TOVRuleKind kKind = Kind;

    static constexpr const char* sectionKeyword() { return rulekinds::wordsOf(Kind).section; }

    bool parseSection(tovjson::Value& root, TOVLifecycleBusinessRules* store) {
        return readSectionOfTree(root, sectionKeyword(), store);
    }

protected:
    std::string getRuleName() override { return rulekinds::wordsOf(Kind).ruleName; }
};

#endif  // TOV_RULES_RULE_SECTION_PARSER_H_
