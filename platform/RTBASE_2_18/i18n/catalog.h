// One message catalogue.
#pragma once

#include <string>

#include "platform/RTBASE_2_18/i18n/message.h"

namespace RTBASE_2_18::i18n {

// The texts of one catalogue in the language that the host chose. Implemented by the host, handed out by its
// optstore2::IMessageCatalogSource and shared with every user of it.
//
// The diagram library calls it while "create" reads the viewpoint, under the handler's lock: a catalogue must
// not send a request and should not read files here. Panes run on several threads, so all members may be
// called on any thread at once; the content never changes.
class catalog_t {
  public:
    virtual ~catalog_t() = default;

    // Whether the catalogue has a text for `key` (UTF-8, compared byte by byte; possibly empty). When
    // false, or when the text is empty, the diagram library tries its next catalogue.
    [[nodiscard]] virtual bool has_message(const std::string& key) const = 0;
    // The message of `key`, as a copy that does not depend on the catalogue.
    // REQUIRES: has_message(key); otherwise the key itself is the message.
    [[nodiscard]] virtual message_t message(const std::string& key) const = 0;
};

}  // namespace RTBASE_2_18::i18n
