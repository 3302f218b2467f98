// The library's only writer of JSON: flat objects of strings, built from
// ordered maps, with white space in keys and values collapsed on the way out.
// A value is never interpreted: digits, lists and maps are written as strings.
#ifndef TOV_TOVJSONCOMPOSER_H_
#define TOV_TOVJSONCOMPOSER_H_

#include <map>
#include <string>

#include "tov/export.h"
#include "tov/vocabulary.h"

class TOVResponse;

class TOV_API TOVJsonComposer {
public:
    // One string member per entry, in key order; "{}" for an empty map.
    std::string createJsonFromStringStringMap(const std::map<std::string, std::string>& map) const;
    // The response's map with "Result", as one flat object.
    std::string createJsonResponseFromClass(const TOVResponse* response) const;

protected:
    // A copy with `simplifyAnStdString` applied.
    static std::string getSanitizedStringForJsonDoc(const std::string& text);
    // Trims white space at both ends and turns each inner run of it into one blank.
    static void simplifyAnStdString(std::string& text);
    static void removeHeadSpaces(std::string& text);
    static void removeTailSpaces(std::string& text);

private:
    // The internal steps that build and write rapidjson documents.
    friend class TOVJsonDocumentWriter;

    // `map` as a copy of it with `name` set to `value` would be written,
    // without the copy: a response's map and its "Result".
    std::string createJsonFromStringStringMapWith(const std::map<std::string, std::string>& map,
                                                  const std::string& name,
                                                  const std::string& value) const;
    // The members of `map` in key order, and the extra entry when given.
    static std::string writeFlatObject(const std::map<std::string, std::string>& map,
                                       const std::string* extraName, const std::string* extraValue);
};

// Each function below returns 1 when it composed `json` and 0, leaving `json`
// alone, when a required input is empty.

// A JSON object of the map's entries.
TOV_API std::string turnStringStringMapIntoJsonString(
    const std::map<std::string, std::string>& map);

// An edit request: "objectType", "initialAttributes" (may be empty), "targetAttributes".
TOV_API int composeSimpleTransitionJson(const std::string& objectType,
                                        const AttributesMap& initialAttributes,
                                        const AttributesMap& targetAttributes, std::string& json);

// An options query: the three members above, none empty, then the bool
// "uploadsRepresentationFile".
TOV_API int composeConflictResolutionsOptionsJson(const std::string& objectType,
                                                  const AttributesMap& initialAttributes,
                                                  const AttributesMap& targetAttributes,
                                                  bool uploadsRepresentationFile,
                                                  std::string& json);

// A manual link creation request: "ancestor" and "descendant", each with
// "objectType" and "attributes".
TOV_API int composeSimpleManualLinkEvaluationJson(const std::string& ancestorObjectType,
                                                  const AttributesMap& ancestorAttributes,
                                                  const std::string& descendantObjectType,
                                                  const AttributesMap& descendantAttributes,
                                                  std::string& json);

#endif  // TOV_TOVJSONCOMPOSER_H_
