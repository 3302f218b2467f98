#include "tov/TOV_DMStructureObject.h"

#include <algorithm>

#include "foundation/log_reading.h"
#include "tov/TOVLogger.h"

TOV_DMStructureObject::TOV_DMStructureObject(const std::string& name)
    : name(name), category(DMITEM) {}

TOV_DMStructureObject::TOV_DMStructureObject(const std::string& name,
                                             const std::string& categoryWord,
                                             const std::vector<TOV_DMAttribute>& attributes)
    : name(name), category(DMITEM) {
    setDMObjectCategory(categoryWord);
    fillAttributesSeparatingThemToPrimaryAndSecondary(attributes);
}

void TOV_DMStructureObject::setDMObjectCategory(DMObjectCategories value) {
    category = value;
}

void TOV_DMStructureObject::setDMObjectCategory(const std::string& categoryWord) {
    if (categoryWord == "DMITEM") {
        category = DMITEM;
    } else if (categoryWord == "RLI") {
        category = RLI;
    }
}

void TOV_DMStructureObject::fillAttributesSeparatingThemToPrimaryAndSecondary(
    const std::vector<TOV_DMAttribute>& attributes) {
    for (const TOV_DMAttribute& attribute : attributes) {
        if (attribute.isPrimary()) {
            appendToPrimaries(attribute);
        } else {
            appendToSecondaries(attribute);
        }
    }
}

void TOV_DMStructureObject::appendToPrimaries(const TOV_DMAttribute& attribute) {
    primaries.push_back(attribute);
}

void TOV_DMStructureObject::appendToSecondaries(const TOV_DMAttribute& attribute) {
    secondaries.push_back(attribute);
}

bool TOV_DMStructureObject::isThisAnRLI() const {
    return category == RLI;
}

bool TOV_DMStructureObject::isThisASecondaryAttribute(const std::string& attributeName) const {
    return std::any_of(secondaries.begin(), secondaries.end(),
                       [&](const TOV_DMAttribute& a) { return a.getName() == attributeName; });
}

void TOV_DMStructureObject::collectPrimaryAttributes(std::vector<std::string>& names,
                                                     bool skipVersioning, bool skipFile) const {
    for (const TOV_DMAttribute& attribute : primaries) {
        if (skipVersioning && attribute.isThisaVersioningAttribute()) {
            continue;
        }
        if (skipFile && attribute.isThisaFileAttribute()) {
            continue;
        }
        names.push_back(attribute.getName());
    }
}

void TOV_DMStructureObject::collectAttributesForObjectFamilyDetection(
    std::vector<std::string>& names) const {
    // A family is told by regular primaries; an RLI's file primaries count too.
    // Versioning primaries never do, since versions of one family differ in them.
    collectPrimaryAttributes(names, true, !isThisAnRLI());
}

void TOV_DMStructureObject::collectVersioningAttributes(std::set<std::string>& names) const {
    for (const TOV_DMAttribute& attribute : primaries) {
        if (attribute.isThisaVersioningAttribute()) {
            names.insert(attribute.getName());
        }
    }
}

void TOV_DMStructureObject::collectVersioningAttributes(std::vector<std::string>& names) const {
    for (const TOV_DMAttribute& attribute : primaries) {
        if (attribute.isThisaVersioningAttribute()) {
            names.push_back(attribute.getName());
        }
    }
}

std::string TOV_DMStructureObject::expressObjectCategoryInWords() const {
    switch (category) {
        case DMITEM:
            return "DMITEM";
        case RLI:
            return "RLI";
    }
    return std::string();
}

void TOV_DMStructureObject::sortMyPrimaryAttributes() {
    std::sort(primaries.begin(), primaries.end());
}

void TOV_DMStructureObject::sortMySecondaryAttributes() {
    std::sort(secondaries.begin(), secondaries.end());
}

void TOV_DMStructureObject::printContentsDBG(TOVLogger* logger) const {
    if (!isLogRead(logger)) {
        return;
    }
    logger->printToLog("-------------------------DM Structure object-------------------------");
    logger->printToLog(("name: " + name).c_str());
    logger->printToLog(("object category: " + expressObjectCategoryInWords()).c_str());
    logger->printToLog("-----Primaries:");
    for (const TOV_DMAttribute& attribute : primaries) {
        attribute.printContentsDBG(logger);
    }
    logger->printToLog("-----Secondaries:");
    for (const TOV_DMAttribute& attribute : secondaries) {
        attribute.printContentsDBG(logger);
    }
}

bool TOV_DMStructureObject::operator<(const TOV_DMStructureObject& other) const {
    return name < other.name;
}

bool TOV_DMStructureObject::operator==(const TOV_DMStructureObject& other) const {
    return name == other.name;
}
