#pragma once

#include "CallSigns.h"

#include <cstddef>
#include <vector>

namespace zkr {

// A hash table from calls to small values in one block of memory (open
// addressing, linear probing, at most three quarters full). Nothing is
// erased on its own: retain() rebuilds the table with what it keeps.
template <typename Value> class CallKeyTable {
public:
    struct Slot {
        CallKey key; // empty: a free slot
        Value value{};
    };

    CallKeyTable() { slots_.resize(MinCapacity); }

    std::size_t size() const { return size_; }
    std::size_t capacity() const { return slots_.size(); }
    void clear() {
        slots_.assign(MinCapacity, Slot{});
        size_ = 0;
    }
    // Room for `count` entries without growing.
    void reserve(std::size_t count) {
        std::size_t capacity = MinCapacity;
        while (capacity * 3 < count * 4) {
            capacity *= 2;
        }
        if (capacity > slots_.size()) {
            rehash(capacity);
        }
    }

    const Value *find(const CallKey &key) const {
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = CallKeyHash()(key) & mask;; i = (i + 1) & mask) {
            if (slots_[i].key == key) {
                return &slots_[i].value;
            }
            if (slots_[i].key.isEmpty()) {
                return nullptr;
            }
        }
    }
    Value *find(const CallKey &key) {
        return const_cast<Value *>(static_cast<const CallKeyTable *>(this)->find(key));
    }

    // The value of `key`; a new one, value-initialised, when `inserted`.
    Value &insert(const CallKey &key, bool &inserted) {
        if ((size_ + 1) * 4 > slots_.size() * 3) {
            rehash(slots_.size() * 2);
        }
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = CallKeyHash()(key) & mask;; i = (i + 1) & mask) {
            Slot &slot = slots_[i];
            inserted = slot.key.isEmpty();
            if (inserted) {
                slot.key = key;
                ++size_;
            }
            if (inserted || slot.key == key) {
                return slot.value;
            }
        }
    }

    // Keeps the entries for which keep(key, value) is true.
    template <typename Keep> void retain(Keep &&keep) {
        std::vector<Slot> old(slots_.size());
        old.swap(slots_);
        size_ = 0;
        for (const Slot &slot : old) {
            if (!slot.key.isEmpty() && keep(slot.key, slot.value)) {
                place(slot);
            }
        }
    }

    // visit(key, value) for every entry, in no order; false stops.
    template <typename Visit> void forEach(Visit &&visit) const {
        for (const Slot &slot : slots_) {
            if (!slot.key.isEmpty() && !visit(slot.key, slot.value)) {
                return;
            }
        }
    }

private:
    static constexpr std::size_t MinCapacity = 64;

    void rehash(std::size_t capacity) {
        std::vector<Slot> old(capacity);
        old.swap(slots_);
        size_ = 0;
        for (const Slot &slot : old) {
            if (!slot.key.isEmpty()) {
                place(slot);
            }
        }
    }

    // Puts an entry of a key not in the table, where there is room.
    void place(const Slot &entry) {
        const std::size_t mask = slots_.size() - 1;
        std::size_t i = CallKeyHash()(entry.key) & mask;
        while (!slots_[i].key.isEmpty()) {
            i = (i + 1) & mask;
        }
        slots_[i] = entry;
        ++size_;
    }

    std::vector<Slot> slots_; // a power of two
    std::size_t size_ = 0;
};

} // namespace zkr
