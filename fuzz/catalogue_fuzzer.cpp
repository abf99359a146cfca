// Feeds bytes to the reader of message catalogues, and looks texts up. The library that takes a catalogue apart is not
// instrumented, so the memory that holds the file ends at a page that cannot be read. The address sanitizer has its
// own memory, and finds less here: builds without it have this one.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "fuzz/support.h"
#include "host/catalogs/gettext/gettext_catalogs.h"

namespace {

// Gives out memory for the copies of one file. Both that are made of it are used at the same time.
class FencedMemory {
  public:
    // Copies of another size come from the heap.
    static constexpr std::size_t maxSize = std::size_t{1} << 16U;

    // Memory of `size` bytes before a fence, or null when nothing is expected to have this size, or no place is free.
    void* take(std::size_t size) noexcept {
        if (size == 0 || size != expected) return nullptr;
        for (Place& place : m_places) {
            if (place.isTaken) continue;
            if (place.fence == nullptr) place.fence = makeFence();
            place.isTaken = place.fence != nullptr;
            return place.isTaken ? place.fence - size : nullptr;
        }
        return nullptr;
    }
    bool giveBack(const void* memory) noexcept {
        for (Place& place : m_places) {
            if (!place.isTaken || memory < place.fence - maxSize || memory >= place.fence) continue;
            place.isTaken = false;
            return true;
        }
        return false;
    }

    std::size_t expected = 0;

  private:
    struct Place {
        char* fence = nullptr;
        bool isTaken = false;
    };

    static char* makeFence() noexcept {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        void* memory =
            mmap(nullptr, maxSize + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) return nullptr;
        char* fence = static_cast<char*>(memory) + maxSize;
        return mprotect(fence, page, PROT_NONE) == 0 ? fence : nullptr;
    }

    Place m_places[8];
};

constinit FencedMemory fenced;

// Three catalogues' worth of paths, of which one exists.
class CatalogueFolder {
  public:
    CatalogueFolder() {
        const auto folder = m_folder.path() / "de" / "LC_MESSAGES";
        std::filesystem::create_directories(folder);
        std::filesystem::create_symlink(m_file.path(), folder / "viewpoint.mo");
    }

    void set(std::string_view content) const { m_file.set(content); }
    [[nodiscard]] std::string path() const { return m_folder.path(); }

  private:
    tessera_fuzz::TemporaryFolder m_folder;
    tessera_fuzz::MemoryFile m_file;
};

// Every look-up ends, and a text that is there can be fetched.
void lookUp(const RTBASE_2_18::i18n::catalog_t& catalogue, const std::string& key) {
    const std::string text = catalogue.message(key).as_ustring({}).str();
    if (!catalogue.has_message(key))
        tessera_fuzz::require(text == key, "a key without a text stands for itself");
}

}  // namespace

#ifndef TESSERA_SANITIZED
// NOLINTBEGIN(misc-new-delete-overloads)
void* operator new(std::size_t size) {
    if (void* memory = fenced.take(size)) return memory;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    if (!fenced.giveBack(memory)) std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
// NOLINTEND(misc-new-delete-overloads)
#endif

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const CatalogueFolder folder;
    if (size > FencedMemory::maxSize) return 0;
    folder.set(tessera_fuzz::textOf(data, size));
    std::vector<std::string> problems;
    fenced.expected = size;
    {
        const tessera_host::GettextCatalogs catalogues(folder.path(), "de_AT.UTF-8", problems);
        tessera_fuzz::require(catalogues.size() + problems.size() == 1, "a file is read or reported");
        if (const auto catalogue = catalogues.getCatalog("viewpoint")) {
            for (const char* key : {"", "a", "title", "boxes", "no such key"})
                lookUp(*catalogue, key);
            lookUp(*catalogue, std::string(tessera_fuzz::textOf(data, size).substr(size / 2, 12)));
        }
    }
    fenced.expected = 0;
    return 0;
}
