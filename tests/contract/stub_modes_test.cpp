// The sizes of arrays that the drivers, the stub and the runtime agree on.
#include "contract/stub_modes.h"

#include <gtest/gtest.h>

TEST(StubModes, AnArrayHasSoManyPointsThatItsStubHoldsIt)
{
    // By stub mode, of 40 bytes: bits in words, bytes, words of 4 bytes.
    const std::int32_t points[] = {320, 10, 40, 10, 320, 10, 40, 320, 10, 40};
    for (int mode = 0; mode < 10; ++mode) {
        EXPECT_EQ(points_of_array(mode, 40), points[mode]) << mode;
    }
}

TEST(StubModes, TheRuntimeFindsTheSizeOfAnArrayFromItsPoints)
{
    // By stub mode, of 33 points; those of bits begin a second word.
    const std::uint64_t bytes[] = {8, 132, 33, 132, 8, 132, 33, 8, 132, 33};
    for (int mode = 0; mode < 10; ++mode) {
        EXPECT_EQ(size_of_array(mode, 33), bytes[mode]) << mode;
        EXPECT_EQ(size_of_array(mode, 0), 0U) << mode;
    }
    EXPECT_EQ(size_of_array(0, 32), 4U);
    EXPECT_EQ(size_of_array(1, UINT32_MAX), 0x3FFFFFFFCU);
}

TEST(StubModes, SomeLeaveTheArraysToTheObjects)
{
    const ArrayOwner stub = ARRAYS_OF_STUB, objects = ARRAYS_OF_OBJECTS, none = ARRAYS_OF_NOBODY;
    // By stub mode.
    const ArrayOwner owners[] = {stub,    stub, stub,    none,    stub,
                                 objects, stub, objects, objects, objects};
    for (int mode = -1; mode <= 10; ++mode) {
        const bool is_known = mode >= 0 && mode < 10;
        EXPECT_EQ(counter_mode(mode).owner, is_known ? owners[mode] : none) << mode;
    }
}
