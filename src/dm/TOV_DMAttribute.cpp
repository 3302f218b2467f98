#include "tov/TOV_DMAttribute.h"

#include "foundation/log_reading.h"
#include "tov/TOVLogger.h"

TOV_DMAttribute::TOV_DMAttribute() : type(REGULAR), primary(false) {}

TOV_DMAttribute::TOV_DMAttribute(const std::string& name, const std::string& typeWord, bool primary)
    : name(name), type(REGULAR), primary(primary) {
    setTypeOfAttribute(typeWord);
}

void TOV_DMAttribute::setTypeOfAttribute(DMAttributeCategories category) {
    type = category;
}

void TOV_DMAttribute::setTypeOfAttribute(const std::string& typeWord) {
    if (typeWord == "REGULAR") {
        type = REGULAR;
    } else if (typeWord == "FILE") {
        type = FILE;
    } else if (typeWord == "VERSIONING") {
        type = VERSIONING;
    }
}

bool TOV_DMAttribute::isThisaRegularAttribute() const {
    return type == REGULAR;
}

bool TOV_DMAttribute::isThisaFileAttribute() const {
    return type == FILE;
}

bool TOV_DMAttribute::isThisaVersioningAttribute() const {
    return type == VERSIONING;
}

std::string TOV_DMAttribute::expressAttributeCategoryInWords() const {
    switch (type) {
        case REGULAR:
            return "REGULAR";
        case FILE:
            return "FILE";
        case VERSIONING:
            return "VERSIONING";
    }
    return std::string();
}

void TOV_DMAttribute::printContentsDBG(TOVLogger* logger) const {
    if (!isLogRead(logger)) {
        return;
    }
    logger->printToLog("*Attribute:");
    logger->printToLog(("Name : " + name).c_str());
    logger->printToLog(("Category : " + expressAttributeCategoryInWords()).c_str());
    logger->printToLog(primary ? "IsPrimary : True" : "IsPrimary : False");
}

bool TOV_DMAttribute::operator<(const TOV_DMAttribute& other) const {
    return name < other.name;
}
