#include "tov/TOV_DMStructure.h"

#include "dm/object_type_matching.h"
#include "foundation/compare.h"

#include <algorithm>

#include "foundation/log_reading.h"
#include "tov/TOVLogger.h"
#include "tov/string_helpers.h"

TOV_DMStructure::TOV_DMStructure() = default;

void TOV_DMStructure::appendDMStructureObject(const TOV_DMStructureObject& object) {
    objects.push_back(object);
}

void TOV_DMStructure::clearAllInfo() {
    objects.clear();
    overwriteLabel.clear();
}

bool TOV_DMStructure::existAnyInfo() const {
    return !objects.empty();
}

void TOV_DMStructure::sortAllDMInfo() {
    std::sort(objects.begin(), objects.end());
    for (TOV_DMStructureObject& object : objects) {
        object.sortMyPrimaryAttributes();
        object.sortMySecondaryAttributes();
    }
}

const TOV_DMStructureObject* TOV_DMStructure::getDMObjectTypeWithName(
    const std::string& name) const {
    // By name alone, as operator< orders the objects, without building an
    // object to compare with.
    const auto found =
        std::lower_bound(objects.begin(), objects.end(), name,
                         [](const TOV_DMStructureObject& object, const std::string& wanted) {
                             return object.getName() < wanted;
                         });
    if (found == objects.end() || found->getName() != name) {
        return nullptr;
    }
    return &*found;
}

bool TOV_DMStructure::isThisAnRLIObjectType(const std::string& name) const {
    const TOV_DMStructureObject* object = getDMObjectTypeWithName(name);
    return object != nullptr && object->isThisAnRLI();
}

bool TOV_DMStructure::isAttributeSecondary(const std::string& objectType,
                                           const std::string& attribute) const {
    const TOV_DMStructureObject* object = getDMObjectTypeWithName(objectType);
    return object != nullptr && object->isThisASecondaryAttribute(attribute);
}

bool TOV_DMStructure::collectAttrsForObjectFamilyDetection(const std::string& objectType,
                                                           std::vector<std::string>& names) const {
    const TOV_DMStructureObject* object = getDMObjectTypeWithName(objectType);
    if (object == nullptr) {
        return false;
    }
    object->collectAttributesForObjectFamilyDetection(names);
    return true;
}

bool TOV_DMStructure::collectVersioningAttributesOfObject(const std::string& objectType,
                                                          std::set<std::string>& names) const {
    const TOV_DMStructureObject* object = getDMObjectTypeWithName(objectType);
    if (object == nullptr) {
        return false;
    }
    object->collectVersioningAttributes(names);
    return true;
}

bool TOV_DMStructure::collectVersioningAttributesOfObject(const std::string& objectType,
                                                          std::vector<std::string>& names) const {
    const TOV_DMStructureObject* object = getDMObjectTypeWithName(objectType);
    if (object == nullptr) {
        return false;
    }
    object->collectVersioningAttributes(names);
    return true;
}

bool TOV_DMStructure::areObjectTypesThatShouldBeConsideredEqual(const std::string& first,
                                                                const std::string& second) const {
    if (areStringsEqualAccountingAlsoAnyValue(first, second)) {
        return true;
    }
    return areRLITypesThatShouldBeConsideredEqual(first, second);
}

bool TOV_DMStructure::areRLITypesThatShouldBeConsideredEqual(const std::string& first,
                                                             const std::string& second) const {
    const bool firstIsGeneric = equalsIgnoringCase(first, TOVAttrItemValue_Library_Item);
    const bool secondIsGeneric = equalsIgnoringCase(second, TOVAttrItemValue_Library_Item);
    if (firstIsGeneric) {
        return secondIsGeneric || isThisAnRLIObjectType(second);
    }
    if (!secondIsGeneric) {
        return false;
    }
    return isThisAnRLIObjectType(first);
}

void TOV_DMStructure::printContentsDBG(TOVLogger* logger) const {
    if (!isLogRead(logger)) {
        return;
    }
    logger->printToLog("---------------------------------All DM Info---------------------------");
    logger->printToLog(("Overwrite Label: " + overwriteLabel).c_str());
    logger->printToLog("---------DM Structure Objects -----------");
    for (const TOV_DMStructureObject& object : objects) {
        object.printContentsDBG(logger);
    }
}

bool objectTypesMatch(const TOV_DMStructure* structure, const std::string& ruleType,
                      const std::string& askedType) {
    if (structure != nullptr) {
        return structure->areObjectTypesThatShouldBeConsideredEqual(ruleType, askedType);
    }
    return areStringsEqualAccountingAlsoAnyValue(ruleType, askedType);
}
