#ifndef TOV_DM_TOV_DMINFOJSONPARSERS_H_
#define TOV_DM_TOV_DMINFOJSONPARSERS_H_

#include <string>
#include <utility>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "tov/TOV_DMAttribute.h"

class TOV_DMStructure;

// Reads the elements of "structureObjects"; one instance serves the whole list.
class TOV_DMStructureObjectJsonParser : public TOVJsonParser {
public:
    TOV_DMStructureObjectJsonParser();
    ~TOV_DMStructureObjectJsonParser() override;

    bool parseStructureObject(const tovjson::Value& element, int index, TOV_DMStructure* structure);
    // `localName` is the name read so far in this element, the owner in the
    // attributes' messages.
    bool parseAttributes(const tovjson::Value& value, const std::string& localName,
                         std::vector<TOV_DMAttribute>& attributes);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;

private:
    // The last name read; kept from one element to the next.
    std::string objectName;
};

// Reads one element of an object's "attributes".
class TOV_DMAttributeJsonParser : public TOVJsonParser {
public:
    ~TOV_DMAttributeJsonParser() override;

    bool parseAttribute(const tovjson::Value& element, const std::string& objectName,
                        std::vector<TOV_DMAttribute>& attributes);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// The top parser of the data-model document, which it reads as it streams by:
// the first member of the root named "structureObjects" is the list of
// objects, each read whole as a small tree in its turn, and the first member
// named "OverwriteLabel" the label.
class TOV_DMInfoJsonParser : public TOVJsonParser {
public:
    // A section's key and what was said about it; the key is empty for a
    // fault of the document as a whole, such as a missing member.
    using SectionFaults = std::vector<std::pair<std::string, std::string>>;

    explicit TOV_DMInfoJsonParser(TOV_DMStructure* structure);
    ~TOV_DMInfoJsonParser() override;

    // Reads the document from the path of a file or from JSON text, appending
    // the objects of the list to the data model up to the first fault in it.
    // On false the document was no JSON object and the data model holds a
    // part of it, which the caller must drop.
    bool load(const std::string& input, bool inputIsFilePath);
    // Tells of both root members, the label even when the list failed, so
    // that one answer tells both, and sets the label.
    bool parseAllSections();
    bool parseStructureObjects();
    bool parseOverwriteLabel();

    // Each message of the comment with the section it concerns, in the order
    // of the comment: so that a tool can tell where a fault lies without
    // reading the message.
    const SectionFaults& getSectionFaults() const { return sectionFaults; }

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;

private:
    class Walker;

    // failWith, keeping the message as the document's.
    bool failForDocument(const std::string& message);

    TOV_DMStructure* structure;
    // What the stream found: whether the list was a list, and whether one of
    // its objects failed, which ends it; whether the label was a string.
    bool listFound = false;
    bool listFailed = false;
    bool labelFound = false;
    std::string label;
    // One parser for the whole list, so that it remembers the last name read.
    TOV_DMStructureObjectJsonParser objectParser;
    SectionFaults sectionFaults;
};

#endif  // TOV_DM_TOV_DMINFOJSONPARSERS_H_
