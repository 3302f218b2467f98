// Base of every input parser: loads JSON into a document, offers typed access
// to members, and collects error messages instead of throwing.
#ifndef TOV_JSON_TOVJSONPARSER_H_
#define TOV_JSON_TOVJSONPARSER_H_

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "json/json_types.h"
#include "tov/string_helpers.h"
#include "tov/vocabulary.h"

namespace tovjson {
class DocumentWalker;
}  // namespace tovjson

class TOVJsonParser {
public:
    TOVJsonParser();
    TOVJsonParser(const TOVJsonParser& other) = default;
    TOVJsonParser& operator=(const TOVJsonParser& other) = default;
    virtual ~TOVJsonParser();

    // Every message so far, joined by "|".
    std::string getParsingErrorComment() const { return parsingErrorComment; }
    bool getParsingResult() const { return parsingResult; }

protected:
    // The name that starts each message; "Lifecycle Business" unless overridden.
    virtual std::string getRuleName();
    // The keywords a rule must have, in their fixed order; none here.
    virtual void getAllNecessaryKeywords(std::vector<std::string>& keywords);

    // Both give true only for a parsed document whose root is an object; otherwise
    // the comment becomes "Json has fundamental parsing error".
    bool fillJsonDocumentFromJsonFile(const std::string& path, tovjson::Document& document);
    bool fillJsonDocumentFromJsonString(const std::string& text, tovjson::Document& document);
    // The text form on a copy that the parse may overwrite: the document's
    // strings are left where they stand in `text` instead of being copied out
    // of it, so `text` must outlive the document. Like the text given to the
    // text form, it ends at its first zero byte.
    bool fillJsonDocumentFromJsonTextInPlace(char* text, tovjson::Document& document);
    // The file form when the input is a path, the text form otherwise.
    bool fillJsonDocumentFromInput(const std::string& input, bool inputIsFilePath,
                                   tovjson::Document& document);
    // The same test of the input, with the document read as it streams
    // through `walker` instead of into a tree (json/document_walk.h).
    bool walkJsonInput(const std::string& input, bool inputIsFilePath,
                       tovjson::DocumentWalker& walker);

    // Each moves a present member into `out`, leaving a null behind, and says
    // whether it had the wanted type. A member can thus be fetched only once.
    bool getJsonSection(tovjson::Value& parent, const char* keyword, tovjson::Value& out);
    bool getJsonArraySection(tovjson::Value& parent, const char* keyword, tovjson::Value& out);
    bool getJsonBoolSection(tovjson::Value& parent, const char* keyword, tovjson::Value& out);
    bool getJsonStringSection(tovjson::Value& parent, const char* keyword, tovjson::Value& out);

    bool collectBoolFromValue(const tovjson::Value& value, bool& out);
    bool collectStringFromValue(const tovjson::Value& value, std::string& out);
    bool getStringNamesValuesPair(tovjson::Value::ConstMemberIterator member, std::string& name,
                                  std::string& value);
    // A member's name whole, so that a name with a zero byte inside never
    // passes for a keyword.
    static std::string getMemberName(const tovjson::Value& name);
    // Whether a member's name, whole, is `keyword`: what comparing
    // getMemberName to it says, without building the string. In line, so
    // that a constant keyword's length is known when compiling: rule readers
    // ask it of every member of a large document.
    static bool isMemberNamed(const char* name, std::size_t length, const char* keyword) {
        return length == std::char_traits<char>::length(keyword) &&
               std::char_traits<char>::compare(name, keyword, length) == 0;
    }
    static bool isMemberNamed(const tovjson::Value& name, const char* keyword) {
        return isMemberNamed(name.GetString(), name.GetStringLength(), keyword);
    }
    // How much of a string value is read: up to its first zero byte, as a C
    // string would be. Values are a few bytes long, so searched in line.
    static std::size_t lengthUpToZeroByte(const char* text, std::size_t length) {
        for (std::size_t i = 0; i < length; ++i) {
            if (text[i] == '\0') {
                return i;
            }
        }
        return length;
    }
    bool collectStringsFromArray(const tovjson::Value& value, std::vector<std::string>& out);
    // Inserts every string member; stops with false at the first member that is
    // not a string, keeping what came before.
    bool collectKeyValuesPairsFromSection(const tovjson::Value& section, AttributesMap& map);

    char getCommentSeparator() const;
    void appendToParsingErrorComment(const char* text);
    void setParsingErrorComment(const char* text);
    void setParsingResult(bool result) { parsingResult = result; }
    // ANDs into the result, which therefore never goes back to true.
    void updateParsingResult(bool result);

    // Records `message` and fails the parse in one step, as every error site
    // does; an empty message records nothing but still fails. Always false, so
    // that a site can `return failWith(...)`.
    bool failWith(const std::string& message);

    // The message texts, each starting with the rule name.
    std::string attributeValueBoolParsingError(const std::string& owner,
                                               const std::string& attribute);
    std::string attributeValueStringParsingError(const std::string& owner,
                                                 const std::string& attribute);
    std::string attributeValuesStringListParsingError(const std::string& owner,
                                                      const std::string& attribute);
    std::string errorParsingTheKeysValuesMapOfAttribute(const std::string& attribute);
    std::string immediateContentsShouldBeMapParsingError();
    std::string jsonSectionNotAListError(const std::string& section);
    std::string jsonSectionNotAMapError(const std::string& section);
    // Empty when the parser demands no keywords.
    std::string notAllNecessaryKeywordsFoundParsingError(const std::string& owner);
    std::string objectListedRuleNotAMapError(const std::string& owner);
    std::string objectRulesNotAListError(const std::string& owner);

    // Runs `parseSection(args...)` on a fresh parser of each section, in the
    // order given and every one whatever the others gave, and copies each
    // outcome up: the comment joined by "|", the result ANDed in. True when
    // every section parsed.
    template <typename... SectionParsers, typename... Args>
    bool runSectionParsers(Args&... args);
    // The same, and `noteSection(parser)` hears each section's parser once it
    // has run, so that a caller can keep what came from which section.
    template <typename... SectionParsers, typename NoteSection, typename... Args>
    bool runSectionParsersNoting(NoteSection&& noteSection, Args&... args);

    // A necessary section that is an object of strings, such as the initial or
    // the target attributes of a request. A missing member, or one of another
    // type, gives the keyword error; a value that is no string, the key-value
    // error under `keyword`. On false `attributes` may hold part of the packet,
    // so callers read into a fresh map and drop it.
    bool readNecessaryAttributesSection(tovjson::Value& root, const char* keyword,
                                        AttributesMap& attributes);
    // The same for a necessary string, such as the object type of a request;
    // an empty string passes.
    bool readNecessaryStringSection(tovjson::Value& root, const char* keyword, std::string& text);

    // Reads a rule object whole as a map of strings and hands back the values
    // of `keywords` in their order. Every key must be present; empty values
    // pass. A member of another type, named or not, gives the key-value error,
    // a missing key the keyword error, both under `objectType`.
    bool collectRuleKeywordsFromMap(const tovjson::Value& ruleObject, const std::string& objectType,
                                    const std::vector<const char*>& keywords,
                                    std::vector<std::string>& values);

private:
    bool acceptParsedDocument(const tovjson::Document& document);
    // Replaces the comment with the one message for input that is no JSON object.
    bool failFundamentally();
    // ": " behind the rule name, or " " when the name already ends in a colon.
    std::string ruleNameWithSeparator();

    std::string parsingErrorComment;
    bool parsingResult;
};

template <typename... SectionParsers, typename... Args>
bool TOVJsonParser::runSectionParsers(Args&... args) {
    return runSectionParsersNoting<SectionParsers...>([](const auto&) {}, args...);
}

template <typename... SectionParsers, typename NoteSection, typename... Args>
bool TOVJsonParser::runSectionParsersNoting(NoteSection&& noteSection, Args&... args) {
    bool allParsed = true;
    auto run = [&](auto section) {
        allParsed = section.parseSection(args...) && allParsed;
        appendToParsingErrorComment(section.getParsingErrorComment().c_str());
        updateParsingResult(section.getParsingResult());
        noteSection(section);
    };
    // The comma fold keeps the sections in order.
    (run(SectionParsers()), ...);
    return allParsed;
}

// The one set of parse flags: the default grammar, parsed iteratively so that
// deep nesting cannot exhaust the stack.
constexpr unsigned kTOVParseFlags = rapidjson::kParseIterativeFlag;

#endif  // TOV_JSON_TOVJSONPARSER_H_
