#include "platform/RTBASE_2_18/i18n/message.h"

namespace RTBASE_2_18::i18n {

strings::ustring8 message_t::as_ustring(const generic::varg_list& arguments) const {
    std::string text;
    text.reserve(m_pattern.size());
    for (std::size_t i = 0; i < m_pattern.size(); ++i) {
        const bool place = m_pattern[i] == '%' && i + 1 < m_pattern.size() && m_pattern[i + 1] >= '1' &&
                           m_pattern[i + 1] <= '9';
        const std::size_t index = place ? static_cast<std::size_t>(m_pattern[i + 1] - '1') : 0;
        if (place && index < arguments.size()) {
            text += arguments[index];
            ++i;
        } else {
            text += m_pattern[i];
        }
    }
    return strings::ustring8(std::move(text));
}

}  // namespace RTBASE_2_18::i18n
