#pragma once

/// @file
/// What a worker process may touch.

#include <set>
#include <string>

namespace ktannot {

/// Shuts a process in, where the kernel can do that (Landlock and seccomp): it reads what it needs, writes to the
/// output folder and does nothing else. It makes no sockets and runs no programs, whatever a document makes of it.
class Sandbox {
public:
    enum class Mode {
        Auto,  ///< when the kernel can
        Off,
        Require,
    };

    struct Places {
        std::set<std::string> mReadFolders;  ///< with everything below them
        std::string mWriteFolder;            ///< empty: nothing is written
    };

    /// Whether this kernel can.
    static bool isSupported();
    /// Shuts this process in for good, with what its fonts need besides the places. False when that is not possible.
    static bool enter(const Places& places);
};

}  // namespace ktannot
