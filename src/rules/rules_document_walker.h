// Walks the rules document as it streams by. Each section is the first member
// of the root that bears its key, as a lookup by name finds it; a section
// that is no object is as good as absent. Its rule objects go one at a time,
// each as its events or as a small tree, to the section's reader, in document
// order; the first error ends the section, and the rest of it is read past.
#ifndef TOV_RULES_RULES_DOCUMENT_WALKER_H_
#define TOV_RULES_RULES_DOCUMENT_WALKER_H_

#include <array>
#include <cstddef>
#include <string>

#include "json/document_walk.h"
#include "rules/rule_section_parser.h"
#include "tov/rule_kinds.h"

class TOVLifecycleBusinessRules;

class RulesDocumentWalker : public tovjson::DocumentWalker {
public:
    // The reader of each section by the table's reading position. With no
    // store, no section is read.
    using SectionReaders = std::array<RuleSectionReader*, TOVRuleKindCount>;

    RulesDocumentWalker(const SectionReaders& sections, TOVLifecycleBusinessRules* store);

    tovjson::Step value(rapidjson::Type type) override;
    void key(const char* name, std::size_t length) override;
    void leave() override;
    void captured(tovjson::Value& value) override;
    tovjson::ValueReader& valueReader() override;
    void readEnded() override;

private:
    enum class Level {
        kOutside,  // before the root and after it
        kRoot,     // among the sections
        kSection,  // among the object types of a section
        kList,     // among the rule objects listed for an object type
    };

    // The section whose key `name` is, when it has not come before.
    RuleSectionReader* claimSection(const char* name, std::size_t length);

    SectionReaders sections;
    TOVLifecycleBusinessRules* store;
    std::array<bool, TOVRuleKindCount> claimed{};
    Level level = Level::kOutside;
    // The section whose key came last at the root, then the one being read.
    RuleSectionReader* section = nullptr;
    bool sectionFailed = false;
    std::string objectType;
};

#endif  // TOV_RULES_RULES_DOCUMENT_WALKER_H_
