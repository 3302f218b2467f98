// A transition rule: while `attribute` holds `fromValue`, it may move only to
// one of `toValues`. The from side is loose (case ignored, "<any>" on either
// side); the to side is strict (exact bytes, "<any>" only in the rule).
#ifndef TOV_TOVTRANSITION_H_
#define TOV_TOVTRANSITION_H_

#include <string>
#include <vector>

#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVLogger;
class TOV_DMStructure;

class TOV_API TOVTransition {
public:
    TOVTransition();
    TOVTransition(const std::string& objectType, const std::string& attribute,
                  const std::string& fromValue, const std::vector<std::string>& toValues);
    // The same rule from fields the caller gives up: a load builds one per
    // rule of its document, and need not copy what it has just read.
    TOVTransition(std::string&& objectType, std::string&& attribute, std::string&& fromValue,
                  std::vector<std::string>&& toValues);

    // True when the edit from `initial` to `target` breaks this rule. An
    // attribute the target leaves out is judged as staying on its from value.
    bool shouldTransitionBeForbidden(const AttributesMap& initial,
                                     const AttributesMap& target) const;
    // The same answer for a caller that has looked the rule's attribute up in
    // both packets already: each value is the one found there, or null when
    // that packet lacks the attribute.
    bool shouldTransitionBeForbiddenFrom(const std::string* currentValue,
                                         const std::string* attemptedValue) const;
    // True when the rule judges an object with the packet `initial` at all:
    // the packet holds the rule's attribute on its from value.
    bool appliesTo(const AttributesMap& initial) const;
    // Whether the rule's attribute is a secondary one of the edited object type.
    bool constrainsSecondaryAttribute(const std::string& editedObjectType,
                                      const TOV_DMStructure* structure) const;
    // Appends the rule as a sentence.
    void expressRuleInWords(std::string& text) const;
    // By object type, attribute, from value; case ignored, length first.
    bool operator<(const TOVTransition& other) const;

private:
    friend class TOVLifecycleBusinessRules;
    // The edit controller finds each rule's attribute in its own index of
    // the initial packet.
    friend class TOVEditController;

    // operator<'s fields folded once: keys in byte order sort as operator< does.
    void appendSortKey(std::string& key) const;

    bool isPackageFromValueBoundByThisRule(const AttributesMap& packet, std::string& value) const;
    bool shouldAttemptedToValueBeForbidden(const std::string& attemptedValue) const;
    void printContentsDBG(TOVLogger* logger) const;

    const std::string& getObjectType() const { return objectType; }
    const std::string& getAttribute() const { return attribute; }
    const std::string& getFromValue() const { return fromValue; }
    const std::vector<std::string>& getToValues() const { return toValues; }
    void setObjectType(const std::string& value) { objectType = value; }
    void setAttribute(const std::string& value) { attribute = value; }
    void setFromValue(const std::string& value) { fromValue = value; }
    void setToValues(const std::vector<std::string>& values) { toValues = values; }

    std::string objectType;
    std::string attribute;
    std::string fromValue;
    std::vector<std::string> toValues;
};

#endif  // TOV_TOVTRANSITION_H_
