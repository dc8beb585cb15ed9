#pragma once

/// @file
/// Version of libktAnnotationLegacy.

#include "legacy/ktAnnotationLegacyExport.h"

#include <cstdint>

namespace ktAnnotationLegacy {

/// Tells the library's version. Texts are constant and live as long as the library.
class KT_ANNOTATION_LEGACY_API Version {
public:
    Version() = delete;

    static std::int32_t GetMajor();
    static std::int32_t GetMinor();
    static std::int32_t GetRelease();
    static std::int32_t GetRevision();
    static const char* GetCommitId();
    static std::int32_t GetYear();
    static std::int32_t GetMonth();

    /// "3.0"; the flag is ignored.
    static const char* GetDescStringMajorMinor(bool flag);
    /// "3.0.0"; the flag is ignored.
    static const char* GetDescStringMajorMinorRelease(bool flag);
    /// "3.0.0.1226", with " #" and the commit id when withCommitId is true; the first flag is ignored.
    static const char* GetDescStringMajorMinorReleaseRevision(bool flag, bool withCommitId);
    /// "3.0.0.1226 #0f14611422dbde61 2025-12".
    static const char* GetDescStringMajorMinorReleaseRevisionDate();

    static bool IsBeta();
    static bool IsDebug();
    static bool IsDev();
};

}  // namespace ktAnnotationLegacy
