// The version record: one constant object, so every call returns the same
// address.  The processor tag and file name carry the one target this
// library is built for; there is no run-time dispatch.
#include "frame/frame.h"

namespace {

constexpr OrvLibraryVersion kVersion = {
    6,
    1,
    137,
    761,
    {'k', '3', '\0', '\0'},
    "orvvmk3-6.1.dll",
    "6.1 build 137.36",
    "Sep 29 2009",
};

}  // namespace

ORV_EXPORT const OrvLibraryVersion* orvvmGetLibVersion(void) { return &kVersion; }
