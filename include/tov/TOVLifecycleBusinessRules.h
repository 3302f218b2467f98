// The rule store: every loaded rule, one list per kind, and the lookups that
// select the rules concerning an object type and its attributes. The store
// selects; each rule then judges for itself.
#ifndef TOV_TOVLIFECYCLEBUSINESSRULES_H_
#define TOV_TOVLIFECYCLEBUSINESSRULES_H_

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tov/export.h"
#include "tov/rule_kinds.h"
#include "tov/vocabulary.h"

class TOVConflictResolution;
class TOVFileConstraint;
class TOVHistoryLink;
class TOVLogger;
class TOVManualLink;
class TOVTransition;
class TOVTransitionFreeze;
class TOVTrigger;
class TOVVersioningSelection;
class TOV_DMStructure;
struct TOVTriggerDescription;

class TOV_API TOVLifecycleBusinessRules {
public:
    TOVLifecycleBusinessRules();
    // A copy holds copies of every rule; lookups on it hand out its own.
    TOVLifecycleBusinessRules(const TOVLifecycleBusinessRules& other);
    TOVLifecycleBusinessRules& operator=(const TOVLifecycleBusinessRules& other);
    ~TOVLifecycleBusinessRules();

    // Each setter replaces a whole list by a copy; each appender copies one rule
    // to the end of its list, or moves it there when it is handed over.
    void setTransitionsFreeze(const std::vector<TOVTransitionFreeze>& rules);
    void setHistoryLinks(const std::vector<TOVHistoryLink>& rules);
    void setManualLinks(const std::vector<TOVManualLink>& rules);
    void setTransitions(const std::vector<TOVTransition>& rules);
    void setFileConstraints(const std::vector<TOVFileConstraint>& rules);
    void setVersioningAttributesSelections(const std::vector<TOVVersioningSelection>& rules);
    void setConflictsResolutions(const std::vector<TOVConflictResolution>& rules);
    void setTriggers(const std::vector<TOVTrigger>& rules);

    void appendNewTransitionFreezeRule(const TOVTransitionFreeze& rule);
    void appendNewTransitionFreezeRule(TOVTransitionFreeze&& rule);
    void appendNewHistoryLinkRule(const TOVHistoryLink& rule);
    void appendNewHistoryLinkRule(TOVHistoryLink&& rule);
    void appendNewManualLinkRule(const TOVManualLink& rule);
    void appendNewManualLinkRule(TOVManualLink&& rule);
    void appendNewTransitionRule(const TOVTransition& rule);
    void appendNewTransitionRule(TOVTransition&& rule);
    void appendNewFileConstraintRule(const TOVFileConstraint& rule);
    void appendNewFileConstraintRule(TOVFileConstraint&& rule);
    void appendNewVersioningAttrSelectionRule(const TOVVersioningSelection& rule);
    void appendNewVersioningAttrSelectionRule(TOVVersioningSelection&& rule);
    void appendNewConflictResolutionRule(const TOVConflictResolution& rule);
    void appendNewConflictResolutionRule(TOVConflictResolution&& rule);
    void appendNewTriggerRule(const TOVTrigger& rule);
    void appendNewTriggerRule(TOVTrigger&& rule);

    // Makes room in the list of `Rule` for `additional` more rules, so that a
    // load that knows how many it reads never holds a large list twice while
    // the list grows. Defined for the eight rule classes.
    template <typename Rule>
    void reserveRules(std::size_t additional);

    void clearAllRules();
    // Sorts every list by its rule's operator<. Evaluation reports the first
    // violated rule, so the sort decides which one that is.
    void sortAllRules();
    bool existAnyRules() const;

    // The plain lookups: rules whose object type matches `objectType` (case
    // ignored, "<any>" and "Library_Item" understood) and whose attribute is
    // one of `attributes` exactly. Pointers are appended in list order and stay
    // valid until the next load; true when this call appended any.
    bool getRelatedTransitionRules(const std::string& objectType,
                                   const std::vector<std::string>& attributes,
                                   const TOV_DMStructure* structure,
                                   std::vector<const TOVTransition*>& related) const;
    // The transition rules that getRelatedTransitionRules would consider,
    // whatever their attribute: for a caller that finds each rule's attribute
    // in an index of its own, so that no list of names is searched per rule.
    bool getTransitionRulesOfObjectType(const std::string& objectType,
                                        const TOV_DMStructure* structure,
                                        std::vector<const TOVTransition*>& candidates) const;
    bool getRelatedTransitionFreezeRules(const std::string& objectType,
                                         const std::vector<std::string>& attributes,
                                         const TOV_DMStructure* structure,
                                         std::vector<const TOVTransitionFreeze*>& related) const;
    bool getRelatedTriggerRules(const std::string& objectType,
                                const std::vector<std::string>& attributes,
                                const TOV_DMStructure* structure,
                                std::vector<const TOVTrigger*>& related) const;
    bool getRelatedFileConstraintRules(const std::string& objectType,
                                       const std::vector<std::string>& attributes,
                                       const TOV_DMStructure* structure,
                                       std::vector<const TOVFileConstraint*>& related) const;
    bool getRelatedConflictResolutionRules(
        const std::string& objectType, const std::vector<std::string>& attributes,
        const TOV_DMStructure* structure, std::vector<const TOVConflictResolution*>& related) const;

    // The exact lookups of link rules: as the plain lookup, and the rule's to
    // value must match the attribute's value in `toValues`, else in
    // `fromValues` (case ignored, "<any>" on either side). Each call logs what
    // it looked for and how many rules the list then holds.
    bool getRelatedHistoryLinkRulesExact(const std::string& objectType,
                                         const std::vector<std::string>& attributes,
                                         const AttributesMap& fromValues,
                                         const AttributesMap& toValues,
                                         const TOV_DMStructure* structure,
                                         std::vector<const TOVHistoryLink*>& related,
                                         TOVLogger* logger) const;
    bool getRelatedManualLinkRulesExact(const std::string& objectType,
                                        const std::vector<std::string>& attributes,
                                        const AttributesMap& fromValues,
                                        const AttributesMap& toValues,
                                        const TOV_DMStructure* structure,
                                        std::vector<const TOVManualLink*>& related,
                                        TOVLogger* logger) const;
    // Rules whose object type matches and whose conditions hold for `packet`.
    bool getRelatedVersioningSelectionRulesExact(
        const std::string& objectType, const AttributesMap& packet,
        const TOV_DMStructure* structure,
        std::vector<const TOVVersioningSelection*>& related) const;

    // A read-only walk for tools: one entry per rule that has words (all kinds
    // but triggers), each a kind label and the rule's sentence, in the order of
    // the debug print.
    std::vector<std::pair<std::string, std::string>> expressRulesInWords() const;
    // The same walk over the trigger rules, which have no sentence: what each
    // says, in store order, for a tool to word itself.
    std::vector<TOVTriggerDescription> describeTriggerRules() const;
    // The object types that the rules of all kinds are written for, as loaded
    // ("<any>" for "ALL"), each once, for tools that hold them against the data model.
    std::set<std::string> collectObjectTypesOfRules() const;

    // How many rules of `kind` the store holds, and where the one at `index`,
    // in the store's order (the order of judging, of the debug print and of
    // the words above), stood in its section of the rules document: 0 for the
    // first rule the section listed, counted across its object types in the
    // order of the document. For a list set whole, its place in that list.
    // Tools number rules by it alike in every command. SIZE_MAX for an index
    // past the end.
    std::size_t countRules(TOVRuleKind kind) const;
    std::size_t documentPositionOfRule(TOVRuleKind kind, std::size_t index) const;
    // The place in the store's order of a rule that a lookup handed out (a
    // pointer into this store, of any of the eight rule classes), or SIZE_MAX
    // for a rule the store does not hold.
    template <typename Rule>
    std::size_t indexOfRule(const Rule* rule) const;
    // The rule at `index` of `kind` as a sentence, as the comments and tools
    // tell it (a trigger too); empty for an index past the end.
    std::string ruleInWords(TOVRuleKind kind, std::size_t index) const;

    // Every list under its heading, in a fixed order.
    void printContentsDBG(TOVLogger* logger) const;
    void printTransitionsFreezeContentsDBG(TOVLogger* logger) const;
    void printHistoryLinksContentsDBG(TOVLogger* logger) const;
    void printManualLinksContentsDBG(TOVLogger* logger) const;
    void printTransitionContentsDBG(TOVLogger* logger) const;
    void printTriggerContentsDBG(TOVLogger* logger) const;
    void printVersioningAttrSelectionsDBG(TOVLogger* logger) const;
    void printConflictResolutionRulesDBG(TOVLogger* logger) const;
    void printFileConstraintsDBG(TOVLogger* logger) const;

private:
    // The eight lists, each with its index (rules/rule_list.h), behind one
    // pointer, so that this header needs none of the rule classes.
    struct Lists;
    // Reads for the lists what the rule classes keep private: as a member of
    // the store it shares the store's friendship with them.
    struct RuleAccess;

    template <typename Rule>
    void printRulesOfKind(TOVLogger* logger) const;
    void printDetailsOfScenarioLookingForRelatedRules(const char* heading,
                                                      const std::string& objectType,
                                                      const std::vector<std::string>& attributes,
                                                      const AttributesMap& toValues, int count,
                                                      TOVLogger* logger) const;

    std::unique_ptr<Lists> lists;
};

#endif  // TOV_TOVLIFECYCLEBUSINESSRULES_H_
