// The streaming walk hands a value's events to a reader exactly as a value
// built whole tells them, and a value built whole tells them in document
// order, at any depth.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "json/TOVJsonParser.h"
#include "json/document_walk.h"
#include "json/json_types.h"

namespace {

// Writes every event down, strings with their exact bytes and length.
class EventLog : public tovjson::ValueReader {
public:
    void open(rapidjson::Type containerType) override {
        log += containerType == rapidjson::kObjectType ? "{" : "[";
    }
    void key(const char* name, std::size_t length) override {
        log += "k(" + std::string(name, length) + ")";
    }
    void close() override { log += "}"; }
    void scalar(rapidjson::Type type) override { log += "s" + std::to_string(type); }
    void string(const char* text, std::size_t length) override {
        log += "\"" + std::to_string(length) + ":" + std::string(text, length) + "\"";
    }

    std::string log;
};

// Reads every member of the root by its events, each into the log after
// the member's name, and calls `readEnded` once per member.
class ReadingWalker : public tovjson::DocumentWalker {
public:
    ReadingWalker() : tovjson::DocumentWalker(2) {}

    tovjson::Step value(rapidjson::Type type) override {
        if (!atRoot) {
            atRoot = true;
            return type == rapidjson::kObjectType ? tovjson::Step::kEnter : tovjson::Step::kSkip;
        }
        return tovjson::Step::kRead;
    }
    void key(const char* name, std::size_t length) override {
        events.log += "member(" + std::string(name, length) + ")";
    }
    void leave() override {}
    void captured(tovjson::Value& /*value*/) override { ADD_FAILURE() << "nothing is captured"; }
    tovjson::ValueReader& valueReader() override { return events; }
    void readEnded() override {
        events.log += "|";
        ++reads;
    }

    EventLog events;
    int reads = 0;

private:
    bool atRoot = false;
};

// What the same members, parsed whole, tell by readValueEvents.
std::string eventsOfTree(const std::string& text) {
    tovjson::Document document;
    document.Parse<kTOVParseFlags>(text.c_str(), text.size());
    EXPECT_FALSE(document.HasParseError());
    EventLog events;
    for (const auto& member : document.GetObject()) {
        events.log +=
            "member(" + std::string(member.name.GetString(), member.name.GetStringLength()) + ")";
        tovjson::readValueEvents(member.value, events);
        events.log += "|";
    }
    return events.log;
}

TEST(DocumentWalk, AValueBuiltWholeTellsItsEventsInDocumentOrder) {
    tovjson::Document document;
    document.Parse<kTOVParseFlags>(R"({"a":[1,"x",{"b":null,"c":[]}],"d":true,"e":{}})");
    EventLog events;
    tovjson::readValueEvents(document, events);
    EXPECT_EQ(events.log, "{k(a)[s6\"1:x\"{k(b)s0k(c)[}}}k(d)s2k(e){}}");
}

TEST(DocumentWalk, DeepNestingTellsEveryOpenAndCloseWithoutExhaustingTheStack) {
    const std::size_t depth = 100000;
    const std::string text = std::string(depth, '[') + "\"x\"" + std::string(depth, ']');
    tovjson::Document document;
    document.Parse<kTOVParseFlags>(text.c_str());
    ASSERT_FALSE(document.HasParseError());
    EventLog events;
    tovjson::readValueEvents(document, events);
    EXPECT_EQ(events.log, std::string(depth, '[') + "\"1:x\"" + std::string(depth, '}'));
}

TEST(DocumentWalk, ValuesReadStreamingTellTheEventsOfTheTree) {
    const std::vector<std::string> texts = {
        R"({"rule":{"attribute":"S","fromValue":"a","toValue":["b","c"]}})",
        R"({"a":"x\u0000y","b":"\u00e9\"\\","c":-1.5e3,"d":18446744073709551615,"e":[[[[]]]]})",
        R"({"a":{"a":{"a":{"a":{"a":1}}}},"b":[{},[],"",0,false,null],"a":"again"})",
        R"({"only":"scalar"})",
        R"({})",
    };
    for (const std::string& text : texts) {
        ReadingWalker walker;
        ASSERT_TRUE(tovjson::walkDocument(text, false, walker)) << text;
        EXPECT_EQ(walker.events.log, eventsOfTree(text)) << text;
    }
}

TEST(DocumentWalk, EachValueReadIsHandedOverOnceWhole) {
    ReadingWalker walker;
    ASSERT_TRUE(tovjson::walkDocument(R"({"a":[1,[2,[3]]],"b":"s","c":{"d":{}}})", false, walker));
    EXPECT_EQ(walker.reads, 3);
    EXPECT_EQ(walker.events.log, "member(a)[s6[s6[s6}}}|member(b)\"1:s\"|member(c){k(d){}}|");
}

TEST(DocumentWalk, DeepNestingStreamsToTheReaderWithoutExhaustingTheStack) {
    const std::size_t depth = 100000;
    const std::string text = "{\"deep\":" + std::string(depth, '[') + std::string(depth, ']') + "}";
    ReadingWalker walker;
    ASSERT_TRUE(tovjson::walkDocument(text, false, walker));
    EXPECT_EQ(walker.reads, 1);
    EXPECT_EQ(walker.events.log,
              "member(deep)" + std::string(depth, '[') + std::string(depth, '}') + "|");
}

}  // namespace
