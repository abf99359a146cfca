// The places of an XML document in which text is written differently.
#pragma once

namespace tessera_support {

// Each place escapes what a parser would otherwise take for markup, or change, and no more.
enum class XmlPlace {
    text,       // content between tags
    attribute,  // a value in double quotes; tab and line ends are escaped too, as a reader would make them spaces
    // Shown to people, in content or in quotes of either kind: white space becomes a space, and control
    // characters, which fonts lack, U+FFFD.
    drawing
};

}  // namespace tessera_support
