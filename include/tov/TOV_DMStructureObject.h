// One object type of the data model, with its primary and secondary attributes.
#ifndef TOV_TOV_DMSTRUCTUREOBJECT_H_
#define TOV_TOV_DMSTRUCTUREOBJECT_H_

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "tov/TOV_DMAttribute.h"
#include "tov/export.h"

class TOVLogger;

class TOV_API TOV_DMStructureObject {
public:
    enum DMObjectCategories : std::int32_t {
        DMITEM = 0,
        RLI = 1,
    };

    // A name-only object: the key of searches.
    explicit TOV_DMStructureObject(const std::string& name);
    // Takes the category from the word and sorts the attributes into primaries
    // and secondaries.
    TOV_DMStructureObject(const std::string& name, const std::string& categoryWord,
                          const std::vector<TOV_DMAttribute>& attributes);

    const std::string& getName() const { return name; }

    void setDMObjectCategory(DMObjectCategories category);
    // "DMITEM" or "RLI", exact in case; another word changes nothing.
    void setDMObjectCategory(const std::string& categoryWord);
    void fillAttributesSeparatingThemToPrimaryAndSecondary(
        const std::vector<TOV_DMAttribute>& attributes);
    void appendToPrimaries(const TOV_DMAttribute& attribute);
    void appendToSecondaries(const TOV_DMAttribute& attribute);

    DMObjectCategories getObjectCategory() const { return category; }
    const std::vector<TOV_DMAttribute>& getPrimaryAttributes() const { return primaries; }
    const std::vector<TOV_DMAttribute>& getSecondaryAttributes() const { return secondaries; }
    bool isThisAnRLI() const;
    // Exact name match among the secondaries.
    bool isThisASecondaryAttribute(const std::string& attributeName) const;

    // Appends the names of the primaries, in order, skipping the categories asked.
    void collectPrimaryAttributes(std::vector<std::string>& names, bool skipVersioning,
                                  bool skipFile) const;
    // The primaries that tell an object family: regular ones, and for an RLI
    // also file ones.
    void collectAttributesForObjectFamilyDetection(std::vector<std::string>& names) const;
    // The names of the VERSIONING primaries.
    void collectVersioningAttributes(std::set<std::string>& names) const;
    void collectVersioningAttributes(std::vector<std::string>& names) const;

    std::string expressObjectCategoryInWords() const;
    void sortMyPrimaryAttributes();
    void sortMySecondaryAttributes();
    void printContentsDBG(TOVLogger* logger) const;

    // By name, as byte strings: case counts.
    bool operator<(const TOV_DMStructureObject& other) const;
    bool operator==(const TOV_DMStructureObject& other) const;

private:
    std::string name;
    DMObjectCategories category;
    std::vector<TOV_DMAttribute> primaries;
    std::vector<TOV_DMAttribute> secondaries;
};

#endif  // TOV_TOV_DMSTRUCTUREOBJECT_H_
