// What the fuzz targets share: a small database, a file in memory, and sinks. Each target runs alone in its process,
// on one thread, and keeps these objects from one input to the next.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "draw/output.h"
#include "host/engine/result.h"
#include "host/pane/pane.h"
#include "host/text/text_sink.h"

namespace tessera_fuzz {

// Ends the process with a message, which libFuzzer reports together with the input.
void require(bool condition, const char* what);

[[nodiscard]] inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// A new folder below the one for temporary files, removed with the object.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const noexcept { return m_path; }

  private:
    std::filesystem::path m_path;
};

// A file without a disk, for readers that take a path.
class MemoryFile {
  public:
    MemoryFile();
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    void set(std::string_view content) const;
    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

  private:
    int m_descriptor;
};

// A result with the table t(a, b) of a few rows and the view v. Making one turns the log off.
class SmallResult {
  public:
    SmallResult();

    [[nodiscard]] const std::shared_ptr<tessera_host::IResult>& get() const noexcept { return m_result; }
    [[nodiscard]] std::string path() const { return m_folder.path() / "result.db"; }

  private:
    TemporaryFolder m_folder;
    std::shared_ptr<tessera_host::IResult> m_result;
};

// SQL that makes the tables of SmallResult.
extern const char* const smallSchema;

// Limits that keep a single run short.
[[nodiscard]] tessera_host::PaneOptions smallLimits();

// Takes everything and keeps nothing.
class NoSink final : public tessera_host::TextSink {
  protected:
    bool deliver(std::string_view) override { return true; }
};

// Appends to `text`.
class StringOutput final : public tessera_draw::Output {
  public:
    bool write(std::string_view piece) override {
        text += piece;
        return true;
    }

    std::string text;
};

}  // namespace tessera_fuzz
