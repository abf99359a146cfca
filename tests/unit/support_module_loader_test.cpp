#include "support/module_loader.h"

#include <gtest/gtest.h>

using tessera_support::findInModule;

TEST(ModuleLoader, FindsLibrariesBesideThePlatform) {
    std::string error;
    const std::string library = std::string("libtessera_catalogs-") + TESSERA_VERSION + ".so";
    EXPECT_NE(findInModule(library, "tesseraReadCatalogs", error), nullptr) << error;
    EXPECT_EQ(error, "");
}

TEST(ModuleLoader, ReportsWhatIsMissing) {
    std::string error;
    EXPECT_EQ(findInModule("libtessera_nothing.so", "anything", error), nullptr);
    EXPECT_NE(error.find("libtessera_nothing.so"), std::string::npos) << error;
    const std::string library = std::string("libtessera_catalogs-") + TESSERA_VERSION + ".so";
    EXPECT_EQ(findInModule(library, "tesseraNothing", error), nullptr);
    EXPECT_NE(error.find("tesseraNothing"), std::string::npos) << error;
}
