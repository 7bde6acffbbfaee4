// The version record of the shared library, read back through the environment as a host would.
#include <gtest/gtest.h>

#include "environment/Environment.h"

TEST(EnvironmentHost, ModuleVersionReadsTheLoadedLibrarysRecord) {
    _eHndl<Environment> env(new Environment());
    _eSeq<int> version = env->moduleVersion(L"ModelBridge.dll");
    EXPECT_EQ(version, (_eSeq<int>{MODELBRIDGE_TEST_VERSION_0, MODELBRIDGE_TEST_VERSION_1,
                                   MODELBRIDGE_TEST_VERSION_2, MODELBRIDGE_TEST_VERSION_3}));
    EXPECT_NE(version, (_eSeq<int>{0, 0, 0, 0}));
    EXPECT_EQ(env->moduleVersion(L"libModelBridge.so"), version);
    EXPECT_EQ(env->moduleVersion(L"NoSuchModule.dll"), (_eSeq<int>{0, 0, 0, 0}));
    EXPECT_EQ(env->moduleVersion(L""), (_eSeq<int>{0, 0, 0, 0}));
    // A loaded module without a record has no version either.
    EXPECT_EQ(env->moduleVersion(L"libc.so.6"), (_eSeq<int>{0, 0, 0, 0}));
}
