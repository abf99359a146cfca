#include "core/view_model/data_transfer_table.h"

#include <algorithm>
#include <utility>

namespace tessera_1::view_model {

bool DataTransferTable::ShortName::set(std::string_view name) noexcept {
    if (name.size() > m_text.size()) return false;
    std::copy(name.begin(), name.end(), m_text.begin());
    m_size = static_cast<std::uint8_t>(name.size());
    return true;
}

DataTransferTable::DataTransferTable(std::initializer_list<Map::value_type> entries)
    : m_map(std::make_unique<Map>(entries)) {}

DataTransferTable::DataTransferTable(const DataTransferTable& other)
    : m_map(other.m_map ? std::make_unique<Map>(*other.m_map) : nullptr), m_onlyEmpty(other.m_onlyEmpty) {}

DataTransferTable::DataTransferTable(DataTransferTable&& other) noexcept
    : m_map(std::move(other.m_map)), m_onlyEmpty(std::exchange(other.m_onlyEmpty, {})) {}

DataTransferTable& DataTransferTable::operator=(DataTransferTable other) noexcept {
    m_map = std::move(other.m_map);
    m_onlyEmpty = other.m_onlyEmpty;
    return *this;
}

std::shared_ptr<DisplayInfo> DataTransferTable::lookUp(const std::string& mode) {
    if (!m_map && m_onlyEmpty.isSet() && m_onlyEmpty.text() == mode) return nullptr;
    if (!m_map && !m_onlyEmpty.isSet() && m_onlyEmpty.set(mode)) return nullptr;
    return (*this)[mode];
}

std::shared_ptr<DisplayInfo> DataTransferTable::find(const std::string& mode) const {
    if (!m_map) return nullptr;
    const auto it = m_map->find(mode);
    return it == m_map->end() ? nullptr : it->second;
}

bool DataTransferTable::contains(const std::string& mode) const {
    return m_map ? m_map->contains(mode) : m_onlyEmpty.isSet() && m_onlyEmpty.text() == mode;
}

std::size_t DataTransferTable::size() const noexcept {
    if (m_map) return m_map->size();
    return m_onlyEmpty.isSet() ? 1 : 0;
}

void DataTransferTable::clear() noexcept {
    m_map.reset();
    m_onlyEmpty.reset();
}

const DataTransferTable::Map& DataTransferTable::listed() const {
    static const Map none;
    return m_map || m_onlyEmpty.isSet() ? entries() : none;
}

DataTransferTable::Map& DataTransferTable::entries() const {
    if (!m_map) {
        m_map = std::make_unique<Map>();
        if (m_onlyEmpty.isSet()) m_map->emplace(m_onlyEmpty.text(), nullptr);
        m_onlyEmpty.reset();
    }
    return *m_map;
}

}  // namespace tessera_1::view_model
