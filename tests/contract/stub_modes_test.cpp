// The sizes of arrays that the drivers, the stub and the runtime agree on, and who defines them.
#include "contract/stub_modes.h"

#include <gtest/gtest.h>

TEST(StubModes, EachSaysHowPointsTakeRoomAndWhoDefinesTheArray)
{
    const struct {
        int mode;
        std::int32_t points_of_40; ///< points of an array of 40 bytes
        std::uint64_t bytes_of_33; ///< bytes for 33 points; those of bits begin a second word
        ArrayOwner owner;
    } rows[] = {
        {-1, 10, 132, ARRAYS_OF_NOBODY}, {0, 320, 8, ARRAYS_OF_STUB},
        {1, 10, 132, ARRAYS_OF_STUB},    {2, 40, 33, ARRAYS_OF_STUB},
        {3, 10, 132, ARRAYS_OF_NOBODY},  {4, 320, 8, ARRAYS_OF_STUB},
        {5, 10, 132, ARRAYS_OF_OBJECTS}, {6, 40, 33, ARRAYS_OF_STUB},
        {7, 320, 8, ARRAYS_OF_OBJECTS},  {8, 10, 132, ARRAYS_OF_OBJECTS},
        {9, 40, 33, ARRAYS_OF_OBJECTS},  {10, 10, 132, ARRAYS_OF_NOBODY},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        EXPECT_EQ(points_of_array(row.mode, 40), row.points_of_40);
        EXPECT_EQ(size_of_array(row.mode, 33), row.bytes_of_33);
        EXPECT_EQ(counter_mode(row.mode).owner, row.owner);
    }
    EXPECT_EQ(size_of_array(0, 0) + size_of_array(0, 32), 4U);
    EXPECT_EQ(size_of_array(1, UINT32_MAX), 0x3FFFFFFFCU);
}
