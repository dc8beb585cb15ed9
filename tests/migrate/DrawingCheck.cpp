#include "tests/migrate/DrawingCheck.h"

#include "tests/svg/XmlTree.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace ktannot::test {

std::map<std::string, std::string> readTree(const std::string& folder) {
    namespace fs = std::filesystem;
    std::map<std::string, std::string> tree;
    if (!fs::exists(folder)) {
        return tree;
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_directory()) {
            std::ostringstream content;
            content << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            tree.emplace(fs::relative(entry.path(), folder).string(), content.str());
        }
    }
    return tree;
}

std::string findFaults(const std::string& drawing) {
    static constexpr int sMaxDepth = 48;
    const auto elements = kt::test::parseXml(drawing);
    if (!elements || elements->front().mName != "svg") {
        return "not a well-formed drawing\n";
    }
    std::string faults;
    for (const kt::test::XmlElement& element : *elements) {
        if (element.mDepth > sMaxDepth) {
            faults += element.mName + " at depth " + std::to_string(element.mDepth) + "\n";
        }
        if (element.mName == "script" || element.mName == "foreignObject") {
            faults += "has a " + element.mName + "\n";
        }
        for (const auto& [name, value] : element.mAttributes) {
            const bool isReference = name == "href" || name == "xlink:href";
            if (name.starts_with("on") ||
                (isReference && !value.starts_with("data:image/") && !value.starts_with('#'))) {
                faults += "has " + name + "=" + value.substr(0, 100) + "\n";
            }
        }
    }
    return drawing.find("<!") == std::string::npos ? faults : faults + "has declarations\n";
}

std::string findFaults(const std::map<std::string, std::string>& tree) {
    std::string faults;
    for (const auto& [path, content] : tree) {
        const std::string found = path.ends_with(".svg") ? findFaults(content) : "not a drawing\n";
        faults += found.empty() ? "" : path + ": " + found;
    }
    return faults;
}

}  // namespace ktannot::test
