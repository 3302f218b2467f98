#include "rules/rules_document_walker.h"

#include <cstring>

#include "rules/rule_kinds.h"

RulesDocumentWalker::RulesDocumentWalker(const SectionReaders& sections,
                                         TOVLifecycleBusinessRules* store)
    // A rule object is read to the elements of its lists, and of those only
    // the type: two levels of containers.
    : tovjson::DocumentWalker(2), sections(sections), store(store) {}

RuleSectionReader* RulesDocumentWalker::claimSection(const char* name, std::size_t length) {
    if (store == nullptr) {
        return nullptr;
    }
    for (std::size_t position = 0; position < sections.size(); ++position) {
        const char* keyword = rulekinds::wordsOf(rulekinds::kindReadAt(position)).section;
        // The whole name: one with a zero byte inside is no keyword.
        if (!claimed[position] && std::strlen(keyword) == length &&
            std::memcmp(keyword, name, length) == 0) {
            claimed[position] = true;
            return sections[position];
        }
    }
    return nullptr;
}

tovjson::Step RulesDocumentWalker::value(rapidjson::Type type) {
    switch (level) {
        case Level::kOutside:
            if (type != rapidjson::kObjectType) {
                return tovjson::Step::kSkip;
            }
            level = Level::kRoot;
            return tovjson::Step::kEnter;
        case Level::kRoot:
            if (section == nullptr || type != rapidjson::kObjectType) {
                section = nullptr;
                return tovjson::Step::kSkip;
            }
            level = Level::kSection;
            sectionFailed = false;
            return tovjson::Step::kEnter;
        case Level::kSection:
            if (sectionFailed) {
                return tovjson::Step::kSkip;
            }
            if (type != rapidjson::kArrayType) {
                section->refuseRulesNotInAList(objectType);
                sectionFailed = true;
                return tovjson::Step::kSkip;
            }
            level = Level::kList;
            return tovjson::Step::kEnter;
        case Level::kList:
            if (sectionFailed) {
                return tovjson::Step::kSkip;
            }
            if (type != rapidjson::kObjectType) {
                section->refuseRuleNotAMap(objectType);
                sectionFailed = true;
                return tovjson::Step::kSkip;
            }
            return section->ruleEvents() != nullptr ? tovjson::Step::kRead
                                                    : tovjson::Step::kCapture;
    }
    return tovjson::Step::kSkip;
}

void RulesDocumentWalker::key(const char* name, std::size_t length) {
    if (level == Level::kRoot) {
        section = claimSection(name, length);
    } else if (level == Level::kSection) {
        objectType.assign(name, length);
    }
}

void RulesDocumentWalker::leave() {
    if (level == Level::kList) {
        level = Level::kSection;
    } else if (level == Level::kSection) {
        level = Level::kRoot;
        section = nullptr;
    } else {
        level = Level::kOutside;
    }
}

void RulesDocumentWalker::captured(tovjson::Value& value) {
    sectionFailed = !section->readRule(value, objectType, store);
}

tovjson::ValueReader& RulesDocumentWalker::valueReader() {
    return *section->ruleEvents();
}

void RulesDocumentWalker::readEnded() {
    sectionFailed = !section->ruleEvents()->finish(objectType, store);
}
