#pragma once

/// @file
/// Small variant documents.

#include <string>

namespace ktannot::test {

/// A text annotation with the given further members, each beginning with a comma.
inline std::string makeText(const std::string& members = "") {
    return R"({"type":"text","name":"note","position":[1,2,0],"text":"M8")" + members + "}";
}

/// A view map of version 6.27.
/// @param annotations  JSON of the list's elements.
/// @param metadata     JSON of a map.
inline std::string makeView(const std::string& name, const std::string& annotations = makeText(),
                            const std::string& metadata = "{}") {
    return R"({"ver":"6.27","name":")" + name + R"(","metadata":)" + metadata +
           R"(,"origin":[0,0,0],"normal":[0,0,1],"axis":[1,0,0],"annotations":[)" + annotations + "]}";
}

}  // namespace ktannot::test
