// Property bags as JSON.
#pragma once

#include "host/text/text_sink.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

enum class JsonForm {
    compact,   // one line without white space
    indented,  // a line a member, two spaces a level; from level 40 on the indentation stays as it is
};

// Writes `bag` as one JSON object without a line end after it, and flushes the sink. Returns whether the
// sink took everything.
//
// An object has first the bag's values in their order, then its child bags grouped by name, the groups in the
// order in which their names first appear and the bags of a group in theirs. A group is an object when it has
// one bag, an array of objects when it has several. A string value "arrayOf" names a group that is always an
// array, also with one bag; with none, the empty array is the last member. Where a value and child bags share
// a name, the key appears twice.
//
// Strings are UTF-8 and written as they are but for the escapes that JSON demands; what is not valid becomes
// U+FFFD. Strings, integers and booleans read back as they were. A value that holds nothing is null, which
// readJson() refuses.
//
// Takes time in proportion to the bag, whatever its depth and however many different names it has.
bool writeJson(const basekit2::variant_bag_t& bag, TextSink& sink, JsonForm form = JsonForm::compact);

}  // namespace tessera_host
