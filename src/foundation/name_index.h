// A hash of names to their places in a list, built once and asked many
// times: a lookup asks once per rule whether the request names the rule's
// attribute, which a scan of the names made cost a pass over them per rule.
// Names match exactly, byte for byte, as attribute names do everywhere.
#ifndef TOV_FOUNDATION_NAME_INDEX_H_
#define TOV_FOUNDATION_NAME_INDEX_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

class NameIndex {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // Room for `count` names without growing: the table stays at most
    // three quarters full.
    explicit NameIndex(std::size_t count) {
        std::size_t capacity = 8;
        shift = 61;
        while (capacity * 3 < count * 4) {
            capacity *= 2;
            --shift;
        }
        slots.resize(capacity);
    }

    // The name gets the next place: 0 for the first added, and so on. The
    // characters are not copied, so they must outlive the index. A name added
    // twice keeps its first place.
    void add(std::string_view name) {
        if ((added + 1) * 4 > slots.size() * 3) {
            grow();
        }
        const std::size_t place = added++;
        const std::uint64_t code = hash(name);
        for (std::size_t slot = firstSlot(code);; slot = (slot + 1) & mask()) {
            Slot& candidate = slots[slot];
            if (candidate.name.data() == nullptr) {
                candidate = Slot{name, code, place};
                return;
            }
            if (candidate.hash == code && sameBytes(candidate.name, name)) {
                return;
            }
        }
    }

    // The place of `name`, or npos when it was never added.
    std::size_t find(std::string_view name) const {
        const std::uint64_t code = hash(name);
        for (std::size_t slot = firstSlot(code);; slot = (slot + 1) & mask()) {
            const Slot& candidate = slots[slot];
            if (candidate.name.data() == nullptr) {
                return npos;
            }
            if (candidate.hash == code && sameBytes(candidate.name, name)) {
                return candidate.place;
            }
        }
    }

private:
    // An empty slot has no characters at all; an added name, even an empty
    // one, points into its string.
    struct Slot {
        std::string_view name;
        std::uint64_t hash = 0;
        std::size_t place = 0;
    };

    // Attribute names are short: eight bytes at a time, the last up to eight
    // read as two overlapping halves, each word mixed in by a multiplication,
    // the length besides. A slot is taken from the top bits, the mixed ones.
    static std::uint64_t hash(std::string_view name) {
        constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ULL;
        const char* bytes = name.data();
        std::size_t left = name.size();
        std::uint64_t value = (left + 1) * kMultiplier;
        for (; left > 8; left -= 8, bytes += 8) {
            value = (value ^ load<std::uint64_t>(bytes)) * kMultiplier;
        }
        std::uint64_t last = 0;
        if (left >= 4) {
            last = load<std::uint32_t>(bytes) |
                   (static_cast<std::uint64_t>(load<std::uint32_t>(bytes + left - 4)) << 32);
        } else if (left > 0) {
            last = static_cast<unsigned char>(bytes[0]) |
                   (static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[left / 2])) << 8) |
                   (static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[left - 1])) << 16);
        }
        return (value ^ last) * kMultiplier;
    }

    template <typename Word>
    static Word load(const char* bytes) {
        Word word;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }

    // Names of four to eight bytes, the most common, are compared as two
    // overlapping words rather than through a call.
    static bool sameBytes(std::string_view first, std::string_view second) {
        const std::size_t size = first.size();
        if (size != second.size()) {
            return false;
        }
        if (size >= 4 && size <= 8) {
            return load<std::uint32_t>(first.data()) == load<std::uint32_t>(second.data()) &&
                   load<std::uint32_t>(first.data() + size - 4) ==
                       load<std::uint32_t>(second.data() + size - 4);
        }
        return size == 0 || std::memcmp(first.data(), second.data(), size) == 0;
    }

    std::size_t mask() const { return slots.size() - 1; }
    std::size_t firstSlot(std::uint64_t code) const {
        return static_cast<std::size_t>(code >> shift);
    }

    // More names than announced: twice the room, every name in its new slot.
    void grow() {
        std::vector<Slot> old(slots.size() * 2);
        old.swap(slots);
        --shift;
        for (const Slot& entry : old) {
            if (entry.name.data() == nullptr) {
                continue;
            }
            std::size_t slot = firstSlot(entry.hash);
            while (slots[slot].name.data() != nullptr) {
                slot = (slot + 1) & mask();
            }
            slots[slot] = entry;
        }
    }

    std::vector<Slot> slots;
    // 64 less the bits of a slot number.
    unsigned shift = 61;
    std::size_t added = 0;
};

#endif  // TOV_FOUNDATION_NAME_INDEX_H_
