// What the drawing writes, into a sink of the host.
#pragma once

#include <string_view>

#include "cli/interrupt.h"
#include "draw/output.h"
#include "host/text/text_sink.h"

namespace tessera_cli {

// Stops taking anything once the program is interrupted. The sink must live as long as this.
class SinkOutput final : public tessera_draw::Output {
  public:
    explicit SinkOutput(tessera_host::TextSink& sink) : m_sink(sink) {}

    bool write(std::string_view piece) override { return !isInterrupted() && m_sink.write(piece); }

  private:
    tessera_host::TextSink& m_sink;
};

}  // namespace tessera_cli
