// One message catalogue.
#pragma once

#include <string>

#include "platform/RTBASE_2_18/i18n/message.h"

namespace RTBASE_2_18::i18n {

// The texts of one catalogue in the language that the host chose. Implemented by the host. All members may be
// called on any thread at once.
class catalog_t {
  public:
    virtual ~catalog_t() = default;

    [[nodiscard]] virtual bool has_message(const std::string& key) const = 0;
    // The message of `key`. REQUIRES: has_message(key); otherwise the key itself is the message.
    [[nodiscard]] virtual message_t message(const std::string& key) const = 0;
};

}  // namespace RTBASE_2_18::i18n
