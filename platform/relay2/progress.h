// The progress sink of a request.
#pragma once

namespace relay2 {

// Implemented by the host, one object a request, and borrowed by whoever works on that request; the host
// keeps it alive until IRequestHandler::handleRequest() has returned. Null where a parameter of this type is
// passed means: the request cannot be cancelled. There is nothing to report progress with; the name is the
// host's.
class IProgress {
  public:
    virtual ~IProgress() = default;

    // Whether the user wants the request to end. Once true, it stays true for that request; the request then
    // returns the cancellation error as soon as it can, which is within 100 ms while a query runs.
    // - Called by the thread that works on the request, often, and with the handler's lock held: it must be
    //   cheap, such as one atomic load, must not block and must not throw.
    // - The host sets what it reads on another thread, so reading it must be safe against that.
    [[nodiscard]] virtual bool isCancelled() const = 0;
};

}  // namespace relay2
