// Why a query has no value.
#pragma once

#include <string>

namespace tessera_host {

struct Failure {
    std::string text;          // for people: no full stop, no line end
    bool isCancelled = false;  // the request was cancelled; not the query's fault
};

}  // namespace tessera_host
