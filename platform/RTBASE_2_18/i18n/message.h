// A text of a catalogue, not yet rendered.
#pragma once

#include <string>
#include <utility>

#include "platform/RTBASE_2_18/generic/varg_list.h"
#include "platform/RTBASE_2_18/strings/ustring8.h"
#include "platform/export.h"

namespace RTBASE_2_18::i18n {

// A message as the catalogue holds it, with placeholders %1 to %9 for arguments. A value: it owns its text
// and outlives the catalogue that it came from. Unchanging, so any thread may read one object.
class TESSERA_PLATFORM_EXPORT message_t {
  public:
    // `pattern` is UTF-8. A "%" without a digit from 1 to 9 after it is an ordinary character. A "%" with
    // such a digit is always a placeholder: there is no way to escape it.
    explicit message_t(std::string pattern) : m_pattern(std::move(pattern)) {}

    // The text with its placeholders replaced. A placeholder without an argument stays as it stands, so an
    // empty list renders the message unchanged; arguments without a placeholder are ignored.
    [[nodiscard]] strings::ustring8 as_ustring(const generic::varg_list& arguments) const;

  private:
    std::string m_pattern;
};

}  // namespace RTBASE_2_18::i18n
