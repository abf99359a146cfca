// Where finished drawings go.
#pragma once

#include <string_view>

namespace tessera_draw {

class Output {
  public:
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    virtual ~Output() = default;

    // Takes the next piece, any bytes. False when it could not be taken; the drawing then ends.
    virtual bool write(std::string_view piece) = 0;
};

}  // namespace tessera_draw
