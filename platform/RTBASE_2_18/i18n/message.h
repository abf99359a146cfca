// A text of a catalogue, not yet rendered.
#pragma once

#include <string>
#include <utility>

#include "platform/RTBASE_2_18/generic/varg_list.h"
#include "platform/RTBASE_2_18/strings/ustring8.h"
#include "platform/export.h"

namespace RTBASE_2_18::i18n {

// A message as the catalogue holds it, with places %1 to %9 for arguments.
class TESSERA_PLATFORM_EXPORT message_t {
  public:
    explicit message_t(std::string pattern) : m_pattern(std::move(pattern)) {}

    // The text with its places filled in; a place without an argument stays as it stands, so an empty list
    // renders the message unchanged.
    [[nodiscard]] strings::ustring8 as_ustring(const generic::varg_list& arguments) const;

  private:
    std::string m_pattern;
};

}  // namespace RTBASE_2_18::i18n
