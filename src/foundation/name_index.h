// A hash of names to their places in a list, built once and asked many
// times: a lookup asks once per rule whether the request names the rule's
// attribute, which a scan of the names made cost a pass over them per rule.
// Names match exactly, byte for byte, as attribute names do everywhere.
#ifndef TOV_FOUNDATION_NAME_INDEX_H_
#define TOV_FOUNDATION_NAME_INDEX_H_

#include <algorithm>
#include <array>
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
        useSlots(capacity);
    }
    // The slots may lie in the index itself.
    NameIndex(const NameIndex&) = delete;
    NameIndex& operator=(const NameIndex&) = delete;

    // The name gets the next place: 0 for the first added, and so on. The
    // characters are not copied, so they must outlive the index. A name added
    // twice keeps its first place.
    void add(std::string_view name) {
        if ((added + 1) * 4 > slotCount * 3) {
            grow();
        }
        const std::size_t place = added++;
        const std::uint64_t code = hash(name);
        for (std::size_t slot = firstSlot(code);; slot = (slot + 1) & mask()) {
            Slot& candidate = slots[slot];
            if (candidate.name == nullptr) {
                candidate = Slot{name.data(), name.size(), code, place};
                return;
            }
            if (candidate.hash == code && sameBytes(candidate.view(), name)) {
                return;
            }
        }
    }

    // The place of `name`, or npos when it was never added.
    std::size_t find(std::string_view name) const {
        const std::uint64_t code = hash(name);
        for (std::size_t slot = firstSlot(code);; slot = (slot + 1) & mask()) {
            const Slot& candidate = slots[slot];
            if (candidate.name == nullptr) {
                return npos;
            }
            if (candidate.hash == code && sameBytes(candidate.view(), name)) {
                return candidate.place;
            }
        }
    }

private:
    // An empty slot has no characters at all; an added name, even an empty
    // one, points into its string. Plain fields, so that the slots kept in the
    // index need no work until a table of that size is asked for.
    struct Slot {
        const char* name;
        std::size_t size;
        std::uint64_t hash;
        std::size_t place;

        std::string_view view() const { return {name, size}; }
    };
    // A table this small lies in the index itself rather than on the heap.
    static constexpr std::size_t kSlotsInPlace = 32;

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

    std::size_t mask() const { return slotCount - 1; }
    std::size_t firstSlot(std::uint64_t code) const {
        return static_cast<std::size_t>(code >> shift);
    }

    // Empty slots, `count` of them, in the index or on the heap.
    void useSlots(std::size_t count) {
        if (count <= kSlotsInPlace) {
            slots = slotsInPlace.data();
            std::fill_n(slots, count, Slot{nullptr, 0, 0, 0});
        } else {
            heapSlots.assign(count, Slot{nullptr, 0, 0, 0});
            slots = heapSlots.data();
        }
        slotCount = count;
    }

    // More names than announced: twice the room, every name in its new slot.
    void grow() {
        const std::vector<Slot> old(slots, slots + slotCount);
        --shift;
        std::vector<Slot> larger(slotCount * 2, Slot{nullptr, 0, 0, 0});
        heapSlots.swap(larger);
        slots = heapSlots.data();
        slotCount = heapSlots.size();
        for (const Slot& entry : old) {
            if (entry.name == nullptr) {
                continue;
            }
            std::size_t slot = firstSlot(entry.hash);
            while (slots[slot].name != nullptr) {
                slot = (slot + 1) & mask();
            }
            slots[slot] = entry;
        }
    }

    // Left unset: useSlots empties as many as a table takes.
    std::array<Slot, kSlotsInPlace> slotsInPlace;
    std::vector<Slot> heapSlots;
    Slot* slots = nullptr;
    std::size_t slotCount = 0;
    // 64 less the bits of a slot number.
    unsigned shift = 61;
    std::size_t added = 0;
};

#endif  // TOV_FOUNDATION_NAME_INDEX_H_
