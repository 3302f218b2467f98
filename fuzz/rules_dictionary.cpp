// Prints the fuzz dictionary of the rules document (dict/rules_document.dict)
// from the library's table of rule kinds, so that a new kind or member reaches
// the fuzzer without a second list. ctest holds the committed dictionary to
// what this prints; after a change to the table, run
//   build/default/tests/tov_rules_dictionary > fuzz/dict/rules_document.dict
#include <iostream>
#include <set>
#include <string>
#include <vector>

#include "tov/rule_kinds.h"
#include "tov/vocabulary.h"

namespace {

// A word as a JSON string, so that an inserted one is a whole token.
void printToken(const std::string& word, std::set<std::string>& printed) {
    if (printed.insert(word).second) {
        std::cout << R"("\")" << word << R"(\"")"
                  << "\n";
    }
}

}  // namespace

int main() {
    std::cout
        << "# Rules document: section names, rule keywords, their words and reserved values.\n"
           "# Made by fuzz/rules_dictionary.cpp from the library's table of rule kinds.\n"
           "# Keywords as JSON strings, so that an inserted one is a whole token.\n";
    std::set<std::string> printed;
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        printToken(kind.section, printed);
    }
    for (const TOVRuleKindWords& kind : GetTOVRuleKinds()) {
        for (const char* member : kind.members) {
            printToken(member, printed);
        }
    }
    // The words that some members take.
    for (const char* word : {TOVAttrItemValue_Mandatory, TOVAttrItemValue_Forbidden,
                             TOVAttrItemValue_YES, TOVAttrItemValue_NO, TOVAttrItemValue_N_A,
                             TOVAttrItemValue_Overwrite, TOVAttrItemValue_Spinup}) {
        printToken(word, printed);
    }
    // Names and values of the example documents, which seed the fuzzer.
    for (const char* word : {"Part", "Assembly", "Drawing", "Datasheet", "Status", "Iteration",
                             "Revision", "Released", "In Work"}) {
        printToken(word, printed);
    }
    // The reserved words.
    for (const char* word :
         {TOVAttrItemValue_Any, TOVAttrItemValue_ALL, TOVAttrItemValue_Library_Item,
          TOVAttrItemKeyword_ProperVersioningAttribute, TOVAttrItemValue_Reset,
          TOVAttrItemKeyword_ServerId, TOVAttrItemName_DoesUploadFile}) {
        printToken(word, printed);
    }
    for (const char* token : {"{", "}", "[", "]", ":", ",", "true", "false", "null"}) {
        std::cout << "\"" << token << "\"\n";
    }
    return 0;
}
