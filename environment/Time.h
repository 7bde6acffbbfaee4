// `Time`: a moment, broken down in UTC.
#pragma once

#include <cstdint>
#include <ctime>

#include "runtime/Class.h"
#include "runtime/Storable.h"

class MB_API Time : public _eClass<Time, _eStorable> {
public:
    static constexpr _aTypeSlot _aType{&_aModule29, 1};

    Time() = default;
    // `month` counts from 1, `year` is the full year, `weekday` 0 is Sunday.
    Time(std::int32_t second, std::int32_t minute, std::int32_t hour, std::int32_t weekday, std::int32_t date,
         std::int32_t month, std::int32_t year)
        : second(second), minute(minute), hour(hour), weekday(weekday), date(date), month(month), year(year) {}

    bool equalFields(const Time& other) const {
        return second == other.second && minute == other.minute && hour == other.hour &&
               weekday == other.weekday && date == other.date && month == other.month && year == other.year;
    }
    // By year, month, date, weekday, hour, minute, second: the first difference decides.
    _eRank rank(const _eAnyBase* other) const override;

    // "Year=2012;Month=1;Date=1;Day=0;Hour=0;Min=0;Sec=0"
    _eString toString() const override;

    void store(StoreStream& stream) const override { _aStoreObject(stream, *this, _aMyTypeInfo()); }
    void storeFields(StoreStream& stream) const override;
    void fill(FillStream& stream) override;

    std::int32_t getSecond() const { return second; }
    std::int32_t getMinute() const { return minute; }
    std::int32_t getHour() const { return hour; }
    std::int32_t getWeekday() const { return weekday; }
    std::int32_t getDate() const { return date; }
    std::int32_t getMonth() const { return month; }
    std::int32_t getYear() const { return year; }

private:
    std::int32_t second = 0;   // 0 to 60
    std::int32_t minute = 0;   // 0 to 59
    std::int32_t hour = 0;     // 0 to 23
    std::int32_t weekday = 0;  // 0 (Sunday) to 6
    std::int32_t date = 0;     // 1 to 31
    std::int32_t month = 0;    // 1 to 12
    std::int32_t year = 0;     // full year
};

// The UTC time of a moment of the system clock; `ok` is false where it has none.
_eHndl<Time> utcTime(std::time_t moment, bool& ok);
