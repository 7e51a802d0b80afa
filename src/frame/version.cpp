// The version record: constants of the interface, not facts about this build.
#include "frame/export.h"

namespace {

constexpr ulkLibraryVersion kVersion = {
    .major = 6,
    .minor = 1,
    .majorBuild = 137,
    .build = 742,
    .targetCpu = {'q', '4', 0, 0},
    .Name = "ulkchq4-6.1.dll",
    .Version = "6.1 build 137.20",
    .BuildDate = "Jun 10 2009",
};

}  // namespace

ULK_EXPORT const ulkLibraryVersion* ULK_CALL ulkchGetLibVersion() { return &kVersion; }
