#pragma once

#include "CallSigns.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace zkr {

// A hash table from calls to small values in one block of memory (open
// addressing, linear probing, at most three quarters used). It grows without
// a pause: the entries move to the larger table a few slots with every
// insert, and lookups meanwhile search both. A removed entry leaves a mark
// that probes go past, until the next growth drops the marks.
template <typename Value> class CallKeyTable {
public:
    struct Slot {
        CallKey key; // empty: a free slot
        Value value{};
    };
    static_assert(std::is_trivially_copyable_v<Slot>, "slots are taken zeroed from calloc");

    // Slots from calloc: the system hands out large blocks as zero pages on
    // first use, so a new table costs little until it fills (zeroing 25 MB
    // at once can take most of 100 ms).
    class Slots {
    public:
        Slots() = default;
        explicit Slots(std::size_t size)
            : data_(static_cast<Slot *>(std::calloc(size, sizeof(Slot)))), size_(size) {
            if (data_ == nullptr) {
                throw std::bad_alloc();
            }
        }
        Slots(Slots &&other) noexcept { swap(other); }
        Slots &operator=(Slots &&other) noexcept {
            Slots(std::move(other)).swap(*this);
            return *this;
        }
        Slots(const Slots &) = delete;
        Slots &operator=(const Slots &) = delete;
        ~Slots() { std::free(data_); }
        void swap(Slots &other) noexcept {
            std::swap(data_, other.data_);
            std::swap(size_, other.size_);
        }
        std::size_t size() const { return size_; }
        bool empty() const { return size_ == 0; }
        Slot &operator[](std::size_t i) { return data_[i]; }
        const Slot &operator[](std::size_t i) const { return data_[i]; }
        Slot *begin() { return data_; }
        Slot *end() { return data_ + size_; }
        const Slot *begin() const { return data_; }
        const Slot *end() const { return data_ + size_; }

    private:
        Slot *data_ = nullptr;
        std::size_t size_ = 0;
    };

    CallKeyTable() : slots_(MinCapacity) {}

    std::size_t size() const { return size_; }
    void clear() {
        slots_ = Slots(MinCapacity);
        old_ = Slots();
        moved_ = size_ = removed_ = 0;
    }
    // Grows at once to hold `count` entries (building a table from a file).
    void reserve(std::size_t count) {
        moveSome(old_.size());
        if (capacityFor(count) > slots_.size()) {
            startGrowing(capacityFor(count));
            moveSome(old_.size());
        }
    }

    const Value *find(const CallKey &key) const {
        const Slot *slot = probe(slots_, key);
        if (slot == nullptr && !old_.empty()) {
            slot = probe(old_, key);
        }
        return slot == nullptr ? nullptr : &slot->value;
    }
    Value *find(const CallKey &key) {
        return const_cast<Value *>(static_cast<const CallKeyTable *>(this)->find(key));
    }

    // The value of `key`; a new one, value-initialised, when `inserted`.
    Value &insert(const CallKey &key, bool &inserted) {
        moveSome(MovedPerInsert);
        inserted = false;
        if (Slot *slot = const_cast<Slot *>(probe(slots_, key))) {
            return slot->value;
        }
        if (Slot *slot = old_.empty() ? nullptr : const_cast<Slot *>(probe(old_, key))) {
            Slot &moved = place(*slot);
            slot->key = Removed;
            return moved.value;
        }
        if ((size_ + removed_ + 1) * 4 > slots_.size() * 3) {
            moveSome(old_.size()); // only when inserts outpace the moving
            // Half used after: a table full of removal marks keeps its size.
            std::size_t capacity = MinCapacity;
            while (capacity < 2 * (size_ + 1)) {
                capacity *= 2;
            }
            startGrowing(capacity);
        }
        inserted = true;
        ++size_;
        return place(Slot{key, Value{}}).value;
    }

    // Removes the entries for which drop(key, value) is true, in one pass
    // that moves no other entry.
    template <typename Drop> void eraseIf(Drop &&drop) {
        for (Slots *table : {&slots_, &old_}) {
            for (Slot &slot : *table) {
                if (holds(slot) && drop(slot.key, slot.value)) {
                    slot.key = Removed;
                    --size_;
                    removed_ += table == &slots_ ? 1 : 0;
                }
            }
        }
    }

    // visit(key, value) for every entry, in no order; false stops.
    template <typename Visit> void forEach(Visit &&visit) const {
        for (const Slots *table : {&slots_, &old_}) {
            for (const Slot &slot : *table) {
                if (holds(slot) && !visit(slot.key, slot.value)) {
                    return;
                }
            }
        }
    }

private:
    static constexpr std::size_t MinCapacity = 64;
    // Enough to empty the old table long before the new one is full.
    static constexpr std::size_t MovedPerInsert = 16;
    // No call packs to this: six bits of 63 are no character.
    static constexpr CallKey Removed{std::numeric_limits<std::uint64_t>::max(),
                                     std::numeric_limits<std::uint64_t>::max()};

    static bool holds(const Slot &slot) { return !slot.key.isEmpty() && !(slot.key == Removed); }

    static std::size_t capacityFor(std::size_t count) {
        std::size_t capacity = MinCapacity;
        while (capacity * 3 < count * 4) {
            capacity *= 2;
        }
        return capacity;
    }

    static const Slot *probe(const Slots &table, const CallKey &key) {
        const std::size_t mask = table.size() - 1;
        for (std::size_t i = CallKeyHash()(key) & mask;; i = (i + 1) & mask) {
            if (table[i].key == key) {
                return &table[i];
            }
            if (table[i].key.isEmpty()) {
                return nullptr;
            }
        }
    }

    // Puts an entry whose key the new table does not hold.
    Slot &place(const Slot &entry) {
        const std::size_t mask = slots_.size() - 1;
        std::size_t i = CallKeyHash()(entry.key) & mask;
        while (holds(slots_[i])) {
            i = (i + 1) & mask;
        }
        if (slots_[i].key == Removed) {
            --removed_;
        }
        slots_[i] = entry;
        return slots_[i];
    }

    void startGrowing(std::size_t capacity) {
        old_ = std::move(slots_);
        slots_ = Slots(capacity);
        moved_ = 0;
        removed_ = 0;
    }

    void moveSome(std::size_t count) {
        if (old_.empty()) {
            return;
        }
        for (const std::size_t end = std::min(old_.size(), moved_ + count); moved_ < end;
             ++moved_) {
            Slot &slot = old_[moved_];
            if (holds(slot)) {
                place(slot);
                slot.key = Removed; // a probe of the old table must not find it twice
            }
        }
        if (moved_ == old_.size()) {
            old_ = Slots();
        }
    }

    Slots slots_;             // a power of two
    Slots old_;               // being emptied into slots_ while the table grows
    std::size_t moved_ = 0;   // slots of old_ done
    std::size_t size_ = 0;    // entries in both
    std::size_t removed_ = 0; // Removed marks in slots_
};

} // namespace zkr
