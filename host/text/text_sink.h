// Where the writers of text formats write to.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace tessera_host {

// Collects text in blocks of 64 KiB and passes them on. After a failure nothing more is passed on and every
// further call returns false, so a writer may test good() now and then instead of each result. Text that has
// not been flushed when the sink is destroyed is lost: the destructor cannot report a failure. One thread at
// a time.
class TextSink {
  public:
    TextSink() = default;
    TextSink(const TextSink&) = delete;
    TextSink& operator=(const TextSink&) = delete;
    virtual ~TextSink() = default;

    // These two return good(). They take any bytes; writers of text pass UTF-8. Most calls only copy into the
    // block; one that fills it waits for the target.
    bool put(char c) {
        if (m_used == blockSize) flush();
        m_block[m_used++] = c;
        return m_good;
    }

    bool write(std::string_view text) {
        if (text.size() > blockSize - m_used) return writeAcross(text);
        if (!text.empty()) std::memcpy(m_block.get() + m_used, text.data(), text.size());
        m_used += text.size();
        return m_good;
    }

    // Passes on everything written so far; returns good(). The caller of a writer calls it once, at the end.
    bool flush();

    // False once something could not be passed on. What was passed on before stays where it is.
    [[nodiscard]] bool good() const noexcept { return m_good; }

  protected:
    // Implemented by the target: takes one block, which is valid during the call only. False when it could
    // not be taken as a whole; it is not called again then.
    virtual bool deliver(std::string_view block) = 0;

  private:
    bool writeAcross(std::string_view text);

    static constexpr std::size_t blockSize = 65536;
    std::unique_ptr<char[]> m_block = std::make_unique_for_overwrite<char[]>(blockSize);
    std::size_t m_used = 0;
    bool m_good = true;
};

// Appends to a string, which has to outlive the sink.
class StringSink final : public TextSink {
  public:
    explicit StringSink(std::string& target) : m_target(target) {}

  protected:
    bool deliver(std::string_view block) override;

  private:
    std::string& m_target;
};

// Writes to an open file descriptor, which stays the caller's to close. A pipe without a reader fails like
// any other write only where SIGPIPE is ignored.
class FileSink final : public TextSink {
  public:
    // `wake` is a descriptor that becomes readable when waiting for a slow reader is to end (the write then
    // fails with EINTR); -1 for none.
    explicit FileSink(int descriptor, int wake = -1) : m_descriptor(descriptor), m_wake(wake) {}

    // The errno of the write that failed, 0 when none has: for the message of the caller, who knows the name
    // of the file.
    [[nodiscard]] int error() const noexcept { return m_error; }

  protected:
    bool deliver(std::string_view block) override;

  private:
    [[nodiscard]] bool isWoken() const;

    int m_descriptor;  // not owned, as the next one
    int m_wake;
    int m_error = 0;
};

}  // namespace tessera_host
