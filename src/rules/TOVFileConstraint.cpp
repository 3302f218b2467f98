#include "tov/TOVFileConstraint.h"

#include "tov/TOVLogger.h"
#include "tov/TOV_DMStructure.h"
#include "tov/string_helpers.h"

TOVFileConstraint::TOVFileConstraint() : updateFileConstraint(TOVUpdateFileConstraint_Free) {}

TOVFileConstraint::TOVFileConstraint(const std::string& objectType, const std::string& attribute,
                                     const std::string& fromValue, const std::string& toValue,
                                     const std::string& updateFile)
    : objectType(objectType),
      attribute(attribute),
      fromValue(fromValue),
      toValue(toValue),
      updateFileConstraint(TOVUpdateFileConstraint_Free) {
    setUpdateFileConstraint(updateFile);
}

const std::string& TOVFileConstraint::getObjectType() const {
    return objectType;
}
const std::string& TOVFileConstraint::getAttribute() const {
    return attribute;
}
const std::string& TOVFileConstraint::getFromValue() const {
    return fromValue;
}
const std::string& TOVFileConstraint::getToValue() const {
    return toValue;
}
void TOVFileConstraint::setObjectType(const std::string& value) {
    objectType = value;
}
void TOVFileConstraint::setAttribute(const std::string& value) {
    attribute = value;
}
void TOVFileConstraint::setFromValue(const std::string& value) {
    fromValue = value;
}
void TOVFileConstraint::setToValue(const std::string& value) {
    toValue = value;
}

// ---- Rule logic ----
bool TOVFileConstraint::shouldTransitionBeForbidden(const AttributesMap& /*initial*/,
                                                    const AttributesMap& /*target*/) const {
    return false;
}
void TOVFileConstraint::expressRuleInWords(std::string& /*text*/) const {}
void TOVFileConstraint::expressFileConstraintInWords(std::string& /*text*/) const {}
bool TOVFileConstraint::operator<(const TOVFileConstraint& /*other*/) const {
    return false;
}
TOVFileConstraint::TOVUpdateFileConstraint TOVFileConstraint::getUpdateFileConstraint() const {
    return updateFileConstraint;
}
void TOVFileConstraint::setUpdateFileConstraint(TOVUpdateFileConstraint value) {
    updateFileConstraint = value;
}
void TOVFileConstraint::setUpdateFileConstraint(const std::string& /*word*/) {}
void TOVFileConstraint::printContentsDBG(TOVLogger* /*logger*/) const {}
