#include "rules/rule_section_parser.h"

#include <cstdio>

bool RuleSectionReader::readSectionOfTree(tovjson::Value& root, const char* sectionKeyword,
                                          TOVLifecycleBusinessRules* store) {
    tovjson::Value section;
    if (!getJsonSection(root, sectionKeyword, section)) {
        return true;
    }
    const std::size_t noticed = notices.size();
    bool read = true;
    for (auto& member : section.GetObject()) {
        std::string objectType = getMemberName(member.name);
        if (!member.value.IsArray()) {
            read = refuseRulesNotInAList(objectType);
            break;
        }
        for (auto& ruleObject : member.value.GetArray()) {
            read = ruleObject.IsObject() ? readRule(ruleObject, objectType, store)
                                         : refuseRuleNotAMap(objectType);
            if (!read) {
                break;
            }
        }
        if (!read) {
            break;
        }
    }
    std::fputs(notices.c_str() + noticed, stdout);
    return read;
}
