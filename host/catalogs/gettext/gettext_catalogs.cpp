#include "host/catalogs/gettext/gettext_catalogs.h"

#include <algorithm>
#include <boost/locale/gnu_gettext.hpp>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <locale>
#include <optional>
#include <string_view>
#include <utility>

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

// As a catalogue with the texts of a whole program has at most.
constexpr std::size_t maxFileSize = std::size_t{64} << 20U;
// The longest that are known have a quarter of this. The library reads them by recursion.
constexpr std::size_t maxPluralSize = 1000;

// The content of a regular file; none when it is something else, larger, or cannot be read.
std::optional<std::vector<char>> contentOf(const std::string& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) return std::nullopt;
    std::ifstream stream(path, std::ios::binary);
    std::vector<char> content(
        std::min<std::uintmax_t>(std::filesystem::file_size(path, ignored), maxFileSize) + 1);
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(stream.gcount()));
    if (stream.bad() || content.empty() || content.size() > maxFileSize) return std::nullopt;
    return content;
}

// The library follows a file's offsets wherever they lead. All its tables and texts must lie inside of the file.
class CatalogFile {
  public:
    explicit CatalogFile(std::vector<char>& content) : m_content(content) {}

    [[nodiscard]] bool isSound() {
        if (m_content.size() < headSize) return false;
        const std::string_view magic(m_content.data(), 4);
        m_isBigEndian = magic == "\x95\x04\x12\xDE";
        if (!m_isBigEndian && magic != "\xDE\x12\x04\x95") return false;
        const std::uint64_t count = wordAt(8);
        if (count == 0) return false;  // the first entry is the header, with the encoding
        for (const std::uint64_t table : {wordAt(12), wordAt(16)}) {
            if (table + count * 8 > m_content.size()) return false;
            for (std::uint64_t entry = table; entry < table + count * 8; entry += 8) {
                const std::uint64_t end = wordAt(entry) + wordAt(entry + 4);
                if (end >= m_content.size() || m_content[end] != '\0') return false;
            }
        }
        return isPluralShort(wordAt(16));
    }

    // Without its hash table, whose size and entries could be anything, the library makes one of its own.
    void removeHashTable() { std::fill_n(m_content.begin() + 20, 4, '\0'); }

  private:
    static constexpr std::size_t headSize = 28;

    // The four bytes at `offset`, in the order that the file is written in. REQUIRES: they are inside of it.
    [[nodiscard]] std::uint64_t wordAt(std::uint64_t offset) const {
        std::uint64_t word = 0;
        for (std::uint64_t i = 0; i < 4; ++i)
            word = word << 8U | static_cast<unsigned char>(m_content[offset + (m_isBigEndian ? i : 3 - i)]);
        return word;
    }

    // Of the header, which is the first text: how the plural of a number is found.
    [[nodiscard]] bool isPluralShort(std::uint64_t entry) const {
        constexpr std::string_view name = "plural=";
        const std::string_view header(m_content.data() + wordAt(entry + 4), wordAt(entry));
        const std::size_t begin = header.find(name);
        if (begin == std::string_view::npos) return true;
        return std::min(header.find_first_of(";\r\n", begin), header.size()) - begin <= maxPluralSize;
    }

    std::vector<char>& m_content;
    bool m_isBigEndian = false;
};

// `content` is that of the file, checked.
std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> load(const std::string& locale, const std::string& name,
                                                         std::vector<char> content) {
    gettext::messages_info info;
    info.language = locale;
    info.encoding = "UTF-8";
    info.domains.emplace_back(name);
    info.paths.emplace_back("catalogs");  // not read: the callback has the content already
    info.callback = [&content](const std::string&, const std::string&) { return content; };
    return std::make_shared<GettextCatalog>(gettext::create_messages_facet<char>(info));
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
            std::optional<std::vector<char>> content = contentOf(path);
            if (!content || !CatalogFile(*content).isSound()) {
                problems.push_back(path + ": is not a message catalogue that can be read");
                break;
            }
            CatalogFile(*content).removeHashTable();
            try {
                m_catalogs.emplace(name, load(candidate, name, std::move(*content)));
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
