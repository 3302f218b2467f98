#ifndef TOV_DM_TOV_DMINFOJSONPARSERS_H_
#define TOV_DM_TOV_DMINFOJSONPARSERS_H_

#include <string>
#include <utility>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "tov/TOV_DMAttribute.h"

class TOV_DMStructure;

// The top parser of the data-model document.
class TOV_DMInfoJsonParser : public TOVJsonParser {
public:
    // A section's key and what was said about it; the key is empty for a
    // fault of the document as a whole, such as a missing member.
    using SectionFaults = std::vector<std::pair<std::string, std::string>>;

    explicit TOV_DMInfoJsonParser(TOV_DMStructure* structure);
    ~TOV_DMInfoJsonParser() override;

    // Loads the document from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Both root members, the label even when the list failed, so that one
    // answer tells both.
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
    // failWith, keeping the message as the document's.
    bool failForDocument(const std::string& message);

    TOV_DMStructure* structure;
    tovjson::Document document;
    SectionFaults sectionFaults;
};

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

#endif  // TOV_DM_TOV_DMINFOJSONPARSERS_H_
