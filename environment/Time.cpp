#include "environment/Time.h"

#include "runtime/StringUtils.h"
#include "runtime/StorageStream.h"

_eRank Time::rank(const _eAnyBase* other) const {
    const auto* that = dynamic_cast<const Time*>(other);
    if (that == nullptr) return defaultRank(other);
    const std::int32_t mine[] = {year, month, date, weekday, hour, minute, second};
    const std::int32_t theirs[] = {that->year, that->month, that->date, that->weekday,
                                   that->hour, that->minute, that->second};
    for (int i = 0; i < 7; ++i)
        if (mine[i] != theirs[i]) return mine[i] < theirs[i] ? rankBelow : rankAbove;
    return rankSame;
}

_eString Time::toString() const {
    return _eString(L"Year=") + intToString(year) + L";Month=" + intToString(month) + L";Date=" +
           intToString(date) + L";Day=" + intToString(weekday) + L";Hour=" + intToString(hour) + L";Min=" +
           intToString(minute) + L";Sec=" + intToString(second);
}

void Time::storeFields(StoreStream& stream) const {
    for (std::int32_t field : {second, minute, hour, weekday, date, month, year}) stream.storeInt(field);
}

void Time::fill(FillStream& stream) {
    _eFreeze freeze(this);
    for (std::int32_t* field : {&second, &minute, &hour, &weekday, &date, &month, &year}) stream.fillInt(*field);
}
