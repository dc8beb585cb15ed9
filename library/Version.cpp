#include "library/Version.h"

// The texts are joined by the compiler, so that each number stands here once.
#define KT_VERSION_MAJOR_MINOR "3.0"
#define KT_VERSION_RELEASE KT_VERSION_MAJOR_MINOR ".0"
#define KT_VERSION_REVISION KT_VERSION_RELEASE ".1226"
#define KT_VERSION_COMMIT_ID "0f14611422dbde61"
#define KT_VERSION_REVISION_COMMIT KT_VERSION_REVISION " #" KT_VERSION_COMMIT_ID

namespace ktAnnotationLegacy {

std::int32_t Version::GetMajor() { return 3; }
std::int32_t Version::GetMinor() { return 0; }
std::int32_t Version::GetRelease() { return 0; }
std::int32_t Version::GetRevision() { return 1226; }
const char* Version::GetCommitId() { return KT_VERSION_COMMIT_ID; }
std::int32_t Version::GetYear() { return 2025; }
std::int32_t Version::GetMonth() { return 12; }

const char* Version::GetDescStringMajorMinor(bool /*flag*/) { return KT_VERSION_MAJOR_MINOR; }

const char* Version::GetDescStringMajorMinorRelease(bool /*flag*/) { return KT_VERSION_RELEASE; }

const char* Version::GetDescStringMajorMinorReleaseRevision(bool /*flag*/, bool withCommitId) {
    return withCommitId ? KT_VERSION_REVISION_COMMIT : KT_VERSION_REVISION;
}

const char* Version::GetDescStringMajorMinorReleaseRevisionDate() { return KT_VERSION_REVISION_COMMIT " 2025-12"; }

bool Version::IsBeta() { return false; }
bool Version::IsDebug() { return false; }
bool Version::IsDev() { return false; }

}  // namespace ktAnnotationLegacy
