// Arguments for the placeholders of a message.
#pragma once

#include <string>
#include <vector>

namespace RTBASE_2_18::generic {

// UTF-8 texts that replace the placeholders of a message: the first replaces %1, the second %2, up to %9. The
// caller of message_t::as_ustring() makes it; an empty list leaves every placeholder as it is. A text is put
// in as it stands: a "%1" inside of it is not replaced again.
using varg_list = std::vector<std::string>;

}  // namespace RTBASE_2_18::generic
