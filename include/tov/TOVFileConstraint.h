// A file constraint rule: a transition of an attribute demands, or refuses,
// the upload of a new representation file.
#ifndef TOV_TOVFILECONSTRAINT_H_
#define TOV_TOVFILECONSTRAINT_H_

#include <cstdint>
#include <string>

#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVLogger;

class TOV_API TOVFileConstraint {
public:
    enum TOVUpdateFileConstraint : std::int32_t {
        TOVUpdateFileConstraint_Free = 0,
        TOVUpdateFileConstraint_Forbidden = 1,
        TOVUpdateFileConstraint_Mandatory = 2,
    };

    TOVFileConstraint();
    // `updateFile` is "FORBIDDEN" or "MANDATORY", exact in case; any other word
    // makes a rule that forbids nothing.
    TOVFileConstraint(const std::string& objectType, const std::string& attribute,
                      const std::string& fromValue, const std::string& toValue,
                      const std::string& updateFile);

    // True when the edit breaks this rule. Only an explicit "_file_upload_" word
    // in the target satisfies a constraint; an empty initial packet (a new
    // object) binds only a rule whose from value is "<any>".
    bool shouldTransitionBeForbidden(const AttributesMap& initial,
                                     const AttributesMap& target) const;
    // True when the rule constrains this transition at all, whatever the
    // upload: it is binding, and the edit makes the move it names.
    bool appliesTo(const AttributesMap& initial, const AttributesMap& target) const;
    void expressRuleInWords(std::string& text) const;
    // By object type, attribute, from value, to value; case ignored, length first.
    bool operator<(const TOVFileConstraint& other) const;

private:
    friend class TOVLifecycleBusinessRules;

    // operator<'s fields folded once: keys in byte order sort as operator< does.
    void appendSortKey(std::string& key) const;

    void expressFileConstraintInWords(std::string& text) const;
    void printContentsDBG(TOVLogger* logger) const;

    const std::string& getObjectType() const { return objectType; }
    const std::string& getAttribute() const { return attribute; }
    const std::string& getFromValue() const { return fromValue; }
    const std::string& getToValue() const { return toValue; }
    TOVUpdateFileConstraint getUpdateFileConstraint() const { return updateFileConstraint; }
    void setObjectType(const std::string& value) { objectType = value; }
    void setAttribute(const std::string& value) { attribute = value; }
    void setFromValue(const std::string& value) { fromValue = value; }
    void setToValue(const std::string& value) { toValue = value; }
    void setUpdateFileConstraint(TOVUpdateFileConstraint value);
    void setUpdateFileConstraint(const std::string& word);

    std::string objectType;
    std::string attribute;
    std::string fromValue;
    std::string toValue;
    TOVUpdateFileConstraint updateFileConstraint;
};

#endif  // TOV_TOVFILECONSTRAINT_H_
