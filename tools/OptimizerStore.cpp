#include "tools/OptimizerStore.h"

std::shared_ptr<const COptimizerStore::Bytes> COptimizerStore::Get(std::uint32_t index)
{
    if (const auto place = m_aPlaces.find(index); place != m_aPlaces.end()) {
        m_aItems.splice(m_aItems.begin(), m_aItems, place->second);
        return m_aItems.front().bytes;
    }
    auto bytes = std::make_shared<const Bytes>(m_fnFetch(index));
    m_nHeld += bytes->size();
    m_aItems.push_front({.index = index, .bytes = bytes});
    m_aPlaces[index] = m_aItems.begin();
    while (m_nHeld > m_nLimit && m_aItems.size() > 1) {
        m_nHeld -= m_aItems.back().bytes->size();
        m_aPlaces.erase(m_aItems.back().index);
        m_aItems.pop_back();
    }
    return bytes;
}
