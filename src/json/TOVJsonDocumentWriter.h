#ifndef TOV_JSON_TOVJSONDOCUMENTWRITER_H_
#define TOV_JSON_TOVJSONDOCUMENTWRITER_H_

#include <map>
#include <string>

#include "json/json_types.h"

// The steps of TOVJsonComposer that touch rapidjson, kept out of the public
// header so that hosts need no JSON library of their own.
class TOVJsonDocumentWriter {
public:
    // Adds each entry, sanitized, as a string member behind the existing ones.
    static void addNamesValuesToJsonDoc(const std::map<std::string, std::string>& map,
                                        tovjson::Value& parent,
                                        tovjson::Document::AllocatorType& allocator);
    static void addNameValueToJsonDoc(const std::string& name, const std::string& value,
                                      tovjson::Value& parent,
                                      tovjson::Document::AllocatorType& allocator);
    // Compact text, no blanks between tokens.
    static std::string createStringFromJsonDocument(const tovjson::Document& document);
};

#endif  // TOV_JSON_TOVJSONDOCUMENTWRITER_H_
