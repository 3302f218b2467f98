// A batch line hands its request to the library as the text it has in the
// line; the answers must be those of the way through the line's whole tree,
// which writes the request back to text. Both ways answer the same generated
// and mutated lines, in both output forms, and every answer must match byte
// for byte.

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <initializer_list>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "batch_line.h"
#include "json/json_types.h"
#include "tov/TOVCoreDataControllers.h"
#include "tov/entry_points.h"

namespace {

using tovcli::OutputFormat;
using namespace std::string_literals;

const std::string& pick(std::mt19937& random, const std::vector<std::string>& choices) {
    return choices[random() % choices.size()];
}

std::string examplePath(const std::string& name) {
    return std::string(TOV_EXAMPLES_DIR) + "/" + name;
}

TOVCoreDataControllers& exampleCoreData() {
    static TOVCoreDataControllers* core = [] {
        auto* loaded = new TOVCoreDataControllers();
        loaded->initializeByMalloc();
        setTOVLoggingFolder("", loaded);
        InitializeTOVRulesFromFile(examplePath("rules.json"), loaded);
        InitializeTOV_DMInfoFromFile(examplePath("datamodel.json"), loaded);
        return loaded;
    }();
    return *core;
}

std::vector<std::string> exampleLines() {
    std::ifstream in(examplePath("requests.jsonl"), std::ios::binary);
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(in, line)) {
        lines.push_back(line);
    }
    return lines;
}

// Writes parsed JSON back to text in a style drawn at random: white space
// between tokens, characters of strings escaped, members repeated, numbers in
// other forms, so that the line's text and the tree's text of it differ.
class Restyler {
public:
    explicit Restyler(std::mt19937& random) : random(random) {}

    std::string text(const tovjson::Value& value) {
        out.clear();
        write(value, 0);
        return out;
    }

private:
    bool oneIn(unsigned n) { return random() % n == 0; }

    void space() {
        static const std::vector<std::string> kSpaces = {"", "", "", " ", "\t", "\r", "  \t "};
        out += pick(random, kSpaces);
    }

    void string(const char* text, std::size_t length) {
        const std::string_view kHex = "0123456789abcdef";
        out += '"';
        for (std::size_t i = 0; i < length; ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            if (byte < 0x20 || byte == '"' || byte == '\\' || (byte < 0x80 && oneIn(8))) {
                out += "\\u00";
                out += kHex[byte >> 4];
                out += kHex[byte & 0xF];
            } else if (byte == '/' && oneIn(2)) {
                out += "\\/";
            } else {
                out += static_cast<char>(byte);
            }
        }
        if (oneIn(40)) {
            static const std::vector<std::string> kOddities = {
                "\\u0000", "\\ud83d\\ude00", "\\udc00", "\xc3\xa9", "\xff\xfe", "\\u00e9"};
            out += pick(random, kOddities);
        }
        out += '"';
    }

    void number() {
        static const std::vector<std::string> kNumbers = {"0",
                                                          "-0",
                                                          "1.0",
                                                          "-0.0",
                                                          "1e2",
                                                          "1E+2",
                                                          "0.1000000000000000055511151231257827",
                                                          "1e-400",
                                                          "10e308",
                                                          "-1.8e308",
                                                          "12345678901234567890123",
                                                          "18446744073709551615",
                                                          "9223372036854775808",
                                                          "-9223372036854775809",
                                                          "2.2250738585072011e-308",
                                                          "5e-324",
                                                          "1.7976931348623157e308",
                                                          "123456789012345678"};
        out += pick(random, kNumbers);
    }

    void scalarInstead() {
        switch (random() % 6) {
            case 0:
                number();
                break;
            case 1:
                out += "null";
                break;
            case 2:
                out += oneIn(2) ? "true" : "false";
                break;
            case 3:
                out += "[]";
                break;
            case 4:
                out += "{}";
                break;
            default:
                out += "[1,{\"a\":[]},\"x\"]";
        }
    }

    void write(const tovjson::Value& value, int depth) {
        space();
        if (depth > 0 && oneIn(30)) {
            scalarInstead();
        } else if (value.IsObject()) {
            out += '{';
            bool first = true;
            for (const auto& member : value.GetObject()) {
                const int times = oneIn(12) ? 2 : 1;
                for (int time = 0; time < times; ++time) {
                    if (!first) {
                        space();
                        out += ',';
                    }
                    first = false;
                    space();
                    string(member.name.GetString(), member.name.GetStringLength());
                    space();
                    out += ':';
                    write(member.value, depth + 1);
                }
            }
            space();
            out += '}';
        } else if (value.IsArray()) {
            out += '[';
            bool first = true;
            for (const auto& element : value.GetArray()) {
                if (!first) {
                    out += ',';
                }
                first = false;
                write(element, depth + 1);
            }
            space();
            out += ']';
        } else if (value.IsString()) {
            string(value.GetString(), value.GetStringLength());
        } else if (value.IsBool()) {
            out += value.GetBool() ? "true" : "false";
        } else if (value.IsNull()) {
            out += "null";
        } else {
            number();
        }
        space();
    }

    std::mt19937& random;
    std::string out;
};

// An object of the members given, in their order.
std::string object(const std::vector<std::string>& members) {
    std::string text = "{";
    for (std::size_t i = 0; i < members.size(); ++i) {
        text += (i == 0 ? "" : ",") + members[i];
    }
    return text + "}";
}

std::string nested(std::size_t depth, const std::string& inside) {
    return std::string(depth, '[') + inside + std::string(depth, ']');
}

// Lines built whole: the frame's members in every order, repeated, missing
// and of every type, around requests of the scenario.
std::string framedLine(std::mt19937& random, const std::vector<std::string>& requests) {
    const std::string& request = requests[random() % requests.size()];
    static const std::vector<std::string> kKinds = {"\"edit\"",
                                                    "\"save\"",
                                                    "\"options\"",
                                                    "\"link\"",
                                                    "\"edit-before-resolution\"",
                                                    "\"e\\u0064it\"",
                                                    "\"edit\\u0000\"",
                                                    "\"rules\"",
                                                    "\"nothing\"",
                                                    "3",
                                                    "null",
                                                    "{\"kind\":\"edit\"}",
                                                    "[\"edit\"]"};
    static const std::vector<std::string> kIds = {
        "1",  "\"a\"", "null",   "[1,2]", "{\"x\":{\"y\":[]}}", "\"\\u0000\\n\"",
        "-0", "1e2",   "10e308", "true"};
    std::vector<std::string> members;
    const unsigned count = 1 + random() % 5;
    for (unsigned i = 0; i < count; ++i) {
        switch (random() % 7) {
            case 0:
            case 1:
                members.push_back("\"kind\":" + std::string(pick(random, kKinds)));
                break;
            case 2:
            case 3:
                members.push_back("\"request\" : " + request);
                break;
            case 4:
                members.push_back("\"id\":" + std::string(pick(random, kIds)));
                break;
            case 5:
                members.push_back(random() % 2 == 0 ? "\"req\\u0075est\":\"x\""
                                                    : "\"request\":" + nested(random() % 4, "1"));
                break;
            default:
                members.push_back("\"other\":" + nested(random() % 3, "{\"kind\":\"link\"}"));
        }
    }
    return object(members);
}

// A byte or a few changed, dropped or added anywhere, as a sender's fault.
void mutateBytes(std::mt19937& random, std::string& line) {
    static const std::string kBytes = "{}[]\":,\\ u0e1-.\0\xef\xbb\xbf\r\t"s;
    const unsigned edits = 1 + random() % 3;
    for (unsigned i = 0; i < edits; ++i) {
        const std::size_t at = line.empty() ? 0 : random() % (line.size() + 1);
        const char byte = kBytes[random() % kBytes.size()];
        switch (random() % 3) {
            case 0:
                line.insert(line.begin() + static_cast<std::ptrdiff_t>(at), byte);
                break;
            case 1:
                if (at < line.size()) {
                    line.erase(at, 1);
                }
                break;
            default:
                if (at < line.size()) {
                    line[at] = byte;
                }
        }
    }
}

std::vector<std::string> generatedLines() {
    std::mt19937 random(20261125);
    Restyler restyler(random);
    std::vector<std::string> lines;
    std::vector<std::string> requests;
    for (const std::string& example : exampleLines()) {
        lines.push_back(example);
        tovjson::Document parsed;
        parsed.Parse<rapidjson::kParseIterativeFlag>(example.c_str(), example.size());
        if (!parsed.HasParseError() && parsed.IsObject() && parsed.HasMember("request")) {
            requests.push_back(restyler.text(parsed["request"]));
        }
    }
    const std::vector<std::string> examples = lines;
    for (int i = 0; i < 4000; ++i) {
        std::string line;
        const unsigned way = random() % 10;
        if (way < 5) {
            tovjson::Document parsed;
            const std::string& example = examples[random() % examples.size()];
            parsed.Parse<rapidjson::kParseIterativeFlag>(example.c_str(), example.size());
            line = restyler.text(parsed);
        } else if (way < 8) {
            line = framedLine(random, requests);
        } else {
            line = examples[random() % examples.size()];
        }
        if (random() % 5 == 0) {
            mutateBytes(random, line);
        }
        if (random() % 25 == 0) {
            line.insert(0, random() % 2 == 0 ? "\xef\xbb\xbf" : "\xef ");
        }
        if (random() % 25 == 0) {
            line += random() % 2 == 0 ? std::string("\0 trailing", 10) : std::string(" \r");
        }
        lines.push_back(line);
    }
    // Nesting far deeper than any stack frame per level would allow.
    const std::string deep = nested(100000, "{}");
    lines.push_back(object({"\"kind\":\"edit\"", "\"request\":{\"objectType\":" + deep + "}"}));
    lines.push_back(object({"\"id\":" + deep, "\"kind\":\"edit\"", "\"request\":{}"}));
    lines.push_back(object({"\"id\":" + deep, "\"kind\":3"}));
    lines.push_back(deep);
    lines.push_back(object({"\"kind\":\"edit\"", "\"request\":" + nested(100000, "")}));
    return lines;
}

TEST(BatchLineDifferential, TheLinesTextAnswersAsTheTreesText) {
    const tovcli::RequestJudge judge = tovcli::judgeWithCoreData(&exampleCoreData());
    std::size_t requests = 0;
    std::size_t lineNumber = 0;
    std::size_t beyondDouble = 0;
    for (const std::string& line : generatedLines()) {
        ++lineNumber;
        // The tree's way cannot write such a line's numbers back; see below.
        if (tovcli::holdsNumberBeyondDouble(line)) {
            ++beyondDouble;
            continue;
        }
        for (const OutputFormat format : {OutputFormat::kText, OutputFormat::kJson}) {
            const tovcli::BatchAnswer tree =
                tovcli::answerBatchLineFromTree(line, lineNumber, judge, format);
            const tovcli::BatchAnswer text =
                tovcli::answerBatchLine(line, lineNumber, judge, format);
            ASSERT_EQ(text.text, tree.text) << "line: " << line.substr(0, 400);
            ASSERT_EQ(text.wasRequest, tree.wasRequest) << "line: " << line.substr(0, 400);
            requests += tree.wasRequest ? 1 : 0;
        }
    }
    // The generated lines reach the library often enough to mean something.
    EXPECT_GT(requests, 2000U);
    EXPECT_GT(beyondDouble, 0U);
}

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) {
        text += part;
    }
    return text;
}

// Lines at the edges of what is scanned without RapidJSON's reader and what is
// left to it: numbers, escapes, nesting, names and kinds written with escapes,
// and what may stand around the root.
std::vector<std::string> edgeLines() {
    const std::string request = R"({"objectType": "Part", "initialAttributes": {"name": "a"}})";
    const auto withRequest = [&](const std::string& before, const std::string& after) {
        return before + request + after;
    };
    std::vector<std::string> lines = {
        withRequest(R"({"kind":"edit","request":)", "}"),
        withRequest(R"(  {"kind" : "edit" , "request" : )", " }  "),
        withRequest(R"({"kind":"edit","request":)", "} x"),
        withRequest(R"({"kind":"edit","request":)", "},"),
        withRequest(R"({"kind":"edit","request":)", ""),
        withRequest(R"({"kind":"edit","request":)", "}}"),
        withRequest(R"({"\u006bind":"edit","request":)", "}"),
        withRequest(R"({"kind":"\u0065dit","request":)", "}"),
        withRequest(R"({"kind":"edit","kind":"link","request":)", "}"),
        withRequest(R"({"kind":"edit","request":)", R"(,"request":[]})"),
        withRequest(R"({"kind":"edit","req\u0075est":[],"request":)", "}"),
        withRequest(R"({"kind":"edit","request":)", R"(,"kind":"link"})"),
        withRequest(R"({"kind":"edit",,"request":)", "}"),
        withRequest(R"({"kind":"edit","request":)", R"(,})"),
        withRequest(R"({"kind":"edit","request" )", "}"),
        withRequest(R"({"kind":"edit" "request":)", "}"),
        withRequest(R"({kind:"edit","request":)", "}"),
        "{}",
        "[]",
        "{",
        "\"kind\"",
        R"({"kind":"edit","request":{}})",
        R"({"kind":"edit","request":[]})",
        R"({"kind":"edit","request":"{}"})",
        R"({"kind":"edit","request":{"objectType":"Part","x":[]},"id":{}})",
        R"({"kind":"edit","request":{"objectType":"Part","x":[1,]}})",
        R"({"kind":"edit","request":{"objectType":"Part","x":[,1]}})",
        R"({"kind":"edit","request":{"objectType":"Part","x":{"a":1,}}})",
        R"({"kind":"edit","request":{"objectType":"Part","x":[1 2]}})",
        R"({"kind":"edit","request":{"objectType":"Part","x":[1}}})",
        R"({"kind":"edit","request":{"objectType":"Part","x":{"a"}}}})",
    };
    const std::vector<std::string> values = {
        "0",
        "-0",
        "7",
        "-7",
        "0.5",
        "-0.5",
        "1.",
        ".5",
        "-",
        "--1",
        "01",
        "-01",
        "1e",
        "1e+",
        "1E+5",
        "1e-5",
        "1e99",
        "1e100",
        "1e-99",
        "1e-100",
        "1.5e308",
        "1e309",
        "123456789012345678",
        "1234567890123456789",
        "-123456789012345678.25e-99",
        "0.00000000000000000000000000000000000001",
        "truex",
        "tru",
        "true",
        "false",
        "fals",
        "null",
        "nul",
        "nullnull",
        "1true",
        "\"\"",
        "\"a\\\"b\"",
        "\"a\\\\\"",
        "\"\\/\\b\\f\\n\\r\\t\"",
        "\"\\u00e9\"",
        "\"\\u00E9\"",
        "\"\\uD83D\\uDE00\"",
        "\"\\uD800\"",
        "\"\\uDC00\"",
        "\"\\uD800\\u0041\"",
        "\"\\u12G4\"",
        "\"\\u12\"",
        "\"\\x\"",
        "\"\\\"",
        "\"a\tb\"",
        "\"a\nb\"",
        "\"\xc3\xa9\"",
        "\"\xff\xfe\"",
        "\"unterminated",
        "\"a\"b\"",
        std::string("\"a\0b\"", 5),
        "[1, 2 , [ ] ,{ }]",
        "{\"\":1}",
    };
    for (const std::string& value : values) {
        lines.push_back(
            joined({R"({"kind":"edit","request":{"objectType":"Part","x":)", value, "}}"}));
        lines.push_back(joined({R"({"id":)", value, R"(,"kind":"edit","request":)", request, "}"}));
        lines.push_back(joined({R"({"kind":)", value, R"(,"request":)", request, "}"}));
        lines.push_back(joined({"{", value, R"(:1,"kind":"edit","request":)", request, "}"}));
    }
    for (const std::size_t depth : {62, 63, 64, 65, 200}) {
        lines.push_back(joined(
            {R"({"kind":"edit","request":{"objectType":"Part","x":)", nested(depth, "1"), "}}"}));
        lines.push_back(
            joined({R"({"id":)", nested(depth, "{}"), R"(,"kind":"edit","request":{}})"}));
        lines.push_back(joined({R"({"kind":"edit","request":)", nested(depth, ""), "}"}));
    }
    lines.push_back(std::string(R"({"kind":"edit","request":{}})") + '\0' + "x");
    lines.push_back(std::string(R"({"kind":"edit",)") + '\0' + R"("request":{}})");
    lines.emplace_back(
        "\xef\xbb\xbf"
        R"({"kind":"edit","request":{}})");
    lines.emplace_back(R"({"kind":"edit","request":{"objectType":"Part"}})"
                       "\t\r\n ");
    return lines;
}

TEST(BatchLineDifferential, LinesAtTheEdgesOfTheQuickScanAnswerAsTheTree) {
    const tovcli::RequestJudge judge = tovcli::judgeWithCoreData(&exampleCoreData());
    std::size_t lineNumber = 0;
    std::size_t requests = 0;
    std::size_t refused = 0;
    for (const std::string& line : edgeLines()) {
        ++lineNumber;
        if (tovcli::holdsNumberBeyondDouble(line)) {
            continue;
        }
        for (const OutputFormat format : {OutputFormat::kText, OutputFormat::kJson}) {
            const tovcli::BatchAnswer tree =
                tovcli::answerBatchLineFromTree(line, lineNumber, judge, format);
            const tovcli::BatchAnswer text =
                tovcli::answerBatchLine(line, lineNumber, judge, format);
            ASSERT_EQ(text.text, tree.text) << "line: " << line.substr(0, 400);
            ASSERT_EQ(text.wasRequest, tree.wasRequest) << "line: " << line.substr(0, 400);
            (tree.wasRequest ? requests : refused) += 1;
        }
    }
    EXPECT_GT(requests, 100U);
    EXPECT_GT(refused, 100U);
}

// A number beyond a double's range reads as infinity, which no writer writes
// back: the request still reaches the library as the line wrote it, so the
// answer is tov eval's, and an id holding one is echoed as written.
TEST(BatchLineDifferential, ANumberBeyondADoubleReachesTheLibraryAsWritten) {
    const tovcli::RequestJudge judge = tovcli::judgeWithCoreData(&exampleCoreData());
    const std::string request = R"({"objectType": "Part", "x": 10e308})";
    const std::string line = R"({"id": [1.8e308], "kind": "edit", "request": )" + request + "}";
    ASSERT_TRUE(tovcli::holdsNumberBeyondDouble(line));
    EXPECT_FALSE(tovcli::holdsNumberBeyondDouble(R"({"kind": "edit", "request": {"x": 1e308}})"));
    EXPECT_FALSE(tovcli::holdsNumberBeyondDouble("{\"x\": 10e308"));  // no JSON

    const std::string expected =
        R"({"Result":"Failure","ResultComment":"Initial Attributes demands ALL keywords: [initialAttributes]"})";
    const tovcli::RequestKind* edit = tovcli::findRequestKind("edit");
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(judge(*edit, request).turnResponseIntoASingleString(), expected);
    const tovcli::BatchAnswer text = tovcli::answerBatchLine(line, 1, judge, OutputFormat::kText);
    EXPECT_EQ(text.text, expected);
    EXPECT_TRUE(text.wasRequest);

    const tovcli::BatchAnswer json = tovcli::answerBatchLine(line, 1, judge, OutputFormat::kJson);
    EXPECT_EQ(json.text.rfind(R"({"id":[1.8e308],"result":false,"comment":"Initial Attributes)", 0),
              0U)
        << json.text;
    const tovcli::BatchAnswer refused =
        tovcli::answerBatchLine(R"({"id": 10e308, "kind": "edit"})", 2, judge, OutputFormat::kJson);
    EXPECT_EQ(refused.text, R"({"id":10e308,"line":2,"error":"missing \"request\""})");
}

}  // namespace
