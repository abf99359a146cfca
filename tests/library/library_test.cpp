// The library as a host uses it: loaded at run time, and called through its exported factory.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "core/factory.h"

namespace {

using Factory = decltype(&tessera_1::createDiagramViewRequestHandler);

TEST(Library, IsLoadedAtRunTimeAndServesRequests) {
    void* library = dlopen(TESSERA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const char* name =
        "_ZN9tessera_131createDiagramViewRequestHandlerEN8basekit26sptr_tIN6qlib_113IQueryLibraryEEENS1_INS2_"
        "10IInputDataEEESt10shared_ptrIN11panelcore_115IRequestHandlerEES7_INS8_10IFilterMgrEEPN6relay2"
        "10IMessengerE";
    auto* factory = reinterpret_cast<Factory>(dlsym(library, name));
    ASSERT_NE(factory, nullptr) << dlerror();
    const auto handler = factory(nullptr, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(handler->getDomainName(), "diagramView");
    basekit2::variant_bag_t out;
    EXPECT_TRUE(handler->handleRequest("refresh", {}, out, nullptr).is_false());
    EXPECT_TRUE(handler->handleRequest("other", {}, out, nullptr).is(bk2::error::FailedTo));
    EXPECT_TRUE(out.is_empty());
}

TEST(Library, HidesWhatIsNotOffered) {
    void* library = dlopen(TESSERA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    // The check facility is the library's own.
    EXPECT_EQ(dlsym(library, "_ZN9tessera_15check10SourceUnitC1EPKc"), nullptr);
    EXPECT_NE(dlsym(library,
                    "_ZN9tessera_17hasAttrERKN8basekit213variant_bag_tENSt7__cxx1112basic_stringIcSt11char_"
                    "traitsIcESaIcEEE"),
              nullptr);
}

}  // namespace
