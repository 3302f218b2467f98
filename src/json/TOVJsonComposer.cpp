#include "tov/TOVJsonComposer.h"

#include <cstring>

#include "json/TOVJsonDocumentWriter.h"
#include "json/json_types.h"

namespace {

// What isspace accepts in the default locale: blank, tab, line feed, vertical
// tab, form feed, carriage return. Asked of every byte of every answer, so
// without a call into the C library, and whatever locale a host has set.
bool isWhiteSpace(char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

// A JSON string value copied into the document, up to the text's first NUL.
tovjson::Value makeStringValue(const std::string& text,
                               tovjson::Document::AllocatorType& allocator) {
    const char* bytes = text.c_str();
    return tovjson::Value(bytes, static_cast<rapidjson::SizeType>(std::strlen(bytes)), allocator);
}

// Whether simplifying `text` would leave it as it is: no white space at its
// ends, and inside only single spaces. Most names and values are so.
bool isAlreadySimple(const std::string& text) {
    if (text.empty()) {
        return true;
    }
    if (isWhiteSpace(text.front()) || isWhiteSpace(text.back())) {
        return false;
    }
    bool afterSpace = false;
    for (const char c : text) {
        if (isWhiteSpace(c)) {
            if (c != ' ' || afterSpace) {
                return false;
            }
            afterSpace = true;
        } else {
            afterSpace = false;
        }
    }
    return true;
}

}  // namespace

// Written straight to text, member by member in the map's order, which is
// what the writer made of a document built of the same members, without the
// document; two names that become one when sanitized are both written, as a
// document kept them both.
std::string TOVJsonComposer::createJsonFromStringStringMap(
    const std::map<std::string, std::string>& map) const {
    return writeFlatObject(map, nullptr, nullptr);
}

std::string TOVJsonComposer::createJsonFromStringStringMapWith(
    const std::map<std::string, std::string>& map, const std::string& name,
    const std::string& value) const {
    return writeFlatObject(map, &name, &value);
}

std::string TOVJsonComposer::writeFlatObject(const std::map<std::string, std::string>& map,
                                             const std::string* extraName,
                                             const std::string* extraValue) {
    tovjson::StringBuffer buffer;
    tovjson::Writer writer(buffer);
    // `text` itself when it is already simple, else its sanitized form in `copy`.
    const auto sanitizedOrSelf = [](const std::string& text,
                                    std::string& copy) -> const std::string& {
        if (isAlreadySimple(text)) {
            return text;
        }
        copy = getSanitizedStringForJsonDoc(text);
        return copy;
    };
    const auto writeMember = [&](const std::string& rawName, const std::string& rawValue) {
        // A copy only where sanitizing changes the text.
        std::string nameCopy;
        std::string valueCopy;
        const std::string& name = sanitizedOrSelf(rawName, nameCopy);
        const std::string& value = sanitizedOrSelf(rawValue, valueCopy);
        // Up to the first NUL, as a string value of the document was made.
        writer.Key(name.c_str(), static_cast<rapidjson::SizeType>(std::strlen(name.c_str())));
        writer.String(value.c_str(), static_cast<rapidjson::SizeType>(std::strlen(value.c_str())));
    };
    writer.StartObject();
    // The extra entry goes where the map's order puts it, over an entry of
    // its name, as in a copy of the map that it was set in.
    bool extraWritten = extraName == nullptr;
    for (const auto& entry : map) {
        if (!extraWritten && !(entry.first < *extraName)) {
            writeMember(*extraName, *extraValue);
            extraWritten = true;
            if (entry.first == *extraName) {
                continue;
            }
        }
        writeMember(entry.first, entry.second);
    }
    if (!extraWritten) {
        writeMember(*extraName, *extraValue);
    }
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize());
}

std::string TOVJsonComposer::getSanitizedStringForJsonDoc(const std::string& text) {
    std::string copy = text;
    if (!isAlreadySimple(copy)) {
        simplifyAnStdString(copy);
    }
    return copy;
}

void TOVJsonComposer::simplifyAnStdString(std::string& text) {
    removeHeadSpaces(text);
    removeTailSpaces(text);
    std::string simplified;
    simplified.reserve(text.size());
    bool inRun = false;
    for (const char c : text) {
        if (isWhiteSpace(c)) {
            if (!inRun) {
                simplified += ' ';
            }
            inRun = true;
        } else {
            simplified += c;
            inRun = false;
        }
    }
    text.swap(simplified);
}

void TOVJsonComposer::removeHeadSpaces(std::string& text) {
    std::string::size_type count = 0;
    while (count < text.size() && isWhiteSpace(text[count])) {
        ++count;
    }
    text.erase(0, count);
}

void TOVJsonComposer::removeTailSpaces(std::string& text) {
    std::string::size_type end = text.size();
    while (end > 0 && isWhiteSpace(text[end - 1])) {
        --end;
    }
    text.erase(end);
}

void TOVJsonDocumentWriter::addNamesValuesToJsonDoc(const std::map<std::string, std::string>& map,
                                                    tovjson::Value& parent,
                                                    tovjson::Document::AllocatorType& allocator) {
    for (const auto& entry : map) {
        addNameValueToJsonDoc(entry.first, entry.second, parent, allocator);
    }
}

void TOVJsonDocumentWriter::addNameValueToJsonDoc(const std::string& name, const std::string& value,
                                                  tovjson::Value& parent,
                                                  tovjson::Document::AllocatorType& allocator) {
    const std::string sanitizedName = TOVJsonComposer::getSanitizedStringForJsonDoc(name);
    const std::string sanitizedValue = TOVJsonComposer::getSanitizedStringForJsonDoc(value);
    // Values are written as strings whatever they look like, so no attempt is
    // made to read them as JSON.
    tovjson::Value jsonName = makeStringValue(sanitizedName, allocator);
    tovjson::Value jsonValue = makeStringValue(sanitizedValue, allocator);
    parent.AddMember(jsonName, jsonValue, allocator);
}

std::string TOVJsonDocumentWriter::createStringFromJsonDocument(const tovjson::Document& document) {
    tovjson::StringBuffer buffer;
    tovjson::Writer writer(buffer);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize());
}

std::string turnStringStringMapIntoJsonString(const std::map<std::string, std::string>& map) {
    return TOVJsonComposer().createJsonFromStringStringMap(map);
}

namespace {

// "objectType", "initialAttributes" and "targetAttributes" on the root object.
void addTransitionMembers(const std::string& objectType, const AttributesMap& initial,
                          const AttributesMap& target, tovjson::Document& document) {
    auto& allocator = document.GetAllocator();
    tovjson::Value initialObject(rapidjson::kObjectType);
    TOVJsonDocumentWriter::addNamesValuesToJsonDoc(initial, initialObject, allocator);
    tovjson::Value targetObject(rapidjson::kObjectType);
    TOVJsonDocumentWriter::addNamesValuesToJsonDoc(target, targetObject, allocator);
    // The object type is written as it stands, not sanitized.
    document.AddMember(rapidjson::StringRef(TOVTransitionJson_ObjectType),
                       makeStringValue(objectType, allocator), allocator);
    document.AddMember(rapidjson::StringRef(TOVTransitionJson_InitialAttributes), initialObject,
                       allocator);
    document.AddMember(rapidjson::StringRef(TOVTransitionJson_TargetAttributes), targetObject,
                       allocator);
}

tovjson::Value makeLinkEnd(const std::string& objectType, const AttributesMap& attributes,
                           tovjson::Document::AllocatorType& allocator) {
    tovjson::Value end(rapidjson::kObjectType);
    tovjson::Value attributesObject(rapidjson::kObjectType);
    TOVJsonDocumentWriter::addNamesValuesToJsonDoc(attributes, attributesObject, allocator);
    end.AddMember(rapidjson::StringRef(TOVTransitionJson_ObjectType),
                  makeStringValue(objectType, allocator), allocator);
    end.AddMember(rapidjson::StringRef(TOVManualLinksJson_Attributes), attributesObject, allocator);
    return end;
}

}  // namespace

int composeSimpleTransitionJson(const std::string& objectType,
                                const AttributesMap& initialAttributes,
                                const AttributesMap& targetAttributes, std::string& json) {
    if (objectType.empty() || targetAttributes.empty()) {
        return 0;
    }
    tovjson::Document document;
    document.SetObject();
    addTransitionMembers(objectType, initialAttributes, targetAttributes, document);
    json = TOVJsonDocumentWriter::createStringFromJsonDocument(document);
    return 1;
}

int composeConflictResolutionsOptionsJson(const std::string& objectType,
                                          const AttributesMap& initialAttributes,
                                          const AttributesMap& targetAttributes,
                                          bool uploadsRepresentationFile, std::string& json) {
    if (objectType.empty() || initialAttributes.empty() || targetAttributes.empty()) {
        return 0;
    }
    tovjson::Document document;
    document.SetObject();
    addTransitionMembers(objectType, initialAttributes, targetAttributes, document);
    document.AddMember(rapidjson::StringRef(TOVConflictJson_UploadsRepresentationFile),
                       tovjson::Value(uploadsRepresentationFile), document.GetAllocator());
    json = TOVJsonDocumentWriter::createStringFromJsonDocument(document);
    return 1;
}

int composeSimpleManualLinkEvaluationJson(const std::string& ancestorObjectType,
                                          const AttributesMap& ancestorAttributes,
                                          const std::string& descendantObjectType,
                                          const AttributesMap& descendantAttributes,
                                          std::string& json) {
    if (ancestorObjectType.empty() || ancestorAttributes.empty() || descendantObjectType.empty() ||
        descendantAttributes.empty()) {
        return 0;
    }
    tovjson::Document document;
    document.SetObject();
    auto& allocator = document.GetAllocator();
    document.AddMember(rapidjson::StringRef(TOVManualLinksJson_Ancestor),
                       makeLinkEnd(ancestorObjectType, ancestorAttributes, allocator), allocator);
    document.AddMember(rapidjson::StringRef(TOVManualLinksJsonDescendant),
                       makeLinkEnd(descendantObjectType, descendantAttributes, allocator),
                       allocator);
    json = TOVJsonDocumentWriter::createStringFromJsonDocument(document);
    return 1;
}
