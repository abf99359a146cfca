// Messages for the people who use the host.
#pragma once

#include <string>

#include "platform/basekit2/variant_bag.h"

namespace relay2 {

enum class severity_t { note, warning, error };

// Made by the host and borrowed by a request handler for its whole life. Null where a parameter of this type
// is passed means: nobody listens.
class IMessenger {
  public:
    virtual ~IMessenger() = default;

    // Shows `text` (UTF-8, one sentence or more, no line end). `position` is the place in the pane's document
    // that the message is about, line 0 when there is none. Called on the thread that works on a request,
    // possibly while the handler's lock is held: it must not send a request to the handler and must not wait
    // for one.
    virtual void post(severity_t severity, const std::string& text, basekit2::source_position_t position) = 0;
};

}  // namespace relay2
