// What the host says about its data model: object types and their attributes,
// and the label of the overwrite choice. It decides when two object types count
// as equal in rule matching.
#ifndef TOV_TOV_DMSTRUCTURE_H_
#define TOV_TOV_DMSTRUCTURE_H_

#include <set>
#include <string>
#include <vector>

#include "tov/TOV_DMStructureObject.h"
#include "tov/export.h"

class TOVLogger;

class TOV_API TOV_DMStructure {
public:
    TOV_DMStructure();

    // Appends a copy, not in sorted position: call sortAllDMInfo before lookups.
    void appendDMStructureObject(const TOV_DMStructureObject& object);
    // Empties the objects and the overwrite label.
    void clearAllInfo();
    // True when at least one object type is loaded; the label does not count.
    bool existAnyInfo() const;
    const std::vector<TOV_DMStructureObject>& getAllStructureObjects() const { return objects; }
    std::string getOverwriteLabel() const { return overwriteLabel; }
    void setOverwriteLabel(const std::string& label) { overwriteLabel = label; }
    // Sorts the objects, and in each object its primaries and secondaries.
    void sortAllDMInfo();

    // Binary search by exact name; null when there is no such object type.
    const TOV_DMStructureObject* getDMObjectTypeWithName(const std::string& name) const;
    bool isThisAnRLIObjectType(const std::string& name) const;
    bool isAttributeSecondary(const std::string& objectType, const std::string& attribute) const;
    // False, with nothing collected, for an unknown object type.
    bool collectAttrsForObjectFamilyDetection(const std::string& objectType,
                                              std::vector<std::string>& names) const;
    bool collectVersioningAttributesOfObject(const std::string& objectType,
                                             std::set<std::string>& names) const;
    bool collectVersioningAttributesOfObject(const std::string& objectType,
                                             std::vector<std::string>& names) const;

    // Equal ignoring case, or either is "<any>", or one is "Library_Item" and
    // the other is that word too or an object type of category RLI.
    bool areObjectTypesThatShouldBeConsideredEqual(const std::string& first,
                                                   const std::string& second) const;

    void printContentsDBG(TOVLogger* logger) const;

private:
    bool areRLITypesThatShouldBeConsideredEqual(const std::string& first,
                                                const std::string& second) const;

    std::vector<TOV_DMStructureObject> objects;
    std::string overwriteLabel;
};

#endif  // TOV_TOV_DMSTRUCTURE_H_
