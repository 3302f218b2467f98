// Where a rule that keeps a rules document from loading stands, and what it
// lacks. The library names only the kind and the object type of the rule it
// refuses ("demands ALL keywords: [...]", "should be a string."); the program
// adds a note that points at the rule and names the member.
#ifndef TOV_TOOLS_RULE_LOAD_FAULTS_H_
#define TOV_TOOLS_RULE_LOAD_FAULTS_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "documents.h"
#include "json/json_types.h"
#include "tov/rule_kinds.h"

namespace tovcli {

// What a member of a rule object must hold for the library to load the rule.
enum class MemberShape {
    kText,              // a string, empty or not
    kNonEmptyText,      // a string with something in it
    kTextList,          // a list of strings, empty or not
    kNonEmptyTextList,  // a list of at least one string
    kBoolean,
    kAnything,  // read for a notice only
};

struct MemberRule {
    const char* name;
    MemberShape shape;
    bool needed;
};

// The members of a rule object of one kind as a load takes them.
struct RuleShape {
    std::vector<MemberRule> members;
    // Whether a member the kind does not know must be a string too: the kinds
    // whose rules are read whole as strings.
    bool otherMembersAreText;
    // Whether the section refuses an empty object type.
    bool needsObjectType;
};

// Indexed by TOVRuleKind.
const RuleShape& ruleShapeOf(TOVRuleKind kind);

// What is wrong with `rule`, a rule object of `kind`, in words that name the
// member and what it should be; empty when its shape is right.
std::string shapeFaultOf(TOVRuleKind kind, const std::string& objectType,
                         const tovjson::Value& rule);

// Finds, for the faults of a rules document that did not load, the rules that
// the library refused. Each section stops at its first refused rule, so one
// fault of a section names one rule: the first of the section, in the order
// of the text, that the library refuses when it is loaded alone.
class RuleLoadFaults {
public:
    RuleLoadFaults(const Document& document, std::uint64_t maxInputSize);
    ~RuleLoadFaults();
    RuleLoadFaults(const RuleLoadFaults&) = delete;
    RuleLoadFaults& operator=(const RuleLoadFaults&) = delete;

    // The note that follows the library's fault of `section`: "SECTION: TYPE
    // #N: ..." placed at the rule (or at the member of the wrong type), or
    // nothing when the section holds no rule that the library refuses alone.
    std::optional<Finding> noteFor(const std::string& section);

private:
    class Parsed;
    const Document& document;
    std::uint64_t maxInputSize;
    std::unique_ptr<Parsed> parsed;  // read at the first question
};

}  // namespace tovcli

#endif  // TOV_TOOLS_RULE_LOAD_FAULTS_H_
