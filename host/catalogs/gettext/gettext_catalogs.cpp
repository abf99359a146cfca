#include "host/catalogs/gettext/gettext_catalogs.h"

#include <boost/locale/gnu_gettext.hpp>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>

namespace tessera_host {
namespace {

namespace gettext = boost::locale::gnu_gettext;

class GettextCatalog final : public RTBASE_2_18::i18n::catalog_t {
  public:
    explicit GettextCatalog(boost::locale::message_format<char>* messages)
        : m_locale(std::locale::classic(), messages), m_messages(messages) {}

    bool has_message(const std::string& key) const override { return find(key) != nullptr; }
    RTBASE_2_18::i18n::message_t message(const std::string& key) const override {
        const char* text = find(key);
        return RTBASE_2_18::i18n::message_t(text ? text : key);
    }

  private:
    // Under the empty key a catalogue keeps its own header, which is not a text to show.
    const char* find(const std::string& key) const {
        return key.empty() ? nullptr : m_messages->get(0, nullptr, key.c_str());
    }

    std::locale m_locale;  // owns the messages
    const boost::locale::message_format<char>* m_messages;
};

std::string fileOf(const std::string& directory, const std::string& locale, const std::string& name) {
    return directory + "/" + locale + "/LC_MESSAGES/" + name + ".mo";
}

std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> load(const std::string& directory,
                                                         const std::string& locale, const std::string& name) {
    gettext::messages_info info;
    info.language = locale;
    info.encoding = "UTF-8";
    info.domains.emplace_back(name);
    info.paths.push_back(directory);
    return std::make_shared<GettextCatalog>(gettext::create_messages_facet<char>(info));
}

// The four bytes at `offset`, in the order that the file is written in. REQUIRES: they are inside of `file`.
std::uint64_t wordAt(const std::string& file, std::uint64_t offset, bool isBigEndian) {
    std::uint64_t word = 0;
    for (std::uint64_t i = 0; i < 4; ++i)
        word = word << 8U | static_cast<unsigned char>(file[offset + (isBigEndian ? i : 3 - i)]);
    return word;
}

// The library follows a file's offsets wherever they lead: all its tables and texts must lie inside of the
// file.
bool isCatalog(const std::string& path) {
    constexpr std::uint64_t headSize = 28;
    std::ifstream stream(path, std::ios::binary);
    const std::string file(std::istreambuf_iterator<char>(stream), {});
    if (file.size() < headSize) return false;
    const bool isBigEndian = file.starts_with("\x95\x04\x12\xDE");
    if (!isBigEndian && !file.starts_with("\xDE\x12\x04\x95")) return false;
    const auto word = [&](std::uint64_t offset) { return wordAt(file, offset, isBigEndian); };
    const std::uint64_t count = word(8);
    if (word(24) + word(20) * 4 > file.size()) return false;  // the hash table
    for (const std::uint64_t table : {word(12), word(16)}) {
        if (table + count * 8 > file.size()) return false;
        for (std::uint64_t entry = table; entry < table + count * 8; entry += 8) {
            const std::uint64_t end = word(entry) + word(entry + 4);
            if (end >= file.size() || file[end] != '\0') return false;
        }
    }
    return true;
}

}  // namespace

GettextCatalogs::GettextCatalogs(const std::string& directory, const std::string& locale,
                                 std::vector<std::string>& problems) {
    // From "de_AT.UTF-8" over "de_AT" to "de".
    const std::vector<std::string> locales{locale, locale.substr(0, locale.find_first_of(".@")),
                                           locale.substr(0, locale.find_first_of("_.@"))};
    for (const std::string_view catalogName : optstore2::catalogNames) {
        const std::string name(catalogName);
        for (const std::string& candidate : locales) {
            const std::string path = fileOf(directory, candidate, name);
            std::error_code ignored;
            if (!std::filesystem::exists(path, ignored)) continue;
            try {
                if (isCatalog(path))
                    m_catalogs.emplace(name, load(directory, candidate, name));
                else
                    problems.push_back(path + ": is not a message catalogue that can be read");
            } catch (const std::exception& error) {
                problems.push_back(path + ": cannot be read as a message catalogue: " + error.what());
            }
            break;
        }
    }
}

std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> GettextCatalogs::getCatalog(
    const std::string& name) const {
    const auto it = m_catalogs.find(name);
    return it == m_catalogs.end() ? nullptr : it->second;
}

}  // namespace tessera_host
