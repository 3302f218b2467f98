#include "json/document_walk.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include <rapidjson/filereadstream.h>

#include "json/TOVJsonParser.h"

namespace tovjson {

namespace {

// What a capture that outgrows its first chunk takes at a time: RapidJSON's
// own default for a document.
constexpr std::size_t kChunkCapacity = std::size_t{64} * 1024;

}  // namespace

DocumentWalker::~DocumentWalker() = default;

ValueReader& DocumentWalker::valueReader() {
    // Only a walker that asks for kRead is asked for its reader.
    std::abort();
}

void DocumentWalker::readEnded() {}

ValueReader::~ValueReader() = default;

void readValueEvents(const Value& value, ValueReader& reader) {
    // The containers entered, each with the place of its next member or element.
    struct Entered {
        const Value* container;
        rapidjson::SizeType next;
    };
    std::vector<Entered> entered;
    const Value* current = &value;
    for (;;) {
        if (current->IsObject() || current->IsArray()) {
            reader.open(current->GetType());
            entered.push_back({current, 0});
        } else if (current->IsString()) {
            reader.string(current->GetString(), current->GetStringLength());
        } else {
            reader.scalar(current->GetType());
        }
        current = nullptr;
        while (current == nullptr) {
            if (entered.empty()) {
                return;
            }
            Entered& top = entered.back();
            if (top.container->IsObject() && top.next < top.container->MemberCount()) {
                const auto member = top.container->MemberBegin() + top.next++;
                reader.key(member->name.GetString(), member->name.GetStringLength());
                current = &member->value;
            } else if (top.container->IsArray() && top.next < top.container->Size()) {
                current = &(*top.container)[top.next++];
            } else {
                reader.close();
                entered.pop_back();
            }
        }
    }
}

ValueCapture::ValueCapture(unsigned keptDepth)
    : keptDepth(keptDepth), allocator(firstChunk.data(), firstChunk.size(), kChunkCapacity) {}

void ValueCapture::begin() {
    building.clear();
    openContainers = 0;
    skipped = 0;
    result.SetNull();
    whole = false;
    allocator.Clear();
}

void ValueCapture::open(rapidjson::Type containerType) {
    if (skipped > 0) {
        ++skipped;
    } else if (openContainers >= keptDepth) {
        // Kept empty: whoever reads it reads no deeper than its type.
        attach(Value(containerType));
        skipped = 1;
    } else {
        building.emplace_back(containerType);
        ++openContainers;
    }
}

void ValueCapture::key(const char* name, std::size_t length) {
    if (skipped == 0) {
        building.emplace_back(name, static_cast<rapidjson::SizeType>(length), allocator);
    }
}

void ValueCapture::close() {
    if (skipped > 0) {
        --skipped;
        return;
    }
    Value container(std::move(building.back()));
    building.pop_back();
    --openContainers;
    attach(std::move(container));
}

void ValueCapture::attach(Value&& value) {
    if (building.empty()) {
        result = value;  // moves
        whole = true;
    } else if (building.back().IsString()) {
        Value name(std::move(building.back()));
        building.pop_back();
        building.back().AddMember(name, value, allocator);
    } else {
        building.back().PushBack(value, allocator);
    }
}

namespace {

// Hands the reader's events to a walker at the walker's levels, skips what it
// skips, and builds what it captures; keeps no state that grows with depth
// but counters, so that no nesting can exhaust the stack.
class WalkHandler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, WalkHandler> {
public:
    explicit WalkHandler(DocumentWalker& walker) : walker(walker), capture(walker.getKeptDepth()) {}

    bool rootIsObject() const { return rootType == rapidjson::kObjectType; }

    bool Null() {
        return scalar(rapidjson::kNullType, [](Allocator&) { return Value(); });
    }
    bool Bool(bool flag) {
        return scalar(flag ? rapidjson::kTrueType : rapidjson::kFalseType,
                      [flag](Allocator&) { return Value(flag); });
    }
    bool Int(int value) { return number(Value(value)); }
    bool Uint(unsigned value) { return number(Value(value)); }
    bool Int64(std::int64_t value) { return number(Value(value)); }
    bool Uint64(std::uint64_t value) { return number(Value(value)); }
    bool Double(double value) { return number(Value(value)); }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        if (mode == Mode::kRead) {
            reader->string(text, length);
            return true;
        }
        return scalar(
            rapidjson::kStringType,
            [&](Allocator& allocator) { return Value(text, length, allocator); },
            [&](ValueReader& read) { read.string(text, length); });
    }
    bool StartObject() { return open(rapidjson::kObjectType); }
    bool Key(const char* name, rapidjson::SizeType length, bool /*copy*/) {
        if (mode == Mode::kRead) {
            reader->key(name, length);
        } else if (mode == Mode::kCapture) {
            capture.key(name, length);
        } else if (mode == Mode::kWalk) {
            walker.key(name, length);
        }
        return true;
    }
    bool EndObject(rapidjson::SizeType /*members*/) { return close(); }
    bool StartArray() { return open(rapidjson::kArrayType); }
    bool EndArray(rapidjson::SizeType /*elements*/) { return close(); }

private:
    enum class Mode { kWalk, kSkip, kCapture, kRead };

    bool number(Value value) {
        const rapidjson::Type type = value.GetType();
        return scalar(
            type, [&value](Allocator&) { return std::move(value); },
            [type](ValueReader& read) { read.scalar(type); });
    }
    template <typename MakeValue>
    bool scalar(rapidjson::Type type, MakeValue&& make) {
        return scalar(type, make, [type](ValueReader& read) { read.scalar(type); });
    }

    // A scalar: `make` builds it for a capture, `tell` hands it to a reader.
    template <typename MakeValue, typename Tell>
    bool scalar(rapidjson::Type type, MakeValue&& make, Tell&& tell) {
        noteRoot(type);
        if (mode == Mode::kRead) {
            tell(*reader);
        } else if (mode == Mode::kCapture) {
            capture.add(make);
            handOverWhenDone();
        } else if (mode == Mode::kWalk) {
            const Step step = walker.value(type);
            if (step == Step::kCapture) {
                capture.begin();
                capture.add(make);
                handOverWhenDone();
            } else if (step == Step::kRead) {
                tell(walker.valueReader());
                walker.readEnded();
            }
        }
        return true;
    }

    bool open(rapidjson::Type type) {
        noteRoot(type);
        if (mode == Mode::kSkip) {
            ++skipped;
        } else if (mode == Mode::kRead) {
            ++skipped;
            reader->open(type);
        } else if (mode == Mode::kCapture) {
            capture.open(type);
        } else {
            const Step step = walker.value(type);
            if (step == Step::kSkip) {
                mode = Mode::kSkip;
                skipped = 1;
            } else if (step == Step::kCapture) {
                mode = Mode::kCapture;
                capture.begin();
                capture.open(type);
            } else if (step == Step::kRead) {
                mode = Mode::kRead;
                reader = &walker.valueReader();
                skipped = 1;
                reader->open(type);
            }
        }
        return true;
    }

    bool close() {
        if (mode == Mode::kSkip) {
            if (--skipped == 0) {
                mode = Mode::kWalk;
            }
        } else if (mode == Mode::kRead) {
            reader->close();
            if (--skipped == 0) {
                mode = Mode::kWalk;
                walker.readEnded();
            }
        } else if (mode == Mode::kCapture) {
            capture.close();
            handOverWhenDone();
        } else {
            walker.leave();
        }
        return true;
    }

    void handOverWhenDone() {
        if (capture.done()) {
            mode = Mode::kWalk;
            walker.captured(capture.value());
        }
    }

    void noteRoot(rapidjson::Type type) {
        if (!rootSeen) {
            rootSeen = true;
            rootType = type;
        }
    }

    DocumentWalker& walker;
    ValueCapture capture;
    // The reader of the value being read, in kRead.
    ValueReader* reader = nullptr;
    Mode mode = Mode::kWalk;
    // How deep the reader is inside the value skipped, or read, in kSkip or kRead.
    std::size_t skipped = 0;
    bool rootSeen = false;
    rapidjson::Type rootType = rapidjson::kNullType;
};

template <typename Stream>
bool walkStream(Stream& stream, DocumentWalker& walker) {
    WalkHandler handler(walker);
    Reader reader;
    const bool parsed = !reader.Parse<kTOVParseFlags>(stream, handler).IsError();
    return parsed && handler.rootIsObject();
}

// Big enough that reading a file costs few calls, small beside any document.
constexpr std::size_t kFileBufferSize = std::size_t{64} * 1024;

bool walkFile(const std::string& path, DocumentWalker& walker) {
    if (!isRegularFile(path)) {
        return false;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               &std::fclose);
    if (file == nullptr) {
        return false;
    }
    std::vector<char> buffer(kFileBufferSize);
    rapidjson::FileReadStream stream(file.get(), buffer.data(), buffer.size());
    return walkStream(stream, walker);
}

}  // namespace

bool walkDocument(const std::string& input, bool inputIsFilePath, DocumentWalker& walker) {
    if (inputIsFilePath) {
        return walkFile(input, walker);
    }
    // Up to the first zero byte, as a document parses a C string.
    rapidjson::StringStream stream(input.c_str());
    return walkStream(stream, walker);
}

bool isRegularFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

}  // namespace tovjson
