#include "platform/basekit2/environ.h"

#include <cstdlib>

namespace basekit2 {

std::string get_environ_value(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value ? value : "";
}

}  // namespace basekit2
