// The JSON types of tov: RapidJSON's own, over an allocator that throws
// std::bad_alloc where RapidJSON's default one would hand back NULL, through
// which RapidJSON would then write. Every document, value, string buffer and
// writer of the library and of the program is one of these, so that running
// out of memory is an exception to catch and never a write through NULL.
// Parse flags, grammar and output stay RapidJSON's.
#ifndef TOV_JSON_JSON_TYPES_H_
#define TOV_JSON_JSON_TYPES_H_

#include <cstddef>
#include <cstdlib>
#include <new>

#include <rapidjson/document.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace tovjson {

// RapidJSON's CrtAllocator, but a failed allocation throws. A failed Realloc
// leaves the original block as it was, which RapidJSON's stacks rely on.
class ThrowingAllocator {
public:
    static const bool kNeedFree = true;

    void* Malloc(std::size_t size) {
        if (size == 0) {
            return nullptr;  // as RapidJSON's own allocator answers
        }
        return orThrow(std::malloc(size));
    }
    void* Realloc(void* original, std::size_t /*originalSize*/, std::size_t newSize) {
        if (newSize == 0) {
            std::free(original);
            return nullptr;
        }
        return orThrow(std::realloc(original, newSize));
    }
    static void Free(void* block) { std::free(block); }

private:
    static void* orThrow(void* block) {
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        return block;
    }
};

using Allocator = rapidjson::MemoryPoolAllocator<ThrowingAllocator>;
using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, Allocator, ThrowingAllocator>;
using Value = Document::ValueType;
using StringBuffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, ThrowingAllocator>;
// A reader whose stack allocates through the same allocator, for documents
// read as a stream of events rather than into a tree.
using Reader = rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;
using Writer =
    rapidjson::Writer<StringBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;

}  // namespace tovjson

#endif  // TOV_JSON_JSON_TYPES_H_
