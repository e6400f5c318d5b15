#include "almanac/almanac.h"

#include <stddef.h>

static int is_leap_year(int year)
{
    if (year % 100 == 0)
        return year % 400 == 0;
    return year % 4 == 0;
}

int days_in_month(int year, int month)
{
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12)
        return 0;
    if (month == 2 && is_leap_year(year))
        return 29;
    return days[month - 1];
}

const char* weekday(int year, int month, int day)
{
    static const char* const names[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                        "Thursday", "Friday", "Saturday"};
    if (year < 1 || day < 1 || day > days_in_month(year, month))
        return NULL;

    /* January 1st of the year 1 was a Monday; each year moves on by one day, a leap year by two. */
    int before = year - 1;
    int number = 1 + before + before / 4 - before / 100 + before / 400;
    for (int passed = 1; passed < month; passed++)
        number += days_in_month(year, passed);
    return names[(number + day - 1) % 7];
}
