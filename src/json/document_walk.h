// Reads a JSON document as RapidJSON's iterative reader streams it, without
// ever building a tree of the whole. A walker stands at the levels it knows
// (the root, a section, a list) and says of each value that begins there
// whether to step into it, to skip it, or to have it handed over whole as a
// small tree: a rule object, say, which the code that reads one then reads
// as it always has. The grammar and the parse flags are those of a document
// parsed whole, so a text is JSON or not alike on both roads.
#ifndef TOV_JSON_DOCUMENT_WALK_H_
#define TOV_JSON_DOCUMENT_WALK_H_

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "json/json_types.h"

namespace tovjson {

// What a walker wants done with a value that begins at its level.
enum class Step {
    kEnter,    // an object or array: its members or elements come to the walker
    kSkip,     // read past it
    kCapture,  // built whole and handed to `captured`
    kRead,     // its events handed to the walker's `valueReader` as they come
};

// Reads one value from its events, in document order: each container's open
// and close, each member's name before its value, each scalar. Strings come
// whole, zero bytes and all; the text lives only for the call. For code that
// knows the shape it reads and need not have the value built first.
class ValueReader {
public:
    ValueReader() = default;
    ValueReader(const ValueReader&) = delete;
    ValueReader& operator=(const ValueReader&) = delete;
    virtual ~ValueReader();

    virtual void open(rapidjson::Type containerType) = 0;
    virtual void key(const char* name, std::size_t length) = 0;
    virtual void close() = 0;
    // A null, boolean or number.
    virtual void scalar(rapidjson::Type type) = 0;
    virtual void string(const char* text, std::size_t length) = 0;
};

// Hands `value`'s events to `reader` as the reader of a document would, so
// that a value already built reads as one streaming by. Keeps its place in
// a list of its own, so that no nesting can exhaust the stack.
void readValueEvents(const Value& value, ValueReader& reader);

class DocumentWalker {
public:
    // Captured values keep their containers down to `keptDepth` levels below
    // themselves; deeper ones arrive empty, since their walker reads only
    // their type there. So nesting that nobody reads costs no memory.
    explicit DocumentWalker(unsigned keptDepth) : keptDepth(keptDepth) {}
    DocumentWalker(const DocumentWalker&) = delete;
    DocumentWalker& operator=(const DocumentWalker&) = delete;
    virtual ~DocumentWalker();

    unsigned getKeptDepth() const { return keptDepth; }

    // A value of `type` begins at the walker's level: the root, the value of
    // the member whose key came last, or an element of an entered array.
    virtual Step value(rapidjson::Type type) = 0;
    // The name of a member of an entered object, whole.
    virtual void key(const char* name, std::size_t length) = 0;
    // The innermost entered object or array ends.
    virtual void leave() = 0;
    // The value asked for with kCapture, whole; the walker may move from it.
    // Its memory is reused for the next capture.
    virtual void captured(Value& value) = 0;
    // For a value asked for with kRead: the reader of its events, asked once
    // as the value begins, and the call once its last event has gone there.
    virtual ValueReader& valueReader();
    virtual void readEnded();

private:
    unsigned keptDepth;
};

// Builds one value from the reader's events, as a document builds its root,
// keeping containers down to a depth. Strings are copied whole, zero bytes
// and all, as a document copies them.
class ValueCapture {
public:
    explicit ValueCapture(unsigned keptDepth);
    ValueCapture(const ValueCapture&) = delete;
    ValueCapture& operator=(const ValueCapture&) = delete;

    // Forgets the value before, and its memory.
    void begin();
    void open(rapidjson::Type containerType);
    void key(const char* name, std::size_t length);
    void close();
    // A scalar; `make(allocator)` builds it, and is not called when the
    // scalar lies below the kept depth.
    template <typename MakeValue>
    void add(MakeValue&& make) {
        if (skipped == 0) {
            attach(make(allocator));
        }
    }

    // Whether the value begun last is whole.
    bool done() const { return whole; }
    Value& value() { return result; }

private:
    void attach(Value&& value);

    unsigned keptDepth;
    // Containers and member names under construction, outermost first; a
    // string on top is the name of the member whose value comes next.
    std::vector<Value> building;
    std::size_t openContainers = 0;
    // How deep the reader is inside a container that is kept empty.
    std::size_t skipped = 0;
    Value result;
    bool whole = false;
    // Rule objects are small: they mostly fit in this, so that most captures
    // allocate nothing. The allocator keeps its chunk header at its start.
    alignas(std::max_align_t) std::array<char, 4096> firstChunk{};
    Allocator allocator;
};

// Streams `input` (JSON text, or the path of a regular file) through `walker`.
// True when it is JSON, whole and alone, and its root is an object: what a
// document parsed whole would accept. A file that cannot be opened, or is not
// a regular file, is no document.
bool walkDocument(const std::string& input, bool inputIsFilePath, DocumentWalker& walker);

// Only a regular file is opened: a FIFO without a writer would block the call,
// and a device or a folder holds no document. Symbolic links are followed.
bool isRegularFile(const std::string& path);

}  // namespace tovjson

#endif  // TOV_JSON_DOCUMENT_WALK_H_
