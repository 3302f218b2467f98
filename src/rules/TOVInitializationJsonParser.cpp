#include "rules/TOVInitializationJsonParser.h"

#include <cstddef>
#include <cstdio>

#include "json/document_walk.h"
#include "rules/rule_kinds.h"
#include "rules/rules_document_walker.h"

namespace {

// Whether the parsers stand in the table's reading order, one per kind.
template <typename... SectionParsers>
constexpr bool inReadingOrder(const std::tuple<SectionParsers...>* /*sections*/) {
    std::size_t position = 0;
    return sizeof...(SectionParsers) == TOVRuleKindCount &&
           ((rulekinds::wordsOf(SectionParsers::kKind).readingPosition == position++) && ...);
}

}  // namespace

TOVInitializationJsonParser::TOVInitializationJsonParser(TOVLifecycleBusinessRules* store)
    : store(store) {}

TOVInitializationJsonParser::~TOVInitializationJsonParser() = default;

bool TOVInitializationJsonParser::load(const std::string& input, bool inputIsFilePath) {
    static_assert(inReadingOrder(static_cast<const Sections*>(nullptr)),
                  "the section parsers stand in the reading order of the table of kinds");
    const RulesDocumentWalker::SectionReaders readers = std::apply(
        [](auto&... section) { return RulesDocumentWalker::SectionReaders{&section...}; },
        sections);
    RulesDocumentWalker walker(readers, store);
    return walkJsonInput(input, inputIsFilePath, walker);
}

bool TOVInitializationJsonParser::parseAllSections() {
    if (store == nullptr) {
        return false;
    }
    // The order of the sections is the order of their messages.
    std::apply(
        [this](const auto&... section) {
            const auto join = [this](const auto& one) {
                const std::string comment = one.getParsingErrorComment();
                appendToParsingErrorComment(comment.c_str());
                updateParsingResult(one.getParsingResult());
                if (!comment.empty()) {
                    sectionFaults.emplace_back(one.sectionKeyword(), comment);
                }
                std::fputs(one.getNotices().c_str(), stdout);
            };
            (join(section), ...);
        },
        sections);
    return getParsingResult();
}
