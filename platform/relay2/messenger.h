// Messages for the people who use the host.
#pragma once

#include <string>

#include "platform/basekit2/variant_bag.h"

namespace relay2 {

// How much a message matters. note: nothing is wrong. warning: the document is usable but probably not as its
// author meant it. error: a part of it cannot be used or shown, for example a value.
enum class severity_t { note, warning, error };

// Implemented by the host and borrowed by a request handler for its whole life: it must outlive the handler.
// Null where a parameter of this type is passed means: messages are dropped; whoever posts tests for it.
class IMessenger {
  public:
    virtual ~IMessenger() = default;

    // Shows a message to the user, or keeps it for later; nothing is returned to the poster.
    // - `text` is UTF-8, one sentence or more, without a line end. It lives for the call only.
    // - `position` is the place in the pane's document that the message is about; line 0 when there is none.
    // - Called on the thread that works on a request, possibly while the handler's lock is held: it must not
    //   send a request to that handler, must not wait for one, and must not throw. Calls of one request come
    //   one after the other; a messenger that several panes share is called by several threads at once.
    virtual void post(severity_t severity, const std::string& text, basekit2::source_position_t position) = 0;
};

}  // namespace relay2
