#include "almanac/almanac.h"

enum day_part part_of_day(int hour)
{
    hour = (hour % 24 + 24) % 24;
    if (hour < 5)
        return NIGHT;
    if (hour < 12)
        return MORNING;
    if (hour < 18)
        return AFTERNOON;
    if (hour < 22)
        return EVENING;
    return NIGHT;
}
