// A property bag as JSON, to compare whole bags in tests.
#pragma once

#include <string>
#include <string_view>

#include "host/text/json_writer.h"

namespace tessera_test {

inline std::string textOf(const basekit2::variant_bag_t& bag) {
    class Sink final : public tessera_host::TextSink {
      public:
        std::string text;

      protected:
        bool deliver(std::string_view piece) override {
            text += piece;
            return true;
        }
    };
    Sink sink;
    (void)tessera_host::writeJson(bag, sink);
    (void)sink.flush();
    return sink.text;
}

}  // namespace tessera_test
