#include "host/text/descriptor_name.h"

#include <charconv>
#include <filesystem>
#include <system_error>

namespace tessera_host {
namespace {

namespace fs = std::filesystem;

constexpr int maxLinks = 40;  // as many as the kernel follows

}  // namespace

std::optional<int> descriptorNamed(const std::string& path) {
    const fs::path asPath(path);
    // Most names are not numbers, and need no look at the folders.
    const std::string name = asPath.filename().string();
    int number = -1;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || end != name.data() + name.size()) return std::nullopt;
    std::error_code none;
    const fs::path folder = fs::canonical(asPath.parent_path(), none);
    if (none || folder != fs::canonical("/proc/self/fd", none)) return std::nullopt;
    return number;
}

std::optional<int> descriptorBehind(std::string path) {
    for (int links = 0; links < maxLinks; ++links) {
        if (auto number = descriptorNamed(path)) return number;
        std::error_code noLink;
        const fs::path target = fs::read_symlink(path, noLink);
        if (noLink) return std::nullopt;
        path = (fs::path(path).parent_path() / target).string();
    }
    return std::nullopt;
}

}  // namespace tessera_host
