// Output that appears whole or not at all.
#pragma once

#include <memory>
#include <string>

#include "host/error.h"
#include "host/text/text_sink.h"

namespace tessera_cli {

// Writes to standard output (path "" or "-"), or to a file that takes the named file's place with commit().
// Where the file system allows it, that file has no name until then, so that nothing is left over however the
// program ends. Pipes and devices are written directly. One thread at a time.
class OutputFile {
  public:
    OutputFile() = default;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    // The errors of these two have the kind cannotOpen and the text "PATH: cannot write: what the system
    // said".
    [[nodiscard]] tessera_host::Expected<void> open(const std::string& path);
    // REQUIRES: open() succeeded.
    [[nodiscard]] tessera_host::TextSink& sink() { return *m_sink; }
    // Passes on what the sink has collected; returns 0 or the errno. For a copy of this process that writes:
    // the original then calls noteFailure() with what was returned, and commit(). REQUIRES: open() succeeded.
    [[nodiscard]] int flush();
    void noteFailure(int number) { m_failure = number; }
    // Makes what was written the file's content. Fails when anything written so far failed.
    [[nodiscard]] tessera_host::Expected<void> commit();

  private:
    using Outcome = tessera_host::Expected<void>;

    Outcome openDirectly(bool isPipe);
    Outcome openAgain(int descriptor);
    Outcome openBeside();
    bool nameUnnamed();
    [[nodiscard]] tessera_host::Error failure(int number) const;

    std::string m_path;       // of the final file; "" for standard output
    std::string m_temporary;  // what is to be renamed or removed; "" when there is none
    bool m_unnamed = false;   // the file has no name yet
    int m_descriptor = -1;
    int m_failure = 0;  // of another process
    std::unique_ptr<tessera_host::FileSink> m_sink;
};

}  // namespace tessera_cli
