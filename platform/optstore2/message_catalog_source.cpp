#include "platform/optstore2/message_catalog_source.h"

#include <mutex>
#include <utility>

namespace optstore2 {
namespace {

// What is installed at the start: every text stays as it is written.
class no_catalogs_t final : public IMessageCatalogSource {
  public:
    std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(const std::string&) const override {
        return nullptr;
    }
};

struct installed_t {
    std::mutex mutex;
    std::shared_ptr<const IMessageCatalogSource> source = std::make_shared<no_catalogs_t>();
};

installed_t& installed() {
    static installed_t instance;
    return instance;
}

}  // namespace

std::shared_ptr<const IMessageCatalogSource> getMessageCatalogSource() {
    const std::scoped_lock lock(installed().mutex);
    return installed().source;
}

void setMessageCatalogSource(std::shared_ptr<const IMessageCatalogSource> source) {
    if (!source) source = std::make_shared<no_catalogs_t>();
    // The replaced source is destroyed after the lock is released.
    const std::scoped_lock lock(installed().mutex);
    installed().source.swap(source);
}

}  // namespace optstore2
