// Output that appears whole or not at all.
#pragma once

#include <memory>
#include <string>

#include "host/text/text_sink.h"

namespace tessera_cli {

// Writes to standard output (path "" or "-"), or to a file that takes the named file's place with commit().
// Where the file system allows it, that file has no name until then, so that nothing is left behind however
// the program ends. What is no regular file (a pipe, a device) is written directly.
class OutputFile {
  public:
    OutputFile() = default;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    // False when it cannot be opened; error() says why.
    [[nodiscard]] bool open(const std::string& path);
    // REQUIRES: open() answered true.
    [[nodiscard]] tessera_host::TextSink& sink() { return *m_sink; }
    // Makes what was written the file's content. False when anything written so far failed; error() says why.
    [[nodiscard]] bool commit();

    // "PATH: what the system said".
    [[nodiscard]] const std::string& error() const noexcept { return m_error; }

  private:
    bool openDirectly();
    bool openAgain(int descriptor);
    bool openBeside();
    bool nameUnnamed();
    bool fail(int number);

    std::string m_path;       // of the final file; "" for standard output
    std::string m_temporary;  // what is to be renamed or removed; "" when there is none
    bool m_unnamed = false;   // the file has no name yet
    int m_descriptor = -1;
    std::unique_ptr<tessera_host::FileSink> m_sink;
    std::string m_error;
};

}  // namespace tessera_cli
