#ifndef TOV_DM_TOV_DMINFOJSONPARSERS_H_
#define TOV_DM_TOV_DMINFOJSONPARSERS_H_

#include <string>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/json_types.h"
#include "tov/TOV_DMAttribute.h"

class TOV_DMStructure;

// The top parser of the data-model document.
class TOV_DMInfoJsonParser : public TOVJsonParser {
public:
    explicit TOV_DMInfoJsonParser(TOV_DMStructure* structure);
    ~TOV_DMInfoJsonParser() override;

    // Loads the document from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Both root members, the label even when the list failed, so that one
    // answer tells both.
    bool parseAllSections();
    bool parseStructureObjects();
    bool parseOverwriteLabel();

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;

private:
    TOV_DMStructure* structure;
    tovjson::Document document;
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
