// The sink that finished drawings are written to: a file, a response, a string.
#pragma once

#include <string_view>

namespace tessera_draw {

// Implemented by callers. Writers hold a reference during their call only, call it in their caller's thread,
// and do not close or flush it.
class Output {
  public:
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    virtual ~Output() = default;

    // Appends the next bytes. `piece` is valid during the call only, may have any size, and may begin or end
    // inside a UTF-8 character. Returns false when the bytes could not be taken; the writer then stops and
    // reports failure. The reason is kept by the implementation.
    virtual bool write(std::string_view piece) = 0;
};

}  // namespace tessera_draw
