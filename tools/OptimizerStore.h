#pragma once

// What textures are compared by, kept as long as there is room: each is fetched once when all of them fit,
// and again when it was dropped for others. It owns the bytes; what it gives out stays valid as long as it is
// held.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <unordered_map>
#include <vector>

class COptimizerStore {
public:
    using Bytes = std::vector<std::byte>;
    /// The bytes of a texture; empty when there are none.
    using Fetch = std::function<Bytes(std::uint32_t index)>;

    /// Holds at most `limit` bytes, and the one texture asked for last.
    COptimizerStore(Fetch fetch, std::uint64_t limit) : m_fnFetch(std::move(fetch)), m_nLimit(limit) {}

    std::shared_ptr<const Bytes> Get(std::uint32_t index);
    std::uint64_t Held() const { return m_nHeld; }

private:
    struct Item {
        std::uint32_t index = 0;
        std::shared_ptr<const Bytes> bytes;
    };

    Fetch m_fnFetch;
    std::uint64_t m_nLimit;
    std::uint64_t m_nHeld = 0;
    std::list<Item> m_aItems;  // the one asked for last first
    std::unordered_map<std::uint32_t, std::list<Item>::iterator> m_aPlaces;
};
