// Arguments for the places of a message.
#pragma once

#include <string>
#include <vector>

namespace RTBASE_2_18::generic {

// The texts that take the places %1, %2, ... of a message, in order.
using varg_list = std::vector<std::string>;

}  // namespace RTBASE_2_18::generic
