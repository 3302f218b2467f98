// Parsers of the edit request: one top parser for the document and one parser
// per section, each filling its part of an EditRequest.
#ifndef TOV_EVALUATORS_TOVTRANSITIONJSONPARSERS_H_
#define TOV_EVALUATORS_TOVTRANSITIONJSONPARSERS_H_

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "evaluators/request_records.h"
#include "json/TOVJsonParser.h"
#include "json/json_types.h"

// Owns the request document and the record, and runs the five section
// parsers over the one into the other.
class TOVTransitionJsonParser : public TOVJsonParser {
public:
    TOVTransitionJsonParser();
    ~TOVTransitionJsonParser() override;
    // The document allocates from this parser's own buffer, so it stays put.
    TOVTransitionJsonParser(const TOVTransitionJsonParser&) = delete;
    TOVTransitionJsonParser& operator=(const TOVTransitionJsonParser&) = delete;

    // Loads the document from the path of a file or from JSON text.
    bool load(const std::string& input, bool inputIsFilePath);
    // Every section runs even after a failure, so that one response tells
    // all the faults of a request, joined in the order of the sections.
    bool parseAllSections();

    // The request as read. After a fault it holds what each section read up
    // to its own first fault.
    const EditRequest& getRequest() const { return request; }
    EditRequest takeRequest() { return std::move(request); }

private:
    // An edit request's text and tree fit in a few kilobytes. Taking them from
    // the parser, which lives on the caller's stack, spares a 64 KiB pool chunk
    // per request, whose release also made the heap merge its small free
    // blocks, so that every allocation after it took the slow path. A larger
    // request goes on in heap chunks as before.
    static constexpr std::size_t kPoolBytes = 8192;
    alignas(std::max_align_t) std::array<unsigned char, kPoolBytes> poolBuffer;
    tovjson::ThrowingAllocator heap;
    tovjson::Allocator pool;
    tovjson::Document document;
    EditRequest request;
};

// What "membersOfFamily" and "manualLinkAncestors" share: a map from server id
// to a member object whose only key is "attributes".
class TOVManualOrHistoryLinkJsonParser : public TOVJsonParser {
protected:
    // An absent section, or one of another JSON type, is no error and leaves
    // `linked` empty; an object, even an empty one, gives it a list.
    bool parseLinkedObjectsSection(tovjson::Value& root, const char* keyword,
                                   std::optional<std::vector<AttributesMap>>& linked);

private:
    bool parseMember(const std::string& serverId, const tovjson::Value& member,
                     std::vector<AttributesMap>& linked);
    // The rule name, "Member with server id", the quoted id, ":" and `detail`,
    // with no blank between the first three: the messages read so on purpose.
    std::string memberError(const std::string& serverId, const std::string& detail);
};

class TOVMembersOfFamilyJsonParser : public TOVManualOrHistoryLinkJsonParser {
public:
    ~TOVMembersOfFamilyJsonParser() override;
    bool parseSection(tovjson::Value& root, EditRequest& request);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

class TOVManualLinkAncestorsJsonParser : public TOVManualOrHistoryLinkJsonParser {
public:
    ~TOVManualLinkAncestorsJsonParser() override;
    bool parseSection(tovjson::Value& root, EditRequest& request);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

class TOVEditorObjectTypeJsonParser : public TOVJsonParser {
public:
    ~TOVEditorObjectTypeJsonParser() override;
    // An empty string is a valid object type here.
    bool parseSection(tovjson::Value& root, EditRequest& request);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

class TOVInitialAttributesParser : public TOVJsonParser {
public:
    ~TOVInitialAttributesParser() override;
    bool parseSection(tovjson::Value& root, EditRequest& request);

protected:
    std::string getRuleName() override;
    void getAllNecessaryKeywords(std::vector<std::string>& keywords) override;
};

// Keeps the base's empty keyword list on purpose: a missing "targetAttributes"
// fails the parse without a message of its own.
class TOVTargetAttributesParser : public TOVJsonParser {
public:
    ~TOVTargetAttributesParser() override;
    bool parseSection(tovjson::Value& root, EditRequest& request);

protected:
    std::string getRuleName() override;
};

#endif  // TOV_EVALUATORS_TOVTRANSITIONJSONPARSERS_H_
