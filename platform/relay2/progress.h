// The progress sink of a request.
#pragma once

namespace relay2 {

// Made by the host, one a request, and borrowed by whoever works on that request; it outlives the request.
// Null where a parameter of this type is passed means: nobody watches, never cancelled.
class IProgress {
  public:
    virtual ~IProgress() = default;

    // Asked often by the thread that works on the request, so it has to be cheap and must not block. Once
    // true, it stays true for that request.
    [[nodiscard]] virtual bool isCancelled() const = 0;
};

}  // namespace relay2
