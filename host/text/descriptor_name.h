// Names such as /dev/stdin, which represent a file that is open already.
#pragma once

#include <optional>
#include <string>

namespace tessera_host {

// The number of this program's descriptor that the path /proc/self/fd/N represents, also by the name
// /dev/fd/N; none for any other path. The descriptor need not be open. Follows links among the folders, not
// one that `path` itself is.
[[nodiscard]] std::optional<int> descriptorNamed(const std::string& path);

// The same, but follows the links that `path` ends in, as /dev/stdin does.
[[nodiscard]] std::optional<int> descriptorBehind(std::string path);

}  // namespace tessera_host
