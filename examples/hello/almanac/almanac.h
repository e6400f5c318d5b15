/* Days and their parts, by the Gregorian calendar. */
#ifndef ALMANAC_H
#define ALMANAC_H

#ifdef __cplusplus
extern "C" {
#endif

enum day_part { MORNING, AFTERNOON, EVENING, NIGHT };

/* The part of the day that an hour belongs to; hours go round the clock, so 25 is 1. */
enum day_part part_of_day(int hour);

/* How many days a month (1 to 12) has; 0 when there is no such month. */
int days_in_month(int year, int month);

/* "Sunday" to "Saturday"; NULL when there is no such day. */
const char* weekday(int year, int month, int day);

#ifdef __cplusplus
}
#endif

#endif
