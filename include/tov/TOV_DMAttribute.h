// One attribute of an object type, as the data-model document describes it.
#ifndef TOV_TOV_DMATTRIBUTE_H_
#define TOV_TOV_DMATTRIBUTE_H_

#include <cstdint>
#include <string>

#include "tov/export.h"

class TOVLogger;

class TOV_API TOV_DMAttribute {
public:
    enum DMAttributeCategories : std::int32_t {
        REGULAR = 0,
        FILE = 1,
        VERSIONING = 2,
    };

    TOV_DMAttribute();
    // Starts as REGULAR, then takes the category from the word.
    TOV_DMAttribute(const std::string& name, const std::string& typeWord, bool primary);

    const std::string& getName() const { return name; }
    DMAttributeCategories getTypeOfAttribute() const { return type; }
    bool isPrimary() const { return primary; }
    void setIsPrimary(bool value) { primary = value; }

    void setTypeOfAttribute(DMAttributeCategories type);
    // "REGULAR", "FILE" or "VERSIONING", exact in case; another word changes nothing.
    void setTypeOfAttribute(const std::string& typeWord);

    bool isThisaRegularAttribute() const;
    bool isThisaFileAttribute() const;
    bool isThisaVersioningAttribute() const;
    std::string expressAttributeCategoryInWords() const;

    void printContentsDBG(TOVLogger* logger) const;

    // By name, as byte strings.
    bool operator<(const TOV_DMAttribute& other) const;

private:
    std::string name;
    DMAttributeCategories type;
    bool primary;
};

#endif  // TOV_TOV_DMATTRIBUTE_H_
